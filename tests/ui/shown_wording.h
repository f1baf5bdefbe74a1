#pragma once

#include <memory>

#include <QTranslator>

namespace quietlark {

/// Has windows say what they say on this system, as long as it lives.
class ShownWording {
public:
    enum class Length {
        usual,
        longer,  ///< every text 40 % longer, as in languages that need more room
    };

    explicit ShownWording(Length length);
    ~ShownWording();
    ShownWording(const ShownWording&) = delete;
    ShownWording& operator=(const ShownWording&) = delete;

private:
    const std::unique_ptr<QTranslator> m_wording;
};

}  // namespace quietlark

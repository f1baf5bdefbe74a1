#pragma once

#include <QCoreApplication>

#include "platform/key_synthesizer.h"

namespace quietlark {

/// Types by another synthesizer, unless a window of this program has the keyboard and what has the
/// focus in it takes no text: what is typed there would be lost. Main thread.
class FocusAwareKeySynthesizer final : public KeySynthesizer {
    Q_DECLARE_TR_FUNCTIONS(FocusAwareKeySynthesizer)

public:
    explicit FocusAwareKeySynthesizer(KeySynthesizer& keys) : m_keys(keys) {}

    [[nodiscard]] tl::expected<void, Unavailable> post(KeyCode keyCode,
                                                       ModifierFlags flags) override;
    [[nodiscard]] std::optional<Unavailable> unavailable() const override {
        return m_keys.unavailable();
    }

private:
    KeySynthesizer& m_keys;
};

}  // namespace quietlark

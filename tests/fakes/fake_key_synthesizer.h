#pragma once

#include <optional>
#include <vector>

#include "platform/key_synthesizer.h"

namespace quietlark {

/// Remembers the keystrokes instead of typing them.
class FakeKeySynthesizer final : public KeySynthesizer {
public:
    struct Keystroke {
        KeyCode keyCode = 0;
        ModifierFlags flags = 0;

        bool operator==(const Keystroke&) const = default;
    };

    [[nodiscard]] tl::expected<void, Unavailable> post(KeyCode keyCode,
                                                       ModifierFlags flags) override {
        if (m_unavailable) return tl::unexpected(*m_unavailable);
        m_posted.push_back({keyCode, flags});
        return {};
    }

    [[nodiscard]] std::optional<Unavailable> unavailable() const override { return m_unavailable; }

    /// From now on nothing can be posted.
    void makeUnavailable(const QString& reason) { m_unavailable = Unavailable{reason}; }

    /// What has been posted, in order.
    [[nodiscard]] const std::vector<Keystroke>& posted() const { return m_posted; }

private:
    std::vector<Keystroke> m_posted;
    std::optional<Unavailable> m_unavailable;
};

}  // namespace quietlark

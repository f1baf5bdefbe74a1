#pragma once

#include <vector>

#include <QCoreApplication>

#include "platform/key_synthesizer.h"
#include "platform/linux/x11/keys/keystroke_plan.h"
#include "platform/linux/x11/keys/x11_key_connection.h"

namespace quietlark {

/// Types by XTEST.
///
/// Modifiers that the user holds are lifted for the keystroke on the very keyboard that holds them,
/// and put back there. When the user lets go in the meantime, the key is let go of after all.
class X11KeySynthesizer final : public KeySynthesizer {
    Q_DECLARE_TR_FUNCTIONS(X11KeySynthesizer)

public:
    explicit X11KeySynthesizer(X11KeyConnection& connection) : m_connection(connection) {}

    [[nodiscard]] tl::expected<void, Unavailable> post(KeyCode keyCode,
                                                       ModifierFlags flags) override;
    [[nodiscard]] std::optional<Unavailable> unavailable() const override;

private:
    [[nodiscard]] tl::expected<void, Unavailable> tryPost(KeyCode keyCode, ModifierFlags flags);
    void type(const KeystrokePlan& plan, const KeyboardState& state);
    void apply(const std::vector<KeystrokePlan::Move>& moves);
    void releaseWhatTheUserReleased(const std::vector<DeviceKey>& lifted);

    X11KeyConnection& m_connection;
};

}  // namespace quietlark

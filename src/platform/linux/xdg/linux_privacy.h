#pragma once

#include <QByteArray>
#include <QCoreApplication>

#include "platform/audio_input.h"
#include "platform/key_event_source.h"
#include "platform/key_synthesizer.h"
#include "platform/privacy.h"

namespace quietlark {

/// What the kind of session a program runs in lets it do with other programs' keys.
enum class SessionKind {
    X11,
    Wayland,  ///< nothing, but where they run through XWayland
};

/// As the login manager says in XDG_SESSION_TYPE, and else by whose display the session has.
[[nodiscard]] SessionKind sessionKindOf(const QByteArray& xdgSessionType,
                                        const QByteArray& waylandDisplay);

/// Linux asks the user nothing: a grant is given where the thing can be done. A request is answered
/// at once, with that.
class LinuxPrivacy final : public Privacy {
    Q_DECLARE_TR_FUNCTIONS(LinuxPrivacy)

public:
    LinuxPrivacy(SessionKind session, const AudioInput& microphone, const KeyEventSource& keyboard,
                 const KeySynthesizer& keys);

    [[nodiscard]] std::optional<Unavailable> missing(PrivacyGrant grant) const override;
    void requestMicrophone(std::function<void(bool granted)> completion) override;
    bool requestInputMonitoring() override;
    bool requestAccessibility() override;

private:
    const SessionKind m_session;
    const AudioInput& m_microphone;
    const KeyEventSource& m_keyboard;
    const KeySynthesizer& m_keys;
};

}  // namespace quietlark

#include "platform/linux/xdg/linux_privacy.h"

namespace quietlark {

SessionKind sessionKindOf(const QByteArray& xdgSessionType, const QByteArray& waylandDisplay) {
    if (xdgSessionType == "wayland") return SessionKind::Wayland;
    if (xdgSessionType == "x11") return SessionKind::X11;
    return waylandDisplay.isEmpty() ? SessionKind::X11 : SessionKind::Wayland;
}

LinuxPrivacy::LinuxPrivacy(SessionKind session, const AudioInput& microphone,
                           const KeyEventSource& keyboard, const KeySynthesizer& keys)
    : m_session(session), m_microphone(microphone), m_keyboard(keyboard), m_keys(keys) {}

std::optional<Unavailable> LinuxPrivacy::missing(PrivacyGrant grant) const {
    const bool isWayland = m_session == SessionKind::Wayland;
    switch (grant) {
        case PrivacyGrant::Microphone:
            return m_microphone.unavailable();
        case PrivacyGrant::InputMonitoring:
            if (!isWayland) return m_keyboard.unavailable();
            return Unavailable{
                tr("A Wayland session shows a program no keys of other programs: log in to an X11 "
                   "session (\"Xorg\" at the login screen).")};
        case PrivacyGrant::Accessibility:
            if (!isWayland) return m_keys.unavailable();
            return Unavailable{
                tr("A Wayland session lets no program type into another: log in to an X11 session "
                   "(\"Xorg\" at the login screen).")};
    }
    return std::nullopt;
}

void LinuxPrivacy::requestMicrophone(std::function<void(bool granted)> completion) {
    completion(!missing(PrivacyGrant::Microphone));
}

bool LinuxPrivacy::requestInputMonitoring() {
    return !missing(PrivacyGrant::InputMonitoring);
}

bool LinuxPrivacy::requestAccessibility() {
    return !missing(PrivacyGrant::Accessibility);
}

}  // namespace quietlark

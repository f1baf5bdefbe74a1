#pragma once

#include <functional>
#include <optional>

#include <QDBusConnection>

#include "permissions/local_network_probe.h"
#include "permissions/permissions.h"
#include "platform/linux/avahi/avahi_daemon.h"
#include "platform/linux/avahi/avahi_local_host_name.h"
#include "platform/linux/avahi/avahi_service_browser.h"
#include "platform/linux/avahi/system_bus.h"
#include "platform/linux/pulse/pulse_audio_input.h"
#include "platform/linux/systemd/systemd_user_service.h"
#include "platform/linux/x11/keys/x11_key_connection.h"
#include "platform/linux/x11/keys/x11_key_event_source.h"
#include "platform/linux/x11/keys/x11_key_synthesizer.h"
#include "platform/linux/xdg/desktop_settings.h"
#include "platform/linux/xdg/linux_privacy.h"
#include "platform/qt/qt_scheduler.h"

namespace quietlark {

/// This system's part in what the user may grant or refuse, for the program that runs and for the
/// command that examines it. The one place that chooses these adapters. Main thread.
class DesktopAdapters {
public:
    /// `hasFocus` tells whether a window of ours has it. Connects to the desktop; waits for nobody.
    explicit DesktopAdapters(std::function<bool()> hasFocus);

    /// Starts the browse at the first call.
    LocalNetworkProbe& localNetworkProbe();

    /// Whether everything that takes a moment to find out about the desktop has been found out.
    [[nodiscard]] bool isKnown();

    QtScheduler scheduler;
    X11KeyConnection keyConnection;
    X11KeyEventSource keyboard;
    X11KeySynthesizer keys{keyConnection};
    PulseAudioInput microphone;
    SystemBus systemBus{scheduler};
    AvahiDaemon avahi{systemBus};
    AvahiServiceBrowser network{avahi, scheduler};
    AvahiLocalHostName localHostName{avahi, scheduler};
    QDBusConnection sessionBus = QDBusConnection::sessionBus();
    /// The speech server's, unless the environment's QUIETLARK_SERVICE names another.
    SystemdUserService serverUnit;
    DesktopSettings settings;
    LinuxPrivacy privacy;
    Permissions permissions;

private:
    std::optional<LocalNetworkProbe> m_localNetworkProbe;
};

}  // namespace quietlark

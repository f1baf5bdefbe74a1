#pragma once

#include <optional>
#include <vector>

#include <QCoreApplication>

#include "commands/configured_server.h"
#include "commands/doctor_command.h"
#include "config/config.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt_widgets/tray_hosts.h"
#include "program/desktop_adapters.h"
#include "transcription/endpoint_file.h"
#include "transcription/server_resolver.h"

namespace quietlark {

/// Everything that dictation needs of this desktop and of the settings, looked at by the adapters
/// that the program itself uses. Main thread.
class Examination {
    Q_DECLARE_TR_FUNCTIONS(Examination)

public:
    /// Begins to look at what takes a moment. Trays are looked for only by a QApplication.
    explicit Examination(bool canShowWindows);

    [[nodiscard]] std::vector<DoctorCheck> checks();
    [[nodiscard]] Scheduler& scheduler() { return m_desktop.scheduler; }

private:
    [[nodiscard]] std::optional<QString> missing(PrivacyGrant grant) const;
    [[nodiscard]] std::optional<QString> localNetworkProblem();
    [[nodiscard]] std::optional<QString> clipboardProblem() const;
    [[nodiscard]] std::optional<QString> trayProblem() const;
    [[nodiscard]] std::optional<QString> sessionBusProblem() const;
    [[nodiscard]] std::optional<QString> serviceProblem() const;
    [[nodiscard]] std::optional<QString> hotkeyProblem() const;
    [[nodiscard]] static QString logState();
    [[nodiscard]] static QString launchAtLoginState();
    [[nodiscard]] std::optional<QString> serverProblem() const;

    DesktopAdapters m_desktop;
    X11Pasteboard m_pasteboard;
    std::optional<TrayHosts> m_trays;
    QtHttpClient m_http;
    ServerResolver m_resolver;
    EndpointFile m_endpointFile;
    const Config m_config;
    const ConfiguredServer m_serverAddress;

    bool m_clipboardAnswers = false;
    bool m_hasTray = false;
    bool m_serverAnswers = false;
    Cancellable m_snapshot;
    Cancellable m_probe;
};

}  // namespace quietlark

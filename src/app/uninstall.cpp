#include "app/uninstall.h"

#include <array>
#include <optional>

#include <QDir>
#include <QFileInfo>

#include "app/made_folders.h"
#include "local_server/launch_at_login.h"

namespace quietlark {

namespace {

const QString logFile = QStringLiteral("/tmp/quietlark.log");

// In the order in which they are reset.
constexpr std::array privacyServices{PrivacyService::Microphone, PrivacyService::ListenEvent,
                                     PrivacyService::Accessibility, PrivacyService::AppleEvents,
                                     PrivacyService::PostEvent};

OwnFiles::Folder settingsFolder(const AppState::Files& files) {
    return {QFileInfo(files.config).path(),
            {QFileInfo(files.config).fileName(), QStringLiteral("defaults.ini"),
             QStringLiteral("server.conf")}};
}

OwnFiles::Folder modelFolder(const AppState::Files& files) {
    const QFileInfo models(files.model.directory());
    QStringList entries;
    for (const QString& file : {files.model.active(), files.model.partial(), files.model.received(),
                                files.model.resume(), files.model.name()})
        entries << QDir(models.path()).relativeFilePath(file);
    return {models.path(), entries};
}

/// One line of shell that resets what there is to reset, whether or not each reset works; absent
/// where there is nothing.
std::optional<QString> resetLine(const PrivacyRecords& records, const QString& identifier) {
    QStringList commands;
    for (const PrivacyService service : privacyServices) {
        if (const auto command = records.resetCommand(service, identifier))
            commands << *command + QStringLiteral(" 2>/dev/null || true");
    }
    if (commands.isEmpty()) return std::nullopt;
    return commands.join(QStringLiteral("; "));
}

}  // namespace

Uninstall::Uninstall(AppState& appState, WindowPresenter& windows, const Computer& computer)
    : m_appState(appState), m_windows(windows), m_computer(computer) {}

void Uninstall::prepare() {
    noteMissingFolders(m_computer.defaults, m_computer.files);
}

void Uninstall::run() {
    if (m_isRunning) return;
    m_isRunning = true;
    m_windows.askWhetherToUninstall([this](bool isConfirmed) { onAnswer(isConfirmed); });
}

void Uninstall::onAnswer(bool isConfirmed) {
    m_isRunning = isConfirmed;
    if (!isConfirmed) return;
    Q_EMIT confirmed();
    m_windows.closeAll();
    m_request = m_appState.daemon().unregisterService([this](const auto&) {
        // What has been received of a model is written when its download ends.
        m_appState.modelDownloader().stop([this] { onServerGone(); });
    });
}

void Uninstall::onServerGone() {
    LaunchAtLogin(m_computer.loginItem).set(false);
    m_madeFolders = notedFolders(m_computer.defaults);
    if (m_computer.installation.bundleIdentifier()) m_computer.defaults.removeAll();
    removeFiles();
    resetPrivacy();
}

void Uninstall::removeFiles() {
    const AppState::Files& files = m_appState.files();
    m_computer.files.removeFolder(settingsFolder(files));
    m_computer.files.removeFolder(modelFolder(files));
    if (files.endpoint.isServers()) m_computer.files.removeFile(files.endpoint.path());
    m_computer.files.removeFile(logFile);
    m_computer.loginItem.forget();
}

void Uninstall::resetPrivacy() {
    const auto identifier = m_computer.installation.bundleIdentifier();
    const auto line = identifier ? resetLine(m_computer.privacy, *identifier) : std::nullopt;
    if (!line) return recycle();
    m_request = m_computer.privacy.runAsAdministrator(*line, [this] { recycle(); });
}

void Uninstall::recycle() {
    const auto recycled = m_computer.recycler.recycle(m_computer.installation.bundlePath());
    // Not before, since the Trash may be in one of them.
    m_computer.files.removeEmptyFolders(m_madeFolders);
    if (recycled) return Q_EMIT finished();
    m_windows.showRecycleFailure(recycled.error().localizedDescription,
                                 [this] { Q_EMIT finished(); });
}

}  // namespace quietlark

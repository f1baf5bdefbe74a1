#include "platform/linux/xdg/autostart_entry.h"

#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "platform/linux/xdg/desktop_entry.h"
#include "platform/own_file.h"

namespace quietlark {
namespace {

// Longer than any that a desktop writes.
constexpr qint64 longestEntryBytes = 64 * 1024;

QByteArray entryStarting(const QString& executable) {
    return QStringLiteral(
               "[Desktop Entry]\n"
               "Type=Application\n"
               "Name=Quietlark\n"
               "Comment=Push-to-talk dictation\n"
               "Exec=%1\n"
               "Icon=net.quietlark.app\n"
               "Terminal=false\n"
               "X-GNOME-Autostart-enabled=true\n")
        .arg(quotedForExec(executable))
        .toUtf8();
}

}  // namespace

AutostartEntry::AutostartEntry(const QString& configDirectory, QString executable)
    : m_directory(configDirectory + QStringLiteral("/autostart")),
      m_file(m_directory + QStringLiteral("/net.quietlark.app.desktop")),
      m_executable(std::move(executable)) {}

ServiceStatus AutostartEntry::status() const {
    const auto entry = content();
    if (!entry) return ServiceStatus::notRegistered;
    const bool isHidden =
        desktopEntryValue(*entry, QStringLiteral("Hidden")) == QStringLiteral("true");
    const bool isSwitchedOff =
        desktopEntryValue(*entry, QStringLiteral("X-GNOME-Autostart-enabled")) ==
        QStringLiteral("false");
    return isHidden || isSwitchedOff ? ServiceStatus::requiresApproval : ServiceStatus::enabled;
}

tl::expected<void, ServiceError> AutostartEntry::registerItem() {
    if (!QDir().mkpath(m_directory)) return failure(tr("The folder cannot be made."));
    // Takes the place of the old one only when it is complete.
    QSaveFile file(m_file);
    const QByteArray entry = entryStarting(m_executable);
    if (!file.open(QIODevice::WriteOnly) || file.write(entry) != entry.size() || !file.commit())
        return failure(file.errorString());
    return {};
}

tl::expected<void, ServiceError> AutostartEntry::unregisterItem() {
    const auto removed = removeOwnFile(m_file);
    if (!removed) return failure(removed.error());
    return {};
}

void AutostartEntry::forget() {
    const auto entry = content();
    if (entry && desktopEntryValue(*entry, QStringLiteral("Exec")) == quotedForExec(m_executable))
        static_cast<void>(removeOwnFile(m_file));
}

std::optional<QByteArray> AutostartEntry::content() const {
    QFile file(m_file);
    // Opening what is no file may wait for ever.
    if (!QFileInfo(m_file).isFile() || !file.open(QIODevice::ReadOnly)) return std::nullopt;
    return file.read(longestEntryBytes);
}

tl::expected<void, ServiceError> AutostartEntry::failure(const QString& reason) const {
    return tl::unexpected(
        ServiceError{tr("Starting at login cannot be changed in %1: %2").arg(m_directory, reason)});
}

}  // namespace quietlark

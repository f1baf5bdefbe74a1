#include "platform/linux/installation/linux_installation.h"

#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace quietlark {

namespace {

/// The directories as they are written, without slashes to spare, and as they are without links,
/// which is how the executable's path is. Leaves out what is not absolute, or is everything.
QStringList formsOf(const QStringList& directories) {
    QStringList forms;
    for (const QString& directory : directories) {
        if (!directory.startsWith(u'/')) continue;
        forms << QDir::cleanPath(directory) << QFileInfo(directory).canonicalFilePath();
    }
    forms.removeAll(QString());
    forms.removeAll(QDir::rootPath());
    forms.removeDuplicates();
    return forms;
}

}  // namespace

LinuxInstallation::LinuxInstallation(QString executable, const QString& home,
                                     const QString& furtherRoot)
    : m_executable(std::move(executable)),
      m_sharedDirectories(QStringList(QStringLiteral("/"))
                          << formsOf({QStringLiteral("/usr"), QStringLiteral("/usr/local"), home,
                                      home + QStringLiteral("/.local")})),
      m_applicationRoots(formsOf({QStringLiteral("/opt"), home + QStringLiteral("/.local/opt"),
                                  QStringLiteral("/usr"), furtherRoot})) {
    for (QString& root : m_applicationRoots)
        root += u'/';
}

QString LinuxInstallation::bundlePath() const {
    const QString directory = QFileInfo(m_executable).path();
    if (QFileInfo(directory).fileName() != QStringLiteral("bin")) return m_executable;
    const QString bundle = QFileInfo(directory).path();
    return m_sharedDirectories.contains(bundle) ? m_executable : bundle;
}

std::optional<double> LinuxInstallation::executableModificationDate() const {
    struct stat attributes {};
    if (stat(QFile::encodeName(m_executable).constData(), &attributes) != 0) return std::nullopt;
    return double(attributes.st_mtim.tv_sec) + double(attributes.st_mtim.tv_nsec) / 1e9;
}

}  // namespace quietlark

#include "platform/linux/installation/linux_installation.h"

#include <utility>

#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace quietlark {

LinuxInstallation::LinuxInstallation(QString executable, const QString& home,
                                     const QString& furtherRoot)
    : m_executable(std::move(executable)),
      m_sharedDirectories{QStringLiteral("/"), QStringLiteral("/usr"), QStringLiteral("/usr/local"),
                          home, home + QStringLiteral("/.local")},
      m_applicationRoots{QStringLiteral("/opt/"), home + QStringLiteral("/.local/opt/"),
                         QStringLiteral("/usr/")} {
    if (!furtherRoot.isEmpty()) m_applicationRoots << furtherRoot + u'/';
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

#pragma once

#include "platform/installation.h"

namespace quietlark {

/// The installation that an executable belongs to. A bundle is a directory whose bin/ holds the
/// executable, such as /opt/Quietlark; where bin/ is everybody's, as in /usr, the bundle is the
/// executable alone.
class LinuxInstallation final : public Installation {
public:
    /// `executable` is its path without symbolic links, as QCoreApplication::applicationFilePath()
    /// has it; `home` is the user's home directory. `furtherRoot`, if there is one, is one more
    /// directory that applications may be installed below, for trying the program out; one that is
    /// not absolute, or the root directory, is none.
    LinuxInstallation(QString executable, const QString& home, const QString& furtherRoot = {});

    [[nodiscard]] QString bundlePath() const override;

    /// That of the desktop entry, wherever the program lies.
    [[nodiscard]] std::optional<QString> bundleIdentifier() const override {
        return QStringLiteral("net.quietlark.app");
    }

    /// "/opt/", "~/.local/opt/", and "/usr/" for what a package manager has installed; also without
    /// links, where that differs.
    [[nodiscard]] QStringList applicationRoots() const override { return m_applicationRoots; }

    [[nodiscard]] std::optional<double> executableModificationDate() const override;

private:
    const QString m_executable;
    const QStringList m_sharedDirectories;  ///< whose bin/ is everybody's
    QStringList m_applicationRoots;
};

}  // namespace quietlark

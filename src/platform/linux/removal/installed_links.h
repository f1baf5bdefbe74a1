#pragma once

#include <QString>
#include <QStringList>

namespace quietlark {

/// The places where installing the program leaves links into its bundle, for the desktop to find
/// it: among the user's commands, menus, icons, services and what starts at login.
class InstalledLinks {
public:
    /// The user's home directory and XDG base directories; the same one may be named twice.
    InstalledLinks(const QString& home, const QStringList& configHomes,
                   const QStringList& dataHomes);

    /// Of those places the ones that hold a link which ends in the bundle, be it by way of others.
    [[nodiscard]] QStringList into(const QString& bundlePath) const;

private:
    QStringList m_patterns;  ///< of paths; each component may have wildcards
};

}  // namespace quietlark

#pragma once

#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quietlark {

/// What installing the program makes outside of its bundle, for the desktop to find it: links among
/// the user's commands, menus, icons, services and manual pages, and the folders that they are in.
class Registration {
public:
    struct Link {
        QString path;
        QByteArray target;  ///< as it is written in the link
    };
    /// Of one bundle.
    struct Traces {
        std::vector<Link> links;  ///< those that end in the bundle, be it by way of others
        QStringList folders;  ///< on the way to a link or the bundle, and made for it; inner first
    };

    /// The user's home directory and XDG base directories; the same one may be named twice.
    Registration(const QString& home, const QStringList& configHomes, const QStringList& dataHomes);

    /// What there is of a bundle. Looks for links in the places where they are put, under their
    /// names, and in places like them that the bundle's own list names. Which folders were made for
    /// them is in that list too; what it names besides is left out.
    [[nodiscard]] Traces of(const QString& bundlePath) const;

private:
    QStringList m_patterns;  ///< of paths; each component may have wildcards
};

}  // namespace quietlark

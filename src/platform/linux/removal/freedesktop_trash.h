#pragma once

#include <QCoreApplication>
#include <QString>
#include <tl/expected.hpp>

#include "platform/posix/descriptor.h"

namespace quietlark {

/// The user's Trash, as desktops agree on it: one in the home directory, and one at the top of each
/// other file system, since nothing is copied.
class FreedesktopTrash {
    Q_DECLARE_TR_FUNCTIONS(FreedesktopTrash)

public:
    /// What is to be moved, by way of directories that nobody can put others in the place of.
    struct Item {
        QString path;  ///< absolute
        const Descriptor& parent;
        const Descriptor& itself;
    };

    /// `dataHome` as the XDG base directory of that name.
    explicit FreedesktopTrash(QString dataHome);

    /// Moves the file or folder at that absolute path; of a link, the link. Makes the Trash where
    /// there is none yet. Fails with the system's reason, and leaves everything where it is then.
    [[nodiscard]] tl::expected<void, QString> move(const QString& path) const;
    /// The same for the very one that is open; another one that is there by now stays.
    [[nodiscard]] tl::expected<void, QString> move(const Item& item) const;

private:
    const QString m_dataHome;
};

}  // namespace quietlark

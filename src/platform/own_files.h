#pragma once

#include <QString>
#include <QStringList>

namespace quietlark {

/// What the program has written on this computer, for taking it away again: its own and nothing
/// else, whatever paths the environment has led it to. Failures are not reported. Main thread.
class OwnFiles {
public:
    struct Folder {
        QString path;  ///< its last component is the program's name
        /// What the program writes there, relative to `path`. Each name stands for that file and
        /// for what writing it may leave: the name with ".lock", ".new", or a point and six random
        /// letters behind it.
        QStringList entries;
    };

    virtual ~OwnFiles() = default;

    /// Removes the folder with everything in it where it is the program's by convention. Where the
    /// environment has put it elsewhere, only the entries, and the folder if that leaves it empty.
    /// Follows no link, and leaves what belongs to another user or is another file system.
    virtual void removeFolder(const Folder& folder) = 0;

    /// Removes that file, or link, if it is this user's. A folder stays.
    virtual void removeFile(const QString& path) = 0;

    /// Of the folders that programs share, and that the program's use makes where they are missing,
    /// those that are missing now.
    [[nodiscard]] virtual QStringList missingFolders() const = 0;

    /// Removes of these the ones that are such folders, are this user's and have nothing in them.
    virtual void removeEmptyFolders(const QStringList& paths) = 0;
};

}  // namespace quietlark

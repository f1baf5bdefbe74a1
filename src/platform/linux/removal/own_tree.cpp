#include "platform/linux/removal/own_tree.h"

#include <memory>

#include <QFile>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/file_status.h"

namespace quietlark {

namespace {

// Each level holds a descriptor open; what the program writes is three levels deep.
constexpr int deepestLevel = 100;

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

void removeOwnEntry(const Descriptor& directory, const QByteArray& name, int level) {
    struct stat status {};
    if (::fstatat(directory.number(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
    if (!isOwn(status)) return;
    if (!S_ISDIR(status.st_mode)) {
        ::unlinkat(directory.number(), name.constData(), 0);
        return;
    }
    if (level == deepestLevel) return;
    const Descriptor folder = openOwnFolder(directory, name);
    if (!folder.isOpen()) return;
    for (const QByteArray& below : entryNames(folder))
        removeOwnEntry(folder, below, level + 1);
    // Fails, as it should, where something is left.
    ::unlinkat(directory.number(), name.constData(), AT_REMOVEDIR);
}

}  // namespace

std::vector<QByteArray> entryNames(const Descriptor& directory) {
    std::vector<QByteArray> names;
    // A descriptor of its own, since closing the stream closes that too.
    const int reading = ::openat(directory.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, DirectoryCloser> stream(reading < 0 ? nullptr
                                                                   : ::fdopendir(reading));
    while (const dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
        const QByteArray name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    return names;
}

bool isMountPoint(const Descriptor& directory) {
    // Tells also of a mount from within the same file system, where the device is no other.
    struct statx status {};
    const bool isKnown = ::statx(directory.number(), "", AT_EMPTY_PATH, 0, &status) == 0 &&
                         (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
    if (isKnown) return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    struct stat here {};
    struct stat above {};
    return ::fstat(directory.number(), &here) != 0 ||
           ::fstatat(directory.number(), "..", &above, 0) != 0 || here.st_dev != above.st_dev ||
           here.st_ino == above.st_ino;
}

Descriptor openOwnFolder(const Descriptor& directory, const QByteArray& name) {
    Descriptor folder(::openat(directory.number(), name.constData(),
                               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folder.isOpen() || ::fstat(folder.number(), &status) != 0) return {};
    if (!isOwn(status) || isMountPoint(folder)) return {};
    return folder;
}

bool isAtOrAbove(const Descriptor& directory, const QString& path) {
    struct stat wanted {};
    struct stat here {};
    if (::fstat(directory.number(), &wanted) != 0) return false;
    Descriptor at(::open(QFile::encodeName(path).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    while (at.isOpen() && ::fstat(at.number(), &here) == 0) {
        if (isSameFile(here, wanted)) return true;
        Descriptor above(::openat(at.number(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat there {};
        const bool isTop =
            !above.isOpen() || ::fstat(above.number(), &there) != 0 || isSameFile(there, here);
        if (isTop) return false;
        at = std::move(above);
    }
    return false;
}

void removeOwnEntries(const Descriptor& directory, const EntryFilter& isWanted) {
    for (const QByteArray& name : entryNames(directory)) {
        if (isWanted(name)) removeOwnEntry(directory, name, 0);
    }
}

}  // namespace quietlark

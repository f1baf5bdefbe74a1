#include "platform/own_file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <fcntl.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/file_status.h"

namespace quietlark {

namespace {

tl::expected<void, QString> outcomeOf(int reason) {
    if (reason == 0 || reason == ENOENT) return {};
    return tl::unexpected(QString::fromStdString(std::generic_category().message(reason)));
}

/// By way of which the file that is looked at is in the directory that it is removed from.
Descriptor openParent(const QString& path) {
    return Descriptor(::open(QFile::encodeName(QFileInfo(path).path()).constData(),
                             O_PATH | O_DIRECTORY | O_CLOEXEC));
}

QByteArray nameIn(const QString& path) {
    return QFile::encodeName(QFileInfo(path).fileName());
}

/// Empty for what is no link.
QByteArray targetOf(const Descriptor& parent, const QByteArray& name) {
    QByteArray target(PATH_MAX, '\0');
    const ssize_t length = ::readlinkat(parent.number(), name.constData(), target.data(),
                                        static_cast<size_t>(target.size()));
    return target.first(std::max<ssize_t>(length, 0));
}

}  // namespace

tl::expected<void, QString> removeOwnFile(const QString& path) {
    const QByteArray name = nameIn(path);
    const Descriptor parent = openParent(path);
    struct stat status {};
    if (!parent.isOpen() ||
        ::fstatat(parent.number(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return outcomeOf(errno);
    if (!isOwn(status)) return outcomeOf(EPERM);
    // Refused by the system for a folder.
    return outcomeOf(::unlinkat(parent.number(), name.constData(), 0) == 0 ? 0 : errno);
}

void removeOwnLink(const QString& path, const QByteArray& target) {
    const QByteArray name = nameIn(path);
    const Descriptor parent = openParent(path);
    struct stat status {};
    const bool isOurs =
        ::fstatat(parent.number(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISLNK(status.st_mode) && isOwn(status) && targetOf(parent, name) == target;
    if (isOurs) ::unlinkat(parent.number(), name.constData(), 0);
}

bool isOwnPlace(const QString& directory) {
    QString existing = directory;
    while (!QFileInfo::exists(existing) && existing != QDir::rootPath())
        existing = QFileInfo(existing).path();
    struct stat status {};
    return ::stat(QFile::encodeName(existing).constData(), &status) == 0 && isOwn(status);
}

bool wouldWriteAmongOthersFiles(const QString& directory) {
    constexpr uid_t root = 0;
    return ::geteuid() == root && !isOwnPlace(directory);
}

}  // namespace quietlark

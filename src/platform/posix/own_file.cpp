#include "platform/own_file.h"

#include <cerrno>
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

}  // namespace

tl::expected<void, QString> removeOwnFile(const QString& path) {
    const QFileInfo info(path);
    const QByteArray name = QFile::encodeName(info.fileName());
    // By way of the open directory, so that the file that is looked at is in the one that it is
    // removed from.
    const Descriptor parent(
        ::open(QFile::encodeName(info.path()).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    struct stat status {};
    if (!parent.isOpen() ||
        ::fstatat(parent.number(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return outcomeOf(errno);
    if (!isOwn(status)) return outcomeOf(EPERM);
    // Refused by the system for a folder.
    return outcomeOf(::unlinkat(parent.number(), name.constData(), 0) == 0 ? 0 : errno);
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

#include "platform/linux/removal/freedesktop_trash.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/removal/own_tree.h"
#include "platform/own_file.h"
#include "platform/posix/file_status.h"

namespace quietlark {

namespace {

constexpr int mostNames = 1000;  ///< that are tried until one is free

using Outcome = tl::expected<void, std::error_code>;
using Folder = tl::expected<Descriptor, std::error_code>;

tl::unexpected<std::error_code> lastError() {
    return tl::unexpected(std::error_code(errno == 0 ? EIO : errno, std::generic_category()));
}

bool failedWith(const Outcome& outcome, std::errc reason) {
    return !outcome && outcome.error() == reason;
}

Folder openDirectory(const QString& path) {
    Descriptor directory(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory.isOpen()) return lastError();
    return directory;
}

/// The folder of that name, made for this user alone where there is none.
Folder ensureFolder(const Descriptor& directory, const QByteArray& name) {
    if (::mkdirat(directory.number(), name.constData(), 0700) != 0 && errno != EEXIST)
        return lastError();
    Descriptor folder = openOwnFolder(directory, name);
    if (!folder.isOpen()) return tl::unexpected(make_error_code(std::errc::permission_denied));
    return folder;
}

/// By way of links of the user's, but nobody else's: root may act with the home directory of the
/// one who has called for it, where nothing must become root's.
Folder openOwnDirectory(const QString& path) {
    return openDirectory(path).and_then([](Descriptor directory) -> Folder {
        struct stat status {};
        if (::fstat(directory.number(), &status) != 0) return lastError();
        if (!isOwn(status)) return tl::unexpected(make_error_code(std::errc::permission_denied));
        return directory;
    });
}

Folder ensureHomeTrash(const QString& dataHome) {
    if (!isOwnPlace(dataHome)) return tl::unexpected(make_error_code(std::errc::permission_denied));
    QDir().mkpath(dataHome);
    return openOwnDirectory(dataHome).and_then([&](const Descriptor& data) {
        ::mkdirat(data.number(), "Trash", 0700);
        return openOwnDirectory(dataHome + QStringLiteral("/Trash"));
    });
}

QString topOfFileSystem(QString directory) {
    const auto isTop = [&directory] {
        const QByteArray path = QFile::encodeName(directory);
        return isMountPoint(Descriptor(::open(path.constData(), O_PATH | O_CLOEXEC)));
    };
    while (directory != QDir::rootPath() && !isTop())
        directory = QFileInfo(directory).path();
    return directory;
}

/// `$top/.Trash/$uid` where the administrator has made the former for everybody, and else
/// `$top/.Trash-$uid`.
Folder ensureTopTrash(const QString& top) {
    const Folder directory = openDirectory(top);
    if (!directory) return tl::unexpected(directory.error());
    const QByteArray user = QByteArray::number(::geteuid());
    const Descriptor shared(
        ::openat(directory->number(), ".Trash", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (shared.isOpen() && ::fstat(shared.number(), &status) == 0 &&
        (status.st_mode & S_ISVTX) != 0) {
        if (Folder own = ensureFolder(shared, user)) return own;
    }
    return ensureFolder(*directory, ".Trash-" + user);
}

/// Where the thing came from; `path` as the kind of Trash wants it.
QByteArray infoText(const QString& path) {
    return "[Trash Info]\nPath=" + QFile::encodeName(path).toPercentEncoding("/") +
           "\nDeletionDate=" + QDateTime::currentDateTime().toString(Qt::ISODate).toLatin1() + '\n';
}

Outcome writeInfo(const Descriptor& info, const QByteArray& name, const QByteArray& text) {
    // Taking the name in one step, so that no two programs take the same.
    const Descriptor file(
        ::openat(info.number(), name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.isOpen()) return lastError();
    errno = 0;
    if (::write(file.number(), text.constData(), size_t(text.size())) == text.size()) return {};
    const Outcome failure = lastError();
    ::unlinkat(info.number(), name.constData(), 0);
    return failure;
}

Outcome renameTo(const Descriptor& to, const QByteArray& newName, const Descriptor& from,
                 const QByteArray& name) {
    if (::renameat2(from.number(), name.constData(), to.number(), newName.constData(),
                    RENAME_NOREPLACE) != 0)
        return lastError();
    return {};
}

/// Another thing that has taken the place of the one that is meant goes back.
Outcome renameItem(const FreedesktopTrash::Item& item, const Descriptor& files,
                   const QByteArray& name) {
    const QByteArray oldName = QFile::encodeName(QFileInfo(item.path).fileName());
    const Outcome renamed = renameTo(files, name, item.parent, oldName);
    if (!renamed) return renamed;
    struct stat meant {};
    struct stat moved {};
    const bool isMeant =
        ::fstat(item.itself.number(), &meant) == 0 &&
        ::fstatat(files.number(), name.constData(), &moved, AT_SYMLINK_NOFOLLOW) == 0 &&
        isSameFile(meant, moved);
    if (isMeant) return {};
    static_cast<void>(renameTo(item.parent, oldName, files, name));
    return tl::unexpected(make_error_code(std::errc::no_such_file_or_directory));
}

/// Under `name`, unless the Trash has something of that name.
Outcome moveAs(const QByteArray& name, const Descriptor& files, const Descriptor& infos,
               const FreedesktopTrash::Item& item, const QByteArray& info) {
    const QByteArray infoName = name + ".trashinfo";
    if (const Outcome written = writeInfo(infos, infoName, info); !written) return written;
    const Outcome outcome = renameItem(item, files, name);
    if (!outcome) ::unlinkat(infos.number(), infoName.constData(), 0);
    return outcome;
}

Outcome moveInto(const Descriptor& trash, const FreedesktopTrash::Item& item,
                 const QByteArray& info) {
    const Folder files = ensureFolder(trash, "files");
    const Folder infos = ensureFolder(trash, "info");
    if (!files || !infos) return tl::unexpected((files ? infos : files).error());
    const QByteArray base = QFile::encodeName(QFileInfo(item.path).fileName());
    Outcome outcome;
    for (int number = 1; number <= mostNames; ++number) {
        const QByteArray name = number == 1 ? base : base + '.' + QByteArray::number(number);
        outcome = moveAs(name, *files, *infos, item, info);
        if (!failedWith(outcome, std::errc::file_exists)) break;
    }
    return outcome;
}

}  // namespace

FreedesktopTrash::FreedesktopTrash(QString dataHome) : m_dataHome(std::move(dataHome)) {}

tl::expected<void, QString> FreedesktopTrash::move(const QString& path) const {
    const QFileInfo info(path);
    const Descriptor parent(
        ::open(QFile::encodeName(info.path()).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const Descriptor itself(::openat(parent.number(),
                                     QFile::encodeName(info.fileName()).constData(),
                                     O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return move(Item{path, parent, itself});
}

tl::expected<void, QString> FreedesktopTrash::move(const Item& item) const {
    const QString& path = item.path;
    Outcome outcome = ensureHomeTrash(m_dataHome).and_then([&](const Descriptor& trash) {
        return moveInto(trash, item, infoText(path));
    });
    if (failedWith(outcome, std::errc::cross_device_link)) {
        const QString top = topOfFileSystem(QFileInfo(QFileInfo(path).path()).canonicalFilePath());
        outcome = ensureTopTrash(top).and_then([&](const Descriptor& trash) {
            return moveInto(trash, item, infoText(QDir(top).relativeFilePath(path)));
        });
    }
    return outcome.map_error([&](const std::error_code& reason) {
        return tr("%1 could not be moved to the Trash: %2.")
            .arg(path, QString::fromStdString(reason.message()));
    });
}

}  // namespace quietlark

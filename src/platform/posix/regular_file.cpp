#include "platform/regular_file.h"

#include <cerrno>

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"

namespace quietlark {

namespace {

int openFlags(FileTrust trust) {
    // Opening a pipe for reading waits for a writer unless it is non-blocking.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    return trust == FileTrust::OwnerAndRoot ? flags | O_NOFOLLOW : flags;
}

bool isTrusted(const struct stat& status) {
    const bool ownerIsTrusted = status.st_uid == ::geteuid() || status.st_uid == 0;
    return ownerIsTrusted && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::optional<QByteArray> readToEnd(int descriptor, qsizetype expectedBytes, qsizetype maxBytes) {
    QByteArray content;
    // One byte more than expected, so that the end shows in the first read.
    qsizetype room = expectedBytes + 1;
    while (content.size() <= maxBytes) {
        const qsizetype before = content.size();
        content.resize(before + room);
        const ssize_t count =
            ::read(descriptor, content.data() + before, static_cast<size_t>(room));
        content.resize(before + (count > 0 ? count : 0));
        if (count == 0) return content;
        if (count < 0 && errno != EINTR) return std::nullopt;
        room = 4096;
    }
    return std::nullopt;
}

}  // namespace

std::optional<QByteArray> readRegularFile(const QString& path, qsizetype maxBytes,
                                          FileTrust trust) {
    const Descriptor file(::open(QFile::encodeName(path).constData(), openFlags(trust)));
    if (!file.isOpen()) return std::nullopt;
    // Asked of the open file, so that it cannot be another one by the time it is read.
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    if (status.st_size > maxBytes) return std::nullopt;
    if (trust == FileTrust::OwnerAndRoot && !isTrusted(status)) return std::nullopt;
    return readToEnd(file.number(), status.st_size, maxBytes);
}

}  // namespace quietlark

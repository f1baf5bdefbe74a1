#include "platform/durable_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <QFile>
#include <QFileInfo>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {

namespace {

FileOutcome lastError() {
    return tl::unexpected(QString::fromStdString(std::generic_category().message(errno)));
}

QString newName(const QString& path) {
    return path + QStringLiteral(".new");
}

FileOutcome writeNew(QFile& file, const QByteArray& content) {
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        file.write(content) != content.size()) {
        return tl::unexpected(file.errorString());
    }
    // Synced before it is named, so that the name never stands for an empty file.
    return syncFile(file.handle());
}

bool isRegular(int descriptor, qsizetype bytes) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size == bytes;
}

}  // namespace

FileOutcome syncFile(int descriptor) {
    // Includes the length of the file, which is all of its metadata that matters here.
    if (::fdatasync(descriptor) != 0) return lastError();
    return {};
}

FileOutcome syncDirectory(const QString& directory) {
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return lastError();
    const FileOutcome outcome = ::fsync(descriptor) == 0 ? FileOutcome() : lastError();
    ::close(descriptor);
    return outcome;
}

FileOutcome replaceFile(const QString& from, const QString& to) {
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (std::rename(source.constData(), target.constData()) != 0) return lastError();
    return {};
}

FileOutcome writeFileDurably(const QString& path, const QByteArray& content) {
    QFile file(newName(path));
    const FileOutcome outcome =
        writeNew(file, content)
            .and_then([&] { return replaceFile(file.fileName(), path); })
            .and_then([&] { return syncDirectory(QFileInfo(path).path()); });
    if (!outcome) file.remove();
    return outcome;
}

FileOutcome rewriteFileDurably(const QString& path, const QByteArray& content) {
    if (content.size() > sectorBytes) return writeFileDurably(path, content);
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return writeFileDurably(path, content);
    const bool fits = isRegular(descriptor, content.size());
    const auto count = static_cast<size_t>(content.size());
    FileOutcome outcome;
    if (fits && ::pwrite(descriptor, content.constData(), count, 0) != content.size()) {
        outcome = lastError();
    }
    if (fits && outcome) outcome = syncFile(descriptor);
    ::close(descriptor);
    return fits ? outcome : writeFileDurably(path, content);
}

void removeLeftover(const QString& path) {
    QFile::remove(newName(path));
}

}  // namespace quietlark

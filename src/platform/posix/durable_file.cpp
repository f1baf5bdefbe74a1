#include "platform/durable_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <QFile>
#include <fcntl.h>
#include <unistd.h>

namespace quietlark {

namespace {

FileOutcome lastError() {
    return tl::unexpected(QString::fromStdString(std::generic_category().message(errno)));
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
    QFile file(path + QStringLiteral(".new"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        file.write(content) != content.size()) {
        return tl::unexpected(file.errorString());
    }
    // Synced before it is named, so that the name never stands for an empty file.
    return syncFile(file.handle()).and_then([&] { return replaceFile(file.fileName(), path); });
}

}  // namespace quietlark

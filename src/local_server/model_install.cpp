#include "local_server/model_install.h"

#include <QFile>

namespace quietlark {

namespace {

FileOutcome makeReadable(const QString& path) {
    using enum QFileDevice::Permission;
    QFile file(path);
    if (!file.setPermissions(ReadOwner | WriteOwner | ReadGroup | ReadOther)) {
        return tl::unexpected(file.errorString());
    }
    return {};
}

/// For people; nobody depends on it.
void writeName(const QString& path) {
    const QByteArray name = QByteArray(ModelFiles::publishedName) + '\n';
    if (writeFileDurably(path, name)) static_cast<void>(makeReadable(path));
}

}  // namespace

FileOutcome installModel(const ModelFiles& files) {
    QFile::remove(files.partial());
    return replaceFile(files.received(), files.partial())
        .and_then([&] { return makeReadable(files.partial()); })
        .and_then([&] { return replaceFile(files.partial(), files.active()); })
        .and_then([&] { return syncDirectory(files.directory()); })
        .map([&] {
            writeName(files.name());
            QFile::remove(files.resume());
            removeLeftover(files.resume());
        });
}

}  // namespace quietlark

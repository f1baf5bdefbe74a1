#include "local_server/model_files.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <QDir>
#include <QFileInfo>

#include "platform/base_directories.h"

namespace quietlark {

ModelFiles ModelFiles::atDefaultDirectory() {
    return ModelFiles(QDir(dataHome()).filePath(QStringLiteral("Quietlark/models")));
}

ModelFiles::ModelFiles(QString directory) : m_directory(std::move(directory)) {}

QString ModelFiles::active() const {
    return file("active.bin");
}

QString ModelFiles::partial() const {
    return file("active.bin.partial");
}

QString ModelFiles::received() const {
    return file("active.bin.download");
}

QString ModelFiles::resume() const {
    return file("active.bin.resume");
}

QString ModelFiles::name() const {
    return file("active.bin.name");
}

bool ModelFiles::isInstalled() const {
    return QFileInfo(active()).isFile();
}

tl::expected<void, QString> ModelFiles::ensureDirectory() const {
    if (QFileInfo::exists(m_directory)) return {};
    errno = 0;
    if (!QDir().mkpath(m_directory)) {
        const int reason = errno == 0 ? EIO : errno;
        return tl::unexpected(QString::fromStdString(std::generic_category().message(reason)));
    }
    // The server is another program and may be another user's; a strict umask must not hide it.
    using enum QFileDevice::Permission;
    QFile::setPermissions(m_directory, ReadOwner | WriteOwner | ExeOwner | ReadGroup | ExeGroup |
                                           ReadOther | ExeOther);
    return {};
}

QString ModelFiles::file(const char* name) const {
    return m_directory + u'/' + QLatin1String(name);
}

}  // namespace quietlark

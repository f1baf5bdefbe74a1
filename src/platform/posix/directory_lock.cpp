#include "platform/directory_lock.h"

#include <cerrno>
#include <utility>

#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quietlark {

namespace {

tl::unexpected<std::error_code> lastError() {
    return tl::unexpected(std::error_code(errno, std::generic_category()));
}

}  // namespace

tl::expected<DirectoryLock, std::error_code> DirectoryLock::tryLock(const QString& directory) {
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return lastError();
    DirectoryLock lock(descriptor);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return lastError();
    return lock;
}

DirectoryLock::DirectoryLock(DirectoryLock&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

DirectoryLock& DirectoryLock::operator=(DirectoryLock&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

DirectoryLock::~DirectoryLock() {
    if (m_descriptor >= 0) ::close(m_descriptor);
}

}  // namespace quietlark

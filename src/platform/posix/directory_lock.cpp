#include "platform/directory_lock.h"

#include <utility>

#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quietlark {

std::optional<DirectoryLock> DirectoryLock::tryLock(const QString& directory) {
    const int descriptor =
        ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    DirectoryLock lock(descriptor);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return std::nullopt;
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

#pragma once

#include <optional>

#include <QString>

namespace quietlark {

/// Keeps a directory for one user of it, among all processes that ask. It ends with this object,
/// or with the process, however that ends, and leaves no file behind.
class DirectoryLock {
public:
    /// Absent when somebody else has it, or there is no such directory. Does not wait.
    [[nodiscard]] static std::optional<DirectoryLock> tryLock(const QString& directory);

    DirectoryLock(DirectoryLock&& other) noexcept;
    DirectoryLock& operator=(DirectoryLock&& other) noexcept;
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;
    ~DirectoryLock();

private:
    explicit DirectoryLock(int descriptor) : m_descriptor(descriptor) {}

    int m_descriptor;
};

}  // namespace quietlark

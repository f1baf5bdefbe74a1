#pragma once

#include <system_error>

#include <QString>
#include <tl/expected.hpp>

namespace quietlark {

/// Keeps a directory for one user of it, among all processes that ask. It ends with this object,
/// or with the process, however that ends, and leaves no file behind.
class DirectoryLock {
public:
    /// Does not wait. The error is std::errc::operation_would_block when somebody else has it, and
    /// otherwise why the system cannot lock it.
    [[nodiscard]] static tl::expected<DirectoryLock, std::error_code> tryLock(
        const QString& directory);

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

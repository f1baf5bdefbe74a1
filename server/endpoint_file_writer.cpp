#include "server/endpoint_file_writer.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {
namespace {

std::string contentOf(const EndpointDescription& description) {
    std::array<char, 32> rtf{};
    std::snprintf(rtf.data(), rtf.size(), "%.2f", description.rtf);
    return "local=" + description.local + "\ndisplay=" + description.display +
           "\nrtf=" + rtf.data() + "\n";
}

bool writeAll(int file, const std::string& content) {
    errno = ENOSPC;  // what a write that stops half-way means, for it sets nothing
    return write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
}

/// Why the last system call failed, for a user who wonders about the file at `path`.
std::string reasonFor(const std::string& path) {
    const int error = errno;
    struct stat present {};
    const bool isForeign = lstat(path.c_str(), &present) == 0 && present.st_uid != geteuid();
    // The folder of all users' temporary files lets nobody replace another's.
    if (isForeign && (error == EPERM || error == EACCES))
        return "the file there belongs to another user, who has to remove it";
    return std::strerror(error);
}

}  // namespace

EndpointFileWriter::EndpointFileWriter(std::string path) : m_path(std::move(path)) {}

EndpointFileWriter::~EndpointFileWriter() {
    withdraw();
}

tl::expected<void, std::string> EndpointFileWriter::publish(
    const EndpointDescription& description) {
    // The name is new and unpredictable, so no link can lie in wait there; rename() replaces a link
    // at the path itself.
    std::string temporaryPath = m_path + ".XXXXXX";
    m_file = mkostemp(temporaryPath.data(), O_CLOEXEC);
    const bool isPublished = m_file >= 0 && writeAll(m_file, contentOf(description)) &&
                             fchmod(m_file, 0644) == 0 &&
                             rename(temporaryPath.c_str(), m_path.c_str()) == 0;
    if (isPublished) return {};
    const std::string reason = reasonFor(m_path);
    if (m_file >= 0) {
        unlink(temporaryPath.c_str());
        close(std::exchange(m_file, -1));
    }
    return tl::unexpected("Cannot write " + m_path + ": " + reason + ".");
}

void EndpointFileWriter::withdraw() {
    if (m_file < 0) return;
    struct stat mine {};
    struct stat present {};
    if (fstat(m_file, &mine) == 0 && lstat(m_path.c_str(), &present) == 0 &&
        mine.st_ino == present.st_ino && mine.st_dev == present.st_dev)
        unlink(m_path.c_str());
    close(std::exchange(m_file, -1));
}

}  // namespace quietlark

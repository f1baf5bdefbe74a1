#include "server/endpoint_file_writer.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
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

/// The port in the line "local=HOST:PORT" of an endpoint file; 0 when there is none.
int portIn(std::string_view content) {
    constexpr std::string_view key = "local=";
    if (!content.starts_with(key)) return 0;
    const auto line = content.substr(0, content.find('\n'));
    const auto colon = line.rfind(':');
    int port = 0;
    if (colon != std::string_view::npos)
        std::from_chars(line.data() + colon + 1, line.data() + line.size(), port);
    return port;
}

/// On IPv4's loopback address, which a server that shares serves too.
bool isListening(int port) {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool isListening =
        connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    return isListening;
}

}  // namespace

EndpointFileWriter::EndpointFileWriter(std::string path) : m_path(std::move(path)) {}

EndpointFileWriter::~EndpointFileWriter() {
    withdraw();
}

void EndpointFileWriter::removeLeftover() const {
    // A pipe in its place must not hold us up.
    const int file = open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0) return;
    struct stat status {};
    std::array<char, 512> bytes{};
    const bool isOurs =
        fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
    const ssize_t count = isOurs ? read(file, bytes.data(), bytes.size()) : 0;
    close(file);
    if (count <= 0) return;
    const int port = portIn({bytes.data(), static_cast<std::size_t>(count)});
    if (port > 0 && !isListening(port)) unlink(m_path.c_str());
}

tl::expected<void, std::string> EndpointFileWriter::publish(
    const EndpointDescription& description) {
    // The name is new and unpredictable, so no link can lie in wait there; rename() replaces a link
    // at the path itself.
    std::string temporaryPath = m_path + ".XXXXXX";
    const int file = mkostemp(temporaryPath.data(), O_CLOEXEC);
    const bool isPublished = file >= 0 && writeAll(file, contentOf(description)) &&
                             fchmod(file, 0644) == 0 &&
                             rename(temporaryPath.c_str(), m_path.c_str()) == 0;
    if (isPublished) {
        if (m_file >= 0) close(m_file);
        m_file = file;
        return {};
    }
    const std::string reason = reasonFor(m_path);
    if (file >= 0) {
        unlink(temporaryPath.c_str());
        close(file);
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

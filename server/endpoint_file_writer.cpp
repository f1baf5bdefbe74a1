#include "server/endpoint_file_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "server/text_forms.h"

namespace quietlark {
namespace {

constexpr int longestProbeMilliseconds = 1000;

std::string contentOf(const EndpointDescription& description) {
    return "local=" + description.local + "\ndisplay=" + description.display +
           "\nrtf=" + decimals(description.rtf) + "\n";
}

bool writeAll(int file, const std::string& content) {
    errno = ENOSPC;  // what a write that stops half-way means, for it sets nothing
    return write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
}

/// Whether the folder, such as that of everybody's temporary files, keeps us from replacing what is
/// at `path`: there is a folder, or somebody else's file.
int errorReplacing(const std::string& path) {
    struct stat present {};
    struct stat folder {};
    const auto slash = path.rfind('/');
    const std::string folderPath = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    if (lstat(path.c_str(), &present) != 0 || stat(folderPath.c_str(), &folder) != 0) return 0;
    if (S_ISDIR(present.st_mode)) return EISDIR;
    const uid_t user = geteuid();
    const bool isKept = (folder.st_mode & S_ISVTX) != 0 && user != 0 && present.st_uid != user &&
                        folder.st_uid != user;
    return isKept ? EPERM : 0;
}

struct Address {
    std::string host;  ///< without brackets
    std::string port;
};

/// What the line "local=HOST:PORT" of an endpoint file names.
std::optional<Address> addressIn(std::string_view content) {
    constexpr std::string_view key = "local=";
    if (!content.starts_with(key)) return std::nullopt;
    const auto line = content.substr(0, content.find('\n')).substr(key.size());
    const auto colon = line.rfind(':');
    if (colon == std::string_view::npos) return std::nullopt;
    auto host = line.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    const auto port = line.substr(colon + 1);
    std::uint16_t number = 0;
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
    if (host.empty() || error != std::errc() || end != port.data() + port.size())
        return std::nullopt;
    return Address{std::string(host), std::string(port)};
}

/// What comes of connecting there: 0, the system's error, or EINPROGRESS where nobody answers.
int outcomeOfConnecting(const addrinfo& address) {
    const int probe =
        socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP);
    if (probe < 0) return errno;
    int error = connect(probe, address.ai_addr, address.ai_addrlen) == 0 ? 0 : errno;
    pollfd descriptor{probe, POLLOUT, 0};
    if (error == EINPROGRESS && poll(&descriptor, 1, longestProbeMilliseconds) > 0) {
        socklen_t length = sizeof error;
        getsockopt(probe, SOL_SOCKET, SO_ERROR, &error, &length);
    }
    close(probe);
    return error;
}

/// The same for all that the address stands for; empty where that is not known.
std::vector<int> outcomesOfConnecting(const Address& address) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    // Other names would have to be looked up in the network.
    wanted.ai_flags = AI_NUMERICSERV | (address.host == "localhost" ? 0 : AI_NUMERICHOST);
    addrinfo* found = nullptr;
    std::vector<int> outcomes;
    if (getaddrinfo(address.host.c_str(), address.port.c_str(), &wanted, &found) != 0)
        return outcomes;
    for (const addrinfo* each = found; each; each = each->ai_next)
        outcomes.push_back(outcomeOfConnecting(*each));
    freeaddrinfo(found);
    return outcomes;
}

/// Whether certainly nobody listens at an address: this computer says so.
bool isDeserted(const Address& address) {
    const auto outcomes = outcomesOfConnecting(address);
    return !outcomes.empty() &&
           std::ranges::all_of(outcomes, [](int outcome) { return outcome == ECONNREFUSED; });
}

/// Whether certainly somebody does.
bool isAlive(const Address& address) {
    const auto outcomes = outcomesOfConnecting(address);
    return std::ranges::find(outcomes, 0) != outcomes.end();
}

/// The address in the file of a server that this user has run.
std::optional<Address> addressInFile(const std::string& path) {
    // A pipe in its place must not hold us up.
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0) return std::nullopt;
    struct stat status {};
    std::array<char, 512> bytes{};
    const bool isOurs =
        fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
    const ssize_t count = isOurs ? read(file, bytes.data(), bytes.size()) : 0;
    close(file);
    if (count <= 0) return std::nullopt;
    return addressIn({bytes.data(), static_cast<std::size_t>(count)});
}

}  // namespace

EndpointFileWriter::EndpointFileWriter(std::string path) : m_path(std::move(path)) {}

EndpointFileWriter::~EndpointFileWriter() {
    withdraw();
}

void EndpointFileWriter::removeLeftover() const {
    const auto address = addressInFile(m_path);
    if (address && isDeserted(*address)) unlink(m_path.c_str());
}

tl::expected<void, std::string> EndpointFileWriter::check() const {
    if (const int error = errorReplacing(m_path)) return failure(error);
    std::string temporaryPath = m_path + ".XXXXXX";
    const int file = mkostemp(temporaryPath.data(), O_CLOEXEC);
    if (file < 0) return failure(errno);
    unlink(temporaryPath.c_str());
    close(file);
    return {};
}

tl::expected<void, std::string> EndpointFileWriter::publish(
    const EndpointDescription& description) {
    if (isAnothers(description.local)) return {};
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
    const int error = errno;
    if (file >= 0) {
        unlink(temporaryPath.c_str());
        close(file);
    }
    return failure(error);
}

tl::unexpected<std::string> EndpointFileWriter::failure(int error) const {
    struct stat present {};
    const bool isForeign = lstat(m_path.c_str(), &present) == 0 && present.st_uid != geteuid();
    const std::string reason = isForeign && (error == EPERM || error == EACCES)
                                   ? "the file there belongs to another user, who has to remove it"
                                   : std::strerror(error);
    return tl::unexpected("Cannot write " + m_path + ": " + reason + ".");
}

void EndpointFileWriter::withdraw() {
    if (m_file < 0) return;
    if (isPublished()) unlink(m_path.c_str());
    close(std::exchange(m_file, -1));
}

bool EndpointFileWriter::isPublished() const {
    struct stat mine {};
    struct stat present {};
    return m_file >= 0 && fstat(m_file, &mine) == 0 && lstat(m_path.c_str(), &present) == 0 &&
           mine.st_ino == present.st_ino && mine.st_dev == present.st_dev;
}

bool EndpointFileWriter::isAnothers(const std::string& ownAddress) const {
    if (isPublished()) return false;
    const auto address = addressInFile(m_path);
    // What crashed may have listened where we do now.
    const auto own = addressIn("local=" + ownAddress);
    const bool isOwn = address && own && address->host == own->host && address->port == own->port;
    return address && !isOwn && isAlive(*address);
}

}  // namespace quietlark

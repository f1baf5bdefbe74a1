#include "server/endpoint_file_writer.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "server/published_address.h"
#include "server/text_forms.h"

namespace quietlark {
namespace {

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

/// The address in the file of a server that this user has run.
std::optional<PublishedAddress> addressInFile(const std::string& path) {
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
    return PublishedAddress::in({bytes.data(), static_cast<std::size_t>(count)});
}

}  // namespace

EndpointFileWriter::EndpointFileWriter(std::string path) : m_path(std::move(path)) {}

EndpointFileWriter::~EndpointFileWriter() {
    withdraw();
}

void EndpointFileWriter::removeLeftover() const {
    const auto address = addressInFile(m_path);
    if (address && address->isDeserted()) unlink(m_path.c_str());
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
    return address && address != PublishedAddress::in("local=" + ownAddress) &&
           address->isServers();
}

}  // namespace quietlark

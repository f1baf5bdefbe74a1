#pragma once

#include <string>

#include <tl/expected.hpp>

namespace quietlark {

/// What the file tells the application.
struct EndpointDescription {
    std::string local;    ///< "host:port", without a scheme
    std::string display;  ///< the address as a person would write it
    double rtf = 0;       ///< seconds of sound transcribed per second
};

/// The file in which the application finds this server. It appears all at once with publish() and
/// goes with this object, unless another server has put its own there by then.
class EndpointFileWriter {
public:
    explicit EndpointFileWriter(std::string path);
    ~EndpointFileWriter();
    EndpointFileWriter(const EndpointFileWriter&) = delete;
    EndpointFileWriter& operator=(const EndpointFileWriter&) = delete;

    /// Takes away what a server that crashed has left there: a file of this user's that names an
    /// address at which certainly nobody listens.
    void removeLeftover() const;

    /// Whether publish() can be expected to succeed, as far as the folder tells beforehand. The
    /// error is a sentence for the user.
    [[nodiscard]] tl::expected<void, std::string> check() const;

    /// Puts the file there, in place of what was there before, readable by everyone; but not in
    /// place of another server's of this user that still answers. Never follows or writes to what
    /// somebody else has put into the folder. The error is a sentence for the user.
    [[nodiscard]] tl::expected<void, std::string> publish(const EndpointDescription& description);

    /// Whether the file that is there is this server's.
    [[nodiscard]] bool isPublished() const;

    /// Takes the file away again, if it is this one.
    void withdraw();

private:
    [[nodiscard]] bool isAnothers(const std::string& ownAddress) const;
    [[nodiscard]] tl::unexpected<std::string> failure(int error) const;

    const std::string m_path;
    // The published file, kept open so that no other file can have its inode number.
    int m_file = -1;
};

}  // namespace quietlark

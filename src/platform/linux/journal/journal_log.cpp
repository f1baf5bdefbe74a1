#include "platform/linux/journal/journal_log.h"

// The source file and line would be this adapter's, not the caller's.
#define SD_JOURNAL_SUPPRESS_LOCATION

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include "platform/linux/journal/log_line.h"

namespace quietlark {
namespace {

/// How long a journal or a reader of standard error that is behind may hold up a line. The
/// journal's queue is short (ten messages by default), so it is full for a moment in every burst.
constexpr int patienceMilliseconds = 100;

class FileDescriptor {
public:
    explicit FileDescriptor(int number) : m_number(number) {}
    ~FileDescriptor() {
        if (m_number >= 0) close(m_number);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int number() const { return m_number; }

private:
    const int m_number;
};

bool becomesWritable(int fileDescriptor) {
    pollfd descriptor{fileDescriptor, POLLOUT, 0};
    return poll(&descriptor, 1, patienceMilliseconds) == 1 && descriptor.revents == POLLOUT;
}

/// Whether a journal is listening and makes room. libsystemd's own send reports success when there
/// is no journal, and waits for ever for one that hangs.
bool journalTakesMessages() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, "/run/systemd/journal/socket", sizeof address.sun_path - 1);
    const FileDescriptor probe(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    return probe.number() >= 0 &&
           connect(probe.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
               0 &&
           becomesWritable(probe.number());
}

iovec asVector(const std::string& field) {
    return {const_cast<char*>(field.data()), field.size()};
}

}  // namespace

JournalLog::JournalLog(const std::string& subsystem, const std::string& category)
    : m_identifierField("SYSLOG_IDENTIFIER=" + subsystem),
      m_categoryField("QUIETLARK_CATEGORY=" + category),
      m_standardErrorPrefix(subsystem + "[" + category + "] ") {}

void JournalLog::write(LogLevel level, std::string_view line) {
    const std::string text = singleLine(line);
    if (!writeToJournal(level, text)) writeToStandardError(level, text);
}

bool JournalLog::hasJournal() {
    return journalTakesMessages();
}

bool JournalLog::writeToJournal(LogLevel level, const std::string& line) const {
    if (!journalTakesMessages()) return false;
    const std::string message = "MESSAGE=" + line;
    const std::string priority =
        "PRIORITY=" + std::to_string(level == LogLevel::Error ? LOG_ERR : LOG_INFO);
    const std::array fields{asVector(message), asVector(priority), asVector(m_identifierField),
                            asVector(m_categoryField)};
    return sd_journal_sendv(fields.data(), static_cast<int>(fields.size())) == 0;
}

void JournalLog::writeToStandardError(LogLevel level, const std::string& line) const {
    const std::string text =
        m_standardErrorPrefix + (level == LogLevel::Error ? "error: " : "") + line + "\n";
    std::string_view rest = text;
    // A pipe that is writable takes PIPE_BUF bytes at once without waiting.
    while (!rest.empty() && becomesWritable(STDERR_FILENO)) {
        const auto written =
            ::write(STDERR_FILENO, rest.data(), std::min<std::size_t>(rest.size(), PIPE_BUF));
        if (written < 0 && errno != EINTR) return;
        rest.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
}

}  // namespace quietlark

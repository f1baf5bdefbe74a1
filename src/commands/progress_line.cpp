#include "commands/progress_line.h"

#include <ostream>

namespace quietlark {

ProgressLine::ProgressLine(std::ostream& messages, std::optional<int> columns)
    : m_messages(messages), m_columns(columns) {}

void ProgressLine::report(TimePoint now, qint64 bytesWritten, qint64 totalBytes) {
    m_progress.report(now, bytesWritten, totalBytes);
    if (bytesWritten == 0) return;
    const std::chrono::milliseconds interval = m_columns ? barInterval : lineInterval;
    if (m_shownAt && now - *m_shownAt < interval) return;
    m_shownAt = now;
    if (m_columns) {
        // Short of the last column, where terminals begin a new line.
        m_messages << '\r' << m_progress.bar(*m_columns - 1).toStdString() << "\x1b[K"
                   << std::flush;
    } else {
        m_messages << m_progress.line().trimmed().toStdString() << std::endl;
    }
}

void ProgressLine::clear() {
    if (m_columns && m_shownAt) m_messages << "\r\x1b[K" << std::flush;
    m_shownAt.reset();
}

}  // namespace quietlark

#pragma once

#include <string>

#include "platform/log.h"

namespace quietlark {

/// The system journal; standard error where no journal is running, or while it hangs. Either may
/// hold a line up by 0.1 s at most; after that, standard error loses it. A control character within
/// a line is written as its escape (see singleLine()).
///
/// The subsystem is the SYSLOG_IDENTIFIER field and the category is QUIETLARK_CATEGORY:
/// `journalctl -t net.quietlark.app QUIETLARK_CATEGORY=dictation`.
class JournalLog final : public Log {
public:
    JournalLog(const std::string& subsystem, const std::string& category);

    void write(LogLevel level, std::string_view line) override;

    /// Whether lines go to the journal now, and not to standard error.
    [[nodiscard]] static bool hasJournal();

private:
    bool writeToJournal(LogLevel level, const std::string& line) const;
    void writeToStandardError(LogLevel level, const std::string& line) const;

    const std::string m_identifierField;
    const std::string m_categoryField;
    const std::string m_standardErrorPrefix;
};

}  // namespace quietlark

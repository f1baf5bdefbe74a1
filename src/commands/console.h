#pragma once

#include <iosfwd>

#include <QString>

namespace quietlark {

/// Where a command says what it has found, and what went wrong.
class Console {
public:
    Console(std::ostream& results, std::ostream& messages);

    /// Writes one line of the result at once; false when it could not be written.
    [[nodiscard]] bool print(const QString& line);

    /// Writes one sentence for the user.
    void complain(const QString& sentence);

private:
    std::ostream& m_results;
    std::ostream& m_messages;
};

}  // namespace quietlark

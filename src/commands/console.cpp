#include "commands/console.h"

#include <ostream>

namespace quietlark {

Console::Console(std::ostream& results, std::ostream& messages)
    : m_results(results), m_messages(messages) {}

bool Console::print(const QString& line) {
    m_results << line.toStdString() << std::endl;
    return m_results.good();
}

void Console::complain(const QString& sentence) {
    m_messages << "quietlark: " << sentence.toStdString() << std::endl;
}

}  // namespace quietlark

#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace quietlark {

std::optional<int> messageTerminalColumns() {
    if (::isatty(STDERR_FILENO) == 0) return std::nullopt;
    winsize size{};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    constexpr int usualColumns = 80;
    return isKnown ? size.ws_col : usualColumns;
}

}  // namespace quietlark

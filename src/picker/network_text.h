#pragma once

#include <QString>

namespace quietlark {

/// A text that somebody on the network sent, as one line that is safe to show: without control
/// characters, blanks folded, and of at most `maxLength` UTF-16 units; what is cut off ends in "…".
/// Markup in it stays as it is: show it as plain text. Any thread.
[[nodiscard]] QString shownNetworkText(const QString& text, qsizetype maxLength);

}  // namespace quietlark

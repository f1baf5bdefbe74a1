#pragma once

#include <QString>

namespace quietlark {

/// What a server can put on a line, in UTF-16 units.
inline constexpr qsizetype maxShownLength = 100;

/// A text that somebody on the network sent, as one line that is safe to show: without control
/// characters, blanks folded, and of at most `maxLength` UTF-16 units; what is cut off ends in "…".
/// Empty where nothing of it would show. Markup in it stays as it is: show it as plain text. Any
/// thread.
[[nodiscard]] QString shownNetworkText(const QString& text, qsizetype maxLength = maxShownLength);

/// HOST:PORT, of which a host that is too long is cut off and the port is whole. Any thread.
[[nodiscard]] QString shownAddress(const QString& host, qint64 port);

/// The name of a server, or its address where nothing of the name would show. Any thread.
[[nodiscard]] QString shownServerName(const QString& name, const QString& host, qint64 port);

}  // namespace quietlark

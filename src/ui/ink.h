#pragma once

#include <QColor>
#include <QPalette>

namespace quietlark {

/// `over` laid over `under`, covering it by `share` (0 to 1).
[[nodiscard]] QColor blended(const QColor& over, const QColor& under, double share);

/// For text of less weight, on a window or on a base: still easy to read, in light and in dark.
[[nodiscard]] QColor secondaryText(const QPalette& palette);

/// For the edge of something that is not chosen.
[[nodiscard]] QColor quietEdge(const QPalette& palette);

}  // namespace quietlark

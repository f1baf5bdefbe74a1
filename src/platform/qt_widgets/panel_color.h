#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

namespace quietlark {

/// The colour that stands out on the desktop's panel: that of the desktop's texts, for panels
/// follow the theme, but white on those that are dark in every theme. `currentDesktop` is what
/// $XDG_CURRENT_DESKTOP holds, such as "ubuntu:GNOME".
[[nodiscard]] QColor panelTextColor(const QPalette& palette, const QString& currentDesktop);

}  // namespace quietlark

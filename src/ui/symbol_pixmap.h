#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

namespace quietlark {

/// The symbol of that name in one colour, `edge` logical pixels wide and high. Main thread.
[[nodiscard]] QPixmap symbolPixmap(const QString& name, const QColor& color, int edge,
                                   double devicePixelRatio);

}  // namespace quietlark

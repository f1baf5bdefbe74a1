#pragma once

#include <QByteArray>
#include <QColor>
#include <QIcon>
#include <QString>

namespace quietlark {

/// A drawing with `color` in place of every "currentColor"; its other colours stay.
[[nodiscard]] QByteArray recoloured(QByteArray svg, const QColor& color);

/// The symbol of that name, such as "bubble.left", in one colour and in the sizes of status bars,
/// 16 to 64 pixels. Null when there is no such drawing.
[[nodiscard]] QIcon symbolIcon(const QString& name, const QColor& color);

}  // namespace quietlark

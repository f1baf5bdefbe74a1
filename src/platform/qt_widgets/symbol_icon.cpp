#include "platform/qt_widgets/symbol_icon.h"

#include <algorithm>
#include <array>

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace quietlark {

namespace {

/// Edges in pixels of what status bars ask for; rendering each beats scaling one.
constexpr std::array sizes{16, 18, 20, 22, 24, 32, 48, 64};

/// The drawings have 24 units with 2 free at each edge. What is smaller than 24 pixels gives up
/// that margin before it scales, since at one pixel to the unit every stroke is crisp.
QRectF shownPart(int size) {
    const double margin = std::clamp((24.0 - size) / 2, 0.0, 2.0);
    return QRectF(0, 0, 24, 24).adjusted(margin, margin, -margin, -margin);
}

QPixmap rendered(QSvgRenderer& drawing, int size) {
    drawing.setViewBox(shownPart(size));
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    return pixmap;
}

}  // namespace

QByteArray recoloured(QByteArray svg, const QColor& color) {
    return svg.replace("currentColor", color.name().toLatin1());
}

QIcon symbolIcon(const QString& name, const QColor& color) {
    QFile file(QStringLiteral(":/quietlark/symbols/%1.svg").arg(name));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QSvgRenderer drawing(recoloured(file.readAll(), color));
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(rendered(drawing, size));
    return icon;
}

}  // namespace quietlark

#include "ui/symbol_pixmap.h"

#include <QIcon>
#include <QPixmapCache>

#include "platform/qt_widgets/symbol_icon.h"

namespace quietlark {

QPixmap symbolPixmap(const QString& name, const QColor& color, int edge, double devicePixelRatio) {
    const QString key = QStringLiteral("symbol %1 %2 %3 %4")
                            .arg(name, color.name())
                            .arg(edge)
                            .arg(devicePixelRatio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = symbolIcon(name, color).pixmap(QSize(edge, edge), devicePixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

}  // namespace quietlark

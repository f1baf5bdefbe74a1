#include "platform/qt_widgets/panel_color.h"

#include <QStringList>

namespace quietlark {

namespace {

bool hasDarkPanelAlways(const QStringList& desktops) {
    // The classic session calls itself GNOME too, but has panels of its own.
    if (desktops.contains(QStringLiteral("GNOME-Classic"))) return false;
    return desktops.contains(QStringLiteral("GNOME")) || desktops.contains(QStringLiteral("Unity"));
}

}  // namespace

QColor panelTextColor(const QPalette& palette, const QString& currentDesktop) {
    if (hasDarkPanelAlways(currentDesktop.split(u':'))) return Qt::white;
    return palette.color(QPalette::Active, QPalette::WindowText);
}

}  // namespace quietlark

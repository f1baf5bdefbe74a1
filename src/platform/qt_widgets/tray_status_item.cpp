#include "platform/qt_widgets/tray_status_item.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include "platform/qt_widgets/panel_color.h"
#include "platform/qt_widgets/qt_menu.h"
#include "platform/qt_widgets/symbol_icon.h"

namespace quietlark {

TrayStatusItem::TrayStatusItem(Scheduler& scheduler) : m_scheduler(scheduler) {
    connect(&m_hosts, &TrayHosts::found, this, &TrayStatusItem::install);
    connect(&m_menu, &QMenu::aboutToShow, this, &StatusItem::menuNeedsUpdate);
    m_menu.installEventFilter(this);
}

void TrayStatusItem::show() {
    m_scheduler.after(trayPatience, this, [this] {
        if (!m_icon) Q_EMIT noTray();
    });
    m_hosts.start();
}

void TrayStatusItem::setSymbol(const QString& name) {
    m_symbol = name;
    showSymbol();
}

void TrayStatusItem::setMenu(const Menu& menu) {
    // Rebuilding an open menu, or one that the panel draws, makes it flicker.
    if (menu == m_shownMenu) return;
    m_shownMenu = menu;
    fillMenu(m_menu, menu, [this](MenuAction action) { Q_EMIT chosen(action); });
}

bool TrayStatusItem::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        m_icons.clear();
        showSymbol();
    }
    return StatusItem::eventFilter(watched, event);
}

void TrayStatusItem::install() {
    m_icon = std::make_unique<QSystemTrayIcon>();
    // Its only text, and so what a screen reader says.
    m_icon->setToolTip(QStringLiteral("Quietlark"));
    m_icon->setContextMenu(&m_menu);
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, &TrayStatusItem::onActivated);
    showSymbol();
}

void TrayStatusItem::showSymbol() {
    if (!m_icon || m_symbol.isEmpty()) return;
    if (!m_icons.contains(m_symbol)) {
        const QColor color =
            panelTextColor(QGuiApplication::palette(), qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
        m_icons.insert(m_symbol, symbolIcon(m_symbol, color));
    }
    m_icon->setIcon(m_icons.value(m_symbol));
    m_icon->show();
}

void TrayStatusItem::onActivated(QSystemTrayIcon::ActivationReason reason) {
    // The tray itself opens the menu for the other mouse button only.
    if (reason == QSystemTrayIcon::Trigger) m_menu.popup(QCursor::pos());
}

}  // namespace quietlark

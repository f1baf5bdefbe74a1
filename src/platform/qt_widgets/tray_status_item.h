#pragma once

#include <chrono>
#include <memory>

#include <QHash>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

#include "platform/qt_widgets/tray_hosts.h"
#include "platform/scheduler.h"
#include "platform/status_item.h"

namespace quietlark {

/// The status item as an icon in the desktop's tray: StatusNotifierItem where the desktop knows it,
/// XEmbed else. Its symbols take the colour that stands out on the desktop's panel. A tray that
/// starts late, or again, gets the icon then.
///
/// It needs a QApplication, whose quitOnLastWindowClosed must be off: the icon is no window.
class TrayStatusItem final : public StatusItem {
    Q_OBJECT

public:
    /// How long the desktop is given to bring up its tray before the user is told that there is
    /// none; sessions start programs before their panels.
    static constexpr std::chrono::milliseconds trayPatience{10'000};

    explicit TrayStatusItem(Scheduler& scheduler);

    void show() override;
    void setSymbol(const QString& name) override;
    void setMenu(const Menu& menu) override;

    /// Renders the symbol anew when the desktop's colours have changed.
    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The desktop has no tray, so the user must be told how else to reach the program. At most
    /// once; a tray may still come.
    void noTray();

private:
    void install();
    void showSymbol();
    void onActivated(QSystemTrayIcon::ActivationReason reason);

    Scheduler& m_scheduler;
    TrayHosts m_hosts;
    QMenu m_menu;
    Menu m_shownMenu;
    QString m_symbol;
    QHash<QString, QIcon> m_icons;  ///< by symbol, in the present colours
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

}  // namespace quietlark

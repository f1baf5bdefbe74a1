// The yardstick: a tray program that does nothing, in the toolkit that Quietlark uses.
#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), &QApplication::quit);
    QPixmap square(16, 16);
    square.fill(Qt::gray);
    QSystemTrayIcon icon(square);
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}

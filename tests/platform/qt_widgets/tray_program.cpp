// A program with a status item, for a desktop of the test's own. It draws symbols in magenta, lives
// on virtual time, says on standard output what happens, and takes commands on standard input.

#include <iostream>
#include <string>

#include <QApplication>
#include <QPalette>
#include <QSocketNotifier>
#include <QStringList>

#include "fakes/fake_scheduler.h"
#include "platform/qt_widgets/tray_status_item.h"

namespace quietlark {
namespace {

class TrayProgram {
public:
    TrayProgram() {
        colour(QStringLiteral("#ff00ff"));
        QObject::connect(&m_item, &TrayStatusItem::noTray, &m_item, [] { say("noTray"); });
        QObject::connect(&m_item, &StatusItem::menuNeedsUpdate, &m_item, [this] { rebuildMenu(); });
        QObject::connect(&m_item, &StatusItem::chosen, &m_item, [](MenuAction action) {
            say(action == MenuAction::openPrefs ? "chosen Preferences" : "chosen Quit");
        });
        QObject::connect(&m_input, &QSocketNotifier::activated, &m_item,
                         [this] { readCommands(); });
        m_item.setSymbol(QStringLiteral("bubble.left"));
        m_item.setMenu(menu());
        m_item.show();
        say("ready");
    }

private:
    static void say(const std::string& line) { std::cout << line << std::endl; }

    static void colour(const QString& name) {
        QPalette palette = QApplication::palette();
        palette.setColor(QPalette::WindowText, QColor(name));
        QApplication::setPalette(palette);
    }

    static Menu menu() {
        return {{},
                {{QStringLiteral("Preferences"), MenuAction::openPrefs, {}},
                 MenuItem::separator(),
                 {QStringLiteral("Quit"), MenuAction::terminate, {}}}};
    }

    void rebuildMenu() {
        m_item.setMenu(menu());
        say("menuNeedsUpdate");
    }

    void readCommands() {
        // The notifier does not know of lines that the stream has already taken in.
        do {
            std::string line;
            if (!std::getline(std::cin, line)) return QCoreApplication::quit();
            perform(QString::fromStdString(line).split(u' '));
        } while (std::cin.rdbuf()->in_avail() > 0);
    }

    void perform(const QStringList& words) {
        if (words[0] == QStringLiteral("symbol")) m_item.setSymbol(words[1]);
        if (words[0] == QStringLiteral("colour")) colour(words[1]);
        if (words[0] == QStringLiteral("wait")) {
            m_scheduler.advance(std::chrono::milliseconds(words[1].toInt()));
        }
        if (words[0] == QStringLiteral("menuIsOpen")) {
            say(QApplication::activePopupWidget() ? "yes" : "no");
        }
    }

    FakeScheduler m_scheduler;
    TrayStatusItem m_item{m_scheduler};
    QSocketNotifier m_input{0, QSocketNotifier::Read};
};

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    // So that in_avail() counts.
    std::ios::sync_with_stdio(false);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const quietlark::TrayProgram program;
    return QApplication::exec();
}

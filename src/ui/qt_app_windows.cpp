#include "ui/qt_app_windows.h"

#include <algorithm>
#include <utility>

#include <QEvent>

#include "ui/app_window.h"
#include "ui/menu_actions.h"
#include "ui/prefs_view.h"

namespace quietlark {

namespace {

constexpr QSize prefsContentSize(580, 400);  // points
constexpr int margin = 20;                   // points

}  // namespace

QtAppWindows::QtAppWindows(Contents contents) : m_contents(std::move(contents)) {}

void QtAppWindows::setMainMenu(const std::vector<Menu>& menus) {
    m_mainMenu = menus;
}

void QtAppWindows::show(Kind kind) {
    QWidget& window = windowFor(kind);
    window.showNormal();
    window.raise();
    window.activateWindow();
}

void QtAppWindows::showServerTab() {
    windowFor(Kind::preferences).findChild<PrefsView*>()->select(PrefsTab::server);
    show(Kind::preferences);
}

void QtAppWindows::close(Kind kind) {
    const auto found = m_windows.find(kind);
    if (found == m_windows.end()) return;
    QWidget* const window = found->second.release();
    m_windows.erase(found);
    window->removeEventFilter(this);
    window->close();
    // Later, since an event of the window's own may be what closes it.
    window->deleteLater();
}

bool QtAppWindows::isVisible(Kind kind) const {
    const auto found = m_windows.find(kind);
    return found != m_windows.end() && found->second->isVisible();
}

bool QtAppWindows::isAnyVisible() const {
    // To Qt a minimised window is visible; to its user it is not.
    return std::ranges::any_of(m_windows, [](const auto& each) {
        return each.second->isVisible() && !each.second->isMinimized();
    });
}

bool QtAppWindows::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Hide || event->spontaneous()) return false;
    for (const auto& [kind, window] : m_windows) {
        if (window.get() == watched) Q_EMIT closed(kind);
    }
    return false;
}

QWidget& QtAppWindows::windowFor(Kind kind) {
    auto& window = m_windows[kind];
    if (!window) {
        window = makeWindow(kind);
        window->installEventFilter(this);
        addMenuActions(*window, m_mainMenu, [this](MenuAction action) { Q_EMIT chosen(action); });
    }
    return *window;
}

std::unique_ptr<QWidget> QtAppWindows::makeWindow(Kind kind) {
    switch (kind) {
        case Kind::onboarding:
            return std::make_unique<AppWindow>(m_contents.onboarding(), onboardingStyle(), margin);
        case Kind::permissionsAlert:
            return std::make_unique<AppWindow>(m_contents.permissionsAlert(),
                                               permissionsAlertStyle(), margin);
        case Kind::preferences:
            break;
    }
    // Its tabs reach from edge to edge.
    const WindowStyle style{tr("Quietlark"), prefsContentSize};
    return std::make_unique<AppWindow>(m_contents.preferences(), style, 0);
}

}  // namespace quietlark

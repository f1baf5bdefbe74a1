#pragma once

#include <map>
#include <set>
#include <vector>

#include "app/app_windows.h"

namespace quietlark {

/// Windows that are only noted down, and finished and closed by the test.
class FakeAppWindows final : public AppWindows {
public:
    void setMainMenu(const std::vector<Menu>& menus) override { m_mainMenu = menus; }

    void show(Kind kind) override {
        m_visible.insert(kind);
        ++m_shown[kind];
    }

    void showServerTab() override {
        m_visible.insert(Kind::preferences);
        ++m_serverTabShown;
    }

    void close(Kind kind) override {
        if (m_visible.erase(kind) > 0) Q_EMIT closed(kind);
    }

    [[nodiscard]] bool isVisible(Kind kind) const override { return m_visible.contains(kind); }

    void finishOnboarding() { Q_EMIT onboardingFinished(); }
    void findAllPermissionsGranted() { Q_EMIT allPermissionsGranted(); }
    void choose(MenuAction action) { Q_EMIT chosen(action); }

    [[nodiscard]] const std::vector<Menu>& mainMenu() const { return m_mainMenu; }
    /// How many times that window was brought up.
    [[nodiscard]] int shownCount(Kind kind) const {
        return m_shown.contains(kind) ? m_shown.at(kind) : 0;
    }
    [[nodiscard]] int serverTabShownCount() const { return m_serverTabShown; }
    [[nodiscard]] bool anyVisible() const { return !m_visible.empty(); }

private:
    std::vector<Menu> m_mainMenu;
    std::set<Kind> m_visible;
    std::map<Kind, int> m_shown;
    int m_serverTabShown = 0;
};

}  // namespace quietlark

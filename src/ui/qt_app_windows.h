#pragma once

#include <functional>
#include <map>
#include <memory>

#include <QWidget>

#include "app/app_windows.h"
#include "app/window_style.h"

namespace quietlark {

class PrefsView;

/// The application's windows as widgets. Each is made when it is first shown and kept until it is
/// dropped.
class QtAppWindows final : public AppWindows {
    Q_OBJECT

public:
    /// What makes the content of each window; the window owns it.
    struct Contents {
        std::function<QWidget*()> onboarding;
        std::function<QWidget*()> permissionsAlert;
        std::function<PrefsView*()> preferences;
    };

    explicit QtAppWindows(Contents contents);

    void setMainMenu(const std::vector<Menu>& menus) override;
    void show(Kind kind) override;
    void showServerTab() override;
    void close(Kind kind) override;
    [[nodiscard]] bool isVisible(Kind kind) const override;
    [[nodiscard]] bool isAnyVisible() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& windowFor(Kind kind);
    [[nodiscard]] std::unique_ptr<QWidget> makeWindow(Kind kind);

    const Contents m_contents;
    std::vector<Menu> m_mainMenu;
    std::map<Kind, std::unique_ptr<QWidget>> m_windows;
};

}  // namespace quietlark

#pragma once

#include <map>

#include <QWidget>

#include "screens/prefs_tab.h"

class QTabWidget;

namespace quietlark {

/// Preferences: a tab for each pane.
class PrefsView final : public QWidget {
    Q_OBJECT

public:
    /// Takes the panes, one for each tab.
    explicit PrefsView(const std::map<PrefsTab, QWidget*>& panes);

    /// Shows that pane and gives it the keyboard.
    void select(PrefsTab tab);
    [[nodiscard]] PrefsTab selected() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void drawSymbols();

    QTabWidget* m_tabs;
};

}  // namespace quietlark

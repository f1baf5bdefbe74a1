#pragma once

#include <utility>
#include <vector>

#include <QStringList>

#include "platform/status_item.h"

namespace quietlark {

/// A status item that remembers what it was told, and is opened and clicked by the test.
class FakeStatusItem final : public StatusItem {
public:
    void show() override { m_isShown = true; }
    void setSymbol(const QString& name) override {
        m_symbol = name;
        m_symbols << name;
    }
    void setMenu(const Menu& menu) override { m_menu = menu; }

    /// The user opens the menu; answers what is in it.
    const Menu& open() {
        Q_EMIT menuNeedsUpdate();
        return m_menu;
    }
    void choose(MenuAction action) { Q_EMIT chosen(action); }

    [[nodiscard]] bool isShown() const { return m_isShown; }
    [[nodiscard]] const Menu& menu() const { return m_menu; }

    /// The symbol of now; null when there was none yet.
    [[nodiscard]] const QString& symbol() const { return m_symbol; }

    /// Every symbol since the last call.
    QStringList takeSymbols() { return std::exchange(m_symbols, {}); }

private:
    bool m_isShown = false;
    QString m_symbol;
    QStringList m_symbols;
    Menu m_menu;
};

}  // namespace quietlark

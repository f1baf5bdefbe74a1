#include "ui/prefs_view.h"

#include <algorithm>

#include <QEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include "platform/qt_widgets/symbol_icon.h"

namespace quietlark {

namespace {

/// The pane with the margin that its tab does not give it.
QWidget* withMargin(QWidget* pane) {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    const int margin = page->fontMetrics().height();
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(pane);
    page->setFocusProxy(pane);
    return page;
}

}  // namespace

PrefsView::PrefsView(const std::map<PrefsTab, QWidget*>& panes) : m_tabs(new QTabWidget) {
    for (const PrefsTab tab : allPrefsTabs)
        m_tabs->addTab(withMargin(panes.at(tab)), label(tab));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_tabs);
    m_tabs->setDocumentMode(true);
    // The keyboard is its bar's, which has a name, and gets the policy of what it stands in for.
    m_tabs->setFocusPolicy(Qt::NoFocus);
    m_tabs->tabBar()->setFocusPolicy(Qt::TabFocus);
    setFocusProxy(m_tabs);
    drawSymbols();
}

void PrefsView::select(PrefsTab tab) {
    m_tabs->setCurrentIndex(
        static_cast<int>(std::ranges::find(allPrefsTabs, tab) - allPrefsTabs.begin()));
    // On from the tab itself to the first control below it.
    m_tabs->setFocus();
    focusNextChild();
}

PrefsTab PrefsView::selected() const {
    return allPrefsTabs[static_cast<std::size_t>(m_tabs->currentIndex())];
}

void PrefsView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) drawSymbols();
    QWidget::changeEvent(event);
}

void PrefsView::drawSymbols() {
    const QColor color = palette().color(QPalette::WindowText);
    for (std::size_t index = 0; index < allPrefsTabs.size(); ++index)
        m_tabs->setTabIcon(static_cast<int>(index), symbolIcon(symbol(allPrefsTabs[index]), color));
}

}  // namespace quietlark

#include "ui/return_key.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>

namespace quietlark {

ReturnKey::ReturnKey(QWidget& view, QPushButton& button) : m_view(view), m_button(button) {
    m_button.setDefault(true);
    m_view.installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &ReturnKey::onFocusChanged);
}

bool ReturnKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const auto& press = static_cast<const QKeyEvent&>(*event);
    if (press.key() != Qt::Key_Return && press.key() != Qt::Key_Enter) return false;
    // One press is one step, however long the key is held.
    if (press.isAutoRepeat()) return true;
    if (watched != &m_view || !m_button.isVisible()) return false;
    m_button.click();
    return true;
}

void ReturnKey::onFocusChanged(QWidget*, QWidget* now) {
    auto* const focused = qobject_cast<QPushButton*>(now);
    const bool isInView = focused && m_view.isAncestorOf(focused);
    // It takes the key before the view hears of it.
    if (isInView) focused->installEventFilter(this);
    const bool takesReturn = isInView && focused != &m_button && focused->autoDefault();
    m_button.setDefault(!takesReturn);
}

}  // namespace quietlark

#include "platform/qt_widgets/qt_key_capture.h"

#include <utility>

#include <QGuiApplication>
#include <QKeyEvent>

namespace quietlark {

namespace {

ModifierFlags flagsOf(Qt::KeyboardModifiers modifiers) {
    ModifierFlags flags = 0;
    if (modifiers & Qt::ControlModifier) flags |= modifier::control;
    if (modifiers & Qt::AltModifier) flags |= modifier::option;
    if (modifiers & Qt::ShiftModifier) flags |= modifier::shift;
    if (modifiers & Qt::MetaModifier) flags |= modifier::command;
    return flags;
}

}  // namespace

QtKeyCapture::QtKeyCapture(KeyCodeOf keyCodeOf) : m_keyCodeOf(std::move(keyCodeOf)) {
    QCoreApplication::instance()->installEventFilter(this);
}

Cancellable QtKeyCapture::capture(Handler handler) {
    m_handler = std::make_shared<const Handler>(std::move(handler));
    return Cancellable([this, mine = std::weak_ptr(m_handler)] {
        if (m_handler == mine.lock()) m_handler.reset();
    });
}

bool QtKeyCapture::eventFilter(QObject*, QEvent* event) {
    const auto type = event->type();
    // The key may be let go where we do not see it.
    if (type == QEvent::ApplicationStateChange) m_keyDown.reset();
    if (type != QEvent::ShortcutOverride && type != QEvent::KeyPress && type != QEvent::KeyRelease)
        return false;
    const auto& key = *static_cast<const QKeyEvent*>(event);
    const bool isTaken = m_keyDown == key.nativeScanCode();
    if (type == QEvent::KeyRelease) {
        if (isTaken && !key.isAutoRepeat()) m_keyDown.reset();
        return isTaken;
    }
    if (!m_handler && !(isTaken && key.isAutoRepeat())) return false;
    event->accept();  // of a ShortcutOverride: no shortcut is to have the key
    if (type == QEvent::KeyPress) take(key);
    return true;
}

void QtKeyCapture::take(const QKeyEvent& event) {
    const auto code = m_keyCodeOf(event.nativeScanCode());
    if (event.isAutoRepeat() || !m_handler || (code && isModifierKey(*code))) return;
    m_keyDown = event.nativeScanCode();
    if (!code) return;
    const auto handler = m_handler;
    (*handler)({KeyEvent::Kind::KeyDown, *code, flagsOf(event.modifiers())});
}

}  // namespace quietlark

#include "platform/qt_widgets/focus_aware_key_synthesizer.h"

#include <QGuiApplication>
#include <QInputMethodQueryEvent>

namespace quietlark {

namespace {

bool takesText(QObject* focused) {
    if (!focused) return false;
    QInputMethodQueryEvent question(Qt::ImEnabled | Qt::ImReadOnly);
    QCoreApplication::sendEvent(focused, &question);
    return question.value(Qt::ImEnabled).toBool() && !question.value(Qt::ImReadOnly).toBool();
}

}  // namespace

tl::expected<void, Unavailable> FocusAwareKeySynthesizer::post(KeyCode keyCode,
                                                               ModifierFlags flags) {
    if (QGuiApplication::focusWindow() && !takesText(QGuiApplication::focusObject())) {
        return tl::unexpected(
            Unavailable{tr("A window of Quietlark has the keyboard. Paste the text from the "
                           "clipboard where it belongs.")});
    }
    return m_keys.post(keyCode, flags);
}

}  // namespace quietlark

#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

namespace quietlark {

/// Presses a key and keeps it down for a while: the keyboard repeats it, to whatever has the focus
/// by then.
inline void hold(Qt::Key key) {
    const QString letter = key == Qt::Key_Space ? QStringLiteral(" ") : QString();
    const auto repeat = [&](QEvent::Type type) {
        QKeyEvent event(type, key, Qt::NoModifier, letter, true);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    };
    QTest::keyPress(QApplication::focusWidget(), key);
    for (int times = 0; times < 20; ++times) {
        repeat(QEvent::KeyRelease);
        repeat(QEvent::KeyPress);
    }
    QTest::keyRelease(QApplication::focusWidget(), key);
}

}  // namespace quietlark

#include "platform/qt_widgets/qt_key_capture.h"

#include <vector>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

constexpr quint32 spaceKey = 65;  // as X11 numbers it
constexpr quint32 controlKey = 37;
constexpr quint32 oddKey = 200;

class QtKeyCaptureTest : public ::testing::Test {
protected:
    static std::optional<KeyCode> codeOf(quint32 native) {
        if (native == spaceKey) return KeyCode{49};
        if (native == controlKey) return key_code::control;
        return std::nullopt;
    }

    Cancellable startCapture() {
        return capture.capture([this](const KeyEvent& event) { taken.push_back(event); });
    }

    void send(QEvent::Type type, quint32 key, Qt::KeyboardModifiers modifiers = {},
              bool repeat = false) {
        QKeyEvent event(type, Qt::Key_Space, modifiers, key, 0, 0, QStringLiteral(" "), repeat);
        QApplication::sendEvent(&window, &event);
    }

    QtKeyCapture capture{&codeOf};
    QLineEdit window;
    std::vector<KeyEvent> taken;
};

TEST_F(QtKeyCaptureTest, AKeyPressGoesToTheCaptureInsteadOfTheWindow) {
    const auto token = startCapture();
    send(QEvent::KeyPress, spaceKey, Qt::ControlModifier | Qt::MetaModifier);
    const KeyEvent expected{KeyEvent::Kind::KeyDown, 49, modifier::control | modifier::command};
    EXPECT_EQ(taken, std::vector{expected});
    EXPECT_EQ(window.text(), QString());
}

TEST_F(QtKeyCaptureTest, WithoutACaptureTheWindowHasTheKeys) {
    startCapture().cancel();
    send(QEvent::KeyPress, spaceKey);
    EXPECT_TRUE(taken.empty());
    EXPECT_EQ(window.text(), QStringLiteral(" "));
}

TEST_F(QtKeyCaptureTest, NoShortcutHasAKeyThatIsTaken) {
    const auto token = startCapture();
    QKeyEvent event(QEvent::ShortcutOverride, Qt::Key_Space, Qt::NoModifier, spaceKey, 0, 0);
    event.ignore();
    QApplication::sendEvent(&window, &event);
    EXPECT_TRUE(event.isAccepted());
    EXPECT_TRUE(taken.empty());
}

TEST_F(QtKeyCaptureTest, ModifiersRepeatsAndStrangeKeysGoNowhere) {
    const auto token = startCapture();
    send(QEvent::KeyPress, controlKey);
    send(QEvent::KeyPress, oddKey);
    send(QEvent::KeyPress, spaceKey, {}, true);
    EXPECT_TRUE(taken.empty());
    EXPECT_EQ(window.text(), QString());
}

TEST_F(QtKeyCaptureTest, TheTakenKeyIsHeldUntilItIsLetGo) {
    auto token = startCapture();
    send(QEvent::KeyPress, spaceKey);
    token.cancel();
    EXPECT_TRUE(capture.holdsKeys());
    send(QEvent::KeyPress, spaceKey, {}, true);
    EXPECT_EQ(window.text(), QString());
    send(QEvent::KeyRelease, spaceKey);
    EXPECT_FALSE(capture.holdsKeys());
}

TEST_F(QtKeyCaptureTest, OnlyTheNewestCaptureGetsKeys) {
    auto older = startCapture();
    int newer = 0;
    const auto token = capture.capture([&newer](const KeyEvent&) { ++newer; });
    older.cancel();
    send(QEvent::KeyPress, spaceKey);
    EXPECT_EQ(newer, 1);
    EXPECT_TRUE(taken.empty());
}

}  // namespace
}  // namespace quietlark

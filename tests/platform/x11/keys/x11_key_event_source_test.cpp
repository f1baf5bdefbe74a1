#include "platform/linux/x11/keys/x11_key_event_source.h"

#include <functional>
#include <vector>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <signal.h>

#include "peers/x_proxy.h"
#include "peers/x_server.h"
#include "platform/x11/keys/device_keyboard.h"
#include "platform/x11/keys/key_window.h"
#include "platform/x11/keys/print_key_event.h"
#include "support/wait.h"

using namespace quietlark;
using Kind = KeyEvent::Kind;
using Scope = KeyEventSource::Scope;

namespace {

constexpr KeyCode letterA = 0;
constexpr KeyCode space = 49;
constexpr KeyCode lastKey = 53;
constexpr KeyEventMask all =
    key_event_mask::keyDown | key_event_mask::keyUp | key_event_mask::flagsChanged;

/// A user's keyboard, and somebody who watches it.
class X11KeyEventSourceTest : public ::testing::Test {
protected:
    /// Begins to watch; what is held by now has been pressed before.
    void watch() {
        m_connection.emplace(m_server.display());
        m_source.emplace(*m_connection, [] { return false; });
        m_monitor = m_source->addMonitor(
            Scope::Global, all, [this](const KeyEvent& event) { m_events.push_back(event); });
    }

    static XKeycode x(int evdev) { return static_cast<XKeycode>(evdev + 8); }

    void press(int evdev) { m_keyboard.press(x(evdev)); }
    void release(int evdev) { m_keyboard.release(x(evdev)); }
    void type(int evdev) {
        press(evdev);
        release(evdev);
    }

    /// Another program types, by XTEST.
    void xdotool(const QStringList& arguments) {
        m_server.run(QStringLiteral("xdotool"), arguments);
    }
    void setxkbmap(const QStringList& arguments) {
        m_server.run(QStringLiteral("setxkbmap"), arguments);
    }

    /// Puts a modifier, such as Control with its symbol Control_L, onto a key.
    void xmodmap(int evdev, QLatin1String symbol, QLatin1String modifier) {
        const auto key = QStringLiteral("keycode %1 = %2").arg(x(evdev)).arg(symbol);
        const auto held = QStringLiteral("add %1 = %2").arg(modifier, symbol);
        m_server.run(QStringLiteral("xmodmap"),
                     {QStringLiteral("-e"), key, QStringLiteral("-e"), held});
    }

    /// Everything seen up to now; a last key closes the series.
    std::vector<KeyEvent> events() {
        type(KEY_ESC);
        const auto ended = [this] {
            return !m_events.empty() && m_events.back().keyCode == lastKey &&
                   m_events.back().kind == Kind::KeyUp;
        };
        EXPECT_TRUE(waitUntil(ended));
        std::erase_if(m_events, [](const KeyEvent& event) { return event.keyCode == lastKey; });
        return std::exchange(m_events, {});
    }

    XServer m_server;
    DeviceKeyboard m_keyboard{m_server.display()};
    std::optional<X11KeyConnection> m_connection;
    std::optional<X11KeyEventSource> m_source;
    std::vector<KeyEvent> m_events;
    Cancellable m_monitor;
};

using Events = std::vector<KeyEvent>;

}  // namespace

TEST_F(X11KeyEventSourceTest, SeesKeysThatAnotherProgramTypes) {
    watch();
    xdotool({QStringLiteral("key"), QStringLiteral("a")});
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, letterA, 0}, {Kind::KeyUp, letterA, 0}}));
}

TEST_F(X11KeyEventSourceTest, SeesKeysWhileAnotherProgramHoldsAGrab) {
    m_keyboard.grab();
    watch();
    type(KEY_SPACE);
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, space, 0}, {Kind::KeyUp, space, 0}}));
}

TEST_F(X11KeyEventSourceTest, SeesKeysBoundForAnotherProgramsWindow) {
    KeyWindow window(m_server.display());
    window.takeFocus();
    watch();
    type(KEY_SPACE);
    EXPECT_EQ(window.typed(), (std::vector<KeyWindow::Key>{{x(KEY_SPACE), 0}}));
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, space, 0}, {Kind::KeyUp, space, 0}}));
}

TEST_F(X11KeyEventSourceTest, SeesAKeyOnceThatRepeatsInTheWindow) {
    KeyWindow window(m_server.display());
    window.takeFocus();
    m_server.run(QStringLiteral("xset"), {QStringLiteral("r"), QStringLiteral("rate"),
                                          QStringLiteral("50"), QStringLiteral("50")});
    watch();
    press(KEY_SPACE);
    std::size_t typed = 0;
    ASSERT_TRUE(waitUntil([&] { return (typed += window.typed().size()) >= 3; }));
    release(KEY_SPACE);
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, space, 0}, {Kind::KeyUp, space, 0}}));
}

TEST_F(X11KeyEventSourceTest, KnowsTheModifiersThatWereHeldBeforeItBegan) {
    press(KEY_RIGHTCTRL);
    watch();
    type(KEY_SPACE);
    release(KEY_RIGHTCTRL);
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, space, modifier::control},
                                {Kind::KeyUp, space, modifier::control},
                                {Kind::FlagsChanged, key_code::rightControl, 0}}));
}

TEST_F(X11KeyEventSourceTest, WhatIsHeldOnAKeyboardThatIsUnpluggedIsLetGoOf) {
    watch();
    press(KEY_LEFTCTRL);
    press(KEY_SPACE);
    m_keyboard.unplug();
    EXPECT_TRUE(waitUntil([this] { return m_events.size() >= 4; }));
    EXPECT_EQ(m_events.size(), 4u);
    EXPECT_EQ(m_events.back().modifierFlags, 0u);
}

TEST_F(X11KeyEventSourceTest, TheSameModifierOfTwoKeyboardsIsHeldUntilBothLetGo) {
    watch();
    press(KEY_LEFTCTRL);
    xdotool({QStringLiteral("keydown"), QStringLiteral("37")});
    release(KEY_LEFTCTRL);
    type(KEY_SPACE);
    xdotool({QStringLiteral("keyup"), QStringLiteral("37")});
    const auto seen = events();
    ASSERT_EQ(seen.size(), 6u);
    EXPECT_EQ(seen[3], (KeyEvent{Kind::KeyDown, space, modifier::control}));
    EXPECT_EQ(seen[5], (KeyEvent{Kind::FlagsChanged, key_code::control, 0}));
}

TEST_F(X11KeyEventSourceTest, OrdinaryKeysKeepTheirPlaceInAnotherLayout) {
    watch();
    setxkbmap({QStringLiteral("fr")});
    type(KEY_A);
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, letterA, 0}, {Kind::KeyUp, letterA, 0}}));
}

TEST_F(X11KeyEventSourceTest, FollowsModifiersThatAreSwappedWhileItRuns) {
    watch();
    setxkbmap({QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("ctrl:swapcaps")});
    press(KEY_CAPSLOCK);
    type(KEY_SPACE);
    release(KEY_CAPSLOCK);
    EXPECT_EQ(events(), (Events{{Kind::FlagsChanged, key_code::capsLock, modifier::control},
                                {Kind::KeyDown, space, modifier::control},
                                {Kind::KeyUp, space, modifier::control},
                                {Kind::FlagsChanged, key_code::capsLock, 0}}));
}

TEST_F(X11KeyEventSourceTest, AModifierHeldOverAKeymapChangeIsLetGoOf) {
    watch();
    press(KEY_LEFTCTRL);
    ASSERT_TRUE(waitUntil([this] { return m_events.size() == 1; }));
    setxkbmap({QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("ctrl:swapcaps")});
    release(KEY_LEFTCTRL);
    type(KEY_SPACE);
    const auto seen = events();
    ASSERT_EQ(seen.size(), 4u);
    EXPECT_EQ(seen[1], (KeyEvent{Kind::FlagsChanged, key_code::control, 0}));
    EXPECT_EQ(seen[2], (KeyEvent{Kind::KeyDown, space, 0}));
}

TEST_F(X11KeyEventSourceTest, ACapsLockThatTypesEscapeIsAnOrdinaryKey) {
    watch();
    setxkbmap({QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("caps:escape")});
    type(KEY_CAPSLOCK);
    EXPECT_EQ(events(), (Events{{Kind::KeyDown, key_code::capsLock, 0},
                                {Kind::KeyUp, key_code::capsLock, 0}}));
}

TEST_F(X11KeyEventSourceTest, AltGrIsAModifierKeyThatHoldsNoFlag) {
    setxkbmap({QStringLiteral("de")});
    watch();
    press(KEY_RIGHTALT);
    type(KEY_Q);
    release(KEY_RIGHTALT);
    const auto seen = events();
    ASSERT_EQ(seen.size(), 4u);
    EXPECT_EQ(seen[0], (KeyEvent{Kind::FlagsChanged, key_code::rightOption, 0}));
    EXPECT_EQ(seen[1], (KeyEvent{Kind::KeyDown, 12, 0}));
}

TEST_F(X11KeyEventSourceTest, FollowsASwitchToTheOtherLayoutOfTheKeymap) {
    setxkbmap(
        {QStringLiteral("us,de"), QStringLiteral("-option"), QStringLiteral("grp:menu_toggle")});
    watch();
    press(KEY_RIGHTALT);
    release(KEY_RIGHTALT);
    type(KEY_COMPOSE);
    press(KEY_RIGHTALT);
    release(KEY_RIGHTALT);
    const auto seen = events();
    ASSERT_EQ(seen.size(), 6u);
    EXPECT_EQ(seen[0], (KeyEvent{Kind::FlagsChanged, key_code::rightOption, modifier::option}));
    EXPECT_EQ(seen[4], (KeyEvent{Kind::FlagsChanged, key_code::rightOption, 0}));
}

TEST_F(X11KeyEventSourceTest, KeysThatHaveNoCodeAreNotReported) {
    watch();
    type(KEY_PLAYPAUSE);
    EXPECT_TRUE(events().empty());
}

TEST_F(X11KeyEventSourceTest, AModifierOnAKeyThatHasNoCodeIsReportedAsTheLeftHandOne) {
    watch();
    xmodmap(KEY_MUHENKAN, QLatin1String("Control_L"), QLatin1String("Control"));
    press(KEY_MUHENKAN);
    type(KEY_SPACE);
    release(KEY_MUHENKAN);
    EXPECT_EQ(events(), (Events{{Kind::FlagsChanged, key_code::control, modifier::control},
                                {Kind::KeyDown, space, modifier::control},
                                {Kind::KeyUp, space, modifier::control},
                                {Kind::FlagsChanged, key_code::control, 0}}));
}

TEST_F(X11KeyEventSourceTest, OptionAndCommandOnKeysThatHaveNoCodeAreReportedToo) {
    xmodmap(KEY_HENKAN, QLatin1String("Alt_L"), QLatin1String("Mod1"));
    xmodmap(KEY_KATAKANAHIRAGANA, QLatin1String("Super_L"), QLatin1String("Mod4"));
    watch();
    type(KEY_HENKAN);
    type(KEY_KATAKANAHIRAGANA);
    EXPECT_EQ(events(), (Events{{Kind::FlagsChanged, key_code::option, modifier::option},
                                {Kind::FlagsChanged, key_code::option, 0},
                                {Kind::FlagsChanged, key_code::command, modifier::command},
                                {Kind::FlagsChanged, key_code::command, 0}}));
}

TEST_F(X11KeyEventSourceTest, SaysSoAndReportsNothingMoreWhenTheServerIsGone) {
    watch();
    EXPECT_FALSE(m_source->unavailable());
    m_server.end();
    EXPECT_TRUE(waitUntil([this] { return m_source->unavailable().has_value(); }));
    EXPECT_TRUE(m_source->unavailable()->reason.contains(QStringLiteral("start Quietlark again")));
}

TEST_F(X11KeyEventSourceTest, TheLossOfTheServerIsAnnouncedOnce) {
    watch();
    int losses = 0;
    QObject::connect(&*m_connection, &X11KeyConnection::displayLost, [&losses] { ++losses; });
    m_server.end();
    ASSERT_TRUE(waitUntil([&losses] { return losses > 0; }));
    static_cast<void>(m_connection->finishRequests());
    // What is posted after the delivery that this has asked for is dealt with after it.
    bool isDelivered = false;
    QMetaObject::invokeMethod(
        &*m_connection, [&isDelivered] { isDelivered = true; }, Qt::QueuedConnection);
    ASSERT_TRUE(waitUntil([&isDelivered] { return isDelivered; }));
    EXPECT_EQ(losses, 1);
}

TEST_F(X11KeyEventSourceTest, ALossThatIsNoticedWhileWaitingIsAnnouncedFromTheEventLoop) {
    watch();
    int losses = 0;
    QObject::connect(&*m_connection, &X11KeyConnection::displayLost, [&losses] { ++losses; });
    const auto server = static_cast<pid_t>(m_server.processId());
    ASSERT_EQ(::kill(server, SIGKILL), 0);
    static_cast<void>(m_connection->finishRequests());
    EXPECT_EQ(losses, 0);
    EXPECT_TRUE(waitUntil([&losses] { return losses == 1; }));
}

TEST(X11KeyEventSourceWithoutServer, SaysThatThereIsNoDisplay) {
    X11KeyConnection connection("/nowhere/at-all:0");
    X11KeyEventSource source(connection, [] { return false; });
    ASSERT_TRUE(source.unavailable());
    EXPECT_TRUE(source.unavailable()->reason.contains(QStringLiteral("X11 display")));
}

TEST(X11KeyEventSourceOnAPoorServer, SaysWhichServerIsNeededWithoutXInput) {
    XServer server;
    XProxy proxy(server.display(), XProxy::withoutExtension("XInputExtension"));
    X11KeyConnection connection(proxy.display());
    X11KeyEventSource source(connection, [] { return false; });
    ASSERT_TRUE(source.unavailable());
    EXPECT_TRUE(source.unavailable()->reason.contains(QStringLiteral("XInput 2.1")));
}

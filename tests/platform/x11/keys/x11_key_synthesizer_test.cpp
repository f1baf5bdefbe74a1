#include "platform/linux/x11/keys/x11_key_synthesizer.h"

#include <atomic>
#include <functional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <xcb/xtest.h>

#include "peers/x_proxy.h"
#include "peers/x_server.h"
#include "platform/linux/x11/keys/x11_key_event_source.h"
#include "platform/linux/x11/keys/xcb_xkb.h"
#include "platform/x11/keys/device_keyboard.h"
#include "platform/x11/keys/key_window.h"
#include "platform/x11/keys/print_key_event.h"
#include "support/wait.h"

using namespace quietlark;
using Kind = KeyEvent::Kind;

namespace {

constexpr std::uint16_t shift = XCB_MOD_MASK_SHIFT;
constexpr std::uint16_t lock = XCB_MOD_MASK_LOCK;
constexpr std::uint16_t control = XCB_MOD_MASK_CONTROL;
constexpr std::uint16_t numLock = XCB_MOD_MASK_2;
// What the server makes of the second layout for a program that does not speak XKB.
constexpr std::uint16_t secondLayout = XCB_MOD_MASK_5;

XKeycode x(int evdev) {
    return static_cast<XKeycode>(evdev + 8);
}

/// A user with a hand on the keyboard, a window to type into, and this program.
class X11KeySynthesizerTest : public ::testing::Test {
protected:
    void SetUp() override { m_window.takeFocus(); }

    tl::expected<void, Unavailable> paste() {
        return m_synthesizer.post(key_code::v, modifier::command);
    }

    void press(int evdev) { m_keyboard.press(x(evdev)); }
    void release(int evdev) { m_keyboard.release(x(evdev)); }
    void setxkbmap(const QStringList& arguments) {
        m_server.run(QStringLiteral("setxkbmap"), arguments);
    }
    void xdotool(const QStringList& arguments) {
        m_server.run(QStringLiteral("xdotool"), arguments);
    }

    /// The window has been typed this key into, with these modifiers, and nothing else.
    void expectTyped(int evdev, std::uint16_t state) {
        EXPECT_EQ(m_window.typed(), (std::vector<KeyWindow::Key>{{x(evdev), state}}));
    }

    void expectNothingHeld() {
        EXPECT_EQ(m_keyboard.modifiers(), 0);
        for (int key = 8; key < 256; ++key)
            EXPECT_FALSE(m_keyboard.isDown(XKeycode(key))) << key;
    }

    XServer m_server;
    KeyWindow m_window{m_server.display(), "Editor"};
    DeviceKeyboard m_keyboard{m_server.display()};
    X11KeyConnection m_connection{m_server.display()};
    X11KeySynthesizer m_synthesizer{m_connection};
};

}  // namespace

TEST_F(X11KeySynthesizerTest, PastesWithControlV) {
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, PastesWithTheKeyThatTypesVInDvorak) {
    setxkbmap({QStringLiteral("us(dvorak)")});
    EXPECT_TRUE(paste());
    expectTyped(KEY_DOT, control);
}

TEST_F(X11KeySynthesizerTest, PastesWithTheOtherLayoutsVWhileTypingRussian) {
    setxkbmap({QStringLiteral("us(dvorak),ru"), QStringLiteral("-option"),
               QStringLiteral("grp:menu_toggle")});
    press(KEY_COMPOSE);
    release(KEY_COMPOSE);
    ASSERT_EQ(m_window.typed().size(), 1u);
    EXPECT_TRUE(paste());
    expectTyped(KEY_DOT, control | secondLayout);
}

TEST_F(X11KeySynthesizerTest, PastesWithShiftInsertWhereNoKeyTypesV) {
    setxkbmap({QStringLiteral("ru")});
    EXPECT_TRUE(paste());
    expectTyped(KEY_INSERT, shift);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, PastesWithControlShiftVIntoATerminal) {
    KeyWindow terminal(m_server.display(), "Sakura");
    terminal.takeFocusWithAChild();
    EXPECT_TRUE(paste());
    m_window.takeFocus();
    EXPECT_EQ(terminal.typed(), (std::vector<KeyWindow::Key>{{x(KEY_V), control | shift}}));
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, PastesWithShiftInsertIntoATerminalThatPastesPrimary) {
    KeyWindow terminal(m_server.display(), "XTerm");
    terminal.takeFocusWithAChild();
    EXPECT_TRUE(paste());
    m_window.takeFocus();
    EXPECT_EQ(terminal.typed(), (std::vector<KeyWindow::Key>{{x(KEY_INSERT), shift}}));
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, LiftsEveryModifierThatTheUserHoldsAndPutsItBack) {
    for (const int key :
         {KEY_LEFTSHIFT, KEY_RIGHTSHIFT, KEY_LEFTALT, KEY_RIGHTALT, KEY_LEFTMETA, KEY_RIGHTMETA}) {
        press(key);
        const auto modifiers = m_keyboard.modifiers();
        m_window.forget();
        EXPECT_TRUE(paste());
        expectTyped(KEY_V, control);
        EXPECT_TRUE(m_keyboard.isDown(x(key))) << key;
        EXPECT_EQ(m_keyboard.modifiers(), modifiers) << key;
        release(key);
        expectNothingHeld();
    }
}

TEST_F(X11KeySynthesizerTest, LiftsAltGr) {
    setxkbmap({QStringLiteral("de")});
    press(KEY_RIGHTALT);
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    EXPECT_EQ(m_keyboard.modifiers(), XCB_MOD_MASK_5);
    release(KEY_RIGHTALT);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, AHeldControlServesAndStaysHeld) {
    for (const int key : {KEY_LEFTCTRL, KEY_RIGHTCTRL}) {
        press(key);
        EXPECT_TRUE(paste());
        expectTyped(KEY_V, control);
        EXPECT_EQ(m_keyboard.modifiers(), control);
        release(key);
        expectNothingHeld();
    }
}

TEST_F(X11KeySynthesizerTest, BothControlKeysHeldStayHeld) {
    press(KEY_LEFTCTRL);
    press(KEY_RIGHTCTRL);
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    release(KEY_LEFTCTRL);
    EXPECT_EQ(m_keyboard.modifiers(), control);
    release(KEY_RIGHTCTRL);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, AModifierHeldByAnotherProgramsXtestIsPutBackThere) {
    xdotool({QStringLiteral("keydown"), QStringLiteral("50")});
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    EXPECT_EQ(m_keyboard.modifiers(), shift);
    xdotool({QStringLiteral("keyup"), QStringLiteral("50")});
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, TheSameModifierOfTwoKeyboardsIsPutBackOnBoth) {
    press(KEY_LEFTSHIFT);
    xdotool({QStringLiteral("keydown"), QStringLiteral("50")});
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    xdotool({QStringLiteral("keyup"), QStringLiteral("50")});
    release(KEY_LEFTSHIFT);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, AHeldVDoesNotHinderPasting) {
    press(KEY_V);
    m_window.forget();
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    release(KEY_V);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, CapsLockAndNumLockStayOn) {
    for (const int key : {KEY_CAPSLOCK, KEY_NUMLOCK}) {
        press(key);
        release(key);
    }
    m_window.forget();
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control | lock | numLock);
    EXPECT_EQ(m_keyboard.modifiers(), lock | numLock);
}

TEST_F(X11KeySynthesizerTest, AHeldCapsLockIsNotSwitched) {
    press(KEY_CAPSLOCK);
    EXPECT_TRUE(paste());
    release(KEY_CAPSLOCK);
    EXPECT_EQ(m_keyboard.modifiers(), lock);
}

TEST_F(X11KeySynthesizerTest, ALockedShiftIsUndoneForTheKeystrokeOnly) {
    setxkbmap({QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("caps:shiftlock")});
    press(KEY_CAPSLOCK);
    release(KEY_CAPSLOCK);
    ASSERT_EQ(m_keyboard.modifiers(), shift);
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    EXPECT_EQ(m_keyboard.modifiers(), shift);
}

TEST_F(X11KeySynthesizerTest, ALatchedModifierWaitsForTheUsersNextKey) {
    setxkbmap({QStringLiteral("de"), QStringLiteral("-option"),
               QStringLiteral("lv3:menu_switch,level3latch:menu")});
    KeyboardState latched;
    latched.latched = XCB_MOD_MASK_5;
    setLatchesAndLocks(m_connection.xcb(), latched, 0);
    EXPECT_TRUE(paste());
    expectTyped(KEY_V, control);
    press(KEY_Q);
    release(KEY_Q);
    expectTyped(KEY_Q, XCB_MOD_MASK_5);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, AltIsNeverTappedAlone) {
    press(KEY_LEFTALT);
    m_window.forget();
    EXPECT_TRUE(paste());
    const auto events = m_window.events();
    ASSERT_EQ(events.size(), 6u);
    EXPECT_EQ(events[1], (KeyWindow::Key{x(KEY_LEFTALT), XCB_MOD_MASK_1 | control, false}));
    EXPECT_EQ(events[4], (KeyWindow::Key{x(KEY_LEFTALT), control, true}));
}

TEST_F(X11KeySynthesizerTest, PostsNothingWhenNoWindowHasTheFocus) {
    m_window.dropFocus();
    const auto result = paste();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().reason.contains(QStringLiteral("keyboard focus")));
}

TEST_F(X11KeySynthesizerTest, SaysSoWhenTheServerIsGone) {
    m_server.end();
    EXPECT_TRUE(waitUntil([this] { return !paste(); }));
    EXPECT_TRUE(paste().error().reason.contains(QStringLiteral("start Quietlark again")));
}

namespace {

/// Something happens while a keystroke is being typed, before a certain request reaches the server.
class DuringAKeystroke : public X11KeySynthesizerTest {
protected:
    using Request = std::vector<std::uint8_t>;

    /// After the server has told which keys are held, and before any is lifted.
    void pasteWhilePlanning(const std::function<void()>& happening) {
        const auto xkb = xcb_get_extension_data(m_keyboard.xcb(), &xcb_xkb_id)->major_opcode;
        const auto asksForTheKeymap = [xkb](const Request& request) {
            return request[0] == xkb && request[1] == XCB_XKB_GET_MAP;
        };
        pasteAndBefore(asksForTheKeymap, happening);
    }

    /// After the named key has been lifted.
    void pasteWhileLifted(int evdev, const std::function<void()>& happening) {
        const auto fakeInput = xcb_get_extension_data(m_keyboard.xcb(), &xcb_test_id)->major_opcode;
        bool isLifted = false;
        const auto comesAfterLifting = [&](const Request& request) {
            constexpr std::size_t keycodeAt = 5;
            const bool lifts = request[0] == fakeInput && request[keycodeAt] == x(evdev);
            return std::exchange(isLifted, isLifted || lifts);
        };
        pasteAndBefore(comesAfterLifting, [&] {
            while (m_keyboard.isDown(x(evdev))) {
            }
            happening();
        });
    }

    std::vector<KeyEvent> m_events;

private:
    void pasteAndBefore(const std::function<bool(const Request&)>& isTheOne,
                        const std::function<void()>& happening) {
        std::atomic<bool> isTyping = false;
        bool hasHappened = false;
        XProxy proxy(m_server.display(), [&](const Request& request) {
            if (!isTyping || hasHappened || !isTheOne(request)) return;
            hasHappened = true;
            happening();
        });
        X11KeyConnection connection(proxy.display());
        X11KeyEventSource source(connection, [] { return false; });
        const auto monitor = source.addMonitor(
            KeyEventSource::Scope::Global,
            key_event_mask::flagsChanged | key_event_mask::keyDown | key_event_mask::keyUp,
            [this](const KeyEvent& event) { m_events.push_back(event); });
        X11KeySynthesizer synthesizer(connection);
        isTyping = true;
        EXPECT_TRUE(synthesizer.post(key_code::v, modifier::command));
        // Until what happened has been reported, and what the synthesizer did about it is done.
        EXPECT_TRUE(waitUntil([this] { return !m_events.empty(); }));
        static_cast<void>(connection.finishRequests());
    }
};

}  // namespace

TEST_F(DuringAKeystroke, AModifierThatTheUserLetsGoOfIsNotLeftStuck) {
    press(KEY_LEFTSHIFT);
    pasteWhileLifted(KEY_LEFTSHIFT, [this] { release(KEY_LEFTSHIFT); });
    expectTyped(KEY_V, control);
    expectNothingHeld();
    EXPECT_EQ(m_events, (std::vector<KeyEvent>{{Kind::FlagsChanged, key_code::shift, 0}}));
}

TEST_F(DuringAKeystroke, AModifierThatTheUserLetsGoOfBeforeItIsLiftedIsNotLeftStuck) {
    for (const int key : {KEY_LEFTSHIFT, KEY_LEFTALT}) {
        press(key);
        m_window.forget();
        pasteWhilePlanning([this, key] { release(key); });
        expectTyped(KEY_V, control);
        expectNothingHeld();
    }
}

TEST_F(DuringAKeystroke, AModifierThatTheUserPressesAgainBeforeItIsLiftedIsHeld) {
    press(KEY_LEFTSHIFT);
    pasteWhilePlanning([this] {
        release(KEY_LEFTSHIFT);
        press(KEY_LEFTSHIFT);
    });
    expectTyped(KEY_V, control);
    EXPECT_EQ(m_keyboard.modifiers(), shift);
    release(KEY_LEFTSHIFT);
    expectNothingHeld();
}

TEST_F(DuringAKeystroke, AModifierThatTheUserLetsGoOfAndPressesAgainIsHeld) {
    press(KEY_LEFTALT);
    pasteWhileLifted(KEY_LEFTALT, [this] {
        release(KEY_LEFTALT);
        press(KEY_LEFTALT);
    });
    EXPECT_EQ(m_keyboard.modifiers(), XCB_MOD_MASK_1);
    release(KEY_LEFTALT);
    expectNothingHeld();
}

TEST_F(DuringAKeystroke, AKeyThatTheUserTypesIsReported) {
    press(KEY_LEFTSHIFT);
    pasteWhileLifted(KEY_LEFTSHIFT, [this] {
        press(KEY_V);
        release(KEY_V);
    });
    ASSERT_EQ(m_events.size(), 2u);
    EXPECT_EQ(m_events[0], (KeyEvent{Kind::KeyDown, key_code::v, modifier::shift}));
    release(KEY_LEFTSHIFT);
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, WhatItTypesIsNotReportedAndWhatOthersTypeIs) {
    X11KeyEventSource source(m_connection, [] { return false; });
    std::vector<KeyEvent> events;
    const auto monitor = source.addMonitor(
        KeyEventSource::Scope::Global,
        key_event_mask::flagsChanged | key_event_mask::keyDown | key_event_mask::keyUp,
        [&events](const KeyEvent& event) { events.push_back(event); });
    press(KEY_LEFTSHIFT);
    EXPECT_TRUE(paste());
    release(KEY_LEFTSHIFT);
    xdotool({QStringLiteral("key"), QStringLiteral("55")});
    EXPECT_TRUE(paste());
    EXPECT_TRUE(waitUntil([&events] { return events.size() >= 4; }));
    EXPECT_EQ(events, (std::vector<KeyEvent>{
                          {Kind::FlagsChanged, key_code::shift, modifier::shift},
                          {Kind::FlagsChanged, key_code::shift, 0},
                          {Kind::KeyDown, key_code::v, 0},
                          {Kind::KeyUp, key_code::v, 0},
                      }));
}

TEST(X11KeySynthesizerOnAPoorServer, SaysWhatToSwitchOnWithoutXtest) {
    XServer server;
    XProxy proxy(server.display(), XProxy::withoutExtension("XTEST"));
    X11KeyConnection connection(proxy.display());
    X11KeySynthesizer synthesizer(connection);
    const auto result = synthesizer.post(key_code::v, modifier::command);
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().reason.contains(QStringLiteral("XTEST")));
    EXPECT_FALSE(connection.cannotObserve());
}

#include "platform/linux/x11/keys/x11_key_synthesizer.h"

#include <vector>

#include "peers/x_peer.h"
#include "peers/x_proxy.h"
#include "platform/linux/x11/keys/x11_key_event_source.h"
#include "platform/x11/keys/x11_key_synthesizer_fixture.h"

using namespace quietlark;
using Kind = KeyEvent::Kind;

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
    XPeer copying(m_server.display().constData());
    copying.own("PRIMARY");
    copying.own("CLIPBOARD");
    terminal.takeFocusWithAChild();
    EXPECT_TRUE(paste());
    m_window.takeFocus();
    EXPECT_EQ(terminal.typed(), (std::vector<KeyWindow::Key>{{x(KEY_INSERT), shift}}));
    expectNothingHeld();
}

TEST_F(X11KeySynthesizerTest, PastesNoSelectionOfAnotherProgramsIntoSuchATerminal) {
    KeyWindow terminal(m_server.display(), "XTerm");
    XPeer copying(m_server.display().constData());
    XPeer selecting(m_server.display().constData());
    const std::vector<KeyWindow::Key> controlShiftV{{x(KEY_V), control | shift}};
    terminal.takeFocusWithAChild();
    EXPECT_TRUE(paste());
    EXPECT_EQ(terminal.typed(), controlShiftV);
    copying.own("CLIPBOARD");
    EXPECT_TRUE(paste());
    EXPECT_EQ(terminal.typed(), controlShiftV);
    selecting.own("PRIMARY");
    EXPECT_TRUE(paste());
    m_window.takeFocus();
    EXPECT_EQ(terminal.typed(), controlShiftV);
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

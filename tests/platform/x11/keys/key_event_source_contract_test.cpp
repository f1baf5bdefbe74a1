#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/fake_key_event_source.h"
#include "peers/x_server.h"
#include "platform/linux/x11/keys/x11_key_event_source.h"
#include "platform/x11/keys/device_keyboard.h"
#include "platform/x11/keys/print_key_event.h"
#include "support/wait.h"

using namespace quietlark;
using Kind = KeyEvent::Kind;
using Scope = KeyEventSource::Scope;

namespace {

constexpr KeyCode space = 49;
constexpr KeyCode letterD = 2;
constexpr KeyCode lastKey = 53;
constexpr KeyEventMask all =
    key_event_mask::keyDown | key_event_mask::keyUp | key_event_mask::flagsChanged;

/// A key event source with a keyboard to play on.
class Keyboard {
public:
    virtual ~Keyboard() = default;
    virtual KeyEventSource& source() = 0;
    virtual void press(KeyCode keyCode) = 0;
    virtual void release(KeyCode keyCode) = 0;
    virtual void setFocus(Scope scope) = 0;
};

class FakedKeyboard final : public Keyboard {
public:
    KeyEventSource& source() override { return m_source; }
    void press(KeyCode keyCode) override { m_source.press(keyCode); }
    void release(KeyCode keyCode) override { m_source.release(keyCode); }
    void setFocus(Scope scope) override { m_source.setFocus(scope); }

private:
    FakeKeyEventSource m_source;
};

class RealKeyboard final : public Keyboard {
public:
    KeyEventSource& source() override { return m_source; }
    void press(KeyCode keyCode) override { m_keyboard.press(*xKeycodeOf(keyCode)); }
    void release(KeyCode keyCode) override { m_keyboard.release(*xKeycodeOf(keyCode)); }
    void setFocus(Scope scope) override { m_focus = scope; }

private:
    XServer m_server;
    Scope m_focus = Scope::Global;
    X11KeyConnection m_connection{m_server.display()};
    X11KeyEventSource m_source{m_connection, [this] { return m_focus == Scope::Local; }};
    DeviceKeyboard m_keyboard{m_server.display()};
};

class KeyEventSourceContract : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (GetParam() == std::string("Fake")) {
            m_keyboard = std::make_unique<FakedKeyboard>();
        } else {
            m_keyboard = std::make_unique<RealKeyboard>();
        }
        m_end = source().addMonitor(Scope::Global, key_event_mask::keyUp,
                                    [this](const KeyEvent& event) { noteEnd(event); });
        m_localEnd = source().addMonitor(Scope::Local, key_event_mask::keyUp,
                                         [this](const KeyEvent& event) { noteEnd(event); });
    }

    KeyEventSource& source() { return m_keyboard->source(); }
    void press(KeyCode keyCode) { m_keyboard->press(keyCode); }
    void release(KeyCode keyCode) { m_keyboard->release(keyCode); }

    [[nodiscard]] Cancellable record(Scope scope, KeyEventMask mask) {
        return source().addMonitor(scope, mask,
                                   [this](const KeyEvent& event) { m_events.push_back(event); });
    }

    /// Everything recorded, once it has all come through: a last key closes the series.
    const std::vector<KeyEvent>& events() {
        m_ended = false;
        press(lastKey);
        release(lastKey);
        EXPECT_TRUE(waitUntil([this] { return m_ended; }));
        std::erase_if(m_events, [](const KeyEvent& event) { return event.keyCode == lastKey; });
        return m_events;
    }

    void noteEnd(const KeyEvent& event) { m_ended = m_ended || event.keyCode == lastKey; }

    std::unique_ptr<Keyboard> m_keyboard;
    std::vector<KeyEvent> m_events;
    Cancellable m_end, m_localEnd;
    bool m_ended = false;
};

INSTANTIATE_TEST_SUITE_P(Over, KeyEventSourceContract, ::testing::Values("Fake", "X11"),
                         [](const auto& one) { return std::string(one.param); });

}  // namespace

TEST_P(KeyEventSourceContract, IsAvailable) {
    EXPECT_FALSE(source().unavailable());
}

TEST_P(KeyEventSourceContract, AnOrdinaryKeyGoesDownAndUp) {
    const auto monitor = record(Scope::Global, all);
    press(space);
    release(space);
    EXPECT_EQ(events(),
              (std::vector<KeyEvent>{{Kind::KeyDown, space, 0}, {Kind::KeyUp, space, 0}}));
}

TEST_P(KeyEventSourceContract, AModifierKeyChangesTheFlags) {
    const auto monitor = record(Scope::Global, all);
    press(key_code::command);
    release(key_code::command);
    EXPECT_EQ(events(),
              (std::vector<KeyEvent>{{Kind::FlagsChanged, key_code::command, modifier::command},
                                     {Kind::FlagsChanged, key_code::command, 0}}));
}

TEST_P(KeyEventSourceContract, TheFnKeyChangesTheFlags) {
    const auto monitor = record(Scope::Global, all);
    press(key_code::function);
    release(key_code::function);
    EXPECT_EQ(events(),
              (std::vector<KeyEvent>{{Kind::FlagsChanged, key_code::function, modifier::function},
                                     {Kind::FlagsChanged, key_code::function, 0}}));
}

TEST_P(KeyEventSourceContract, AKeyCarriesTheFlagsHeldAtTheTime) {
    const auto monitor = record(Scope::Global, key_event_mask::keyDown | key_event_mask::keyUp);
    press(key_code::control);
    press(key_code::shift);
    press(letterD);
    release(key_code::shift);
    release(letterD);
    release(key_code::control);
    EXPECT_EQ(events(),
              (std::vector<KeyEvent>{{Kind::KeyDown, letterD, modifier::control | modifier::shift},
                                     {Kind::KeyUp, letterD, modifier::control}}));
}

TEST_P(KeyEventSourceContract, TheFlagStaysUntilBothKeysOfAModifierAreUp) {
    const auto monitor = record(Scope::Global, key_event_mask::flagsChanged);
    press(key_code::option);
    press(key_code::rightOption);
    release(key_code::option);
    release(key_code::rightOption);
    EXPECT_EQ(events(),
              (std::vector<KeyEvent>{{Kind::FlagsChanged, key_code::option, modifier::option},
                                     {Kind::FlagsChanged, key_code::rightOption, modifier::option},
                                     {Kind::FlagsChanged, key_code::option, modifier::option},
                                     {Kind::FlagsChanged, key_code::rightOption, 0}}));
}

TEST_P(KeyEventSourceContract, CapsLockReportsItselfAndHoldsNoFlag) {
    const auto monitor = record(Scope::Global, all);
    press(key_code::capsLock);
    release(key_code::capsLock);
    EXPECT_EQ(events(), (std::vector<KeyEvent>{{Kind::FlagsChanged, key_code::capsLock, 0},
                                               {Kind::FlagsChanged, key_code::capsLock, 0}}));
}

TEST_P(KeyEventSourceContract, AMonitorGetsOnlyTheKindsOfItsMask) {
    const auto monitor = record(Scope::Global, key_event_mask::keyUp);
    press(key_code::control);
    press(space);
    release(space);
    release(key_code::control);
    EXPECT_EQ(events(), (std::vector<KeyEvent>{{Kind::KeyUp, space, modifier::control}}));
}

TEST_P(KeyEventSourceContract, KeysBoundForOwnWindowsAreLocal) {
    const auto monitor = record(Scope::Local, key_event_mask::keyDown);
    press(letterD);
    release(letterD);
    ASSERT_TRUE(events().empty());
    m_keyboard->setFocus(Scope::Local);
    press(space);
    release(space);
    EXPECT_EQ(events(), (std::vector<KeyEvent>{{Kind::KeyDown, space, 0}}));
}

TEST_P(KeyEventSourceContract, KeysBoundForOwnWindowsAreNotGlobal) {
    const auto monitor = record(Scope::Global, all);
    m_keyboard->setFocus(Scope::Local);
    press(space);
    release(space);
    EXPECT_TRUE(events().empty());
}

TEST_P(KeyEventSourceContract, NothingComesAfterTheTokenIsGone) {
    auto monitor = record(Scope::Global, all);
    monitor.cancel();
    press(space);
    release(space);
    EXPECT_TRUE(events().empty());
}

TEST_P(KeyEventSourceContract, AHandlerMayRemoveItsOwnMonitor) {
    Cancellable monitor = source().addMonitor(Scope::Global, all, [&](const KeyEvent& event) {
        m_events.push_back(event);
        monitor.cancel();
    });
    press(space);
    release(space);
    EXPECT_EQ(events().size(), 1u);
}

TEST_P(KeyEventSourceContract, AMonitorRemovedByAnotherHandlerIsNotCalledAnyMore) {
    Cancellable second;
    const auto first = source().addMonitor(Scope::Global, key_event_mask::keyDown,
                                           [&](const KeyEvent&) { second.cancel(); });
    second = record(Scope::Global, key_event_mask::keyDown);
    press(space);
    release(space);
    EXPECT_TRUE(events().empty());
}

TEST_P(KeyEventSourceContract, AMonitorAddedByAHandlerGetsTheNextEvent) {
    Cancellable added;
    const auto first = source().addMonitor(
        Scope::Global, key_event_mask::keyDown,
        [&](const KeyEvent&) { added = record(Scope::Global, key_event_mask::keyUp); });
    press(space);
    release(space);
    EXPECT_EQ(events(), (std::vector<KeyEvent>{{Kind::KeyUp, space, 0}}));
}

TEST_P(KeyEventSourceContract, ATokenMayOutliveItsSource) {
    Cancellable monitor = record(Scope::Global, all);
    m_keyboard.reset();
    monitor.cancel();
    EXPECT_TRUE(m_events.empty());
}

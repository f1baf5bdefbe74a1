#include <atomic>
#include <functional>
#include <utility>
#include <vector>

#include <xcb/xtest.h>

#include "peers/x_proxy.h"
#include "platform/linux/x11/keys/x11_key_event_source.h"
#include "platform/linux/x11/keys/xcb_xkb.h"
#include "platform/x11/keys/x11_key_synthesizer_fixture.h"

using namespace quietlark;
using Kind = KeyEvent::Kind;

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
            EXPECT_TRUE(spinUntil([&] { return !m_keyboard.isDown(x(evdev)); }));
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

#include "platform/linux/x11/keys/x11_key_synthesizer.h"

#include "platform/linux/x11/focused_window.h"
#include "platform/linux/x11/selections.h"

namespace quietlark {

namespace {

WindowKind kindOf(const WindowClass& window, xcb_connection_t* connection) {
    if (!isTerminal(window)) return WindowKind::ordinary;
    if (!pastesPrimary(window)) return WindowKind::terminal;
    // The focus may have moved here after the text was put where another window looks for it.
    // What was selected last, ends of lines and all, must not go to a shell.
    return primaryIsOwnedWithClipboard(connection) ? WindowKind::primaryTerminal
                                                   : WindowKind::otherPrimaryTerminal;
}

}  // namespace

tl::expected<void, Unavailable> X11KeySynthesizer::post(KeyCode keyCode, ModifierFlags flags) {
    if (auto reason = m_connection.cannotSynthesize()) return tl::unexpected(*std::move(reason));
    auto result = tryPost(keyCode, flags);
    m_connection.deliverSoon();
    return result;
}

std::optional<Unavailable> X11KeySynthesizer::unavailable() const {
    return m_connection.cannotSynthesize();
}

tl::expected<void, Unavailable> X11KeySynthesizer::tryPost(KeyCode keyCode, ModifierFlags flags) {
    xcb_connection_t* const xcb = m_connection.xcb();
    const auto window = focusedWindow(xcb, m_connection.rootWindow());
    if (!window) {
        return tl::unexpected(Unavailable{
            tr("No window has the keyboard focus. Click into the one that should get the text.")});
    }
    const auto keyboards = queryKeyboards(xcb);
    const auto state = queryKeyboardState(xcb);
    // The keymap of the very keyboard that will type: each may have its own.
    const auto keymap = X11Keymap::fetch(xcb, keyboards ? keyboards->xtestDevice : -1);
    if (!keyboards || !state || !keymap) {
        return tl::unexpected(Unavailable{
            tr("The keyboard layout could not be read. Choose it once more in the keyboard "
               "settings.")});
    }
    const auto shortcut =
        findShortcut(*keymap, state->lockedLayout, keyCode, flags, kindOf(*window, xcb));
    const auto plan = shortcut ? planKeystroke(*keymap, *state, *keyboards, *shortcut)
                               : std::optional<KeystrokePlan>();
    if (!plan) {
        return tl::unexpected(Unavailable{
            tr("The keyboard layout has no key for this shortcut. Choose another layout in the "
               "keyboard settings.")});
    }
    type(*plan, *state);
    releaseWhatTheUserReleased(plan->lifted);
    return {};
}

void X11KeySynthesizer::type(const KeystrokePlan& plan, const KeyboardState& state) {
    const bool hasLatches = state.latched != 0 || state.latchedLayout != 0;
    // A key that latches does so when it is lifted.
    const bool clears = plan.unlocked != 0 || hasLatches || !plan.lifted.empty();

    apply(plan.before);
    if (clears) setLatchesAndLocks(m_connection.xcb(), KeyboardState{}, plan.unlocked);
    apply({{plan.key, true}, {plan.key, false}});
    apply(plan.after);
    if (clears) setLatchesAndLocks(m_connection.xcb(), state, plan.unlocked);
}

void X11KeySynthesizer::apply(const std::vector<KeystrokePlan::Move>& moves) {
    for (const auto& [key, pressed] : moves) {
        m_connection.fakeKey(key.device, key.keycode, pressed);
    }
}

void X11KeySynthesizer::releaseWhatTheUserReleased(const std::vector<DeviceKey>& lifted) {
    // A lifted key was down when it was asked for: one that somebody has let go of last is up,
    // whether that was before it was lifted, while it was, or after it was put back.
    const auto observed = m_connection.finishRequests();
    for (const DeviceKey& key : lifted) {
        bool isReleased = false;
        for (const auto& [event, layout, ours] : observed) {
            if (!ours && DeviceKey{event.device, event.keycode} == key) isReleased = !event.pressed;
        }
        if (isReleased) m_connection.fakeKey(key.device, key.keycode, false);
    }
    xcb_flush(m_connection.xcb());
}

}  // namespace quietlark

#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QString>
#include <tl/expected.hpp>

#include "hotkeys/hotkey_monitors.h"
#include "hotkeys/hotkey_parse.h"
#include "platform/scheduler.h"

namespace quietlark {

/// Push-to-talk: reports when a hotkey becomes fully held, whatever the order of its keys, and when
/// any part of it is let go. Main thread.
class HoldHotkey {
public:
    using Callback = std::function<void()>;

    /// Builds a monitor from a hotkey spec; nothing is watched before start().
    [[nodiscard]] static tl::expected<std::unique_ptr<HoldHotkey>, HotkeyParse::ParseError> create(
        const QString& spec, KeyEventSource& source, Scheduler& scheduler, Callback onPress,
        Callback onRelease);

    HoldHotkey(Hotkey hotkey, KeyEventSource& source, Scheduler& scheduler, Callback onPress,
               Callback onRelease);
    ~HoldHotkey() { stop(); }

    /// Watches the keyboard afresh. Both callbacks run from the main queue.
    void start();

    /// Stops watching. While the hotkey is held this calls onRelease before it returns, so that a
    /// recording in progress always ends.
    void stop();

private:
    void onKey(const KeyEvent& event);
    void onFlagsChanged(const KeyEvent& event);
    void check();
    void reset();

    ModifierFlags m_required;
    std::optional<KeyCode> m_keyCode;
    Scheduler& m_scheduler;
    Callback m_onPress;
    Callback m_onRelease;
    bool m_active = false;
    bool m_modsOK = false;
    bool m_keyDown = false;
    HotkeyMonitors m_monitors;
    /// Lives from start() to stop(): a press still in the main queue by then is not reported.
    std::shared_ptr<const Callback> m_pressReport;
};

}  // namespace quietlark

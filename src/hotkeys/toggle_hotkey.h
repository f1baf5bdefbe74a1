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

/// Reports each press of a key combination, auto-repeats included where the keyboard reports them.
/// A hotkey of modifiers only never toggles. Main thread.
class ToggleHotkey {
public:
    using Callback = std::function<void()>;

    /// Builds a monitor from a hotkey spec; nothing is watched before start().
    [[nodiscard]] static tl::expected<std::unique_ptr<ToggleHotkey>, HotkeyParse::ParseError>
    create(const QString& spec, KeyEventSource& source, Scheduler& scheduler, Callback onToggle);

    ToggleHotkey(Hotkey hotkey, KeyEventSource& source, Scheduler& scheduler, Callback onToggle);

    /// Whether it has a key: a hotkey of modifiers only never toggles.
    [[nodiscard]] bool canFire() const { return m_keyCode.has_value(); }

    /// Watches the keyboard afresh. The callback runs from the main queue.
    void start();

    /// Stops watching; calls nothing.
    void stop();

private:
    void onKeyDown(const KeyEvent& event);

    ModifierFlags m_required;
    std::optional<KeyCode> m_keyCode;
    Scheduler& m_scheduler;
    Callback m_onToggle;
    HotkeyMonitors m_monitors;
};

}  // namespace quietlark

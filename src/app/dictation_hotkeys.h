#pragma once

#include <memory>

#include "config/config.h"
#include "dictation/dictation.h"
#include "hotkeys/hold_hotkey.h"
#include "hotkeys/toggle_hotkey.h"

namespace quietlark {

/// The user's two hotkeys, wired to dictation. Main thread.
class DictationHotkeys {
public:
    DictationHotkeys(Dictation& dictation, KeyEventSource& keyboard, Scheduler& scheduler);

    /// Replaces both hotkeys by what the settings say. An empty spec means no hotkey, and so does
    /// one that does not parse. A recording that a held hotkey had started ends.
    void reload(const Config& config);

    [[nodiscard]] bool hasHold() const { return m_hold != nullptr; }
    [[nodiscard]] bool hasToggle() const { return m_toggle != nullptr; }

private:
    void toggle();

    Dictation& m_dictation;
    KeyEventSource& m_keyboard;
    Scheduler& m_scheduler;
    std::unique_ptr<HoldHotkey> m_hold;
    std::unique_ptr<ToggleHotkey> m_toggle;
};

}  // namespace quietlark

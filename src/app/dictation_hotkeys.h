#pragma once

#include <memory>

#include <QStringList>

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
    /// one that does not parse; why it does not is answered, a sentence each. A recording that a
    /// held hotkey had started ends.
    QStringList reload(const Config& config);

    [[nodiscard]] bool hasHold() const { return m_holdHotkey != nullptr; }
    /// A toggle hotkey of modifiers only does nothing, and does not count.
    [[nodiscard]] bool hasToggle() const { return m_toggleHotkey && m_toggleHotkey->canFire(); }

private:
    Dictation& m_dictation;
    KeyEventSource& m_keyboard;
    Scheduler& m_scheduler;
    std::unique_ptr<HoldHotkey> m_holdHotkey;
    std::unique_ptr<ToggleHotkey> m_toggleHotkey;
};

}  // namespace quietlark

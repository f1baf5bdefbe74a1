#include "app/dictation_hotkeys.h"

namespace quietlark {

DictationHotkeys::DictationHotkeys(Dictation& dictation, KeyEventSource& keyboard,
                                   Scheduler& scheduler)
    : m_dictation(dictation), m_keyboard(keyboard), m_scheduler(scheduler) {}

void DictationHotkeys::reload(const Config& config) {
    m_hold.reset();
    m_toggle.reset();
    if (!config.hotkey.isEmpty()) {
        auto hold = HoldHotkey::create(
            config.hotkey, m_keyboard, m_scheduler, [this] { m_dictation.beginRecord(); },
            [this] { m_dictation.endRecord(); });
        if (hold) m_hold = *std::move(hold);
    }
    if (!config.toggleHotkey.isEmpty()) {
        auto toggled = ToggleHotkey::create(config.toggleHotkey, m_keyboard, m_scheduler,
                                            [this] { toggle(); });
        if (toggled) m_toggle = *std::move(toggled);
    }
    if (m_hold) m_hold->start();
    if (m_toggle) m_toggle->start();
}

void DictationHotkeys::toggle() {
    switch (m_dictation.state().kind) {
        case DictationState::Case::idle:
        case DictationState::Case::error:
        case DictationState::Case::unreachable:
            return m_dictation.beginRecord();
        case DictationState::Case::recording:
            return m_dictation.endRecord();
        case DictationState::Case::transcribing:
            return;
    }
}

}  // namespace quietlark

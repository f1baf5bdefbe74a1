#include "hotkeys/toggle_hotkey.h"

#include <utility>

namespace quietlark {

tl::expected<std::unique_ptr<ToggleHotkey>, HotkeyParse::ParseError> ToggleHotkey::create(
    const QString& spec, KeyEventSource& source, Scheduler& scheduler, Callback onToggle) {
    return HotkeyParse::parse(spec).map([&](const Hotkey& hotkey) {
        return std::make_unique<ToggleHotkey>(hotkey, source, scheduler, std::move(onToggle));
    });
}

ToggleHotkey::ToggleHotkey(Hotkey hotkey, KeyEventSource& source, Scheduler& scheduler,
                           Callback onToggle)
    : m_required(hotkey.modifiers),
      m_keyCode(hotkey.keyCode),
      m_scheduler(scheduler),
      m_onToggle(std::move(onToggle)),
      m_monitors(source) {}

void ToggleHotkey::start() {
    stop();
    m_monitors.addMonitors(key_event_mask::keyDown,
                           [this](const KeyEvent& event) { onKeyDown(event); });
}

void ToggleHotkey::stop() {
    m_monitors.removeAll();
}

void ToggleHotkey::onKeyDown(const KeyEvent& event) {
    if (m_keyCode != event.keyCode) return;
    if ((event.modifierFlags & modifier::relevant & m_required) != m_required) return;
    m_scheduler.post(m_onToggle);
}

}  // namespace quietlark

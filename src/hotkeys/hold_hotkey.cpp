#include "hotkeys/hold_hotkey.h"

#include <utility>

namespace quietlark {

tl::expected<std::unique_ptr<HoldHotkey>, HotkeyParse::ParseError> HoldHotkey::create(
    const QString& spec, KeyEventSource& source, Scheduler& scheduler, Callback onPress,
    Callback onRelease) {
    return HotkeyParse::parse(spec).map([&](const Hotkey& hotkey) {
        return std::make_unique<HoldHotkey>(hotkey, source, scheduler, std::move(onPress),
                                            std::move(onRelease));
    });
}

HoldHotkey::HoldHotkey(Hotkey hotkey, KeyEventSource& source, Scheduler& scheduler,
                       Callback onPress, Callback onRelease)
    : m_required(hotkey.modifiers),
      m_keyCode(hotkey.keyCode),
      m_scheduler(scheduler),
      m_onPress(std::move(onPress)),
      m_onRelease(std::move(onRelease)),
      m_monitors(source) {
    reset();
}

void HoldHotkey::start() {
    stop();
    m_pressReport = std::make_shared<const Callback>(m_onPress);
    const auto keyHandler = [this](const KeyEvent& event) { onKey(event); };
    m_monitors.addMonitors(key_event_mask::keyDown, keyHandler);
    m_monitors.addMonitors(key_event_mask::keyUp, keyHandler);
    m_monitors.addMonitors(key_event_mask::flagsChanged,
                           [this](const KeyEvent& event) { onFlagsChanged(event); });
}

void HoldHotkey::stop() {
    m_monitors.removeAll();
    m_pressReport.reset();
    if (std::exchange(m_active, false)) m_onRelease();
    reset();
}

void HoldHotkey::onKey(const KeyEvent& event) {
    if (m_keyCode != event.keyCode) return;
    m_keyDown = event.kind == KeyEvent::Kind::KeyDown;
    check();
}

void HoldHotkey::onFlagsChanged(const KeyEvent& event) {
    m_modsOK = (event.modifierFlags & modifier::relevant & m_required) == m_required;
    if (!m_keyCode) m_keyDown = m_modsOK;
    check();
}

void HoldHotkey::check() {
    const bool held = m_keyDown && m_modsOK;
    if (held == std::exchange(m_active, held)) return;
    if (held) {
        m_scheduler.post([report = std::weak_ptr(m_pressReport)] {
            if (const auto onPress = report.lock()) (*onPress)();
        });
    } else {
        // A release always arrives: a recording that nothing ends would be the worse outcome.
        m_scheduler.post(m_onRelease);
    }
}

void HoldHotkey::reset() {
    m_modsOK = m_required == 0;
    m_keyDown = !m_keyCode.has_value();
}

}  // namespace quietlark

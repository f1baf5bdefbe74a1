#pragma once

#include <map>
#include <memory>
#include <set>
#include <utility>

#include "platform/key_event_source.h"

namespace quietlark {

/// A keyboard played by the test. Modifier keys (key_code::command...) report FlagsChanged and put
/// their flag on all events while they are held; the others report KeyDown and KeyUp.
class FakeKeyEventSource final : public KeyEventSource {
public:
    [[nodiscard]] Cancellable addMonitor(Scope scope, KeyEventMask mask, Handler handler) override {
        const int id = m_nextId++;
        m_monitors->emplace(id, Monitor{scope, mask, std::move(handler)});
        return Cancellable([monitors = std::weak_ptr(m_monitors), id] {
            if (const auto alive = monitors.lock()) alive->erase(id);
        });
    }

    [[nodiscard]] std::optional<Unavailable> unavailable() const override { return m_unavailable; }

    /// Presses a key; once more while it is down is an auto-repeat.
    void press(KeyCode keyCode) {
        if (isModifierKey(keyCode)) m_heldModifierKeys.insert(keyCode);
        report(isModifierKey(keyCode) ? KeyEvent::Kind::FlagsChanged : KeyEvent::Kind::KeyDown,
               keyCode);
    }

    void release(KeyCode keyCode) {
        m_heldModifierKeys.erase(keyCode);
        report(isModifierKey(keyCode) ? KeyEvent::Kind::FlagsChanged : KeyEvent::Kind::KeyUp,
               keyCode);
    }

    /// Where the events go from now on; at first to other applications.
    void setFocus(Scope scope) { m_focus = scope; }

    /// From now on keys cannot be observed, and nothing is reported.
    void makeUnavailable(const QString& reason) { m_unavailable = Unavailable{reason}; }

    /// Keys can be observed again.
    void makeAvailable() { m_unavailable.reset(); }

    [[nodiscard]] std::size_t monitorCount() const { return m_monitors->size(); }

private:
    struct Monitor {
        Scope scope;
        KeyEventMask mask;
        Handler handler;
    };

    void report(KeyEvent::Kind kind, KeyCode keyCode) {
        if (m_unavailable) return;
        const KeyEvent event{kind, keyCode, heldFlags()};
        // A handler may add and remove monitors, itself among them.
        const auto monitorsNow = *m_monitors;
        for (const auto& [id, monitor] : monitorsNow) {
            if (monitor.scope != m_focus || (monitor.mask & maskOf(kind)) == 0) continue;
            if (m_monitors->contains(id)) monitor.handler(event);
        }
    }

    [[nodiscard]] ModifierFlags heldFlags() const {
        ModifierFlags flags = 0;
        for (const KeyCode held : m_heldModifierKeys)
            flags |= flagOfModifierKey(held);
        return flags;
    }

    std::shared_ptr<std::map<int, Monitor>> m_monitors = std::make_shared<std::map<int, Monitor>>();
    std::set<KeyCode> m_heldModifierKeys;
    std::optional<Unavailable> m_unavailable;
    Scope m_focus = Scope::Global;
    int m_nextId = 0;
};

}  // namespace quietlark

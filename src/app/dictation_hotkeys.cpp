#include "app/dictation_hotkeys.h"

#include <QPointer>

namespace quietlark {

namespace {

/// Takes over the hotkey that was made, or notes why there is none.
template <typename Hotkey>
void adopt(tl::expected<std::unique_ptr<Hotkey>, HotkeyParse::ParseError> made,
           std::unique_ptr<Hotkey>& hotkey, QStringList& complaints) {
    if (!made) {
        complaints << made.error().localizedDescription();
        return;
    }
    hotkey = *std::move(made);
    hotkey->start();
}

}  // namespace

DictationHotkeys::DictationHotkeys(Dictation& dictation, KeyEventSource& keyboard,
                                   Scheduler& scheduler)
    : m_dictation(dictation), m_keyboard(keyboard), m_scheduler(scheduler) {}

QStringList DictationHotkeys::reload(const Config& config) {
    m_holdHotkey.reset();
    m_toggleHotkey.reset();
    // What a hotkey has put into the main queue may be run when this is gone.
    const auto tell = [dictation = QPointer(&m_dictation)](auto action) {
        return [dictation, action] {
            if (dictation) action(*dictation);
        };
    };
    QStringList complaints;
    if (!config.hotkey.isEmpty()) {
        adopt(HoldHotkey::create(config.hotkey, m_keyboard, m_scheduler,
                                 tell([](Dictation& dictation) { dictation.beginRecord(); }),
                                 tell([](Dictation& dictation) { dictation.endRecord(); })),
              m_holdHotkey, complaints);
    }
    if (!config.toggleHotkey.isEmpty()) {
        adopt(ToggleHotkey::create(config.toggleHotkey, m_keyboard, m_scheduler,
                                   tell([](Dictation& dictation) { dictation.toggle(); })),
              m_toggleHotkey, complaints);
    }
    return complaints;
}

}  // namespace quietlark

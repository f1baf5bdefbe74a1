#include "dictation/paster.h"

#include <utility>

namespace quietlark {

Paster::Paster(Pasteboard& pasteboard, KeySynthesizer& keys, Scheduler& scheduler)
    : m_pasteboard(pasteboard), m_keys(keys), m_scheduler(scheduler) {}

Paster::~Paster() {
    settlePasteboard();
}

void Paster::paste(const QString& text, PostedHandler onPosted) {
    if (text.isEmpty()) {
        m_scheduler.after(std::chrono::milliseconds(0), this, [onPosted] { onPosted({}); });
        return;
    }
    // A restore that was due is called off, not lost: the snapshot sees through our own text to
    // what it covers.
    m_nextStep.reset();
    replaceContents(text, onPosted, mostAttempts);
}

void Paster::replaceContents(const QString& text, const PostedHandler& onPosted, int attemptsLeft) {
    m_question = m_pasteboard.snapshot(
        [this, text, onPosted, attemptsLeft](std::optional<PasteboardSnapshot> snapshot) {
            m_saved = std::move(snapshot);
            write(text, onPosted, attemptsLeft - 1);
        });
}

void Paster::write(const QString& text, const PostedHandler& onPosted, int attemptsLeft) {
    m_question = m_pasteboard.setString(
        text, [this, text, onPosted, attemptsLeft](const tl::expected<void, Unavailable>& isSet) {
            if (isSet) return doNext(visibilityDelay, [this, onPosted] { postCommandV(onPosted); });
            if (attemptsLeft > 0) {
                return doNext(visibilityDelay, [this, text, onPosted, attemptsLeft] {
                    replaceContents(text, onPosted, attemptsLeft);
                });
            }
            // Where the text stands although it would not have been found, the user can get it.
            m_saved.reset();
            settlePasteboard();
            onPosted(isSet);
        });
}

void Paster::doNext(std::chrono::milliseconds delay, std::function<void()> step) {
    m_nextStep = std::make_unique<QObject>();
    m_scheduler.after(delay, m_nextStep.get(), std::move(step));
}

void Paster::postCommandV(const PostedHandler& onPosted) {
    const auto posted = m_keys.post(key_code::v, modifier::command);
    m_nextStep.reset();
    if (!posted) m_saved.reset();
    if (m_saved) {
        doNext(restoreDelay, [this] { settlePasteboard(); });
    } else {
        settlePasteboard();
    }
    onPosted(posted);
}

void Paster::settlePasteboard() {
    if (auto saved = std::exchange(m_saved, std::nullopt)) {
        m_pasteboard.restore(*std::move(saved));
    } else {
        m_pasteboard.keepString();
    }
}

}  // namespace quietlark

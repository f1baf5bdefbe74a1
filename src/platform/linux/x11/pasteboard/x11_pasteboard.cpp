#include "platform/linux/x11/pasteboard/x11_pasteboard.h"

#include <optional>
#include <utility>

namespace quietlark {

X11Pasteboard::X11Pasteboard(Scheduler& scheduler, const QByteArray& display,
                             X11PasteboardLimits limits)
    : m_scheduler(scheduler), m_thread(display, limits) {}

X11Pasteboard::~X11Pasteboard() {
    m_questions->clear();
}

Cancellable X11Pasteboard::snapshot(SnapshotHandler onSnapshot) {
    const auto question = ++m_lastQuestion;
    m_questions->emplace(question, std::move(onSnapshot));
    // Runs on the main thread, once the pasteboard's thread has the answer.
    const auto answer = [questions = m_questions,
                         question](std::optional<PasteboardSnapshot> snapshot) {
        if (const auto asked = questions->extract(question)) asked.mapped()(std::move(snapshot));
    };
    m_thread.order([this, answer](X11PasteboardSession& session) {
        session.snapshot([this, answer](std::optional<PasteboardSnapshot> snapshot) {
            m_scheduler.post([answer, snapshot = std::move(snapshot)] { answer(snapshot); });
        });
    });
    return Cancellable([questions = m_questions, question] { questions->erase(question); });
}

void X11Pasteboard::setString(const QString& text) {
    m_thread.order([text](X11PasteboardSession& session) { session.setString(text); });
}

void X11Pasteboard::restore(PasteboardSnapshot snapshot) {
    m_thread.order([snapshot = std::move(snapshot)](X11PasteboardSession& session) {
        session.restore(snapshot);
    });
}

void X11Pasteboard::keepString() {
    m_thread.order([](X11PasteboardSession& session) { session.keepString(); });
}

}  // namespace quietlark

#include "platform/linux/x11/pasteboard/x11_pasteboard.h"

#include <optional>
#include <utility>

namespace quietlark {

X11Pasteboard::X11Pasteboard(Scheduler& scheduler, const QByteArray& display,
                             X11PasteboardLimits limits)
    : m_scheduler(scheduler), m_thread(display, limits) {}

X11Pasteboard::~X11Pasteboard() {
    m_snapshots->clear();
    m_settings->clear();
}

Cancellable X11Pasteboard::snapshot(SnapshotHandler onSnapshot) {
    return ask<std::optional<PasteboardSnapshot>>(
        m_snapshots, std::move(onSnapshot),
        [](X11PasteboardSession& session, auto answer) { session.snapshot(std::move(answer)); });
}

Cancellable X11Pasteboard::setString(const QString& text, SetHandler onSet) {
    using Outcome = X11PasteboardSession::Outcome;
    return ask<Outcome>(
        m_settings,
        [onSet = std::move(onSet)](Outcome outcome) {
            if (outcome == Outcome::set) return onSet({});
            onSet(tl::unexpected(Unavailable{reasonFor(outcome)}));
        },
        [text](X11PasteboardSession& session, auto answer) {
            session.setString(text, std::move(answer));
        });
}

QString X11Pasteboard::reasonFor(X11PasteboardSession::Outcome outcome) {
    using Outcome = X11PasteboardSession::Outcome;
    if (outcome == Outcome::disconnected) {
        return tr(
            "There is no X server that has a clipboard: log in to an X11 session and start "
            "Quietlark there.");
    }
    if (outcome == Outcome::primaryTakenByAnother) {
        return tr(
            "Another program keeps taking the selection, which is what this terminal pastes: paste "
            "the text from the clipboard.");
    }
    return tr("Another program keeps taking the clipboard: quit it and dictate again.");
}

void X11Pasteboard::restore(PasteboardSnapshot snapshot) {
    m_thread.order([snapshot = std::move(snapshot)](X11PasteboardSession& session) {
        session.restore(snapshot);
    });
}

void X11Pasteboard::keepString() {
    m_thread.order([](X11PasteboardSession& session) { session.keepString(); });
}

template <typename Answer>
Cancellable X11Pasteboard::ask(const std::shared_ptr<Questions<Answer>>& questions,
                               std::function<void(Answer)> onAnswer, Order<Answer> order) {
    const auto question = ++m_lastQuestion;
    questions->emplace(question, std::move(onAnswer));
    // On the pasteboard's thread, which passes the answer on to the main one.
    const auto answer = [this, questions, question](Answer value) {
        m_scheduler.post([questions, question, value = std::move(value)] {
            if (const auto asked = questions->extract(question)) asked.mapped()(value);
        });
    };
    m_thread.order([order = std::move(order), answer](X11PasteboardSession& session) {
        order(session, answer);
    });
    return Cancellable([questions, question] { questions->erase(question); });
}

}  // namespace quietlark

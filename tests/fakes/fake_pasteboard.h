#pragma once

#include <memory>
#include <set>
#include <utility>

#include <QObject>

#include "platform/pasteboard.h"
#include "platform/scheduler.h"

namespace quietlark {

/// A pasteboard in memory. It answers through the scheduler, so nothing is answered before time
/// passes there.
class FakePasteboard final : public Pasteboard {
public:
    explicit FakePasteboard(Scheduler& scheduler) : m_scheduler(scheduler) {}

    // What the world around it does.

    /// Another program's copy: any representations, or plain text, or nothing at all.
    void userCopies(PasteboardSnapshot contents) {
        carryOut();
        m_contents = std::move(contents);
        m_isSet = m_awaitsRestore = false;
        m_lastSnapshot.reset();
        m_listable = true;
        m_unreadableTypes.clear();
    }
    void userCopies(const QString& text) { userCopies(textContents(text)); }
    void userClears() { userCopies(PasteboardSnapshot{}); }

    /// The program whose contents these are does not tell what it has.
    void cannotBeListed() { m_listable = false; }

    /// The program whose contents these are does not deliver this representation.
    void cannotBeRead(const std::string& type) { m_unreadableTypes.insert(type); }

    /// Answers come this much later from now on.
    void answersAfter(std::chrono::milliseconds delay) { m_delay = delay; }

    /// Whenever a text of ours is to be set, another program is faster with this one; so often.
    void othersAreFaster(int times, const QString& text) {
        m_lostRaces = times;
        m_faster = text;
    }

    /// A text of ours that is set is not where whoever gets the keys looks for it; so often.
    void othersTakeTheOtherPlace(int times) { m_halfSet = times; }

    // What another program would find.

    [[nodiscard]] const PasteboardSnapshot& contents() const { return m_contents; }

    /// The plain text; null when there is none.
    [[nodiscard]] QString text() const {
        for (const auto& item : m_contents) {
            for (const auto& captured : item) {
                if (captured.type == textType) return QString::fromUtf8(captured.data);
            }
        }
        return {};
    }

    /// True from setString() until restore() or keepString(), or until somebody else copied
    /// something.
    [[nodiscard]] bool awaitsRestore() const { return m_awaitsRestore; }

    // Pasteboard

    [[nodiscard]] Cancellable snapshot(SnapshotHandler onSnapshot) override {
        return later([this, onSnapshot = std::move(onSnapshot)] {
            m_lastSnapshot = currentSnapshot();
            onSnapshot(m_lastSnapshot);
        });
    }

    [[nodiscard]] Cancellable setString(const QString& text, SetHandler onSet) override {
        carryOut();
        m_order = text;
        m_scheduler.after(m_delay, &m_self, [this] { carryOut(); });
        return later([this, onSet = std::move(onSet)] {
            if (m_isSet) return onSet({});
            onSet(tl::unexpected(Unavailable{QStringLiteral("Others were faster.")}));
        });
    }

    void restore(PasteboardSnapshot snapshot) override {
        carryOut();
        if (!std::exchange(m_awaitsRestore, false)) return;
        m_contents = std::move(snapshot);
        m_lastSnapshot.reset();
    }

    void keepString() override {
        carryOut();
        if (std::exchange(m_awaitsRestore, false)) m_lastSnapshot.reset();
    }

    static constexpr auto textType = "text/plain;charset=utf-8";

private:
    static PasteboardSnapshot textContents(const QString& text) {
        return {{{textType, text.toUtf8()}}};
    }

    Cancellable later(std::function<void()> answer) {
        auto question = std::make_unique<QObject>();
        m_scheduler.after(m_delay, question.get(), std::move(answer));
        // A std::function must be copyable, so the question is held by a shared pointer.
        return Cancellable(
            [held = std::shared_ptr<QObject>(std::move(question))]() mutable { held.reset(); });
    }

    /// Sets the text that was ordered, if there is one: the real pasteboard takes its time, too,
    /// but does everything in the order in which it was told to.
    void carryOut() {
        if (!m_order) return;
        const QString text = *std::exchange(m_order, std::nullopt);
        if (m_lostRaces > 0) {
            --m_lostRaces;
            return userCopies(m_faster);
        }
        if (!m_awaitsRestore) m_covered = m_lastSnapshot;
        m_contents = textContents(text);
        m_awaitsRestore = true;
        m_isSet = m_halfSet == 0;
        if (!m_isSet) --m_halfSet;
        m_listable = true;
        m_unreadableTypes.clear();
    }

    std::optional<PasteboardSnapshot> currentSnapshot() const {
        if (m_awaitsRestore && m_covered) return m_covered;
        if (!m_listable) return std::nullopt;
        PasteboardSnapshot snapshot;
        for (auto item : m_contents) {
            std::erase_if(item, [this](const CapturedType& captured) {
                return m_unreadableTypes.contains(captured.type);
            });
            if (!item.empty()) snapshot.push_back(std::move(item));
        }
        return snapshot;
    }

    Scheduler& m_scheduler;
    QObject m_self;
    std::chrono::milliseconds m_delay{0};
    std::optional<QString> m_order;  ///< the text to be set next
    int m_lostRaces = 0;
    QString m_faster;
    int m_halfSet = 0;
    PasteboardSnapshot m_contents;
    bool m_listable = true;
    std::set<std::string> m_unreadableTypes;
    bool m_isSet = false;
    bool m_awaitsRestore = false;
    std::optional<PasteboardSnapshot> m_lastSnapshot;
    std::optional<PasteboardSnapshot> m_covered;  ///< what the text that awaits restore() replaced
};

}  // namespace quietlark

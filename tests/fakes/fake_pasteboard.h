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
        m_contents = std::move(contents);
        m_awaitsRestore = false;
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
        auto question = std::make_unique<QObject>();
        m_scheduler.after(m_delay, question.get(), [this, onSnapshot = std::move(onSnapshot)] {
            m_lastSnapshot = currentSnapshot();
            onSnapshot(m_lastSnapshot);
        });
        // A std::function must be copyable, so the question is held by a shared pointer.
        return Cancellable(
            [held = std::shared_ptr<QObject>(std::move(question))]() mutable { held.reset(); });
    }

    void setString(const QString& text) override {
        if (!m_awaitsRestore) m_covered = m_lastSnapshot;
        m_contents = textContents(text);
        m_awaitsRestore = true;
        m_listable = true;
        m_unreadableTypes.clear();
    }

    void restore(PasteboardSnapshot snapshot) override {
        if (!std::exchange(m_awaitsRestore, false)) return;
        m_contents = std::move(snapshot);
        m_lastSnapshot.reset();
    }

    void keepString() override {
        if (std::exchange(m_awaitsRestore, false)) m_lastSnapshot.reset();
    }

    static constexpr auto textType = "text/plain;charset=utf-8";

private:
    static PasteboardSnapshot textContents(const QString& text) {
        return {{{textType, text.toUtf8()}}};
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
    std::chrono::milliseconds m_delay{0};
    PasteboardSnapshot m_contents;
    bool m_listable = true;
    std::set<std::string> m_unreadableTypes;
    bool m_awaitsRestore = false;
    std::optional<PasteboardSnapshot> m_lastSnapshot;
    std::optional<PasteboardSnapshot> m_covered;  ///< what the text that awaits restore() replaced
};

}  // namespace quietlark

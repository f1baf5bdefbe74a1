#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include <QByteArray>
#include <QCoreApplication>

#include "platform/linux/x11/pasteboard/x11_pasteboard_limits.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_thread.h"
#include "platform/pasteboard.h"
#include "platform/scheduler.h"

namespace quietlark {

/// The CLIPBOARD selection as the general pasteboard, over a connection and on a thread of its own:
/// it is read and served without a window, and while the main thread does something else. There is
/// one item in it at most. Without an X server no snapshot can be had and nothing is set.
///
/// When it is destroyed, what it has restored or kept is handed over to a clipboard manager, if one
/// runs.
class X11Pasteboard final : public Pasteboard {
    Q_DECLARE_TR_FUNCTIONS(X11Pasteboard)

public:
    /// Waits until it is connected. `display` such as ":0"; empty for the one that the environment
    /// names. The scheduler must outlive this.
    explicit X11Pasteboard(Scheduler& scheduler, const QByteArray& display = {},
                           X11PasteboardLimits limits = {});
    ~X11Pasteboard() override;

    [[nodiscard]] Cancellable snapshot(SnapshotHandler onSnapshot) override;
    [[nodiscard]] Cancellable setString(const QString& text, SetHandler onSet) override;
    void restore(PasteboardSnapshot snapshot) override;
    void keepString() override;

private:
    static QString reasonFor(X11PasteboardSession::Outcome outcome);

    template <typename Answer>
    using Questions = std::map<std::uint64_t, std::function<void(Answer)>>;
    using SnapshotQuestions = Questions<std::optional<PasteboardSnapshot>>;
    using SetQuestions = Questions<X11PasteboardSession::Outcome>;

    template <typename Answer>
    using Order = std::function<void(X11PasteboardSession&, std::function<void(Answer)>)>;

    template <typename Answer>
    Cancellable ask(const std::shared_ptr<Questions<Answer>>& questions,
                    std::function<void(Answer)> onAnswer, Order<Answer> order);

    Scheduler& m_scheduler;
    // Shared with what is posted and with the callers' handles, which may outlive this. Main
    // thread.
    std::shared_ptr<SnapshotQuestions> m_snapshots = std::make_shared<SnapshotQuestions>();
    std::shared_ptr<SetQuestions> m_settings = std::make_shared<SetQuestions>();
    std::uint64_t m_lastQuestion = 0;
    X11PasteboardThread m_thread;
};

}  // namespace quietlark

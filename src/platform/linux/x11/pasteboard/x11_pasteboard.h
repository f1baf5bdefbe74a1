#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include <QByteArray>

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
public:
    /// Waits until it is connected. `display` such as ":0"; empty for the one that the environment
    /// names. The scheduler must outlive this.
    explicit X11Pasteboard(Scheduler& scheduler, const QByteArray& display = {},
                           X11PasteboardLimits limits = {});
    ~X11Pasteboard() override;

    [[nodiscard]] Cancellable snapshot(SnapshotHandler onSnapshot) override;
    void setString(const QString& text) override;
    void restore(PasteboardSnapshot snapshot) override;
    void keepString() override;

private:
    using Questions = std::map<std::uint64_t, SnapshotHandler>;

    Scheduler& m_scheduler;
    // Shared with what is posted and with the callers' handles, which may outlive this. Main
    // thread.
    std::shared_ptr<Questions> m_questions = std::make_shared<Questions>();
    std::uint64_t m_lastQuestion = 0;
    X11PasteboardThread m_thread;
};

}  // namespace quietlark

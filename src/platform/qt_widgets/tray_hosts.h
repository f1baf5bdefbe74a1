#pragma once

#include <chrono>

#include <QObject>

#include "platform/scheduler.h"

namespace quietlark {

/// Looks out for a status bar that takes icons of other programs. Main thread.
///
/// Qt decides once per process which kind of status bar it speaks to, at the first question about
/// one. A program that starts with the session, before the panel does, must not ask too early.
class TrayHosts final : public QObject {
    Q_OBJECT

public:
    /// Between looks, where nothing tells.
    static constexpr std::chrono::milliseconds lookInterval{1000};

    explicit TrayHosts(Scheduler& scheduler);

    /// Looks from now on, until one is found.
    void start();

Q_SIGNALS:
    /// The first is there. Once; may come during start().
    void found();

private:
    void lookForNotifierHost();
    void lookForXEmbedHost();
    void finish();

    Scheduler& m_scheduler;
    Cancellable m_looking;
    bool m_found = false;
};

}  // namespace quietlark

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "app/status_symbol.h"
#include "permissions/permissions.h"
#include "platform/scheduler.h"
#include "platform/status_item.h"
#include "state/app_state.h"

namespace quietlark {

/// Keeps the status item true: its menu, its symbol, and the two timers that look again while
/// something is expected to change. Main thread.
class StatusPresenter {
public:
    /// Between looks at the local server while it starts or waits for the user's approval.
    static constexpr std::chrono::milliseconds serverPollInterval{1000};
    /// From one frame of an animated symbol to the next.
    static constexpr std::chrono::milliseconds frameInterval{120};

    StatusPresenter(StatusItem& statusItem, AppState& appState, const Permissions& permissions,
                    Scheduler& scheduler);

    /// rebuildMenu(), updateIcon() and manageServerPollTimer(); for after every change that the
    /// status item may show.
    void refresh();

    void rebuildMenu();
    void updateIcon();

    /// Runs each timer exactly while it has something to look for.
    void manageServerPollTimer();

    /// Ends both timers, until the next refresh().
    void stopTimers();

private:
    [[nodiscard]] StatusFacts facts() const;
    [[nodiscard]] bool awaitsServer() const;
    [[nodiscard]] bool isAnimated() const;

    StatusItem& m_statusItem;
    AppState& m_appState;
    const Permissions& m_permissions;
    Scheduler& m_scheduler;
    std::optional<Cancellable> m_pollTimer;
    std::optional<Cancellable> m_animTimer;
    std::int64_t m_animIdx = 0;
};

}  // namespace quietlark

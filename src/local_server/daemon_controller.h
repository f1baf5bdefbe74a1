#pragma once

#include <chrono>
#include <functional>

#include "platform/cancellable.h"
#include "platform/registered_service.h"
#include "platform/scheduler.h"
#include "platform/settings_panes.h"

namespace quietlark {

/// The application's handle on the local transcription server, which the system's service manager
/// runs. Knows how, not when: it decides nothing. Main thread.
class DaemonController {
public:
    DaemonController(RegisteredService& service, SettingsPanes& panes, Scheduler& scheduler);

    /// Read anew each time. notFound means the same to the application as notRegistered; with
    /// requiresApproval only the user can go on, see openLoginItemsSettings().
    [[nodiscard]] ServiceStatus status() const;

    /// Sets the server up and starts it. The system's error reaches `onDone` unchanged.
    [[nodiscard]] Cancellable registerService(RegisteredService::Done onDone);

    /// Stops the server and takes it back; otherwise as registerService().
    [[nodiscard]] Cancellable unregisterService(RegisteredService::Done onDone);

    /// Runs `handler` `delay` from now, for the system to settle; does not read the status itself.
    /// `handler` does not run once `context` is gone.
    void refreshAfterDelay(std::chrono::milliseconds delay, QObject* context,
                           std::function<void()> handler);

    /// Shows the user where to allow the server.
    void openLoginItemsSettings();

    /// For observers. No operation here calls it.
    std::function<void()> onStateChange;

private:
    RegisteredService& m_service;
    SettingsPanes& m_panes;
    Scheduler& m_scheduler;
};

}  // namespace quietlark

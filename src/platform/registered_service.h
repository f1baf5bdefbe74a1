#pragma once

#include <functional>

#include <QString>
#include <tl/expected.hpp>

#include "platform/cancellable.h"

namespace quietlark {

/// How the system's service manager stands to a program of ours. The values are fixed.
enum class ServiceStatus {
    notRegistered = 0,     ///< not set up
    enabled = 1,           ///< registered and allowed to run
    requiresApproval = 2,  ///< the user has forbidden it and must allow it
    notFound = 3,          ///< the system does not know it; treated like notRegistered
};

/// Why registering or unregistering failed.
struct ServiceError {
    QString localizedDescription;  ///< one sentence for the user
};

/// A program that the system starts by itself: at login, or under its service manager. Main thread;
/// no call waits for another program.
class RegisteredService {
public:
    using Done = std::function<void(const tl::expected<void, ServiceError>&)>;

    virtual ~RegisteredService() = default;

    /// As of the system's last news, which the adapter follows by itself; notFound before the
    /// first.
    [[nodiscard]] virtual ServiceStatus status() const = 0;

    /// Sets the service up to be started and, where it is one that runs in the background, starts
    /// it. `onDone` runs once, on the main thread, never before the call returns, and after
    /// status() has followed. Destroying the handle withdraws `onDone`, not the request.
    [[nodiscard]] virtual Cancellable registerService(Done onDone) = 0;

    /// Takes it back and stops it; otherwise as registerService().
    [[nodiscard]] virtual Cancellable unregisterService(Done onDone) = 0;
};

}  // namespace quietlark

#pragma once

#include <functional>
#include <optional>

#include <QString>

#include "platform/cancellable.h"

namespace quietlark {

/// What a system may keep the user's decisions about, by application.
enum class PrivacyService {
    Microphone,
    ListenEvent,    ///< seeing the keys that go to other applications
    Accessibility,  ///< control of other applications
    AppleEvents,    ///< messages to other applications
    PostEvent,      ///< typing into other applications
};

/// The system's record of those decisions, which only an administrator may change. Main thread.
class PrivacyRecords {
public:
    virtual ~PrivacyRecords() = default;

    /// The shell command that makes the system forget what it has decided about `service` for the
    /// application of that identifier; absent where it keeps no such record.
    [[nodiscard]] virtual std::optional<QString> resetCommand(PrivacyService service,
                                                              const QString& identifier) const = 0;

    /// Runs one line of shell with the rights of an administrator, whom the system asks first.
    /// `onDone` runs once, never before the call returns: when the line has ended, was declined or
    /// could not be started, which makes no difference to the caller.
    [[nodiscard]] virtual Cancellable runAsAdministrator(const QString& line,
                                                         std::function<void()> onDone) = 0;
};

}  // namespace quietlark

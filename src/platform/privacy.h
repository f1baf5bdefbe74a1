#pragma once

#include <functional>
#include <optional>

#include "platform/unavailable.h"

namespace quietlark {

/// What the system may allow a program or refuse it.
enum class PrivacyGrant {
    Microphone,       ///< to record
    InputMonitoring,  ///< to see the keys that go to other applications
    Accessibility,    ///< to type into other applications
};

/// The system's answers about the user's privacy. Main thread.
class Privacy {
public:
    virtual ~Privacy() = default;

    /// Why the program has not got `grant` at this moment, or nothing when it has. Asks nobody and
    /// never waits.
    [[nodiscard]] virtual std::optional<Unavailable> missing(PrivacyGrant grant) const = 0;

    /// Asks for the microphone, which may take as long as the user does. `completion` then runs
    /// once, on whatever thread the system likes, with whether it is granted.
    virtual void requestMicrophone(std::function<void(bool granted)> completion) = 0;

    /// Asks for InputMonitoring; answers whether it is granted now.
    virtual bool requestInputMonitoring() = 0;

    /// Asks for Accessibility; answers whether it is granted now.
    virtual bool requestAccessibility() = 0;
};

}  // namespace quietlark

#pragma once

#include <functional>
#include <optional>

#include <QString>

#include "platform/cancellable.h"

namespace quietlark {

/// The name that this computer has on the local network.
class LocalHostName {
public:
    using Handler = std::function<void(const std::optional<QString>& name)>;

    virtual ~LocalHostName() = default;

    /// Looks the name up, without ".local"; absent when there is none. `onAnswer` runs once, on the
    /// main thread, never before the call returns; destroying the handle withdraws it. Main thread.
    [[nodiscard]] virtual Cancellable lookUp(Handler onAnswer) = 0;
};

}  // namespace quietlark

#pragma once

#include <tl/expected.hpp>

#include "platform/registered_service.h"

namespace quietlark {

/// The application itself among what the desktop starts at login. Main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// As it is now, whoever changed it last.
    [[nodiscard]] virtual ServiceStatus status() const = 0;

    /// Has the application started at the next login, also where the user had switched that off.
    [[nodiscard]] virtual tl::expected<void, ServiceError> registerItem() = 0;

    /// Takes that back; harmless when it is not there.
    [[nodiscard]] virtual tl::expected<void, ServiceError> unregisterItem() = 0;

    /// Removes what a registration that is switched off keeps, where it is of this very program.
    virtual void forget() = 0;
};

}  // namespace quietlark

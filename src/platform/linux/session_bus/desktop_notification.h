#pragma once

#include <functional>

#include <QDBusConnection>
#include <QString>

#include "platform/cancellable.h"

namespace quietlark {

/// Tells the user something by way of the desktop, as the Desktop Notifications Specification 1.2
/// has it, under the program's name and icon. `body` is plain text. Does not wait; where nobody
/// shows notifications, `onNobody` runs from the event loop, unless the handle is destroyed before.
/// Main thread.
[[nodiscard]] Cancellable notifyUser(const QDBusConnection& sessionBus, const QString& summary,
                                     const QString& body, std::function<void()> onNobody);

}  // namespace quietlark

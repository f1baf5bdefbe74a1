#pragma once

#include <functional>

#include <QDBusConnection>
#include <QDBusMessage>

#include "platform/cancellable.h"

namespace quietlark {

/// Asks somebody on the bus. `onReply` runs once with the answer or an error message, on the main
/// thread, never before the call returns; destroying the handle withdraws it.
[[nodiscard]] Cancellable ask(const QDBusConnection& bus, const QDBusMessage& question,
                              std::function<void(const QDBusMessage& reply)> onReply);

}  // namespace quietlark

#pragma once

#include <functional>

#include <QObject>

#include "commands/console.h"
#include "platform/linux/session_bus/session_bus_application.h"
#include "platform/linux/session_bus/session_bus_service.h"

namespace quietlark {

/// Sees to it that the program runs once in a session: the second start has the first show itself,
/// and ends.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    /// `orders` as in SessionBusService.
    SingleInstance(const QDBusConnection& bus, DictationAdaptor::Orders orders, Console& console);

    /// Calls `onFirst` once when this is the first, or when there is no session bus to tell; else
    /// ends the event loop with an exit status.
    void start(std::function<void()> onFirst);

    /// As the one that runs, for others to ask.
    [[nodiscard]] SessionBusService& service() { return m_service; }

private:
    void onClaimed(SessionBusService::Claim claim);
    void onReopened(const tl::expected<void, Unavailable>& reopened);

    SessionBusService m_service;
    SessionBusApplication m_other;
    Console& m_console;
    std::function<void()> m_onFirst;
    Cancellable m_question;
};

}  // namespace quietlark

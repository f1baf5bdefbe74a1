#pragma once

#include <utility>

#include <QDBusConnection>

#include "platform/running_application.h"

namespace quietlark {

/// The running program, reached over the session bus.
class SessionBusApplication final : public RunningApplication {
public:
    explicit SessionBusApplication(QDBusConnection bus) : m_bus(std::move(bus)) {}

    [[nodiscard]] Cancellable reopen(
        std::function<void(const tl::expected<void, Unavailable>&)> onDone) override;
    [[nodiscard]] Cancellable order(DictationOrder order,
                                    std::function<void(const Answer&)> onAnswer) override;

private:
    QDBusConnection m_bus;
};

}  // namespace quietlark

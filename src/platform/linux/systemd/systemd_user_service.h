#pragma once

#include <chrono>
#include <deque>
#include <memory>

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include "platform/linux/systemd/systemd_manager.h"
#include "platform/linux/systemd/systemd_unit_change.h"
#include "platform/registered_service.h"

namespace quietlark {

/// A unit of the user's systemd as a registered service: enabled is enabled, masked is
/// requiresApproval, no such unit or no systemd is notFound, everything else is notRegistered.
///
/// status() answers from a copy that follows the manager's news. Requests are carried out one after
/// another. A start that fails leaves the unit enabled: it starts at the next login.
class SystemdUserService final : public QObject, public RegisteredService {
    Q_OBJECT

public:
    /// `unit` such as "net.quietlark.server.service". Each answer of the manager, and each start or
    /// stop, is awaited for `patience`.
    SystemdUserService(QString unit, const QDBusConnection& bus,
                       std::chrono::milliseconds patience = std::chrono::seconds(30));
    ~SystemdUserService() override;

    [[nodiscard]] ServiceStatus status() const override { return m_status; }
    [[nodiscard]] Cancellable registerService(Done onDone) override;
    [[nodiscard]] Cancellable unregisterService(Done onDone) override;

    /// Whether the manager has been asked and has answered, or will not answer.
    [[nodiscard]] bool isKnown() const { return m_isKnown; }

Q_SIGNALS:
    /// isKnown() from now on; emitted once, after status() has followed.
    void statusKnown();

    /// status() is another one than before.
    void statusChanged();

private:
    struct Request {
        SystemdUnitChange::Kind kind;
        std::shared_ptr<Done> onDone;
    };

    Cancellable enqueue(SystemdUnitChange::Kind kind, Done onDone);
    void beginNext();
    void onChangeFinished(const tl::expected<void, ServiceError>& result);
    void answer(const tl::expected<void, ServiceError>& result);
    void refresh();
    void refreshAnd(std::function<void()> next);
    void onUnitFileState(const QDBusMessage& reply);
    void onManagerGone();
    void setStatus(ServiceStatus status);

    const QString m_unit;
    SystemdManager m_manager;
    ServiceStatus m_status = ServiceStatus::notFound;
    bool m_isKnown = false;
    std::deque<Request> m_requests;  ///< the one under way first
    std::unique_ptr<SystemdUnitChange> m_change;
};

}  // namespace quietlark

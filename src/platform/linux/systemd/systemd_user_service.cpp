#include "platform/linux/systemd/systemd_user_service.h"

#include <utility>

namespace quietlark {
namespace {

ServiceStatus statusOfUnitFileState(const QString& state) {
    if (state.startsWith(QLatin1String("enabled"))) return ServiceStatus::enabled;
    if (state.startsWith(QLatin1String("masked"))) return ServiceStatus::requiresApproval;
    return ServiceStatus::notRegistered;
}

bool saysThereIsNone(const QDBusMessage& error) {
    const QString name = error.errorName();
    return name == QLatin1String("org.freedesktop.DBus.Error.FileNotFound") ||
           name == QLatin1String("org.freedesktop.systemd1.NoSuchUnit");
}

}  // namespace

SystemdUserService::SystemdUserService(QString unit, const QDBusConnection& bus,
                                       std::chrono::milliseconds patience)
    : m_unit(std::move(unit)), m_manager(bus, patience) {
    connect(&m_manager, &SystemdManager::appeared, this, &SystemdUserService::refresh);
    connect(&m_manager, &SystemdManager::unitFilesChanged, this, &SystemdUserService::refresh);
    connect(&m_manager, &SystemdManager::gone, this, &SystemdUserService::onManagerGone);
}

SystemdUserService::~SystemdUserService() = default;

Cancellable SystemdUserService::registerService(Done onDone) {
    return enqueue(SystemdUnitChange::Kind::Register, std::move(onDone));
}

Cancellable SystemdUserService::unregisterService(Done onDone) {
    return enqueue(SystemdUnitChange::Kind::Unregister, std::move(onDone));
}

Cancellable SystemdUserService::enqueue(SystemdUnitChange::Kind kind, Done onDone) {
    const auto callback = std::make_shared<Done>(std::move(onDone));
    m_requests.push_back({kind, callback});
    if (m_requests.size() == 1) beginNext();
    return Cancellable([callback] { *callback = nullptr; });
}

void SystemdUserService::beginNext() {
    m_change = std::make_unique<SystemdUnitChange>(
        m_manager, m_unit, m_requests.front().kind,
        [this](const tl::expected<void, ServiceError>& result) { onChangeFinished(result); });
    m_change->begin();
}

void SystemdUserService::onChangeFinished(const tl::expected<void, ServiceError>& result) {
    m_change.release()->deleteLater();  // it is still running
    refreshAnd([this, result] { answer(result); });
}

void SystemdUserService::answer(const tl::expected<void, ServiceError>& result) {
    const Done onDone = *m_requests.front().onDone;
    m_requests.pop_front();
    if (!m_requests.empty()) beginNext();
    if (onDone) onDone(result);
}

void SystemdUserService::refresh() {
    refreshAnd([] {});
}

void SystemdUserService::refreshAnd(std::function<void()> next) {
    m_manager.call(QStringLiteral("GetUnitFileState"), {m_unit}, this,
                   [this, next = std::move(next)](const QDBusMessage& reply) {
                       onUnitFileState(reply);
                       next();
                   });
}

void SystemdUserService::onUnitFileState(const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ReplyMessage) {
        setStatus(statusOfUnitFileState(reply.arguments().value(0).toString()));
    } else {
        // Any other error tells nothing about the unit; what was known of it stays.
        setStatus(saysThereIsNone(reply) ? ServiceStatus::notFound : m_status);
    }
}

void SystemdUserService::onManagerGone() {
    setStatus(ServiceStatus::notFound);
}

void SystemdUserService::setStatus(ServiceStatus status) {
    const bool isFirst = !std::exchange(m_isKnown, true);
    if (std::exchange(m_status, status) != status) Q_EMIT statusChanged();
    if (isFirst) Q_EMIT statusKnown();
}

}  // namespace quietlark

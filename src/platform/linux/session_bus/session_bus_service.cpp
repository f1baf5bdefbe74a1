#include "platform/linux/session_bus/session_bus_service.h"

#include <utility>

#include <QDBusMessage>

#include "platform/linux/session_bus/application_adaptor.h"
#include "platform/linux/session_bus/pending_answer.h"
#include "platform/linux/session_bus/session_bus_names.h"

namespace quietlark {

namespace {

// From the D-Bus specification, "org.freedesktop.DBus.RequestName".
constexpr uint doNotQueue = 4;
constexpr uint primaryOwner = 1;
constexpr uint alreadyOwner = 4;

SessionBusService::Claim claimOf(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage) return SessionBusService::Claim::noBus;
    const uint answer = reply.arguments().value(0).toUInt();
    return answer == primaryOwner || answer == alreadyOwner ? SessionBusService::Claim::owned
                                                            : SessionBusService::Claim::taken;
}

}  // namespace

SessionBusService::SessionBusService(QDBusConnection bus, DictationAdaptor::Orders orders)
    : m_bus(std::move(bus)), m_dictation(new DictationAdaptor(&m_object, std::move(orders))) {
    new ApplicationAdaptor(&m_object, [this] { Q_EMIT reopenRequested(); });
}

Cancellable SessionBusService::claim(std::function<void(Claim)> onAnswer) {
    // First the object, then the name: whoever waits for the name finds the object behind it.
    m_bus.registerObject(session_bus::path, &m_object);
    auto request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
    request << session_bus::service << doNotQueue;
    return ask(m_bus, request, [onAnswer = std::move(onAnswer)](const QDBusMessage& reply) {
        onAnswer(claimOf(reply));
    });
}

void SessionBusService::announce(const DictationReport& report) {
    Q_EMIT m_dictation->StateChanged(report.state, report.message);
}

}  // namespace quietlark

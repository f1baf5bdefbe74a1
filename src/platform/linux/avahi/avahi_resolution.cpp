#include "platform/linux/avahi/avahi_resolution.h"

#include <utility>

#include <QByteArrayList>
#include <QDBusArgument>

#include "platform/linux/avahi/avahi_arguments.h"
#include "platform/linux/avahi/txt_record.h"

namespace quietlark {

namespace {

using ResolveFailure = ServiceBrowserBackend::ResolveFailure;

// The arguments of the signal Found.
constexpr qsizetype hostArgument = 5;
constexpr qsizetype portArgument = 8;
constexpr qsizetype txtArgument = 9;

ResolvedService resolvedServiceFrom(const QVariantList& arguments) {
    const QString host = arguments[hostArgument].toString();
    const auto strings = qdbus_cast<QByteArrayList>(arguments[txtArgument]);
    ResolvedService service;
    if (!host.isEmpty()) service.hostName = host;
    service.port = arguments[portArgument].toInt();
    if (!strings.isEmpty()) service.txtRecord = txtRecordFrom(strings);
    return service;
}

}  // namespace

AvahiResolution::AvahiResolution(AvahiDaemon& daemon, Scheduler& scheduler, FoundService service,
                                 std::chrono::milliseconds timeout, Handlers handlers)
    : m_daemon(daemon), m_service(std::move(service)), m_handlers(std::move(handlers)) {
    connect(&m_daemon, &AvahiDaemon::stateChanged, this, &AvahiResolution::follow);
    scheduler.after(timeout, this, [this] {
        if (!m_answer && !m_hasEnded) fail(ResolveFailure::TimedOut);
    });
    follow();
}

void AvahiResolution::follow() {
    if (m_hasEnded) return;
    if (m_daemon.state() == AvahiDaemon::State::Running) {
        begin();
    } else {
        m_resolver.reset();
    }
}

void AvahiResolution::begin() {
    if (m_resolver) return;
    m_resolver = std::make_unique<AvahiObject>(
        m_daemon, AvahiObject::Kind::ServiceResolver,
        QVariantList{avahi::anyInterface, avahi::anyProtocol, m_service.name,
                     avahi::withoutFinalDot(m_service.query.type),
                     avahi::withoutFinalDot(m_service.query.domain), avahi::anyProtocol,
                     avahi::noFlags},
        AvahiObject::Handlers{
            .started = {},
            .refused = [this] { fail(ResolveFailure::Refused); },
            .signalled = [this](const QDBusMessage& signal) { receive(signal); }});
}

void AvahiResolution::receive(const QDBusMessage& signal) {
    // Avahi's own time-out, the signal Failure, does not count: its resolver goes on all the same.
    if (signal.member() != QStringLiteral("Found") ||
        signal.signature() != QStringLiteral("iissssisqaayu"))
        return;
    take(resolvedServiceFrom(signal.arguments()));
}

void AvahiResolution::take(const ResolvedService& answer) {
    const auto before = std::exchange(m_answer, answer);
    if (before == answer) return;
    const auto handlers = m_handlers;
    if (before && (before->hostName != answer.hostName || before->port != answer.port)) {
        end();
        handlers.moved();
    } else {
        handlers.answered(answer);
    }
}

void AvahiResolution::fail(ResolveFailure failure) {
    const bool isAnswered = m_answer.has_value();
    end();
    const auto answered = m_handlers.answered;
    if (!isAnswered) answered(tl::unexpected(failure));
}

void AvahiResolution::end() {
    m_hasEnded = true;
    m_resolver.reset();
}

}  // namespace quietlark

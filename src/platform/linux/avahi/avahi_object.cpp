#include "platform/linux/avahi/avahi_object.h"

#include <utility>

#include <QDBusObjectPath>
#include <QPointer>

namespace quietlark {

namespace {

QString nameOf(AvahiObject::Kind kind) {
    return kind == AvahiObject::Kind::ServiceBrowser ? QStringLiteral("ServiceBrowser")
                                                     : QStringLiteral("ServiceResolver");
}

bool isReply(const QDBusMessage& message) {
    return message.type() == QDBusMessage::ReplyMessage;
}

}  // namespace

AvahiObject::AvahiObject(AvahiDaemon& daemon, Kind kind, const QVariantList& arguments,
                         Handlers handlers)
    : m_daemon(daemon),
      m_interface(QStringLiteral("org.freedesktop.Avahi.") + nameOf(kind)),
      m_handlers(std::move(handlers)) {
    const auto onPrepared = [self = QPointer(this), daemon = &m_daemon,
                             interface = m_interface](const QDBusMessage& reply) {
        const auto path = reply.arguments().value(0).value<QDBusObjectPath>().path();
        if (self && isReply(reply)) {
            self->start(path);
        } else if (self) {
            self->refuse();
        } else if (isReply(reply)) {
            // Nobody wants it any more.
            daemon->call(path, interface, QStringLiteral("Free"), {}, daemon, {});
        }
    };
    m_daemon.prepare(nameOf(kind) + QStringLiteral("Prepare"), arguments, onPrepared);
}

AvahiObject::~AvahiObject() {
    if (m_path.isEmpty()) return;
    m_daemon.forget(m_path);
    m_daemon.call(m_path, m_interface, QStringLiteral("Free"), {}, &m_daemon, {});
}

void AvahiObject::start(const QString& path) {
    m_path = path;
    m_daemon.call(m_path, m_interface, QStringLiteral("Start"), {}, this,
                  [this](const QDBusMessage& reply) {
                      if (!isReply(reply)) return refuse();
                      const auto started = m_handlers.started;
                      if (started) started();
                  });
    // Last, as what was signalled already may end this object.
    m_daemon.listen(m_path, [this](const QDBusMessage& signal) {
        const auto signalled = m_handlers.signalled;
        signalled(signal);
    });
}

void AvahiObject::refuse() {
    const auto refused = m_handlers.refused;
    if (refused) refused();
}

}  // namespace quietlark

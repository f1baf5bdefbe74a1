#include "platform/linux/avahi/avahi_daemon.h"

#include <utility>

namespace quietlark {

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.Avahi");
const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

// Signals are asked for by the daemon's unique name: for any other, Qt waits for the bus.
const QStringList signalInterfaces = {QStringLiteral("org.freedesktop.Avahi.ServiceBrowser"),
                                      QStringLiteral("org.freedesktop.Avahi.ServiceResolver")};

}  // namespace

AvahiDaemon::AvahiDaemon(SystemBus& bus) : m_bus(bus) {
    connect(&m_bus, &SystemBus::opened, this, &AvahiDaemon::findOwner);
    connect(&m_bus, &SystemBus::closed, this, [this] {
        m_owner.clear();
        dropCalls();
        setState(State::NoBus);
    });
}

AvahiDaemon::State AvahiDaemon::state() {
    m_bus.open();
    return m_state;
}

QString AvahiDaemon::reason() const {
    if (m_state == State::NoBus) {
        return tr(
            "The system's message bus does not answer: install and start dbus to find "
            "servers on the local network.");
    }
    if (m_state == State::Absent) {
        return tr(
            "The Avahi service does not run: install and start avahi-daemon to find servers "
            "on the local network.");
    }
    return {};
}

void AvahiDaemon::findOwner() {
    m_hasHeardOfOwner = false;
    auto connection = *m_bus.connection();
    connection.connect(busName, busPath, busName, QStringLiteral("NameOwnerChanged"), {serviceName},
                       QString(), this, SLOT(followOwner(QString, QString, QString)));
    auto question =
        QDBusMessage::createMethodCall(busName, busPath, busName, QStringLiteral("GetNameOwner"));
    question << serviceName;
    m_calls.add(connection, question, this, [this](const QDBusMessage& reply) {
        // What was heard since is newer.
        if (m_hasHeardOfOwner || !m_bus.connection()) return;
        const bool hasOwner = reply.type() == QDBusMessage::ReplyMessage;
        useOwner(hasOwner ? reply.arguments().value(0).toString() : QString());
    });
}

void AvahiDaemon::followOwner(const QString& name, const QString&, const QString& newOwner) {
    if (name != serviceName || !m_bus.connection()) return;
    m_hasHeardOfOwner = true;
    useOwner(newOwner);
}

void AvahiDaemon::useOwner(const QString& owner) {
    auto connection = *m_bus.connection();
    for (const QString& interface : signalInterfaces) {
        if (!m_owner.isEmpty())
            connection.disconnect(m_owner, QString(), interface, QString(), this,
                                  SLOT(receive(QDBusMessage)));
        if (!owner.isEmpty())
            connection.connect(owner, QString(), interface, QString(), this,
                               SLOT(receive(QDBusMessage)));
    }
    dropCalls();
    const bool hadOwner = !std::exchange(m_owner, QString()).isEmpty();
    if (hadOwner || owner.isEmpty()) setState(State::Absent);
    m_owner = owner;
    if (!owner.isEmpty()) setState(State::Running);
}

void AvahiDaemon::dropCalls() {
    m_calls.clear();
    m_preparations = 0;
    m_early.clear();
}

void AvahiDaemon::setState(State state) {
    if (std::exchange(m_state, state) != state) Q_EMIT stateChanged();
}

void AvahiDaemon::call(const QString& path, const QString& interface, const QString& method,
                       const QVariantList& arguments, QObject* context,
                       CallQueue::ReplyHandler onReply) {
    if (m_owner.isEmpty()) return;
    auto message = QDBusMessage::createMethodCall(m_owner, path, interface, method);
    message.setArguments(arguments);
    m_calls.add(*m_bus.connection(), message, context, std::move(onReply));
}

void AvahiDaemon::prepare(const QString& method, const QVariantList& arguments,
                          CallQueue::ReplyHandler onReply) {
    if (m_owner.isEmpty()) return;
    ++m_preparations;
    call(QStringLiteral("/"), QStringLiteral("org.freedesktop.Avahi.Server2"), method, arguments,
         this, [this, onReply = std::move(onReply)](const QDBusMessage& reply) {
             const bool isLast = --m_preparations == 0;
             onReply(reply);
             if (isLast) m_early.clear();
         });
}

void AvahiDaemon::listen(const QString& path, SignalHandler onSignal) {
    m_listeners[path] = std::move(onSignal);
    for (const QDBusMessage& signal : std::exchange(m_early, {})) {
        if (signal.path() == path) {
            receive(signal);
        } else {
            m_early.push_back(signal);
        }
    }
}

void AvahiDaemon::forget(const QString& path) {
    m_listeners.erase(path);
}

void AvahiDaemon::receive(const QDBusMessage& signal) {
    // A signal that was under way when its daemon ended is of no use any more.
    if (signal.service() != m_owner) return;
    const auto listener = m_listeners.find(signal.path());
    if (listener != m_listeners.end()) {
        const auto onSignal = listener->second;
        onSignal(signal);
    } else if (m_preparations > 0) {
        // The daemon may signal at once what it knows, and that arrive before the object's path.
        m_early.push_back(signal);
    }
}

}  // namespace quietlark

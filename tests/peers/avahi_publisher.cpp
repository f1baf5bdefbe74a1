#include "peers/avahi_publisher.h"

#include <utility>

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QUuid>

namespace quietlark {

namespace {

constexpr int any = -1;
constexpr unsigned noFlags = 0;
constexpr ushort internetClass = 1;
constexpr ushort hostType = 1;
constexpr ushort pointerType = 12;
constexpr ushort textType = 16;
constexpr ushort addressType = 33;
constexpr unsigned ttlSeconds = 120;

const QString domain = QStringLiteral("local");
const QString serverInterface = QStringLiteral("org.freedesktop.Avahi.Server");

/// A domain name on the wire; `labels` may hold dots.
QByteArray wireName(const QByteArrayList& labels) {
    QByteArray bytes;
    for (const QByteArray& label : labels)
        bytes += static_cast<char>(label.size()) + label;
    return bytes + '\0';
}

/// A TXT record on the wire, where no strings are one empty string.
QByteArray wireStrings(const QByteArrayList& strings) {
    QByteArray bytes;
    for (const QByteArray& string : strings)
        bytes += static_cast<char>(string.size()) + string;
    return strings.isEmpty() ? QByteArray(1, '\0') : bytes;
}

}  // namespace

AvahiPublisher::AvahiPublisher(const QString& busAddress, QString type)
    : m_connectionName(QUuid::createUuid().toString()),
      m_type(std::move(type)),
      m_connection(QDBusConnection::connectToBus(busAddress, m_connectionName)) {
    qDBusRegisterMetaType<QByteArrayList>();
}

AvahiPublisher::~AvahiPublisher() {
    QDBusConnection::disconnectFromBus(m_connectionName);
}

void AvahiPublisher::publish(const QString& name, quint16 port, const QByteArrayList& txt) {
    const QString group = m_groups[name] = newGroup();
    callGroup(group, QStringLiteral("AddService"),
              {any, any, noFlags, name, m_type, domain, QString(),
               QVariant::fromValue<ushort>(port), QVariant::fromValue(txt)});
    callGroup(group, QStringLiteral("Commit"));
}

void AvahiPublisher::publishAtLocalhost(const QString& name, quint16 port,
                                        const QByteArrayList& txt) {
    const QString host = QStringLiteral("localhost");
    publishSilent(name);
    const QString group = m_addressGroups[name] = newGroup();
    addServer(group, name, {host.toUtf8()}, port);
    addRecord(group, fullName(name), textType, wireStrings(txt));
    addRecord(group, host, hostType, QByteArray("\x7f\0\0\x01", 4));
    callGroup(group, QStringLiteral("Commit"));
}

void AvahiPublisher::update(const QString& name, const QByteArrayList& txt) {
    callGroup(m_groups.at(name), QStringLiteral("UpdateServiceTxt"),
              {any, any, noFlags, name, m_type, domain, QVariant::fromValue(txt)});
}

void AvahiPublisher::publishSilent(const QString& name) {
    const QString group = m_groups[name] = newGroup();
    addRecord(group, m_type + u'.' + domain, pointerType, wireName(labels(name)));
    callGroup(group, QStringLiteral("Commit"));
}

void AvahiPublisher::publishRecords(const QString& name, quint16 port) {
    publishSilent(name);
    moveRecords(name, port);
}

void AvahiPublisher::moveRecords(const QString& name, quint16 port) {
    QString& group = m_addressGroups[name];
    if (!group.isEmpty()) callGroup(group, QStringLiteral("Free"));
    group = newGroup();
    const auto host = call(QStringLiteral("/"), serverInterface, QStringLiteral("GetHostName"));
    addServer(group, name, {host.toString().toUtf8(), domain.toUtf8()}, port);
    addRecord(group, fullName(name), textType, wireStrings({}));
    callGroup(group, QStringLiteral("Commit"));
}

void AvahiPublisher::withdraw(const QString& name) {
    for (auto* groups : {&m_groups, &m_addressGroups}) {
        const auto group = groups->extract(name);
        if (group) callGroup(group.mapped(), QStringLiteral("Free"));
    }
}

QByteArrayList AvahiPublisher::labels(const QString& name) const {
    return QByteArrayList{name.toUtf8()} + m_type.toUtf8().split('.') +
           QByteArrayList{domain.toUtf8()};
}

QString AvahiPublisher::fullName(const QString& name) const {
    return name + u'.' + m_type + u'.' + domain;
}

void AvahiPublisher::addServer(const QString& group, const QString& name,
                               const QByteArrayList& host, quint16 port) {
    QByteArray address(4, '\0');  // priority and weight
    address += static_cast<char>(port >> 8);
    address += static_cast<char>(port & 0xff);
    addRecord(group, fullName(name), addressType, address + wireName(host));
}

void AvahiPublisher::addRecord(const QString& group, const QString& name, ushort type,
                               const QByteArray& data) {
    callGroup(group, QStringLiteral("AddRecord"),
              {any, any, noFlags, name, QVariant::fromValue<ushort>(internetClass),
               QVariant::fromValue<ushort>(type), ttlSeconds, data});
}

QString AvahiPublisher::newGroup() {
    return call(QStringLiteral("/"), serverInterface, QStringLiteral("EntryGroupNew"))
        .value<QDBusObjectPath>()
        .path();
}

void AvahiPublisher::callGroup(const QString& group, const QString& method,
                               const QVariantList& arguments) {
    call(group, QStringLiteral("org.freedesktop.Avahi.EntryGroup"), method, arguments);
}

QVariant AvahiPublisher::call(const QString& path, const QString& interface, const QString& method,
                              const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Avahi"), path,
                                                  interface, method);
    message.setArguments(arguments);
    const auto reply = m_connection.call(message);
    if (reply.type() == QDBusMessage::ErrorMessage)
        qWarning("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
    return reply.arguments().value(0);
}

}  // namespace quietlark

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
    const QString fullName = name + u'.' + m_type + u'.' + domain;
    const auto host = call(QStringLiteral("/"), serverInterface, QStringLiteral("GetHostName"));
    QByteArray address(4, '\0');  // priority and weight
    address += static_cast<char>(port >> 8);
    address += static_cast<char>(port & 0xff);
    address += wireName({host.toString().toUtf8(), domain.toUtf8()});
    addRecord(group, fullName, addressType, address);
    addRecord(group, fullName, textType, QByteArray(1, '\0'));
    callGroup(group, QStringLiteral("Commit"));
}

void AvahiPublisher::withdraw(const QString& name) {
    callGroup(m_groups.at(name), QStringLiteral("Free"));
    m_groups.erase(name);
}

QByteArrayList AvahiPublisher::labels(const QString& name) const {
    return QByteArrayList{name.toUtf8()} + m_type.toUtf8().split('.') +
           QByteArrayList{domain.toUtf8()};
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

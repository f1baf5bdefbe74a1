#pragma once

#include <map>

#include <QByteArrayList>
#include <QDBusConnection>
#include <QString>

namespace quietlark {

/// Servers that advertise themselves through an Avahi daemon. Waits for the daemon in every call.
class AvahiPublisher {
public:
    /// `type` as in "_whisper._tcp".
    explicit AvahiPublisher(const QString& busAddress,
                            QString type = QStringLiteral("_whisper._tcp"));
    ~AvahiPublisher();

    /// `txt` as DNS has it: a list of strings, usually KEY=VALUE.
    void publish(const QString& name, quint16 port, const QByteArrayList& txt = {});

    /// As publish(), on a computer of the name "localhost" beside the daemon's own, so that whoever
    /// finds the service can also reach it. It cannot be updated.
    void publishAtLocalhost(const QString& name, quint16 port, const QByteArrayList& txt = {});

    /// The service keeps its host and port and changes what it says about itself.
    void update(const QString& name, const QByteArrayList& txt);

    /// The service can be found, but says nothing when asked.
    void publishSilent(const QString& name);

    /// A service of single records, whose host and port can change while it stays announced.
    void publishRecords(const QString& name, quint16 port);
    void moveRecords(const QString& name, quint16 port);

    void withdraw(const QString& name);

private:
    QVariant call(const QString& path, const QString& interface, const QString& method,
                  const QVariantList& arguments = {});
    QString newGroup();
    [[nodiscard]] QString fullName(const QString& name) const;
    void addServer(const QString& group, const QString& name, const QByteArrayList& host,
                   quint16 port);
    void addRecord(const QString& group, const QString& name, ushort type, const QByteArray& data);
    [[nodiscard]] QByteArrayList labels(const QString& name) const;
    void callGroup(const QString& group, const QString& method, const QVariantList& arguments = {});

    const QString m_connectionName;
    const QString m_type;
    QDBusConnection m_connection;
    std::map<QString, QString> m_groups;         ///< object paths by service name
    std::map<QString, QString> m_addressGroups;  ///< of services of single records
};

}  // namespace quietlark

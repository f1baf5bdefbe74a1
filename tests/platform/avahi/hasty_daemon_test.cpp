#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include "platform/avahi/avahi_fixture.h"
#include "platform/linux/avahi/avahi_browse.h"
#include "servers/mdns_browser.h"

namespace quietlark {
namespace {

/// Tells of its services before it tells the path of the object that tells, and last that the first
/// of several has gone.
class HastyDaemon final : public QDBusVirtualObject {
public:
    HastyDaemon(const QString& busAddress, QStringList services)
        : m_services(std::move(services)),
          m_connection(QDBusConnection::connectToBus(busAddress, connectionName)) {
        qDBusRegisterMetaType<QByteArrayList>();
        m_connection.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        m_connection.registerService(QStringLiteral("org.freedesktop.Avahi"));
    }
    ~HastyDaemon() override { QDBusConnection::disconnectFromBus(connectionName); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
        const QString type = QStringLiteral("_whisper._tcp");
        const QString domain = QStringLiteral("local");
        if (call.member() == QStringLiteral("ServiceBrowserPrepare")) {
            for (const QString& name : m_services)
                tell(QStringLiteral("ServiceBrowser"), QStringLiteral("ItemNew"),
                     {1, 0, name, type, domain, 0U});
            if (m_services.size() > 1)
                tell(QStringLiteral("ServiceBrowser"), QStringLiteral("ItemRemove"),
                     {1, 0, m_services.front(), type, domain, 0U});
            connection.send(call.createReply(pathOf(QStringLiteral("ServiceBrowser"))));
        } else if (call.member() == QStringLiteral("ServiceResolverPrepare")) {
            tell(QStringLiteral("ServiceResolver"), QStringLiteral("Found"),
                 {1, 0, m_services.front(), type, domain, QStringLiteral("box.local"), 0,
                  QStringLiteral("10.0.0.1"), QVariant::fromValue<ushort>(8001),
                  QVariant::fromValue(QByteArrayList{"rtf=2"}), 0U});
            connection.send(call.createReply(pathOf(QStringLiteral("ServiceResolver"))));
        } else {
            connection.send(call.createReply());
        }
        return true;
    }

private:
    static QVariant pathOf(const QString& kind) {
        return QVariant::fromValue(QDBusObjectPath(u'/' + kind));
    }
    void tell(const QString& kind, const QString& member, const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(
            u'/' + kind, QStringLiteral("org.freedesktop.Avahi.") + kind, member);
        signal.setArguments(arguments);
        m_connection.send(signal);
    }

    const QStringList m_services;
    const QString connectionName = QStringLiteral("hasty-daemon");
    QDBusConnection m_connection;
};

using HastyDaemonTest = AvahiFixture;

TEST_F(HastyDaemonTest, WhatItTellsTooEarlyIsHeard) {
    peer->stopDaemon();
    const HastyDaemon hasty(peer->busAddress(), {QStringLiteral("Office")});
    std::vector<MDNSBrowser::Entry> entries;
    MDNSBrowser browser(*backend);
    browser.onChange = [&](const auto& news) { entries = news; };
    browser.start();
    ASSERT_TRUE(waitUntil([&] { return !entries.empty(); }));
    EXPECT_EQ(entries.front().id(), QStringLiteral("Office|box.local:8001"));
    EXPECT_EQ(entries.front().rtf, 2);
}

TEST_F(HastyDaemonTest, ACrowdOfServicesIsBounded) {
    constexpr std::size_t bound = AvahiBrowse::maxServices;
    peer->stopDaemon();
    QStringList crowd;
    for (std::size_t i = 0; i < bound + 10; ++i)
        crowd << QStringLiteral("Server %1").arg(i);
    const HastyDaemon hasty(peer->busAddress(), crowd);
    std::size_t found = 0;
    std::size_t removed = 0;
    const Cancellable browsing =
        backend->browse({QStringLiteral("_whisper._tcp."), QStringLiteral("local.")},
                        {.stateChanged = {},
                         .found = [&](const FoundService&) { ++found; },
                         .removed = [&](const FoundService&) { ++removed; }});
    ASSERT_TRUE(waitUntil([&] { return removed > 0; }));
    EXPECT_EQ(found, bound);
}

}  // namespace
}  // namespace quietlark

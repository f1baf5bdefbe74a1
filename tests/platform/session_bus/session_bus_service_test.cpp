#include "platform/linux/session_bus/session_bus_service.h"

#include <optional>

#include <QDBusInterface>
#include <QDBusReply>
#include <gtest/gtest.h>

#include "peers/session_bus.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using Claim = SessionBusService::Claim;

const QString busName = QStringLiteral("net.quietlark.app");
const QString objectPath = QStringLiteral("/net/quietlark/app");

class SessionBusServiceTest : public testing::Test {
protected:
    static std::optional<Claim> claimOf(SessionBusService& service) {
        std::optional<Claim> answer;
        const Cancellable question = service.claim([&](Claim claim) { answer = claim; });
        (void)waitUntil([&] { return answer.has_value(); });
        return answer;
    }
    /// As another process would ask, by way of gdbus.
    QByteArray gdbus(const QStringList& arguments) {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_bus.address());
        ChildProcess program(QStringLiteral("gdbus"), arguments, environment);
        QByteArray all;
        (void)waitUntil([&] { return !program.isRunning(); });
        return program.readAll();
    }
    QByteArray call(const char* method, const QStringList& arguments = {}) {
        return gdbus(QStringList{QStringLiteral("call"), QStringLiteral("--session"),
                                 QStringLiteral("--dest"), busName, QStringLiteral("--object-path"),
                                 objectPath, QStringLiteral("--method"),
                                 QString::fromLatin1(method)} +
                     arguments);
    }
    DictationReport carryOut(DictationOrder order) {
        m_orders.push_back(order);
        return m_report;
    }

    SessionBus m_bus;
    std::vector<DictationOrder> m_orders;
    DictationReport m_report{QStringLiteral("recording"), {}};
    SessionBusService m_service{m_bus.connect(),
                                [this](DictationOrder order) { return carryOut(order); }};
};

TEST_F(SessionBusServiceTest, TheFirstOwnsTheName) {
    EXPECT_EQ(claimOf(m_service), Claim::owned);
}

TEST_F(SessionBusServiceTest, TheSecondFindsItTaken) {
    ASSERT_EQ(claimOf(m_service), Claim::owned);
    SessionBusService second(m_bus.connect(), {});
    EXPECT_EQ(claimOf(second), Claim::taken);
}

TEST_F(SessionBusServiceTest, TheNameIsFreeAgainOnceItsOwnerHasGone) {
    {
        SessionBus own;
        SessionBusService first(own.connect(), {});
        ASSERT_EQ(claimOf(first), Claim::owned);
        EXPECT_EQ(claimOf(first), Claim::owned);
    }
    EXPECT_EQ(claimOf(m_service), Claim::owned);
}

TEST_F(SessionBusServiceTest, WithoutABusNobodyCanAsk) {
    SessionBusService alone(QDBusConnection(QStringLiteral("no such connection")), {});
    EXPECT_EQ(claimOf(alone), Claim::noBus);
}

TEST_F(SessionBusServiceTest, OpeningTheProgramAgainIsARequest) {
    ASSERT_EQ(claimOf(m_service), Claim::owned);
    int requests = 0;
    QObject::connect(&m_service, &SessionBusService::reopenRequested, [&] { ++requests; });
    EXPECT_EQ(call("org.freedesktop.Application.Activate", {QStringLiteral("{}")}), "()\n");
    EXPECT_EQ(
        call("org.freedesktop.Application.Open", {QStringLiteral("[]"), QStringLiteral("{}")}),
        "()\n");
    EXPECT_EQ(requests, 2);
}

TEST_F(SessionBusServiceTest, AnUnknownActionDoesNothing) {
    ASSERT_EQ(claimOf(m_service), Claim::owned);
    EXPECT_EQ(call("org.freedesktop.Application.ActivateAction",
                   {QStringLiteral("x"), QStringLiteral("[]"), QStringLiteral("{}")}),
              "()\n");
}

TEST_F(SessionBusServiceTest, OrdersAreCarriedOutAndAnswered) {
    ASSERT_EQ(claimOf(m_service), Claim::owned);
    EXPECT_EQ(call("net.quietlark.Dictation1.Start"), "('recording', '')\n");
    EXPECT_EQ(call("net.quietlark.Dictation1.Toggle"), "('recording', '')\n");
    EXPECT_EQ(call("net.quietlark.Dictation1.Stop"), "('recording', '')\n");
    EXPECT_EQ(m_orders,
              (std::vector{DictationOrder::start, DictationOrder::toggle, DictationOrder::stop}));
}

TEST_F(SessionBusServiceTest, TheStateIsAPropertyToo) {
    ASSERT_EQ(claimOf(m_service), Claim::owned);
    m_report = {QStringLiteral("error"), QStringLiteral("No audio captured")};
    EXPECT_EQ(call("org.freedesktop.DBus.Properties.Get",
                   {QStringLiteral("net.quietlark.Dictation1"), QStringLiteral("Message")}),
              "(<'No audio captured'>,)\n");
}

TEST_F(SessionBusServiceTest, ChangesAreAnnounced) {
    ASSERT_EQ(claimOf(m_service), Claim::owned);
    ChildProcess monitor(QStringLiteral("dbus-monitor"),
                         {QStringLiteral("--address"), m_bus.address(),
                          QStringLiteral("interface='net.quietlark.Dictation1'")});
    // The bus tells a monitor that it has no name any more, which makes it one.
    ASSERT_TRUE(waitUntil([&] { return monitor.readLine().contains("NameLost"); }));
    m_service.announce({QStringLiteral("error"), QStringLiteral("No audio captured")});
    ASSERT_TRUE(waitUntil([&] { return monitor.readLine().contains("StateChanged"); }));
    EXPECT_EQ(monitor.readLine(), "string \"error\"");
    EXPECT_EQ(monitor.readLine(), "string \"No audio captured\"");
}

}  // namespace
}  // namespace quietlark

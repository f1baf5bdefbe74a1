#include "peers/avahi_peer.h"
#include "peers/avahi_publisher.h"
#include "program/program_fixture.h"

namespace quietlark {
namespace {

/// The program beside an Avahi daemon of its own.
class ServersProgramTest : public ProgramFixture {
protected:
    void SetUp() override {
        if (!AvahiPeer::canRun()) GTEST_SKIP() << "a network of one's own takes root";
        m_peer = std::make_unique<AvahiPeer>();
        publisher = std::make_unique<AvahiPublisher>(m_peer->busAddress());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_peer->busAddress().toLocal8Bit());
    }
    void TearDown() override { qunsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

    Outcome serversWithin(int seconds) {
        return run(
            {QStringLiteral("servers"), QStringLiteral("--seconds"), QString::number(seconds)});
    }
    /// Listens longer and longer until `name` is listed, for a machine that is busy otherwise.
    Outcome serversOnceListed(const char* name) {
        Outcome outcome;
        for (int seconds = 2; seconds <= 32; seconds *= 2) {
            outcome = serversWithin(seconds);
            if (outcome.results.startsWith(name)) break;
        }
        return outcome;
    }

    std::unique_ptr<AvahiPublisher> publisher;

private:
    std::unique_ptr<AvahiPeer> m_peer;
};

TEST_F(ServersProgramTest, ListsTheServersOfTheNetworkAndEndsWithTheRecommendation) {
    publisher->publishAtLocalhost(QStringLiteral("Office"), 8001, {"rtf=20", "model=large"});
    const Outcome outcome = serversOnceListed("Office");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.results.startsWith("Office\tlocalhost:8001\t20.0x\tlarge\t-\t"))
        << outcome.results.toStdString();
    // What is recommended depends on the processor that this runs on.
    const QByteArray last = outcome.results.trimmed().split('\n').last();
    EXPECT_TRUE(last.startsWith("Recommended: ") || last.startsWith("No recommendation: "))
        << last.toStdString();
    EXPECT_EQ(outcome.messages, "");
}

TEST_F(ServersProgramTest, ThisComputersOwnServerIsNotListed) {
    publisher->publish(QStringLiteral("Own"), 8001, {"rtf=20"});
    const Outcome outcome = serversWithin(3);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.results.startsWith("Recommended: this computer"))
        << outcome.results.toStdString();
}

}  // namespace
}  // namespace quietlark

#include <optional>

#include "permissions/local_network_probe.h"
#include "platform/avahi/avahi_fixture.h"
#include "platform/linux/avahi/avahi_local_host_name.h"
#include "servers/discovered_servers.h"

namespace quietlark {
namespace {

using Entry = MDNSBrowser::Entry;

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Küche | 日本:1.local. 🎙");

/// The browser of servers on a real network.
class AvahiServersTest : public AvahiFixture {
protected:
    void SetUp() override {
        AvahiFixture::SetUp();
        if (IsSkipped()) return;
        browser = std::make_unique<MDNSBrowser>(*backend);
        browser->onChange = [this](const std::vector<Entry>& news) { entries = news; };
    }

    [[nodiscard]] bool finds(std::size_t count) {
        return waitUntil([this, count] { return entries && entries->size() == count; });
    }

    [[nodiscard]] std::optional<Entry> entry(const QString& name) const {
        for (const Entry& candidate : entries.value_or(std::vector<Entry>())) {
            if (candidate.name == name) return candidate;
        }
        return std::nullopt;
    }

    /// What is made of a server that says `strings` about itself.
    Entry entrySaying(const QByteArrayList& strings) {
        publisher->publish(office, 8001, strings);
        browser->start();
        EXPECT_TRUE(finds(1));
        return entry(office).value_or(Entry());
    }

    std::unique_ptr<MDNSBrowser> browser;
    std::optional<std::vector<Entry>> entries;
};

TEST_F(AvahiServersTest, SeveralServersAreFoundWithWhatTheySay) {
    publisher->publish(office, 8001, {"rtf=12.5", "model=large", "cpu=Apple M2 Pro"});
    publisher->publish(kitchen, 8002);
    browser->start();
    ASSERT_TRUE(finds(2));
    const QString host = AvahiPeer::hostName() + QStringLiteral(".local");
    EXPECT_EQ(entry(office), (Entry{office, host, 8001, QStringLiteral("large"), 12.5,
                                    QStringLiteral("Apple M2 Pro")}));
    EXPECT_EQ(entry(kitchen), (Entry{kitchen, host, 8002, {}, {}, {}}));
}

TEST_F(AvahiServersTest, ValuesThatAreNotUtf8OrNoNumberAreAbsent) {
    const Entry found = entrySaying({"rtf=fast", "model=\xff\xfe", "cpu= \t "});
    EXPECT_EQ(found.rtf, std::nullopt);
    EXPECT_EQ(found.model, std::nullopt);
    EXPECT_EQ(found.cpu, std::nullopt);
}

TEST_F(AvahiServersTest, KeysWithoutValuesOrInOtherCaseAreAbsent) {
    const Entry found = entrySaying({"rtf", "model=", "CPU=Apple M1"});
    EXPECT_EQ(found.rtf, std::nullopt);
    EXPECT_EQ(found.model, std::nullopt);
    EXPECT_EQ(found.cpu, std::nullopt);
}

TEST_F(AvahiServersTest, LongAndOddValuesArriveWhole) {
    const QByteArray longest(249, 'x');
    const Entry found = entrySaying({"rtf= 0.42 ", "model=" + longest, "cpu=a=b\nc"});
    EXPECT_EQ(found.rtf, 0.42);
    EXPECT_EQ(found.model, QString::fromLatin1(longest));
    EXPECT_EQ(found.cpu, QStringLiteral("a=b\nc"));
}

TEST_F(AvahiServersTest, AServerThatLeavesGoes) {
    publisher->publish(office, 8001);
    publisher->publish(kitchen, 8002);
    browser->start();
    ASSERT_TRUE(finds(2));
    publisher->withdraw(office);
    ASSERT_TRUE(finds(1));
    EXPECT_TRUE(entry(kitchen));
}

TEST_F(AvahiServersTest, AServerThatMeasuresItselfAnewIsHeard) {
    EXPECT_EQ(entrySaying({"rtf=1"}).rtf, 1);
    publisher->update(office, {"rtf=2"});
    EXPECT_TRUE(waitUntil([this] { return entry(office) && entry(office)->rtf == 2; }));
    EXPECT_EQ(entries->size(), 1U);
}

TEST_F(AvahiServersTest, AServerThatMovesToAnotherPortIsListedOnce) {
    publisher->publishRecords(office, 8001);
    browser->start();
    ASSERT_TRUE(finds(1));
    publisher->moveRecords(office, 8002);
    EXPECT_TRUE(waitUntil([this] { return entry(office) && entry(office)->port == 8002; }));
    EXPECT_EQ(entries->size(), 1U);
}

TEST_F(AvahiServersTest, AServerThatNeverAnswersIsNotListed) {
    publisher->publishSilent(office);
    browser->start();
    publisher->publish(kitchen, 8002);
    ASSERT_TRUE(finds(1));
    EXPECT_FALSE(entry(office));
}

TEST_F(AvahiServersTest, TwoHundredServersAreFoundAtOnce) {
    for (int i = 0; i < 200; ++i)
        publisher->publish(QStringLiteral("Server %1").arg(i), static_cast<quint16>(8000 + i));
    browser->start();
    EXPECT_TRUE(finds(200));
}

TEST_F(AvahiServersTest, ServersComeBackWithTheDaemon) {
    publisher->publish(office, 8001);
    browser->start();
    ASSERT_TRUE(finds(1));
    peer->stopDaemon();
    ASSERT_TRUE(finds(0));
    peer->startDaemon();
    publisher->publish(kitchen, 8002);
    ASSERT_TRUE(finds(1));
    EXPECT_TRUE(entry(kitchen));
}

TEST_F(AvahiServersTest, ThisComputersOwnServersAreLeftOut) {
    AvahiLocalHostName localHostName(*daemon, scheduler);
    DiscoveredServers servers(*backend, localHostName, scheduler);
    publisher->publish(office, 8001);
    browser->start();
    servers.start();
    int publications = 0;
    QObject::connect(&servers, &DiscoveredServers::remotesChanged, [&] { ++publications; });
    ASSERT_TRUE(finds(1));
    ASSERT_TRUE(waitUntil([&] { return publications >= 2; }));
    EXPECT_TRUE(servers.remotes().empty());
}

TEST_F(AvahiServersTest, TheLocalNetworkIsGrantedWhileAvahiAnswers) {
    LocalNetworkProbe probe(*backend);
    EXPECT_FALSE(probe.granted());
    EXPECT_TRUE(waitUntil([&] { return probe.granted(); }));
    peer->stopDaemon();
    EXPECT_TRUE(waitUntil([&] { return !probe.granted(); }));
    ASSERT_TRUE(probe.unavailable());
    peer->startDaemon();
    EXPECT_TRUE(waitUntil([&] { return probe.granted(); }));
}

}  // namespace
}  // namespace quietlark

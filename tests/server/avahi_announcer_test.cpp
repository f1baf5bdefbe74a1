#include "server/avahi_announcer.h"

#include <cstdlib>
#include <optional>

#include "fakes/fake_log.h"
#include "platform/avahi/avahi_fixture.h"
#include "servers/mdns_browser.h"

namespace quietlark {
namespace {

using Entry = MDNSBrowser::Entry;

/// The announcer beside a real Avahi daemon, and the application's browser to look at it.
class AvahiAnnouncerTest : public AvahiFixture {
protected:
    void SetUp() override {
        AvahiFixture::SetUp();
        if (IsSkipped()) return;
        setenv("DBUS_SYSTEM_BUS_ADDRESS", peer->busAddress().toLocal8Bit().constData(), 1);
        announcer = std::make_unique<AvahiAnnouncer>(log);
        browser = std::make_unique<MDNSBrowser>(*backend);
        browser->onChange = [this](const std::vector<Entry>& news) { entries = news; };
        browser->start();
    }

    void TearDown() override {
        announcer.reset();
        unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    }

    [[nodiscard]] const Entry* entry(const QString& name) const {
        for (const Entry& candidate : entries)
            if (candidate.name == name) return &candidate;
        return nullptr;
    }

    [[nodiscard]] bool findsSpeed(double rtf) {
        return waitUntil([&] {
            const Entry* const found = entry(attic);
            return found && found->rtf == rtf;
        });
    }

    [[nodiscard]] bool findsNothing() {
        return waitUntil([&] { return entries.empty(); });
    }

    const QString attic = QStringLiteral("Attic");
    const ServiceAnnouncement announcement{
        .name = "Attic",
        .port = 8178,
        .txt = {{"rtf", "4.50"}, {"model", "whisper-base"}, {"cpu", "Processor 3000"}}};
    FakeLog log;
    std::unique_ptr<AvahiAnnouncer> announcer;
    std::unique_ptr<MDNSBrowser> browser;
    std::vector<Entry> entries;
};

ServiceAnnouncement withSpeed(ServiceAnnouncement announcement, const std::string& rtf) {
    announcement.txt.front().second = rtf;
    return announcement;
}

TEST_F(AvahiAnnouncerTest, TheApplicationFindsWhatIsAnnounced) {
    announcer->announce(announcement);
    ASSERT_TRUE(findsSpeed(4.5));
    EXPECT_EQ(*entry(attic),
              (Entry{attic, AvahiPeer::hostName() + QStringLiteral(".local"), 8178,
                     QStringLiteral("whisper-base"), 4.5, QStringLiteral("Processor 3000")}));
}

TEST_F(AvahiAnnouncerTest, AWithdrawnServiceGoesAndMayComeBack) {
    announcer->announce(announcement);
    ASSERT_TRUE(findsSpeed(4.5));
    announcer->withdraw();
    EXPECT_TRUE(findsNothing());
    announcer->announce(withSpeed(announcement, "6.00"));
    EXPECT_TRUE(findsSpeed(6));
}

TEST_F(AvahiAnnouncerTest, ItTakesItsServiceAlongWhenItEnds) {
    announcer->announce(announcement);
    ASSERT_TRUE(findsSpeed(4.5));
    announcer.reset();
    EXPECT_TRUE(findsNothing());
}

TEST_F(AvahiAnnouncerTest, ANewSpeedReplacesTheOldOne) {
    announcer->announce(announcement);
    ASSERT_TRUE(findsSpeed(4.5));
    announcer->announce(withSpeed(announcement, "5.25"));
    EXPECT_TRUE(findsSpeed(5.25));
}

TEST_F(AvahiAnnouncerTest, ANameThatSomebodyHasGetsANumber) {
    publisher->publish(attic, 8001);
    ASSERT_TRUE(waitUntil([this] { return entry(attic) != nullptr; }));
    announcer->announce(announcement);
    EXPECT_TRUE(waitUntil([this] { return entry(QStringLiteral("Attic #2")) != nullptr; }));
}

TEST_F(AvahiAnnouncerTest, ItAnnouncesAgainWhenTheDaemonWasRestarted) {
    announcer->announce(announcement);
    ASSERT_TRUE(findsSpeed(4.5));
    peer->killDaemon();
    ASSERT_TRUE(findsNothing());
    peer->startDaemon();
    EXPECT_TRUE(findsSpeed(4.5));
}

TEST_F(AvahiAnnouncerTest, ItWaitsForADaemon) {
    peer->stopDaemon();
    announcer->announce(announcement);
    peer->startDaemon();
    EXPECT_TRUE(findsSpeed(4.5));
}

TEST_F(AvahiAnnouncerTest, ItTriesAgainWhenTheDaemonDidNotAnswer) {
    peer->freezeDaemon();
    announcer->announce(announcement);
    ASSERT_TRUE(waitUntil([this] { return log.contains("waiting for Avahi to announce Attic"); }));
    peer->thawDaemon();
    EXPECT_TRUE(findsSpeed(4.5));
}

TEST_F(AvahiAnnouncerTest, ItOutlivesTheSystemBus) {
    announcer->announce(announcement);
    ASSERT_TRUE(findsSpeed(4.5));
    peer->stopBus();
    ASSERT_TRUE(findsNothing());
    peer->startBus();
    peer->startDaemon();
    EXPECT_TRUE(findsSpeed(4.5));
}

TEST(AvahiAnnouncerWithoutBusTest, WithoutABusItWaitsAndEnds) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    FakeLog log;
    AvahiAnnouncer announcer(log);
    announcer.announce({.name = "Attic", .port = 1, .txt = {}});
    announcer.withdraw();
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace quietlark

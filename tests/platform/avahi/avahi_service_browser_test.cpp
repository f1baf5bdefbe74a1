#include "platform/linux/avahi/avahi_service_browser.h"

#include <chrono>

#include "platform/avahi/avahi_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const QString office = QStringLiteral("Office");

class AvahiServiceBrowserTest : public AvahiFixture {
protected:
    void browse(const QString& type = QStringLiteral("_whisper._tcp.")) {
        browsing = backend->browse(
            {type, QStringLiteral("local.")},
            {.stateChanged = [this](const BrowseState& news) { state = news; },
             .found = [this](const FoundService& service) { found.push_back(service); },
             .removed = [this](const FoundService& service) { removed.push_back(service); }});
    }

    [[nodiscard]] bool becomes(BrowseState::Kind kind) {
        return waitUntil([this, kind] { return state && state->kind == kind; });
    }
    [[nodiscard]] bool finds(std::size_t count) {
        return waitUntil([this, count] { return found.size() >= count; });
    }

    std::optional<BrowseState> state;
    std::vector<FoundService> found, removed;
    Cancellable browsing;
    QObject context;
};

class AvahiServiceBrowserOnSeveralNetworksTest : public AvahiServiceBrowserTest {
protected:
    AvahiServiceBrowserOnSeveralNetworksTest() { network = AvahiPeer::Network::Several; }
};

TEST_F(AvahiServiceBrowserOnSeveralNetworksTest, AServiceOnSeveralInterfacesIsOneService) {
    publisher->publish(office, 8001);
    browse();
    ASSERT_TRUE(finds(1));
    // A second service comes after all that was to be told about the first one.
    publisher->publish(QStringLiteral("Kitchen"), 8001);
    ASSERT_TRUE(finds(2));
    publisher->withdraw(office);
    ASSERT_TRUE(waitUntil([this] { return !removed.empty(); }));
    publisher->withdraw(QStringLiteral("Kitchen"));
    ASSERT_TRUE(waitUntil([this] { return removed.size() >= 2; }));
    EXPECT_EQ(found.size(), 2U);
    EXPECT_EQ(removed, found);
}

TEST_F(AvahiServiceBrowserTest, FindsTwoHundredServices) {
    for (int i = 0; i < 200; ++i)
        publisher->publish(QStringLiteral("Server %1").arg(i), static_cast<quint16>(8000 + i));
    browse();
    EXPECT_TRUE(finds(200));
    EXPECT_TRUE(removed.empty());
}

TEST_F(AvahiServiceBrowserTest, SaysWhatToDoWhereAvahiDoesNotRun) {
    peer->stopDaemon();
    browse();
    ASSERT_TRUE(becomes(BrowseState::Kind::Waiting));
    EXPECT_TRUE(state->reason.contains(QStringLiteral("install and start avahi-daemon")));
}

TEST_F(AvahiServiceBrowserTest, SaysWhatToDoWhereThereIsNoSystemBus) {
    peer->stopBus();
    browse();
    ASSERT_TRUE(becomes(BrowseState::Kind::Waiting));
    EXPECT_TRUE(state->reason.contains(QStringLiteral("install and start dbus")));
}

TEST_F(AvahiServiceBrowserTest, BeginsWhenTheSystemBusComes) {
    peer->stopBus();
    browse();
    ASSERT_TRUE(becomes(BrowseState::Kind::Waiting));
    peer->startBus();
    peer->startDaemon();
    EXPECT_TRUE(becomes(BrowseState::Kind::Ready));
}

TEST_F(AvahiServiceBrowserTest, OutlivesTheSystemBus) {
    publisher->publish(office, 8001);
    browse();
    ASSERT_TRUE(finds(1));
    peer->stopBus();
    ASSERT_TRUE(becomes(BrowseState::Kind::Waiting));
    EXPECT_EQ(removed, found);
    peer->startBus();
    peer->startDaemon();
    ASSERT_TRUE(becomes(BrowseState::Kind::Ready));
    AvahiPublisher(peer->busAddress()).publish(office, 8001);
}

TEST_F(AvahiServiceBrowserTest, ADaemonThatDiesTakesItsServicesAlong) {
    publisher->publish(office, 8001);
    browse();
    ASSERT_TRUE(finds(1));
    peer->killDaemon();
    ASSERT_TRUE(becomes(BrowseState::Kind::Waiting));
    EXPECT_EQ(removed, found);
    peer->startDaemon();
    publisher->publish(office, 8001);
    ASSERT_TRUE(finds(2));
    EXPECT_NE(found[1], found[0]);
}

TEST_F(AvahiServiceBrowserTest, FailsWhereAvahiRefusesToBrowse) {
    browse(QStringLiteral("not a service type"));
    ASSERT_TRUE(becomes(BrowseState::Kind::Failed));
    EXPECT_TRUE(state->reason.contains(QStringLiteral("restart avahi-daemon")));
}

TEST_F(AvahiServiceBrowserTest, AServiceThatAvahiRefusesToResolveFails) {
    browse();
    ASSERT_TRUE(becomes(BrowseState::Kind::Ready));
    std::optional<ServiceBrowserBackend::ResolveFailure> failure;
    const auto resolution = backend->resolve(
        {1, office, {QStringLiteral("not a service type"), {}}}, 60s, [&](const auto& answer) {
            if (!answer) failure = answer.error();
        });
    ASSERT_TRUE(waitUntil([&] { return failure.has_value(); }));
    EXPECT_EQ(failure, ServiceBrowserBackend::ResolveFailure::Refused);
}

TEST_F(AvahiServiceBrowserTest, AServiceThatMovesWithoutLeavingIsFoundAnew) {
    publisher->publishRecords(office, 8001);
    browse();
    ASSERT_TRUE(finds(1));
    std::vector<ResolvedService> answers;
    const auto resolution = backend->resolve(found[0], 20s, [&](const auto& answer) {
        if (answer) answers.push_back(*answer);
    });
    ASSERT_TRUE(waitUntil([&] { return !answers.empty(); }));
    publisher->moveRecords(office, 8002);
    ASSERT_TRUE(finds(2));
    EXPECT_EQ(removed, std::vector{found[0]});
    EXPECT_EQ(found[1].name, office);
    EXPECT_EQ(answers.size(), 1U);
}

TEST_F(AvahiServiceBrowserTest, NoCallWaitsForADaemonOrBusThatHangs) {
    browse();
    ASSERT_TRUE(becomes(BrowseState::Kind::Ready));
    peer->freezeDaemon();
    peer->freezeBus();
    browse();
    const auto resolution =
        backend->resolve({1, office, {QStringLiteral("_whisper._tcp"), {}}}, 1ms, [](auto&&) {});
    browsing.cancel();
    bool isAlive = false;
    scheduler.post([&] { isAlive = true; });
    // Any call that waited for the bus would take as long as the bus hangs.
    EXPECT_TRUE(waitUntil([&] { return isAlive; }, 5s));
    peer->thawBus();
    peer->thawDaemon();
}

TEST_F(AvahiServiceBrowserTest, MayEndWhileItConnectsToABusThatHangs) {
    peer->freezeBus();
    browse();
    bool isAlive = false;
    scheduler.after(50ms, &context, [&] { isAlive = true; });
    EXPECT_TRUE(waitUntil([&] { return isAlive; }, 5s));
    browsing.cancel();
    backend.reset();
    daemon.reset();
    bus.reset();
    peer->thawBus();
}

TEST_F(AvahiServiceBrowserTest, HandlesMayOutliveIt) {
    publisher->publish(office, 8001);
    browse();
    ASSERT_TRUE(finds(1));
    auto resolution = backend->resolve(found[0], 20s, [](auto&&) {});
    backend.reset();
    resolution.cancel();
    browsing.cancel();
    EXPECT_TRUE(removed.empty());
}

}  // namespace
}  // namespace quietlark

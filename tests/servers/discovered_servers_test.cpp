#include "servers/discovered_servers.h"

#include <memory>

#include <QStringList>
#include <gtest/gtest.h>

#include "fakes/fake_local_host_name.h"
#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"

namespace quietlark {
namespace {

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Kitchen");

class DiscoveredServersTest : public testing::Test {
protected:
    /// A server of that name and host, or a host of its own.
    void publish(const QString& name, const QString& host = QStringLiteral("other.local")) {
        network.publish(name, {host, 8001, std::nullopt});
        scheduler.runPosted();
    }

    void start() {
        servers->start();
        scheduler.runPosted();
    }

    [[nodiscard]] QStringList names() const {
        QStringList all;
        for (const auto& entry : servers->remotes())
            all << entry.name;
        return all;
    }

    FakeScheduler scheduler;
    FakeServiceBrowser network{scheduler};
    FakeLocalHostName localHostName;
    std::unique_ptr<DiscoveredServers> servers =
        std::make_unique<DiscoveredServers>(network, localHostName, scheduler);
};

TEST_F(DiscoveredServersTest, NothingIsThereNorSearchedForAtFirst) {
    EXPECT_TRUE(servers->remotes().empty());
    EXPECT_EQ(network.browseCount(), 0U);
    EXPECT_EQ(localHostName.questions(), 0);
}

TEST_F(DiscoveredServersTest, ThisComputerIsLeftOutByNameAndByHost) {
    start();
    publish(QStringLiteral("studio-mac"));
    publish(office, QStringLiteral("STUDIO-MAC.local"));
    publish(QStringLiteral("Studio-Mac (2)"));
    localHostName.answer(QStringLiteral("Studio-Mac"));
    EXPECT_EQ(names(), QStringList{QStringLiteral("Studio-Mac (2)")});
}

TEST_F(DiscoveredServersTest, TheComparisonIsExactButForCase) {
    start();
    publish(QStringLiteral(" studio-mac"));
    publish(office, QStringLiteral("studio-mac-2.local"));
    publish(kitchen, QStringLiteral("studio-mac"));
    localHostName.answer(QStringLiteral("Studio-Mac"));
    EXPECT_EQ(names(), (QStringList{QStringLiteral(" studio-mac"), office, kitchen}));
}

TEST_F(DiscoveredServersTest, WithoutALocalHostNameEveryServerIsKeptAndItIsNotLookedUpAgain) {
    start();
    publish(office);
    localHostName.answer(std::nullopt);
    publish(kitchen);
    EXPECT_EQ(names(), (QStringList{office, kitchen}));
    EXPECT_EQ(localHostName.questions(), 1);
}

TEST_F(DiscoveredServersTest, TheLocalHostNameIsLookedUpOnce) {
    start();
    publish(office);
    localHostName.answer(QStringLiteral("Studio-Mac"));
    servers->stop();
    start();
    publish(kitchen);
    EXPECT_EQ(localHostName.questions(), 1);
}

TEST_F(DiscoveredServersTest, NoServerIsShownBeforeTheLocalHostNameIsKnown) {
    start();
    publish(office);
    publish(kitchen);
    EXPECT_TRUE(servers->remotes().empty());
    localHostName.answer(QStringLiteral("Studio-Mac"));
    EXPECT_EQ(names(), (QStringList{office, kitchen}));
}

TEST_F(DiscoveredServersTest, WhatWentWhileTheNameWasLookedUpStaysAway) {
    start();
    publish(office);
    network.withdraw(office);
    scheduler.runPosted();
    localHostName.answer(QStringLiteral("Studio-Mac"));
    EXPECT_TRUE(servers->remotes().empty());
}

TEST_F(DiscoveredServersTest, TwoStartsNeedTwoStops) {
    servers->start();
    servers->start();
    servers->stop();
    EXPECT_EQ(network.browseCount(), 1U);
    servers->stop();
    EXPECT_EQ(network.browseCount(), 0U);
}

TEST_F(DiscoveredServersTest, ASecondStartDoesNotSearchAfresh) {
    start();
    publish(office);
    localHostName.answer(std::nullopt);
    start();
    EXPECT_EQ(names(), QStringList{office});
}

TEST_F(DiscoveredServersTest, AStopTooManyDoesNoHarm) {
    servers->stop();
    servers->start();
    EXPECT_EQ(network.browseCount(), 1U);
}

TEST_F(DiscoveredServersTest, TheListArrivesOneTurnOfTheMainQueueLater) {
    start();
    publish(office);
    localHostName.answer(std::nullopt);
    network.withdraw(office);
    EXPECT_EQ(names(), QStringList{office});
    scheduler.runPosted();
    EXPECT_TRUE(servers->remotes().empty());
}

TEST_F(DiscoveredServersTest, TheListOutlivesTheLastStopUntilTheNextStart) {
    start();
    publish(office);
    localHostName.answer(std::nullopt);
    servers->stop();
    scheduler.runPosted();
    EXPECT_EQ(names(), QStringList{office});
    network.withdraw(office);
    start();
    EXPECT_TRUE(servers->remotes().empty());
}

TEST_F(DiscoveredServersTest, EachChangeIsAnnouncedBeforeAndAfterIt) {
    std::vector<std::size_t> before, after;
    QObject::connect(servers.get(), &DiscoveredServers::remotesWillChange,
                     [&] { before.push_back(servers->remotes().size()); });
    QObject::connect(servers.get(), &DiscoveredServers::remotesChanged,
                     [&] { after.push_back(servers->remotes().size()); });
    start();
    publish(office);
    localHostName.answer(std::nullopt);
    EXPECT_EQ(before, (std::vector<std::size_t>{0, 0}));
    EXPECT_EQ(after, (std::vector<std::size_t>{0, 1}));
}

TEST_F(DiscoveredServersTest, NewsThatArriveAfterTheEndAreDropped) {
    servers->start();
    servers.reset();
    scheduler.runPosted();
    EXPECT_EQ(network.browseCount(), 0U);
}

TEST_F(DiscoveredServersTest, ANameThatIsFoundOutAfterTheEndIsDropped) {
    start();
    publish(office);
    servers.reset();
    localHostName.answer(QStringLiteral("Studio-Mac"));
    EXPECT_EQ(localHostName.questions(), 1);
}

}  // namespace
}  // namespace quietlark

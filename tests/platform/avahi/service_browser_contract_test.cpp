#include <memory>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"
#include "peers/avahi_peer.h"
#include "peers/avahi_publisher.h"
#include "platform/linux/avahi/avahi_service_browser.h"
#include "platform/qt/qt_scheduler.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;
using TxtRecord = ResolvedService::TxtRecord;

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Küche (2)");
const ServiceQuery whisper{QStringLiteral("_whisper._tcp."), QStringLiteral("local.")};

/// A backend and the network that it looks at.
class Network {
public:
    virtual ~Network() = default;
    virtual ServiceBrowserBackend& backend() = 0;
    virtual void publish(const QString& name, int port, const TxtRecord& txtRecord) = 0;
    virtual void update(const QString& name, int port, const TxtRecord& txtRecord) = 0;
    virtual void publishSilent(const QString& name) = 0;
    virtual void withdraw(const QString& name) = 0;
    virtual void stopDaemon() = 0;
    virtual void startDaemon() = 0;
    /// Lets time pass until `condition` holds; false when it does not in good time.
    virtual bool wait(const std::function<bool()>& condition) = 0;
};

class FakeNetwork final : public Network {
public:
    static bool canRun() { return true; }

    ServiceBrowserBackend& backend() override { return m_backend; }
    void publish(const QString& name, int port, const TxtRecord& txtRecord) override {
        m_backend.publish(name, {QStringLiteral("box.local"), port, txtRecord});
    }
    void update(const QString& name, int port, const TxtRecord& txtRecord) override {
        publish(name, port, txtRecord);
    }
    void publishSilent(const QString& name) override { m_backend.publishSilent(name); }
    void withdraw(const QString& name) override { m_backend.withdraw(name); }
    void stopDaemon() override { m_backend.stopDaemon(); }
    void startDaemon() override { m_backend.startDaemon(); }
    bool wait(const std::function<bool()>& condition) override {
        for (int i = 0; i < 100 && !condition(); ++i)
            m_scheduler.advance(100ms);
        return condition();
    }

private:
    FakeScheduler m_scheduler;
    FakeServiceBrowser m_backend{m_scheduler};
};

class AvahiNetwork final : public Network {
public:
    static bool canRun() { return AvahiPeer::canRun(); }

    ServiceBrowserBackend& backend() override { return m_backend; }
    void publish(const QString& name, int port, const TxtRecord& txtRecord) override {
        m_publisher.publish(name, static_cast<quint16>(port), stringsOf(txtRecord));
    }
    void update(const QString& name, int, const TxtRecord& txtRecord) override {
        m_publisher.update(name, stringsOf(txtRecord));
    }
    void publishSilent(const QString& name) override { m_publisher.publishSilent(name); }
    void withdraw(const QString& name) override { m_publisher.withdraw(name); }
    void stopDaemon() override { m_peer.stopDaemon(); }
    void startDaemon() override { m_peer.startDaemon(); }
    bool wait(const std::function<bool()>& condition) override { return waitUntil(condition); }

private:
    static QByteArrayList stringsOf(const TxtRecord& txtRecord) {
        QByteArrayList strings;
        for (auto entry = txtRecord.begin(); entry != txtRecord.end(); ++entry)
            strings << entry.key() + '=' + entry.value();
        return strings;
    }

    AvahiPeer m_peer;
    AvahiPublisher m_publisher{m_peer.busAddress()};
    QtScheduler m_scheduler;
    SystemBus m_bus{m_scheduler, m_peer.busAddress()};
    AvahiDaemon m_daemon{m_bus};
    AvahiServiceBrowser m_backend{m_daemon, m_scheduler};
};

template <typename Kind>
class ServiceBrowserContract : public testing::Test {
protected:
    void SetUp() override {
        if (!Kind::canRun()) GTEST_SKIP() << "a network of one's own takes root";
        network = std::make_unique<Kind>();
    }

    void browse() { browsing = network->backend().browse(whisper, handlers()); }

    ServiceBrowserBackend::BrowseHandlers handlers() {
        return {.stateChanged = [this](const BrowseState& state) { states.push_back(state); },
                .found = [this](const FoundService& service) { found.push_back(service); },
                .removed = [this](const FoundService& service) { removed.push_back(service); }};
    }

    /// Browses until this many services have been found in all.
    bool findsServices(std::size_t count) {
        if (states.empty()) browse();
        return wait([this, count] { return found.size() >= count; });
    }

    void resolve(const FoundService& service, std::chrono::milliseconds timeout = 10s) {
        resolution = network->backend().resolve(service, timeout, [this](const auto& answer) {
            if (answer) answers.push_back(*answer);
            if (!answer) failures.push_back(answer.error());
        });
    }

    /// Finds and asks the service, until it has answered.
    bool resolves(const QString& name, int port, const TxtRecord& txtRecord = {}) {
        network->publish(name, port, txtRecord);
        if (!findsServices(1)) return false;
        resolve(found.back());
        return wait([this] { return !answers.empty(); });
    }

    bool wait(const std::function<bool()>& condition) { return network->wait(condition); }
    bool isIn(BrowseState::Kind kind) const {
        return !states.empty() && states.back().kind == kind;
    }

    std::unique_ptr<Network> network;
    std::vector<BrowseState> states;
    std::vector<FoundService> found, removed;
    std::vector<ResolvedService> answers;
    std::vector<ServiceBrowserBackend::ResolveFailure> failures;
    Cancellable browsing, resolution;
};

using Networks = testing::Types<FakeNetwork, AvahiNetwork>;
TYPED_TEST_SUITE(ServiceBrowserContract, Networks);

TYPED_TEST(ServiceBrowserContract, NothingIsReportedBeforeTheCallReturns) {
    this->network->publish(office, 8001, {});
    this->browse();
    EXPECT_TRUE(this->states.empty());
    ASSERT_TRUE(this->findsServices(1));
    this->resolve(this->found.front());
    EXPECT_TRUE(this->answers.empty());
}

TYPED_TEST(ServiceBrowserContract, ABrowseBecomesReady) {
    this->browse();
    EXPECT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Ready); }));
}

TYPED_TEST(ServiceBrowserContract, ServicesAreFoundWhetherTheyWereThereOrCome) {
    this->network->publish(office, 8001, {});
    ASSERT_TRUE(this->findsServices(1));
    this->network->publish(kitchen, 8002, {});
    ASSERT_TRUE(this->findsServices(2));
    EXPECT_EQ(this->found[0].name, office);
    EXPECT_EQ(this->found[1].name, kitchen);
    EXPECT_NE(this->found[0].identity, this->found[1].identity);
    EXPECT_EQ(this->found[0].query.type, whisper.type);
}

TYPED_TEST(ServiceBrowserContract, AServiceThatLeavesIsRemoved) {
    this->network->publish(office, 8001, {});
    ASSERT_TRUE(this->findsServices(1));
    this->network->withdraw(office);
    ASSERT_TRUE(this->wait([this] { return !this->removed.empty(); }));
    EXPECT_EQ(this->removed, this->found);
}

TYPED_TEST(ServiceBrowserContract, AServiceAnswersWithHostPortAndTxtRecord) {
    const TxtRecord says{{"rtf", "2.5"}, {"model", ""}};
    ASSERT_TRUE(this->resolves(office, 8001, says));
    EXPECT_TRUE(this->answers[0].hostName.value_or(QString()).endsWith(QStringLiteral(".local")));
    EXPECT_EQ(this->answers[0].port, 8001);
    EXPECT_EQ(this->answers[0].txtRecord, says);
}

TYPED_TEST(ServiceBrowserContract, AServiceThatIsSilentFailsOnce) {
    this->network->publishSilent(office);
    ASSERT_TRUE(this->findsServices(1));
    this->resolve(this->found[0], 200ms);
    ASSERT_TRUE(this->wait([this] { return !this->failures.empty(); }));
    EXPECT_EQ(this->failures, std::vector{ServiceBrowserBackend::ResolveFailure::TimedOut});
    EXPECT_TRUE(this->answers.empty());
}

TYPED_TEST(ServiceBrowserContract, AChangedTxtRecordIsAnsweredAgain) {
    ASSERT_TRUE(this->resolves(office, 8001, {{"rtf", "1"}}));
    this->network->update(office, 8001, {{"rtf", "2"}});
    const auto saysTwo = [this] { return this->answers.back().txtRecord->value("rtf") == "2"; };
    EXPECT_TRUE(this->wait(saysTwo));
    EXPECT_TRUE(this->removed.empty());
}

TYPED_TEST(ServiceBrowserContract, AServiceThatMovesIsRemovedAndFoundAnew) {
    ASSERT_TRUE(this->resolves(office, 8001));
    this->network->withdraw(office);
    this->network->publish(office, 8002, {});
    ASSERT_TRUE(this->findsServices(2));
    EXPECT_EQ(this->removed, std::vector{this->found[0]});
    EXPECT_EQ(this->found[1].name, office);
    EXPECT_NE(this->found[1], this->found[0]);
}

TYPED_TEST(ServiceBrowserContract, ADestroyedHandleReportsNothingMore) {
    ASSERT_TRUE(this->resolves(office, 8001, {{"rtf", "1"}}));
    this->browsing.cancel();
    this->resolution.cancel();
    const auto reports = this->states.size() + this->found.size() + this->answers.size();
    std::vector<FoundService> others;
    auto other = this->network->backend().browse(
        whisper, {.stateChanged = {},
                  .found = [&](const FoundService& service) { others.push_back(service); },
                  .removed = {}});
    this->network->update(office, 8001, {{"rtf", "2"}});
    this->network->publish(kitchen, 8002, {});
    ASSERT_TRUE(this->wait([&] { return others.size() == 2; }));
    EXPECT_EQ(this->states.size() + this->found.size() + this->answers.size(), reports);
}

TYPED_TEST(ServiceBrowserContract, AHandlerMayDestroyItsHandle) {
    this->network->publish(office, 8001, {});
    auto handlers = this->handlers();
    handlers.found = [this](const FoundService& service) {
        this->browsing.cancel();
        this->found.push_back(service);
    };
    this->browsing = this->network->backend().browse(whisper, handlers);
    ASSERT_TRUE(this->wait([this] { return !this->found.empty(); }));
    this->resolution =
        this->network->backend().resolve(this->found[0], 10s, [this](const auto& answer) {
            this->resolution.cancel();
            this->answers.push_back(*answer);
        });
    EXPECT_TRUE(this->wait([this] { return !this->answers.empty(); }));
}

TYPED_TEST(ServiceBrowserContract, SeveralBrowsesFindTheSame) {
    this->network->publish(office, 8001, {});
    std::vector<FoundService> others;
    const auto other = this->network->backend().browse(
        {whisper.type, {}},
        {.stateChanged = {},
         .found = [&](const FoundService& service) { others.push_back(service); },
         .removed = {}});
    ASSERT_TRUE(this->findsServices(1));
    ASSERT_TRUE(this->wait([&] { return !others.empty(); }));
    EXPECT_NE(others[0].identity, this->found[0].identity);
}

TYPED_TEST(ServiceBrowserContract, WithoutADaemonServicesGoAndTheBrowseWaits) {
    this->network->publish(office, 8001, {});
    ASSERT_TRUE(this->findsServices(1));
    this->network->stopDaemon();
    ASSERT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Waiting); }));
    EXPECT_EQ(this->removed, this->found);
    EXPECT_FALSE(this->states.back().reason.isEmpty());
}

TYPED_TEST(ServiceBrowserContract, ABrowseResumesWithTheNextDaemon) {
    this->browse();
    ASSERT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Ready); }));
    this->network->stopDaemon();
    ASSERT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Waiting); }));
    this->network->startDaemon();
    ASSERT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Ready); }));
    this->network->publish(office, 8001, {});
    EXPECT_TRUE(this->findsServices(1));
}

TYPED_TEST(ServiceBrowserContract, ABrowseThatBeganWithoutADaemonWaitsForOne) {
    this->network->stopDaemon();
    this->browse();
    ASSERT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Waiting); }));
    this->network->startDaemon();
    EXPECT_TRUE(this->wait([this] { return this->isIn(BrowseState::Kind::Ready); }));
}

}  // namespace
}  // namespace quietlark

#include <memory>
#include <string>

#include "fakes/fake_registered_service.h"
#include "platform/systemd/systemd_fixture.h"

namespace quietlark {
namespace {

/// A service manager and the one service of the program in it.
class World {
public:
    virtual ~World() = default;
    virtual std::string whyNot() = 0;
    virtual RegisteredService& service() = 0;
    /// Brings the service into this state from outside.
    virtual void make(ServiceStatus status) = 0;
};

class FakeWorld final : public World {
public:
    std::string whyNot() override { return {}; }
    RegisteredService& service() override { return m_service; }
    void make(ServiceStatus status) override { m_service.current = status; }

private:
    FakeRegisteredService m_service;
};

class SystemdWorld final : public World {
public:
    std::string whyNot() override { return m_systemd.whyNot().toStdString(); }
    RegisteredService& service() override {
        if (!m_service) m_service.emplace(testUnit, m_systemd.connectToBus());
        return *m_service;
    }
    void make(ServiceStatus status) override {
        if (status != ServiceStatus::notFound) {
            ASSERT_TRUE(m_systemd.installUnit(testUnit, sleepingUnit));
        }
        if (status == ServiceStatus::enabled) command("enable");
        if (status == ServiceStatus::requiresApproval) command("mask");
        ASSERT_TRUE(waitUntil([&] { return service().status() == status; }));
    }

private:
    void command(const char* verb) {
        ASSERT_TRUE(m_systemd.run(
            QStringLiteral("systemctl --user %1 %2").arg(QLatin1String(verb), testUnit)));
    }

    SystemdUser m_systemd;
    std::optional<SystemdUserService> m_service;
};

class RegisteredServiceContract : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (GetParam() == std::string("Fake")) {
            world = std::make_unique<FakeWorld>();
        } else {
            world = std::make_unique<SystemdWorld>();
        }
        if (!world->whyNot().empty()) GTEST_SKIP() << world->whyNot();
    }

    ServiceStatus status() { return world->service().status(); }
    ServiceAnswer::Result registerIt() {
        const auto pending = world->service().registerService(answer.remember());
        EXPECT_EQ(answer.count(), 0u) << "answered before the call returned";
        return answer.await();
    }
    ServiceAnswer::Result unregisterIt() {
        const auto pending = world->service().unregisterService(answer.remember());
        EXPECT_EQ(answer.count(), 0u) << "answered before the call returned";
        return answer.await();
    }

    std::unique_ptr<World> world;
    ServiceAnswer answer;
};

INSTANTIATE_TEST_SUITE_P(Over, RegisteredServiceContract, ::testing::Values("Fake", "Systemd"),
                         [](const auto& one) { return std::string(one.param); });

TEST_P(RegisteredServiceContract, TheStatusHasFollowedWhenARegistrationIsAnswered) {
    world->make(ServiceStatus::notRegistered);
    EXPECT_TRUE(registerIt());
    EXPECT_EQ(status(), ServiceStatus::enabled);
}

TEST_P(RegisteredServiceContract, RegisteringWhatIsEnabledSucceeds) {
    world->make(ServiceStatus::enabled);
    EXPECT_TRUE(registerIt());
    EXPECT_EQ(status(), ServiceStatus::enabled);
}

TEST_P(RegisteredServiceContract, TheStatusHasFollowedWhenItWasTakenBack) {
    world->make(ServiceStatus::enabled);
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(status(), ServiceStatus::notRegistered);
}

TEST_P(RegisteredServiceContract, TakingBackWhatIsNotRegisteredSucceeds) {
    world->make(ServiceStatus::notRegistered);
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(status(), ServiceStatus::notRegistered);
}

TEST_P(RegisteredServiceContract, WhatTheUserForbadeIsNotRegisteredAndTheReasonIsASentence) {
    world->make(ServiceStatus::requiresApproval);
    const auto result = registerIt();
    ASSERT_FALSE(result);
    EXPECT_FALSE(result.error().localizedDescription.isEmpty());
    EXPECT_EQ(status(), ServiceStatus::requiresApproval);
}

TEST_P(RegisteredServiceContract, WhatIsNotFoundIsNotRegisteredAndTheReasonIsASentence) {
    world->make(ServiceStatus::notFound);
    const auto result = registerIt();
    ASSERT_FALSE(result);
    EXPECT_FALSE(result.error().localizedDescription.isEmpty());
    EXPECT_EQ(status(), ServiceStatus::notFound);
}

TEST_P(RegisteredServiceContract, AWithdrawnRequestIsCarriedOutButNotAnswered) {
    world->make(ServiceStatus::notRegistered);
    ServiceAnswer withdrawn;
    world->service().registerService(withdrawn.remember()).cancel();
    EXPECT_TRUE(waitUntil([this] { return status() == ServiceStatus::enabled; }));
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(withdrawn.count(), 0u);
}

TEST_P(RegisteredServiceContract, RequestsAreCarriedOutInOrder) {
    world->make(ServiceStatus::notRegistered);
    ServiceAnswer first;
    const auto pending = world->service().registerService(first.remember());
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(first.count(), 1u);
    EXPECT_EQ(status(), ServiceStatus::notRegistered);
}

}  // namespace
}  // namespace quietlark

#include "platform/systemd/systemd_fixture.h"

namespace quietlark {
namespace {

class SystemdUserServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!systemd.whyNot().isEmpty()) GTEST_SKIP() << systemd.whyNot().constData();
    }

    void install(const QString& text = sleepingUnit) {
        ASSERT_TRUE(systemd.installUnit(testUnit, text));
    }
    /// As an installation for one user has it: a link, to the unit among the program's own files.
    void installAsLink() {
        install();
        ASSERT_TRUE(systemd.run(
            QStringLiteral("cd $HOME/.local/share/systemd/user && mkdir -p $HOME/.local/opt && "
                           "mv %1 $HOME/.local/opt && ln -s $HOME/.local/opt/%1 %1 && "
                           "systemctl --user daemon-reload")
                .arg(testUnit)));
    }
    void follow() {
        service.emplace(testUnit, systemd.connectToBus());
        ASSERT_TRUE(waitUntil([this] { return service->isKnown(); }));
    }
    bool systemctl(const char* verb) {
        return systemd.run(
            QStringLiteral("systemctl --user %1 %2").arg(QLatin1String(verb), testUnit));
    }
    bool becomes(ServiceStatus status) {
        return waitUntil([this, status] { return service->status() == status; });
    }
    ServiceAnswer::Result registerIt() {
        ServiceAnswer answer;
        const auto pending = service->registerService(answer.remember());
        return answer.await();
    }
    ServiceAnswer::Result unregisterIt() {
        ServiceAnswer answer;
        const auto pending = service->unregisterService(answer.remember());
        return answer.await();
    }

    SystemdUser systemd;
    std::optional<SystemdUserService> service;
};

TEST_F(SystemdUserServiceTest, ADisabledUnitIsNotRegistered) {
    install();
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::notRegistered);
}

TEST_F(SystemdUserServiceTest, AnEnabledUnitIsEnabled) {
    install();
    ASSERT_TRUE(systemctl("enable"));
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::enabled);
}

TEST_F(SystemdUserServiceTest, AMaskedUnitRequiresApproval) {
    install();
    ASSERT_TRUE(systemctl("mask"));
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::requiresApproval);
}

TEST_F(SystemdUserServiceTest, AUnitThatIsMaskedUntilTheNextBootRequiresApproval) {
    install();
    ASSERT_TRUE(systemctl("--runtime mask"));
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::requiresApproval);
}

TEST_F(SystemdUserServiceTest, AUnitThatIsNotInstalledIsNotFound) {
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::notFound);
}

TEST_F(SystemdUserServiceTest, AUnitThatIsInstalledLaterIsSeen) {
    follow();
    install();
    EXPECT_TRUE(becomes(ServiceStatus::notRegistered));
}

TEST_F(SystemdUserServiceTest, RegisteringEnablesAndStarts) {
    install();
    follow();
    EXPECT_TRUE(registerIt());
    EXPECT_EQ(service->status(), ServiceStatus::enabled);
    EXPECT_TRUE(systemctl("is-enabled"));
    EXPECT_TRUE(systemctl("is-active"));
}

TEST_F(SystemdUserServiceTest, UnregisteringStopsAndDisables) {
    install();
    ASSERT_TRUE(systemctl("enable --now"));
    follow();
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(service->status(), ServiceStatus::notRegistered);
    EXPECT_FALSE(systemctl("is-enabled"));
    EXPECT_FALSE(systemctl("is-active"));
}

TEST_F(SystemdUserServiceTest, WhatMayNotBeStoppedIsDisabled) {
    install(QStringLiteral("[Unit]\nRefuseManualStop=yes\n") + sleepingUnit);
    ASSERT_TRUE(systemctl("enable --now"));
    follow();
    EXPECT_FALSE(unregisterIt());
    EXPECT_EQ(service->status(), ServiceStatus::notRegistered);
    EXPECT_FALSE(systemctl("is-enabled"));
}

TEST_F(SystemdUserServiceTest, ALinkedUnitIsNotRegisteredUntilItIsEnabled) {
    installAsLink();
    follow();
    EXPECT_EQ(service->status(), ServiceStatus::notRegistered);
    EXPECT_TRUE(registerIt());
    EXPECT_EQ(service->status(), ServiceStatus::enabled);
    EXPECT_TRUE(systemctl("is-active"));
}

TEST_F(SystemdUserServiceTest, ALinkedUnitIsStillInstalledWhenItIsNoLongerRegistered) {
    installAsLink();
    ASSERT_TRUE(systemctl("enable --now"));
    follow();
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(service->status(), ServiceStatus::notRegistered);
    EXPECT_TRUE(registerIt());
}

TEST_F(SystemdUserServiceTest, ALinkedUnitThatIsEnabledCanBeMaskedByForce) {
    installAsLink();
    ASSERT_TRUE(systemctl("enable --now"));
    follow();
    ASSERT_TRUE(systemctl("mask --now --force"));
    EXPECT_TRUE(becomes(ServiceStatus::requiresApproval));
}

TEST_F(SystemdUserServiceTest, OneRequestWaitsForTheOther) {
    install();
    follow();
    ServiceAnswer first;
    ServiceAnswer second;
    const auto pending = service->registerService(first.remember());
    const auto alsoPending = service->unregisterService(second.remember());
    EXPECT_TRUE(second.await());
    EXPECT_EQ(first.count(), 1u);
    EXPECT_FALSE(systemctl("is-enabled"));
    EXPECT_FALSE(systemctl("is-active"));
}

TEST_F(SystemdUserServiceTest, AWithdrawnRequestIsCarriedOutButNotAnswered) {
    install();
    follow();
    ServiceAnswer withdrawn;
    service->registerService(withdrawn.remember()).cancel();
    EXPECT_TRUE(becomes(ServiceStatus::enabled));
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(withdrawn.count(), 0u);
}

TEST_F(SystemdUserServiceTest, WhatOthersDoIsSeen) {
    install();
    follow();
    ASSERT_TRUE(systemctl("enable"));
    EXPECT_TRUE(becomes(ServiceStatus::enabled));
    ASSERT_TRUE(systemctl("disable"));
    EXPECT_TRUE(becomes(ServiceStatus::notRegistered));
    ASSERT_TRUE(systemctl("mask"));
    EXPECT_TRUE(becomes(ServiceStatus::requiresApproval));
    ASSERT_TRUE(systemctl("unmask"));
    EXPECT_TRUE(becomes(ServiceStatus::notRegistered));
}

TEST_F(SystemdUserServiceTest, EachChangeIsAnnouncedOnce) {
    install();
    follow();
    int announcements = 0;
    QObject::connect(&*service, &SystemdUserService::statusChanged, &*service,
                     [&] { ++announcements; });
    EXPECT_TRUE(registerIt());
    EXPECT_TRUE(unregisterIt());
    EXPECT_EQ(announcements, 2);
}

TEST_F(SystemdUserServiceTest, RegisteringAMaskedUnitSaysHowToAllowIt) {
    install();
    ASSERT_TRUE(systemctl("mask"));
    follow();
    const auto result = registerIt();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().localizedDescription.contains(QStringLiteral("unmask")))
        << result.error().localizedDescription.toStdString();
    EXPECT_EQ(service->status(), ServiceStatus::requiresApproval);
}

TEST_F(SystemdUserServiceTest, RegisteringWhatIsNotInstalledSaysSo) {
    follow();
    const auto result = registerIt();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().localizedDescription.contains(QStringLiteral("not installed")))
        << result.error().localizedDescription.toStdString();
}

TEST_F(SystemdUserServiceTest, AProgramThatDoesNotStartFailsTheRegistrationAndStaysEnabled) {
    install(unitRunning(QStringLiteral("/nonexistent/quietlark-server")));
    follow();
    const auto result = registerIt();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().localizedDescription.contains(QStringLiteral("did not start")))
        << result.error().localizedDescription.toStdString();
    EXPECT_EQ(service->status(), ServiceStatus::enabled);
}

TEST_F(SystemdUserServiceTest, WhatWasGivenUpAfterManyFailuresStartsWhenItsCauseIsGone) {
    const QString limit = QStringLiteral("[Unit]\nStartLimitIntervalSec=300\nStartLimitBurst=2\n");
    install(limit + unitRunning(QStringLiteral("%h/program infinity")));
    ASSERT_TRUE(systemctl("enable"));
    for (int i = 0; i < 2; ++i)
        ASSERT_FALSE(systemctl("start"));
    ASSERT_TRUE(systemd.run(QStringLiteral("ln -s /bin/sleep $HOME/program")));
    ASSERT_FALSE(systemctl("start")) << "the limit holds";
    follow();
    EXPECT_TRUE(registerIt());
    EXPECT_TRUE(systemctl("is-active"));
}

TEST_F(SystemdUserServiceTest, AManagerThatGoesAwayAndComesBackIsFollowedAgain) {
    install();
    ASSERT_TRUE(systemctl("enable"));
    follow();
    // Leaves the bus and joins it again.
    ASSERT_TRUE(systemd.run(QStringLiteral("systemctl --user daemon-reexec")));
    ASSERT_TRUE(systemctl("disable"));
    EXPECT_TRUE(becomes(ServiceStatus::notRegistered));
    EXPECT_TRUE(registerIt());
    EXPECT_EQ(service->status(), ServiceStatus::enabled);
}

TEST_F(SystemdUserServiceTest, AManagerThatDiesKnowsNoService) {
    install();
    ASSERT_TRUE(systemctl("enable"));
    follow();
    ASSERT_TRUE(systemd.run(QStringLiteral("kill -KILL $(pgrep -x systemd)")));
    EXPECT_TRUE(becomes(ServiceStatus::notFound));
    const auto result = registerIt();
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().localizedDescription.contains(QStringLiteral("no service manager")))
        << result.error().localizedDescription.toStdString();
}

}  // namespace
}  // namespace quietlark

#include "app/app_delegate_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

/// The user forbids the local server, and allows it again.
class ApprovalTest : public AppDelegateFixture {};

TEST_F(ApprovalTest, AServerThatComesToNeedApprovalOpensTheServerPaneOnce) {
    installModel();
    launchWith(local());
    service.current = ServiceStatus::requiresApproval;
    wait(1ms);
    tick();
    const int opened = windows.serverTabShownCount();
    EXPECT_GE(opened, 1);
    tick();
    EXPECT_EQ(windows.serverTabShownCount(), opened);
}

TEST_F(ApprovalTest, BeforeTheOnboardingIsCompleteTheServerPaneStaysClosed) {
    Config config = local();
    config.onboardingComplete = false;
    launchWith(config);
    service.current = ServiceStatus::requiresApproval;
    tick();
    EXPECT_EQ(windows.serverTabShownCount(), 0);
}

TEST_F(ApprovalTest, AForbiddenServerThatIsNotChosenOpensNothing) {
    launch();
    service.current = ServiceStatus::requiresApproval;
    tick();
    EXPECT_EQ(windows.serverTabShownCount(), 0);
}

TEST_F(ApprovalTest, AServerThatTheUserAllowsIsStarted) {
    installModel();
    for (const auto allowed : {ServiceStatus::notRegistered, ServiceStatus::enabled}) {
        service.current = ServiceStatus::requiresApproval;
        launchWith(local());
        const auto before = service.requests().size();
        service.current = allowed;
        tick();
        tick();
        EXPECT_EQ(service.requests().mid(before), QStringList{QStringLiteral("register")});
        EXPECT_EQ(service.current, ServiceStatus::enabled);
    }
}

TEST_F(ApprovalTest, AServerThatTheUserAllowsDuringTheOnboardingIsStarted) {
    installModel();
    Config config = local();
    config.onboardingComplete = false;
    service.current = ServiceStatus::requiresApproval;
    launchWith(config);
    service.current = ServiceStatus::notRegistered;
    tick();
    EXPECT_EQ(service.current, ServiceStatus::enabled);
}

TEST_F(ApprovalTest, AServerThatIsAllowedWithoutItsModelWaitsForThat) {
    service.current = ServiceStatus::requiresApproval;
    launchWith(local());
    service.current = ServiceStatus::notRegistered;
    tick();
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(ApprovalTest, AServerThatIsAllowedButNotChosenIsNotStarted) {
    service.current = ServiceStatus::requiresApproval;
    launchWith(unconfigured());
    service.current = ServiceStatus::notRegistered;
    tick();
    EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(ApprovalTest, AForbiddenServerThatVanishesHasNotBeenAllowed) {
    installModel();
    service.current = ServiceStatus::requiresApproval;
    launchWith(local());
    service.current = ServiceStatus::notFound;
    tick();
    EXPECT_TRUE(service.requests().isEmpty());
    EXPECT_TRUE(shell.alerts().empty());
}

}  // namespace
}  // namespace quietlark

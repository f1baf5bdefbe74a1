#include "state/local_server_conditions.h"

#include "state/app_state_fixture.h"

namespace quietlark {
namespace {

class LocalServerConditionsTest : public AppStateFixture {
protected:
    LocalServerConditionsTest() {
        saved(local());
        installModel();
    }

    const LocalServerConditions& server() { return state().localServer(); }

    bool holdsNothing() {
        return !server().serverIsStarting() && !server().serverNeedsApproval() &&
               !server().serverIsStopped();
    }
};

TEST_F(LocalServerConditionsTest, AnEnabledServerStartsUntilItsEndpointFileIsThere) {
    service.current = ServiceStatus::enabled;
    EXPECT_TRUE(server().serverIsStarting());
    serverPublishesItsEndpoint();
    EXPECT_TRUE(holdsNothing());
}

TEST_F(LocalServerConditionsTest, AForbiddenServerNeedsApproval) {
    service.current = ServiceStatus::requiresApproval;
    EXPECT_TRUE(server().serverNeedsApproval());
    EXPECT_FALSE(server().serverIsStarting());
    EXPECT_FALSE(server().serverIsStopped());
}

TEST_F(LocalServerConditionsTest, BeforeTheOnboardingIsCompleteNoApprovalIsNeeded) {
    service.current = ServiceStatus::requiresApproval;
    Config config = local();
    config.onboardingComplete = false;
    state().setConfig(config);
    EXPECT_TRUE(holdsNothing());
}

TEST_F(LocalServerConditionsTest, AServerThatIsNotRegisteredOrNotFoundIsStopped) {
    for (const auto status : {ServiceStatus::notRegistered, ServiceStatus::notFound}) {
        service.current = status;
        EXPECT_TRUE(server().serverIsStopped());
    }
    service.current = ServiceStatus::enabled;
    EXPECT_FALSE(server().serverIsStopped());
}

TEST_F(LocalServerConditionsTest, WithoutTheModelNothingHolds) {
    removeModel();
    for (int status = 0; status < 4; ++status) {
        service.current = ServiceStatus(status);
        EXPECT_TRUE(holdsNothing()) << status;
    }
}

TEST_F(LocalServerConditionsTest, WithAnotherServerChosenNothingHolds) {
    state().setConfig(manualRemote());
    for (int status = 0; status < 4; ++status) {
        service.current = ServiceStatus(status);
        EXPECT_TRUE(holdsNothing()) << status;
    }
}

}  // namespace
}  // namespace quietlark

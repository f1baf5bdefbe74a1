#include "local_server/daemon_controller.h"

#include <optional>

#include <gtest/gtest.h>

#include "fakes/fake_registered_service.h"
#include "fakes/fake_scheduler.h"
#include "fakes/fake_settings_panes.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

using Result = tl::expected<void, ServiceError>;

class DaemonControllerTest : public ::testing::Test {
protected:
    RegisteredService::Done remember() {
        return [this](const Result& result) { answer = result; };
    }
    void awaitAnswer() {
        ASSERT_TRUE(waitUntil([this] { return answer.has_value(); }));
    }

    FakeRegisteredService service;
    FakeSettingsPanes panes;
    FakeScheduler scheduler;
    DaemonController controller{service, panes, scheduler};
    std::optional<Result> answer;
    QObject window;
    int runs = 0;
};

TEST_F(DaemonControllerTest, TheStatusIsReadAnewEachTime) {
    for (const auto status : {ServiceStatus::enabled, ServiceStatus::requiresApproval,
                              ServiceStatus::notFound, ServiceStatus::notRegistered}) {
        service.current = status;
        EXPECT_EQ(controller.status(), status);
    }
}

TEST_F(DaemonControllerTest, RegisteringEnablesTheService) {
    const auto pending = controller.registerService(remember());
    awaitAnswer();
    EXPECT_TRUE(answer->has_value());
    EXPECT_EQ(controller.status(), ServiceStatus::enabled);
}

TEST_F(DaemonControllerTest, UnregisteringTakesTheServiceBack) {
    service.current = ServiceStatus::enabled;
    const auto pending = controller.unregisterService(remember());
    awaitAnswer();
    EXPECT_TRUE(answer->has_value());
    EXPECT_EQ(controller.status(), ServiceStatus::notRegistered);
}

TEST_F(DaemonControllerTest, TheErrorOfTheSystemIsPassedOnUnchanged) {
    service.failure = ServiceError{QStringLiteral("The disk is full.")};
    const auto pending = controller.registerService(remember());
    awaitAnswer();
    ASSERT_FALSE(answer->has_value());
    EXPECT_EQ(answer->error().localizedDescription, QStringLiteral("The disk is full."));
}

TEST_F(DaemonControllerTest, TheHandlerRunsAfterTheDelayAndNotBefore) {
    controller.refreshAfterDelay(300ms, &window, [this] { ++runs; });
    scheduler.advance(299ms);
    EXPECT_EQ(runs, 0);
    scheduler.advance(1ms);
    EXPECT_EQ(runs, 1);
}

TEST_F(DaemonControllerTest, TheHandlerDoesNotRunOnceItsContextIsGone) {
    auto context = std::make_unique<QObject>();
    controller.refreshAfterDelay(300ms, context.get(), [this] { ++runs; });
    context.reset();
    scheduler.advance(1s);
    EXPECT_EQ(runs, 0);
}

TEST_F(DaemonControllerTest, NoOperationCallsTheObserversHook) {
    controller.onStateChange = [this] { ++runs; };
    const auto pending = controller.registerService(remember());
    awaitAnswer();
    controller.refreshAfterDelay(300ms, &window, [] {});
    scheduler.advance(1s);
    EXPECT_EQ(runs, 0);
}

TEST_F(DaemonControllerTest, TheUserIsShownWhereToAllowTheServer) {
    controller.openLoginItemsSettings();
    EXPECT_EQ(panes.opened(), std::vector{SettingsPane::LoginItems});
}

}  // namespace
}  // namespace quietlark

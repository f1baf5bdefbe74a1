#include "local_server/launch_at_login.h"

#include <gtest/gtest.h>

#include "fakes/fake_login_item.h"

namespace quietlark {
namespace {

class LaunchAtLoginTest : public ::testing::Test {
protected:
    void statusIs(ServiceStatus status) { item.current = status; }
    void requestsFail() { item.failure = ServiceError{QStringLiteral("No.")}; }

    [[nodiscard]] QStringList requests() const { return item.requests(); }

    const QStringList none;
    const QStringList once{QStringLiteral("register")};
    const QStringList onceOff{QStringLiteral("unregister")};
    FakeLoginItem item;
    LaunchAtLogin launchAtLogin{item};
};

TEST_F(LaunchAtLoginTest, EnablingWhatIsOnDoesNothingAndAnswersTrue) {
    statusIs(ServiceStatus::enabled);
    EXPECT_TRUE(launchAtLogin.set(true));
    EXPECT_EQ(requests(), none);
}

TEST_F(LaunchAtLoginTest, EnablingWhatIsNotRegisteredRegistersIt) {
    EXPECT_TRUE(launchAtLogin.set(true));
    EXPECT_EQ(requests(), once);
    EXPECT_EQ(item.status(), ServiceStatus::enabled);
}

TEST_F(LaunchAtLoginTest, EnablingWhatAwaitsApprovalRegistersItAgain) {
    statusIs(ServiceStatus::requiresApproval);
    EXPECT_TRUE(launchAtLogin.set(true));
    EXPECT_EQ(requests(), once);
}

TEST_F(LaunchAtLoginTest, EnablingWhatIsNotFoundRegistersIt) {
    statusIs(ServiceStatus::notFound);
    EXPECT_TRUE(launchAtLogin.set(true));
    EXPECT_EQ(requests(), once);
}

TEST_F(LaunchAtLoginTest, DisablingWhatIsOnUnregistersIt) {
    statusIs(ServiceStatus::enabled);
    EXPECT_TRUE(launchAtLogin.set(false));
    EXPECT_EQ(requests(), onceOff);
    EXPECT_EQ(item.status(), ServiceStatus::notRegistered);
}

TEST_F(LaunchAtLoginTest, DisablingWhatAwaitsApprovalDoesNothingAndAnswersTrue) {
    statusIs(ServiceStatus::requiresApproval);
    EXPECT_TRUE(launchAtLogin.set(false));
    EXPECT_EQ(requests(), none);
    EXPECT_EQ(item.status(), ServiceStatus::requiresApproval);
}

TEST_F(LaunchAtLoginTest, DisablingWhatIsNotFoundDoesNothingAndAnswersTrue) {
    statusIs(ServiceStatus::notFound);
    EXPECT_TRUE(launchAtLogin.set(false));
    EXPECT_EQ(requests(), none);
}

TEST_F(LaunchAtLoginTest, DisablingWhatIsNotRegisteredDoesNothingAndAnswersTrue) {
    EXPECT_TRUE(launchAtLogin.set(false));
    EXPECT_EQ(requests(), none);
}

TEST_F(LaunchAtLoginTest, AFailingRegistrationAnswersFalseAndLeavesTheItemOff) {
    requestsFail();
    EXPECT_FALSE(launchAtLogin.set(true));
    EXPECT_NE(item.status(), ServiceStatus::enabled);
}

TEST_F(LaunchAtLoginTest, AFailingUnregistrationAnswersFalseAndLeavesTheItemOn) {
    statusIs(ServiceStatus::enabled);
    requestsFail();
    EXPECT_FALSE(launchAtLogin.set(false));
    EXPECT_EQ(item.status(), ServiceStatus::enabled);
}

}  // namespace
}  // namespace quietlark

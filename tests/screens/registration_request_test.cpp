#include "screens/registration_request.h"

#include "state/app_state_fixture.h"

namespace quietlark {
namespace {

class RegistrationRequestTest : public AppStateFixture {
protected:
    RegistrationRequestTest() {
        QObject::connect(&notifications, &NotificationCenter::posted,
                         [this](const QString& name) { posted << name; });
    }

    QStringList postedFor(const Config& config) {
        state().setConfig(config);
        posted.clear();
        requestMissingRegistration(state(), notifications);
        return posted;
    }

    QStringList posted;
};

TEST_F(RegistrationRequestTest, AServerThatIsNotRegisteredIsToBe) {
    installModel();
    for (const auto status : {ServiceStatus::notRegistered, ServiceStatus::notFound}) {
        service.current = status;
        EXPECT_EQ(postedFor(local()), QStringList{notification::registerDaemonRequested});
    }
}

TEST_F(RegistrationRequestTest, OneThatIsRegisteredOrForbiddenIsLeftAlone) {
    installModel();
    for (const auto status : {ServiceStatus::enabled, ServiceStatus::requiresApproval}) {
        service.current = status;
        EXPECT_EQ(postedFor(local()), QStringList());
    }
}

TEST_F(RegistrationRequestTest, WithoutItsModelItWaits) {
    EXPECT_EQ(postedFor(local()), QStringList());
}

TEST_F(RegistrationRequestTest, AnotherServerNeedsNone) {
    installModel();
    EXPECT_EQ(postedFor(manualRemote()), QStringList());
    EXPECT_EQ(postedFor(unconfigured()), QStringList());
}

}  // namespace
}  // namespace quietlark

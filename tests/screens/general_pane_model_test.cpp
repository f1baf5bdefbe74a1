#include "screens/general_pane_model.h"

#include "fakes/fake_login_item.h"
#include "state/app_state_fixture.h"

namespace quietlark {
namespace {

class GeneralPaneModelTest : public AppStateFixture {
protected:
    FakeLoginItem item;
    GeneralPaneModel model{state(), item, notifications};
};

TEST_F(GeneralPaneModelTest, TheSwitchRegistersTheLoginItemAndIsSaved) {
    model.setLaunchAtLogin(true);
    EXPECT_EQ(item.status(), ServiceStatus::enabled);
    EXPECT_TRUE(Config::load(files.config).launchAtLogin);
    model.setLaunchAtLogin(false);
    EXPECT_EQ(item.status(), ServiceStatus::notRegistered);
    EXPECT_FALSE(Config::load(files.config).launchAtLogin);
}

TEST_F(GeneralPaneModelTest, TheSwitchGoesBackWhereTheDesktopRefuses) {
    item.failure = ServiceError{QStringLiteral("No.")};
    int changes = 0;
    QObject::connect(&model, &GeneralPaneModel::launchAtLoginChanged, [&](bool) { ++changes; });
    model.setLaunchAtLogin(true);
    EXPECT_FALSE(model.launchAtLogin());
    EXPECT_FALSE(Config::load(files.config).launchAtLogin);
    EXPECT_EQ(changes, 1);
}

TEST_F(GeneralPaneModelTest, UninstallingIsLeftToTheApplication) {
    QStringList posted;
    QObject::connect(&notifications, &NotificationCenter::posted,
                     [&posted](const QString& name) { posted << name; });
    model.uninstall();
    EXPECT_EQ(posted, QStringList{notification::uninstallRequested});
}

}  // namespace
}  // namespace quietlark

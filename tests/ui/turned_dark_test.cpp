#include <QImage>

#include "ui/look.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

/// The desktop turns dark while a window is open: then it looks as one that is opened now.
class TurnedDarkTest : public WindowsFixture {
protected:
    ~TurnedDarkTest() override { closeAll(); }

    QImage picture() {
        QApplication::sendPostedEvents();
        return shown().grab().toImage();
    }

    /// Opens the window in light and again in dark.
    void expectNoDifference(Kind kind, const std::function<void()>& openIt) {
        QApplication::setPalette(lightPalette());
        openIt();
        const QImage light = picture();
        QApplication::setPalette(darkPalette());
        const QImage turned = picture();
        windows().close(kind);
        openIt();
        EXPECT_NE(turned, light);
        EXPECT_EQ(turned, picture());
        windows().close(kind);
    }

private:
    const LookInForce m_look{looks[0]};
};

TEST_F(TurnedDarkTest, EveryStepOfTheWizardFollows) {
    for (int step = 0; step < OnboardingModel::totalSteps; ++step) {
        Config config;
        config.onboardingStep = step;
        saved(config);
        state().setConfig(config);
        expectNoDifference(Kind::onboarding, [this] { open(Kind::onboarding); });
    }
}

TEST_F(TurnedDarkTest, EveryTabOfPreferencesFollows) {
    saved(local());
    installModel();
    service.current = ServiceStatus::requiresApproval;
    for (const PrefsTab tab : allPrefsTabs)
        expectNoDifference(Kind::preferences, [this, tab] {
            open(Kind::preferences).findChild<PrefsView*>()->select(tab);
        });
}

TEST_F(TurnedDarkTest, ThePermissionsAlertFollows) {
    expectNoDifference(Kind::permissionsAlert, [this] { open(Kind::permissionsAlert); });
}

}  // namespace
}  // namespace quietlark

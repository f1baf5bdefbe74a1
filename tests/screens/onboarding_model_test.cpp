#include "screens/onboarding_model.h"

#include "screens/permission_fixture.h"

namespace quietlark {
namespace {

using Readiness = DoneReadiness::Case;

class OnboardingModelTest : public PermissionFixture {
protected:
    OnboardingModel& wizard(std::int64_t savedStep = 0) {
        Config config;
        config.onboardingStep = savedStep;
        saved(config);
        m_wizard = std::make_unique<OnboardingModel>(state(), permissions, scheduler);
        m_wizard->appear();
        return *m_wizard;
    }

    Config onDisk() const { return Config::load(files.config); }

private:
    std::unique_ptr<OnboardingModel> m_wizard;
};

TEST_F(OnboardingModelTest, ASavedStepBeyondTheLastOpensTheDoneStep) {
    EXPECT_EQ(wizard(7).step(), OnboardingModel::doneStep);
}

TEST_F(OnboardingModelTest, ASavedStepBelowZeroOpensTheWelcomeStep) {
    EXPECT_EQ(wizard(-1).step(), OnboardingModel::welcomeStep);
}

TEST_F(OnboardingModelTest, WithOnlyLocalNetworkMissingNextStaysDisabled) {
    grantAllButLocalNetwork();
    auto& shown = wizard(OnboardingModel::permissionsStep);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_FALSE(shown.canAdvance());
    localNetwork = true;
    scheduler.advance(PermissionPoll::interval);
    EXPECT_TRUE(shown.canAdvance());
}

TEST_F(OnboardingModelTest, AGrantGivenMeanwhileFlipsItsRowWithinASecond) {
    auto& shown = wizard(OnboardingModel::permissionsStep);
    EXPECT_FALSE(shown.permissionRows()[1].isGranted);
    privacy.grant(PrivacyGrant::InputMonitoring);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_TRUE(shown.permissionRows()[1].isGranted);
}

TEST_F(OnboardingModelTest, AHoldHotkeyOfBlanksCountsAsEmptyAndAnEmptyToggleDoesNotBlock) {
    auto& shown = wizard(OnboardingModel::hotkeyStep);
    EXPECT_TRUE(shown.canAdvance());
    Config config = state().config();
    config.hotkey = text(" \n");
    state().setConfig(config);
    EXPECT_FALSE(shown.canAdvance());
}

TEST_F(OnboardingModelTest, FinishIsEnabledOnlyWhenReadyOrDeferred) {
    auto& shown = wizard(OnboardingModel::doneStep);
    for (const auto kind : {Readiness::checking, Readiness::connecting, Readiness::downloading,
                            Readiness::awaitingApproval, Readiness::failed}) {
        shown.setDoneReadiness({kind});
        EXPECT_FALSE(shown.canAdvance());
    }
    for (const auto kind : {Readiness::ready, Readiness::deferred}) {
        shown.setDoneReadiness({kind});
        EXPECT_TRUE(shown.canAdvance());
    }
}

TEST_F(OnboardingModelTest, EveryStepIsSavedSoThatTheWizardReopensThere) {
    auto& shown = wizard();
    shown.next();
    EXPECT_EQ(onDisk().onboardingStep, 1);
    shown.back();
    EXPECT_EQ(onDisk().onboardingStep, 0);
}

TEST_F(OnboardingModelTest, AServerThatIsChosenLeadsOnFromItsStepOnly) {
    auto& shown = wizard(OnboardingModel::serverStep);
    shown.onServerCommitted();
    EXPECT_EQ(shown.step(), OnboardingModel::permissionsStep);
    shown.onServerCommitted();
    EXPECT_EQ(shown.step(), OnboardingModel::permissionsStep);
}

TEST_F(OnboardingModelTest, TheLastStepFinishesAndSavesThat) {
    auto& shown = wizard(OnboardingModel::doneStep);
    int finished = 0;
    QObject::connect(&shown, &OnboardingModel::finished, [&finished] { ++finished; });
    EXPECT_EQ(shown.nextTitle(), text("Finish"));
    shown.next();
    EXPECT_EQ(finished, 1);
    EXPECT_TRUE(onDisk().onboardingComplete);
    EXPECT_EQ(shown.step(), OnboardingModel::doneStep);
}

TEST_F(OnboardingModelTest, TheWelcomeStepHasNoWayBack) {
    auto& shown = wizard();
    EXPECT_FALSE(shown.canGoBack());
    EXPECT_TRUE(shown.canAdvance());
    EXPECT_EQ(shown.nextTitle(), text("Next"));
}

TEST_F(OnboardingModelTest, TheNetworkIsSearchedWhileTheWizardIsShown) {
    auto& shown = wizard();
    EXPECT_EQ(browser.browseCount(), 1u);
    shown.disappear();
    EXPECT_EQ(browser.browseCount(), 0u);
}

TEST_F(OnboardingModelTest, AHiddenWizardLooksForNoGrants) {
    auto& shown = wizard(OnboardingModel::permissionsStep);
    shown.disappear();
    grantAll();
    scheduler.advance(PermissionPoll::interval * 2);
    EXPECT_FALSE(shown.canAdvance());
}

}  // namespace
}  // namespace quietlark

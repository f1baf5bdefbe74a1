#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>

#include "ui/held_key.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

class WindowsTest : public WindowsFixture {
protected:
    ~WindowsTest() override { closeAll(); }

    QWidget& openOnboarding(int step, Config config = {}) {
        config.onboardingStep = step;
        config.onboardingComplete = false;
        saved(config);
        return open(Kind::onboarding);
    }
};

TEST_F(WindowsTest, TheAlertListsWhatIsMissingAndShrinksAsItIsGranted) {
    open(Kind::permissionsAlert);
    EXPECT_TRUE(reads("Quietlark needs your permission"));
    EXPECT_TRUE(button("Grant: Microphone"));
    privacy.grant(PrivacyGrant::Microphone);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_FALSE(button("Grant: Microphone"));
    EXPECT_TRUE(button("Grant: Accessibility"));
    EXPECT_EQ(timesAllGranted, 0);
    grantAll();
    scheduler.advance(PermissionPoll::interval);
    EXPECT_EQ(timesAllGranted, 1);
}

TEST_F(WindowsTest, TheAlertLooksNoMoreOnceItIsClosed) {
    open(Kind::permissionsAlert).close();
    grantAll();
    scheduler.advance(PermissionPoll::interval * 2);
    EXPECT_EQ(timesAllGranted, 0);
}

TEST_F(WindowsTest, AGrantButtonKeepsTheFocusWhenAnotherRowGoes) {
    open(Kind::permissionsAlert);
    button("Grant: Accessibility")->setFocus();
    privacy.grant(PrivacyGrant::Microphone);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_EQ(QApplication::focusWidget(), button("Grant: Accessibility"));
}

TEST_F(WindowsTest, AGrantButtonThatGoesLeavesTheFocusToTheNext) {
    for (const Kind kind : {Kind::permissionsAlert, Kind::onboarding}) {
        privacy.revoke(PrivacyGrant::InputMonitoring);
        kind == Kind::onboarding ? openOnboarding(OnboardingModel::permissionsStep) : open(kind);
        button("Grant: Input Monitoring")->setFocus();
        privacy.grant(PrivacyGrant::InputMonitoring);
        scheduler.advance(PermissionPoll::interval);
        EXPECT_EQ(QApplication::focusWidget(), button("Grant: Accessibility"));
        windows().close(kind);
    }
}

TEST_F(WindowsTest, TheLastGrantButtonThatGoesLeavesTheFocusToTheFirst) {
    openOnboarding(OnboardingModel::permissionsStep);
    button("Grant: Local Network")->setFocus();
    localNetwork = true;
    scheduler.advance(PermissionPoll::interval);
    EXPECT_EQ(QApplication::focusWidget(), button("Grant: Microphone"));
}

TEST_F(WindowsTest, AfterTheLastGrantReturnGoesOn) {
    grantAll();
    privacy.revoke(PrivacyGrant::Microphone);
    openOnboarding(OnboardingModel::permissionsStep);
    button("Grant: Microphone")->setFocus();
    privacy.grant(PrivacyGrant::Microphone);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_TRUE(button("Next")->hasFocus());
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Pick your hotkeys"));
}

TEST_F(WindowsTest, TheWizardIsWalkedThroughByReturnAlone) {
    grantAll();
    openOnboarding(OnboardingModel::welcomeStep);
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Where should Quietlark transcribe?"));
    installModel();
    service.current = ServiceStatus::enabled;
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Grant permissions"));
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Pick your hotkeys"));
    serverPublishesItsEndpoint();
    serverAnswersAt("http://127.0.0.1:9000");
    press(Qt::Key_Return);
    network.runAnswers();
    EXPECT_TRUE(reads("You're all set!"));
    press(Qt::Key_Return);
    EXPECT_EQ(onboardingsFinished, 1);
    EXPECT_TRUE(state().config().onboardingComplete);
}

TEST_F(WindowsTest, ReturnDoesNotPassAStepThatIsNotComplete) {
    openOnboarding(OnboardingModel::permissionsStep);
    EXPECT_FALSE(button("Next")->isEnabled());
    QTest::keyClick(&shown(), Qt::Key_Return);
    EXPECT_TRUE(reads("Grant permissions"));
}

TEST_F(WindowsTest, TheServerStepLeadsBackToTheWelcome) {
    openOnboarding(OnboardingModel::serverStep);
    auto* back = shown().findChild<QPushButton*>(text("back"));
    EXPECT_TRUE(back->isVisible());
    shown().findChild<QAbstractButton*>(text("network"))->click();
    press(Qt::Key_Return);
    EXPECT_FALSE(back->isVisible());
    press(Qt::Key_Escape);
    EXPECT_TRUE(back->isVisible());
    back->click();
    EXPECT_TRUE(reads("Welcome to Quietlark"));
    EXPECT_EQ(Config::load(files.config).onboardingStep, OnboardingModel::welcomeStep);
}

TEST_F(WindowsTest, ReturnOnTheWayBackGoesBack) {
    grantAll();
    openOnboarding(OnboardingModel::permissionsStep);
    button("Back")->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(reads("Where should Quietlark transcribe?"));
}

TEST_F(WindowsTest, AKeyThatIsHeldTakesOneStepOfTheWizard) {
    grantAll();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        openOnboarding(OnboardingModel::welcomeStep);
        hold(key);
        EXPECT_TRUE(reads("Where should Quietlark transcribe?"));
        shown().findChild<QPushButton*>(text("back"))->click();
        windows().close(Kind::onboarding);
    }
    scheduler.runPosted();
    EXPECT_EQ(fetcher.fetchCount(), 0);
    EXPECT_EQ(storedMode(), ServerMode(Unconfigured{}));
}

TEST_F(WindowsTest, AHeldReturnStoresTheServerAndGoesNoFurther) {
    grantAll();
    openOnboarding(OnboardingModel::serverStep);
    hold(Qt::Key_Return);
    EXPECT_EQ(storedMode(), ServerMode(Local{}));
    EXPECT_TRUE(reads("Grant permissions"));
}

TEST_F(WindowsTest, TheButtonThatReturnClicksIsTheOnlyOneMarked) {
    grantAll();
    openOnboarding(OnboardingModel::permissionsStep);
    auto* const next = qobject_cast<QPushButton*>(button("Next"));
    auto* const back = qobject_cast<QPushButton*>(button("Back"));
    EXPECT_TRUE(next->isDefault());
    EXPECT_FALSE(back->isDefault());
    back->setFocus();
    EXPECT_FALSE(next->isDefault());
    EXPECT_TRUE(back->isDefault());
    next->setFocus();
    EXPECT_TRUE(next->isDefault());
    EXPECT_FALSE(back->isDefault());
}

TEST_F(WindowsTest, TheFocusWaitsForTheWayOn) {
    openOnboarding(OnboardingModel::permissionsStep);
    EXPECT_FALSE(button("Back")->hasFocus());
    grantAll();
    scheduler.advance(PermissionPoll::interval);
    EXPECT_TRUE(button("Next")->hasFocus());
}

TEST_F(WindowsTest, ADownloadThatFailedIsTriedAgainByItsButton) {
    saved(local());
    for (const auto& openIt : {std::function<void()>([this] { windows().showServerTab(); }),
                               std::function<void()>([this] { open(Kind::onboarding); })}) {
        Config config = local();
        config.onboardingStep = OnboardingModel::doneStep;
        state().setConfig(config);
        openIt();
        state().modelDownloader().start();
        scheduler.runPosted();
        EXPECT_FALSE(button("Try Again"));
        fetcher.fail(text("No."));
        scheduler.runPosted();
        EXPECT_TRUE(reads("Download failed: No."));
        button("Try Again")->click();
        scheduler.runPosted();
        EXPECT_EQ(state().modelDownloader().state().kind,
                  ModelDownloader::State::Case::downloading);
        shown().close();
        fetcher.fail(text("No."));
        scheduler.runPosted();
    }
}

TEST_F(WindowsTest, TheWizardReopensAtTheStepItWasClosedAt) {
    openOnboarding(OnboardingModel::hotkeyStep);
    QTest::mouseClick(button("Back"), Qt::LeftButton);
    windows().close(Kind::onboarding);
    open(Kind::onboarding);
    EXPECT_TRUE(reads("Grant permissions"));
}

TEST_F(WindowsTest, TheTrialBoxTakesText) {
    serverAnswersAt("http://box:8080");
    openOnboarding(OnboardingModel::doneStep, manualRemote());
    network.runAnswers();
    auto* box = shown().findChild<QPlainTextEdit*>();
    QTest::mouseClick(box->viewport(), Qt::LeftButton);
    QTest::keyClicks(QApplication::focusWidget(), text("hello"));
    press(Qt::Key_Return);
    EXPECT_EQ(box->toPlainText(), text("hello\n"));
    EXPECT_EQ(onboardingsFinished, 0);
}

TEST_F(WindowsTest, AWindowThatIsClosedByWhatItSaysItselfGoesOnlyAfterwards) {
    openOnboarding(OnboardingModel::doneStep);
    const QPointer view = shown().findChild<OnboardingView*>();
    QObject::connect(view, &OnboardingView::finished, &windows(),
                     [this] { windows().close(Kind::onboarding); });
    button("Finish")->click();
    ASSERT_TRUE(view);
    EXPECT_FALSE(view->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(view);
}

TEST_F(WindowsTest, EverythingThatTakesTheFocusHasAName) {
    for (const int step : {0, 1, 2, 3, 4}) {
        openOnboarding(step);
        for (const QWidget* widget : shown().findChildren<QWidget*>()) {
            const auto* named = qobject_cast<const QAbstractButton*>(widget);
            if (!named || !named->isVisible() || named->focusPolicy() == Qt::NoFocus) continue;
            EXPECT_FALSE(named->text().isEmpty() && named->accessibleName().isEmpty());
        }
        windows().close(Kind::onboarding);
    }
}

}  // namespace
}  // namespace quietlark

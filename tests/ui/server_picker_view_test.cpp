#include <QAccessible>
#include <QPushButton>

#include "ui/held_key.h"
#include "ui/picker_view_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

using ServerPickerViewTest = PickerViewFixture;

TEST_F(ServerPickerViewTest, TheCardsSayWhatTheyStandFor) {
    installModel();
    view();
    EXPECT_TRUE(reads("Where should Quietlark transcribe?"));
    EXPECT_EQ(card("local").text(), text("On this Mac"));
    EXPECT_EQ(card("local").subtitle(), text("Transcribe on this Mac."));
    EXPECT_EQ(card("network").text(), text("On the network"));
    EXPECT_EQ(card("network").subtitle(), text("Looking…"));
}

TEST_F(ServerPickerViewTest, TheNetworkCardFollowsTheSearch) {
    view();
    scheduler.advance(ServerStep::initialScan);
    EXPECT_EQ(card("network").subtitle(), text("None found. Enter an address manually."));
    publish("Box", "20");
    EXPECT_EQ(card("network").subtitle(), text("1 server found."));
    EXPECT_EQ(card("local").subtitle(),
              text("Slower than a server on your network. 1.6 GB model download."));
}

TEST_F(ServerPickerViewTest, TheNetworkIsSearchedWhileTheWindowIsThere) {
    view();
    EXPECT_EQ(browser.browseCount(), 1U);
    view().hide();
    EXPECT_EQ(browser.browseCount(), 0U);
    view().show();
    EXPECT_EQ(browser.browseCount(), 1U);
    close();
    EXPECT_EQ(browser.browseCount(), 0U);
}

TEST_F(ServerPickerViewTest, TheConfiguredCardIsMarkedAndHasTheFocus) {
    saved(manualRemote());
    view();
    EXPECT_TRUE(card("network").isChecked());
    EXPECT_FALSE(card("local").isChecked());
    EXPECT_TRUE(card("network").hasFocus());
}

TEST_F(ServerPickerViewTest, AClickAnywhereOnACardChoosesIt) {
    view();
    ServerCard& clicked = card("network");
    QTest::mouseClick(&clicked, Qt::LeftButton, {}, clicked.rect().bottomRight() - QPoint(9, 9));
    EXPECT_EQ(model().cardSelection(), Card::network);
    EXPECT_FALSE(card("local").isChecked());
}

TEST_F(ServerPickerViewTest, TheKeyboardAloneLeadsToAServer) {
    publish("Attic");
    publish("Box");
    view();
    press(Qt::Key_Down);
    EXPECT_EQ(model().cardSelection(), Card::network);
    press(Qt::Key_Return);
    ASSERT_EQ(model().phase(), Phase::remoteList);
    EXPECT_TRUE(list().hasFocus());
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(storedMode(), ServerMode(DiscoveredRemote{text("Box"), text("box.local"), 8001}));
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ServerPickerViewTest, TheKeyboardAloneLeadsToAnAddress) {
    serverAnswersAt("http://box:8001");
    showList();
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    ASSERT_EQ(model().phase(), Phase::manualEntry);
    EXPECT_TRUE(address().hasFocus());
    write("box:8001");
    pauseAndCheck();
    press(Qt::Key_Return);
    EXPECT_EQ(storedMode(), ServerMode(ManualRemote{text("box"), 8001, text("http")}));
}

TEST_F(ServerPickerViewTest, EscapeLeadsBackAndThenCancels) {
    options.offersCancel = true;
    showManualEntry();
    press(Qt::Key_Escape);
    EXPECT_EQ(model().phase(), Phase::cards);
    press(Qt::Key_Escape);
    EXPECT_EQ(model().cancelTick(), 1);
}

TEST_F(ServerPickerViewTest, EscapeDoesNotLeaveTheChoiceOpen) {
    options.allowFinishLater = true;
    view();
    press(Qt::Key_Escape);
    EXPECT_EQ(model().commitTick(), 0);
}

TEST_F(ServerPickerViewTest, TheTabKeyGoesFromTheCardsOverTheWayOutToConnect) {
    options.offersCancel = true;
    view();
    EXPECT_TRUE(card("local").hasFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(button("leave").hasFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(button("connect").hasFocus());
}

TEST_F(ServerPickerViewTest, ReturnOnTheWayOutTakesIt) {
    showManualEntry();
    button("leave").setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(model().phase(), Phase::cards);
    EXPECT_FALSE(isSaved());
}

TEST_F(ServerPickerViewTest, TheButtonThatReturnClicksIsTheOnlyOneMarked) {
    publish("Box");
    showList();
    auto& connect = static_cast<QPushButton&>(button("connect"));
    EXPECT_TRUE(connect.isDefault());
    for (auto* other : view().findChildren<QPushButton*>()) {
        if (!other->isVisible() || other == &connect) continue;
        other->setFocus();
        EXPECT_TRUE(other->isDefault()) << other->text().toStdString();
        EXPECT_FALSE(connect.isDefault()) << other->text().toStdString();
    }
    list().setFocus();
    for (const auto* other : view().findChildren<QPushButton*>())
        EXPECT_EQ(other->isDefault(), other == &connect) << other->text().toStdString();
}

TEST_F(ServerPickerViewTest, AHeldReturnTakesOneStep) {
    publish("Box");
    view();
    model().setListSelection(idOf("Box"));
    press(Qt::Key_Down);
    hold(Qt::Key_Return);
    EXPECT_EQ(model().phase(), Phase::remoteList);
    EXPECT_FALSE(isSaved());
    hold(Qt::Key_Return);
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ServerPickerViewTest, AHeldEscapeTakesOneStepBack) {
    options.offersCancel = true;
    showManualEntry();
    hold(Qt::Key_Escape);
    EXPECT_EQ(model().phase(), Phase::cards);
    EXPECT_EQ(model().cancelTick(), 0);
}

TEST_F(ServerPickerViewTest, TheWayOutHasItsName) {
    options.allowFinishLater = true;
    view();
    EXPECT_EQ(button("leave").text(), text("Finish later"));
    model().setPhase(Phase::remoteList);
    EXPECT_EQ(button("leave").text(), text("Back"));
}

TEST_F(ServerPickerViewTest, CancelIsOfferedWhereTheHostOffersIt) {
    options.offersCancel = true;
    view();
    EXPECT_EQ(button("leave").text(), text("Cancel"));
}

TEST_F(ServerPickerViewTest, WithoutAWayOutThereIsNoButton) {
    view();
    EXPECT_FALSE(button("leave").isVisible());
    EXPECT_EQ(button("connect").text(), text("Connect"));
}

TEST_F(ServerPickerViewTest, ConnectWaitsForAServer) {
    publish("Box");
    showList();
    EXPECT_FALSE(button("connect").isEnabled());
    model().setListSelection(idOf("Box"));
    EXPECT_TRUE(button("connect").isEnabled());
    withdraw("Box");
    EXPECT_FALSE(button("connect").isEnabled());
}

TEST_F(ServerPickerViewTest, TheAddressFieldShowsHowItsCheckStands) {
    serverAnswersAt("http://box:2");
    showManualEntry();
    EXPECT_TRUE(reads("Enter a server address"));
    EXPECT_EQ(address().placeholderText(), text("host:port"));
    write("box:1");
    pauseAndCheck();
    EXPECT_TRUE(reads("Can't reach that server"));
    EXPECT_FALSE(button("connect").isEnabled());
    press(Qt::Key_Backspace);
    write("2");
    scheduler.advance(500ms);
    EXPECT_TRUE(reads("Checking…"));
    network.runAnswers();
    EXPECT_TRUE(reads("Connected"));
    EXPECT_TRUE(button("connect").isEnabled());
}

TEST_F(ServerPickerViewTest, TheAddressFieldTellsAScreenReaderHowItsCheckStands) {
    showManualEntry();
    const auto described = [this] { return address().accessibleDescription(); };
    const QString examples = described();
    EXPECT_TRUE(examples.startsWith(text("For example")));
    write("box:1");
    scheduler.advance(500ms);
    EXPECT_EQ(described(), text("Checking…"));
    network.runAnswers();
    EXPECT_EQ(described(), text("Can't reach that server"));
    press(Qt::Key_Backspace);
    EXPECT_EQ(described(), examples);
}

TEST_F(ServerPickerViewTest, AnEditTakesTheResultBeforeItAway) {
    serverAnswersAt("http://box:2");
    showManualEntry();
    write("box:2");
    pauseAndCheck();
    write("3");
    EXPECT_FALSE(reads("Connected"));
    press(Qt::Key_Return);
    EXPECT_EQ(model().commitTick(), 0);
}

TEST_F(ServerPickerViewTest, AnAddressThatIsEditedDuringItsCheckIsSeenToBeCheckedAgain) {
    showManualEntry();
    write("box:1");
    scheduler.advance(500ms);
    write("2");
    EXPECT_FALSE(reads("Checking…"));
    scheduler.advance(500ms);
    EXPECT_TRUE(reads("Checking…"));
}

TEST_F(ServerPickerViewTest, TheConfiguredAddressIsPrefilledAndChecked) {
    saved(manual("box", 443, "https"));
    showManualEntry();
    EXPECT_EQ(address().text(), text("https://box:443"));
    scheduler.advance(500ms);
    EXPECT_EQ(network.openCount(), 1U);
}

TEST_F(ServerPickerViewTest, LeavingTheAddressFieldEndsItsCheck) {
    showManualEntry();
    write("box:1");
    model().leave();
    scheduler.advance(10s);
    EXPECT_EQ(network.requests().size(), 0U);
}

TEST_F(ServerPickerViewTest, TheCursorStaysWhileTheCheckReports) {
    showManualEntry();
    write("bx:1");
    address().setCursorPosition(1);
    write("o");
    pauseAndCheck();
    EXPECT_EQ(address().text(), text("box:1"));
    EXPECT_EQ(address().cursorPosition(), 2);
}

TEST_F(ServerPickerViewTest, AScreenReaderKnowsTheCards) {
    view();
    QAccessibleInterface* const local = QAccessible::queryAccessibleInterface(&card("local"));
    EXPECT_EQ(local->role(), QAccessible::RadioButton);
    EXPECT_EQ(local->text(QAccessible::Name), text("On this Mac"));
    EXPECT_EQ(local->text(QAccessible::Description), card("local").subtitle());
    EXPECT_TRUE(local->state().checked);
}

TEST_F(ServerPickerViewTest, AScreenReaderKnowsTheListAndTheField) {
    view();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&list())->text(QAccessible::Name),
              text("Servers on your local network"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&address())->text(QAccessible::Name),
              text("Enter a server address"));
}

TEST_F(ServerPickerViewTest, ACardIsHigherWhereItIsNarrow) {
    view();
    EXPECT_GT(card("local").heightForWidth(180), card("local").heightForWidth(600));
}

}  // namespace
}  // namespace quietlark

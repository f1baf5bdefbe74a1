#include "picker/server_picker_model.h"

#include "picker/picker_fixture.h"

namespace quietlark {
namespace {

class ServerPickerModelTest : public PickerFixture {
protected:
    /// The card that is selected when the screen first appears.
    Card firstCard() {
        model().onAppear();
        return model().cardSelection();
    }

    void choose(const char* name) {
        model().setPhase(Phase::remoteList);
        model().setListSelection(idOf(name));
    }
};

TEST_F(ServerPickerModelTest, EverythingStartsAtItsInitialValue) {
    EXPECT_EQ(model().phase(), Phase::cards);
    EXPECT_EQ(model().cardSelection(), Card::local);
    EXPECT_EQ(model().listSelection(), std::nullopt);
    EXPECT_EQ(model().manualHostPort(), QString());
    EXPECT_EQ(model().manualProbe(), ProbeState());
    EXPECT_EQ(model().commitTick(), 0);
    EXPECT_EQ(model().cancelTick(), 0);
}

TEST_F(ServerPickerModelTest, UnconfiguredWithAFasterServerTheNetworkCardStartsSelected) {
    publish("Box", "12.0");
    EXPECT_EQ(firstCard(), Card::network);
}

TEST_F(ServerPickerModelTest, UnconfiguredWithoutAFasterServerTheLocalCardStartsSelected) {
    publish("Box", "9.0");
    publish("Unrated");
    EXPECT_EQ(firstCard(), Card::local);
}

TEST_F(ServerPickerModelTest, UnconfiguredWithAnUnknownProcessorTheLocalCardStartsSelected) {
    processor.brand = text("AMD EPYC");
    publish("Box", "90.0");
    EXPECT_EQ(firstCard(), Card::local);
}

TEST_F(ServerPickerModelTest, WithLocalConfiguredItStartsOnLocalWhateverTheNetworkOffers) {
    saved(local());
    publish("Box", "90.0");
    EXPECT_EQ(firstCard(), Card::local);
}

TEST_F(ServerPickerModelTest, WithARemoteConfiguredItStartsOnTheNetwork) {
    saved(discoveredRemote());
    EXPECT_EQ(firstCard(), Card::network);
}

TEST_F(ServerPickerModelTest, WithAManualRemoteConfiguredItStartsOnTheNetwork) {
    saved(manualRemote());
    EXPECT_EQ(firstCard(), Card::network);
}

TEST_F(ServerPickerModelTest, TheCardIsSelectedOnTheFirstAppearanceOnly) {
    saved(manualRemote());
    model().onAppear();
    model().setCardSelection(Card::local);
    model().onAppear();
    EXPECT_EQ(model().cardSelection(), Card::local);
}

TEST_F(ServerPickerModelTest, TheCardsCanAlwaysAdvance) {
    EXPECT_TRUE(model().canAdvance());
}

TEST_F(ServerPickerModelTest, TheListAdvancesOnceAServerIsChosen) {
    model().setPhase(Phase::remoteList);
    EXPECT_FALSE(model().canAdvance());
    model().setListSelection(idOf("Box"));
    EXPECT_TRUE(model().canAdvance());
}

TEST_F(ServerPickerModelTest, AdvancingFromTheNetworkCardOnlyShowsTheList) {
    model().setCardSelection(Card::network);
    model().advance();
    EXPECT_EQ(model().phase(), Phase::remoteList);
    EXPECT_FALSE(isSaved());
    EXPECT_EQ(model().commitTick(), 0);
}

TEST_F(ServerPickerModelTest, AdvancingFromTheLocalCardStoresItAndFetchesTheModel) {
    model().advance();
    EXPECT_EQ(storedMode(), ServerMode(Local{}));
    scheduler.runPosted();
    EXPECT_TRUE(fetcher.isFetching());
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ServerPickerModelTest, AModelThatIsThereIsNotFetched) {
    installModel();
    model().commitLocal();
    scheduler.runPosted();
    EXPECT_EQ(fetcher.fetchCount(), 0);
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ServerPickerModelTest, TheModelIsStartedBeforeTheHostHearsOfTheChoice) {
    bool isStored = false;
    int fetches = 0;
    QObject::connect(&model(), &ServerPickerModel::commitTickChanged, &model(), [&] {
        isStored = storedMode() == ServerMode(Local{});
        fetches = fetcher.fetchCount();
    });
    model().commitLocal();
    EXPECT_TRUE(isStored);
    EXPECT_EQ(fetches, 1);
}

TEST_F(ServerPickerModelTest, AChosenServerIsStoredWithItsHostAndPort) {
    publish("Attic");
    publish("Box", "12.0");
    choose("Box");
    model().advance();
    EXPECT_EQ(storedMode(), ServerMode(DiscoveredRemote{text("Box"), text("box.local"), 8001}));
    EXPECT_EQ(model().commitTick(), 1);
    scheduler.runPosted();
    EXPECT_EQ(fetcher.fetchCount(), 0);
}

TEST_F(ServerPickerModelTest, WithoutAChosenServerNothingIsStored) {
    publish("Box");
    model().commitSelectedRemote();
    EXPECT_FALSE(isSaved());
    EXPECT_EQ(model().commitTick(), 0);
}

TEST_F(ServerPickerModelTest, AServerThatHasDisappearedIsNotStored) {
    publish("Box");
    choose("Box");
    withdraw("Box");
    model().advance();
    EXPECT_FALSE(isSaved());
    EXPECT_EQ(model().commitTick(), 0);
    EXPECT_TRUE(model().canAdvance());
    EXPECT_FALSE(model().canConnect());
}

TEST_F(ServerPickerModelTest, AServerThatComesBackIsStillChosen) {
    publish("Box");
    choose("Box");
    withdraw("Box");
    publish("Box");
    EXPECT_TRUE(model().canConnect());
}

TEST_F(ServerPickerModelTest, FinishingLaterLeavesTheServerOpen) {
    saved(local());
    model().commitFinishLater();
    EXPECT_EQ(storedMode(), ServerMode(Unconfigured{}));
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ServerPickerModelTest, TheRestOfTheSettingsStays) {
    Config config = manualRemote();
    config.language = text("de");
    saved(config);
    model().commitLocal();
    config.serverMode = Local{};
    EXPECT_EQ(Config::load(files.config), config);
}

TEST_F(ServerPickerModelTest, TheSameModeAgainIsSavedAndCounted) {
    saved(local());
    model().commitLocal();
    QFile::remove(files.config);
    model().commitLocal();
    EXPECT_EQ(storedMode(), ServerMode(Local{}));
    EXPECT_EQ(model().commitTick(), 2);
}

TEST_F(ServerPickerModelTest, TheSameModeAgainLeavesDictationItsServer) {
    saved(discoveredRemote());
    serverAnswersAt("http://box.local:8001");
    const auto firstTime = dictate();
    publish("Box");
    choose("Box");
    model().advance();
    EXPECT_EQ(model().commitTick(), 1);
    EXPECT_LT(dictate(), firstTime);
}

TEST_F(ServerPickerModelTest, AnotherModeMakesDictationLookForItsServer) {
    saved(discoveredRemote());
    serverAnswersAt("http://box.local:8001");
    const auto firstTime = dictate();
    model().commitLocal();
    publish("Box");
    choose("Box");
    model().advance();
    EXPECT_EQ(dictate(), firstTime);
}

TEST_F(ServerPickerModelTest, AServerChosenFromTheListIsUsedByTheNextDictation) {
    publish("Box");
    choose("Box");
    model().advance();
    serverAnswersAt("http://box.local:8001");
    EXPECT_GT(dictate(), 0U);
    EXPECT_EQ(network.requestedUrls().back(),
              text("http://box.local:8001/api/v1/audio/transcriptions"));
}

TEST_F(ServerPickerModelTest, AChoiceThatCannotBeSavedStillHolds) {
    QFile obstacle(directory.filePath(text("Quietlark")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    model().commitLocal();
    EXPECT_EQ(state().config().serverMode, ServerMode(Local{}));
    EXPECT_EQ(model().commitTick(), 1);
}

TEST_F(ServerPickerModelTest, FromListAndAddressTheWayOutLeadsBackToTheCards) {
    options.offersCancel = true;
    for (const Phase phase : {Phase::remoteList, Phase::manualEntry}) {
        model().setPhase(phase);
        EXPECT_EQ(model().wayOut(), WayOut::back);
        model().leave();
        EXPECT_EQ(model().phase(), Phase::cards);
    }
}

TEST_F(ServerPickerModelTest, FromTheCardsTheHostDecidesOnTheWayOut) {
    EXPECT_EQ(model().wayOut(), WayOut::none);
    model().leave();
    EXPECT_EQ(model().commitTick() + model().cancelTick(), 0);
}

TEST_F(ServerPickerModelTest, AHostThatOffersCancelHearsOfIt) {
    options.offersCancel = true;
    EXPECT_EQ(model().wayOut(), WayOut::cancel);
    model().leave();
    EXPECT_EQ(model().cancelTick(), 1);
    EXPECT_FALSE(isSaved());
}

TEST_F(ServerPickerModelTest, AHostThatAllowsToFinishLaterHearsOfACommit) {
    options.allowFinishLater = true;
    EXPECT_EQ(model().wayOut(), WayOut::finishLater);
    model().leave();
    EXPECT_EQ(model().commitTick(), 1);
    EXPECT_EQ(storedMode(), ServerMode(Unconfigured{}));
}

}  // namespace
}  // namespace quietlark

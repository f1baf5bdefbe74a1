#include <functional>
#include <tuple>
#include <vector>

#include "picker/picker_fixture.h"
#include "picker/server_picker_model.h"

namespace quietlark {
namespace {

class PickerAnnouncementsTest : public PickerFixture {
protected:
    /// All that the model publishes.
    auto fields() {
        const auto& m = model();
        return std::tuple(m.phase(), m.cardSelection(), m.listSelection(), m.manualHostPort(),
                          m.manualProbe(), m.manualProbeIsUpToDate(), m.commitTick(),
                          m.cancelTick());
    }

    /// Makes a change, of which observers are to be told just before it and just after it.
    void makeAnnounced(const char* what, const std::function<void()>& change) {
        const auto before = fields();
        std::vector<decltype(fields())> told;
        QObject observer;
        const auto look = [&] { told.push_back(fields()); };
        QObject::connect(&model(), &ServerPickerModel::willChange, &observer, look);
        QObject::connect(&model(), &ServerPickerModel::changed, &observer, look);
        change();
        EXPECT_NE(fields(), before) << what;
        EXPECT_TRUE(told == std::vector({before, fields()})) << what;
    }
};

TEST_F(PickerAnnouncementsTest, EveryFieldAnnouncesItsComingChangeAndThenItsChange) {
    options.offersCancel = true;
    serverAnswersAt("http://box:1");
    makeAnnounced("cardSelection", [this] { model().setCardSelection(Card::network); });
    makeAnnounced("phase", [this] { model().setPhase(Phase::manualEntry); });
    makeAnnounced("listSelection", [this] { model().setListSelection(idOf("Box")); });
    makeAnnounced("manualHostPort", [this] { type("box:1"); });
    makeAnnounced("manualProbe", [this] { scheduler.advance(AddressProbe::typingPause); });
    makeAnnounced("manualProbe", [this] { network.runAnswers(); });
    makeAnnounced("commitTick", [this] { model().commitManualIfReady(); });
    makeAnnounced("phase", [this] { model().leave(); });
    makeAnnounced("cancelTick", [this] { model().leave(); });
}

TEST_F(PickerAnnouncementsTest, TheProbeOfADeletedAddressAnnouncesItsComingChange) {
    serverAnswersAt("http://box:1");
    type("box:1");
    pauseAndCheck();
    std::vector<Probe> told;
    QObject::connect(&model(), &ServerPickerModel::willChange, &model(),
                     [&] { told.push_back(model().manualProbe().kind); });
    type("");
    EXPECT_EQ(told, (std::vector{Probe::ok, Probe::ok}));
    EXPECT_EQ(model().manualProbe().kind, Probe::idle);
}

TEST_F(PickerAnnouncementsTest, ServersThatComeAndGoAreAnnounced) {
    model().setPhase(Phase::remoteList);
    model().setListSelection(idOf("Box"));
    std::vector<bool> told;
    const auto look = [&] { told.push_back(model().canConnect()); };
    QObject::connect(&model(), &ServerPickerModel::willChange, &model(), look);
    QObject::connect(&model(), &ServerPickerModel::changed, &model(), look);
    publish("Box");
    ASSERT_GE(told.size(), 2U);
    EXPECT_FALSE(told[told.size() - 2]);
    EXPECT_TRUE(told.back());
}

TEST_F(PickerAnnouncementsTest, EveryChangeIsAnnouncedOnce) {
    int announced = 0;
    QObject::connect(&model(), &ServerPickerModel::changed, &model(), [&] { ++announced; });
    for (int twice = 0; twice < 2; ++twice) {
        model().setPhase(Phase::manualEntry);
        model().setCardSelection(Card::network);
        model().setListSelection(idOf("Box"));
        type("box");
    }
    EXPECT_EQ(announced, 4);
}

}  // namespace
}  // namespace quietlark

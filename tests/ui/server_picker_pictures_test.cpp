#include "ui/look.h"
#include "ui/picker_view_fixture.h"

namespace quietlark {
namespace {

class ServerPickerPicturesTest : public PickerViewFixture,
                                 public testing::WithParamInterface<Look> {
protected:
    ~ServerPickerPicturesTest() override { close(); }

    void take(const char* state) {
        takePicture(view(), QStringLiteral("server-picker-") + text(state), GetParam());
    }

private:
    const LookInForce m_look{GetParam()};
};

TEST_P(ServerPickerPicturesTest, CardsBeforeAndAfterTheInitialScan) {
    options.allowFinishLater = true;
    view();
    take("cards-looking");
    scheduler.advance(ServerStep::initialScan);
    take("cards-none-found");
    installModel();
    model().setCardSelection(Card::network);
    take("cards-model-installed");
}

TEST_P(ServerPickerPicturesTest, CardsBesideSlowerServers) {
    options.offersCancel = true;
    view();
    publish("Attic", "5.0");
    take("cards-one-slower");
    publish("Hall", "6.0");
    take("cards-all-slower");
}

TEST_P(ServerPickerPicturesTest, CardsBesideAFasterServer) {
    view();
    publish("Box", "20.0");
    take("cards-one-found");
    publish("Hall", "6.0");
    model().setCardSelection(Card::network);
    take("cards-two-found");
}

TEST_P(ServerPickerPicturesTest, TheListFromEmptyToFull) {
    showList();
    take("list-looking");
    publish("Graphics workstation", "20.0");
    publish("Attic", "6.0");
    publish("Equal", "10.0");
    publish("Unrated");
    publish(
        "<b>A server</b> with a name that is very much longer than any window is wide, "
        "and that says so at some length",
        "30.0");
    take("list-hints");
    model().setListSelection(idOf("Attic"));
    take("list-selected");
    for (int i = 0; i < 30; ++i)
        publish(QByteArray("Rack " + QByteArray::number(i)).constData());
    take("list-many");
}

TEST_P(ServerPickerPicturesTest, TheListWithServersOfOneName) {
    showList();
    const char* const longName =
        "A server with a name that is nearly as long as a window is wide, or even longer";
    for (const char* name : {"Box", longName}) {
        publish(name, "20.0");
        publishAlsoAt(name, "other.local");
        publishAlsoAt(name, "a-host-that-has-quite-a-long-name-and.a-domain.example.com");
    }
    publish("\u200b", "5.0");
    model().setListSelection(text("Box|other.local:8001"));
    take("list-same-names");
}

TEST_P(ServerPickerPicturesTest, TheAddressAndItsCheck) {
    serverAnswersAt("http://box:2");
    showManualEntry();
    take("manual-empty");
    write("box:1");
    scheduler.advance(AddressProbe::typingPause);
    take("manual-checking");
    network.runAnswers();
    take("manual-failed");
    address().setText(text("box:2"));
    pauseAndCheck();
    take("manual-connected");
}

INSTANTIATE_TEST_SUITE_P(Looks, ServerPickerPicturesTest, testing::ValuesIn(looks), nameOfLook);

}  // namespace
}  // namespace quietlark

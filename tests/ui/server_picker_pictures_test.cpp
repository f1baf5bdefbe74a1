#include <QDir>
#include <QPalette>
#include <QPixmap>

#include "ui/picker_view_fixture.h"

namespace quietlark {
namespace {

QPalette darkPalette() {
    QPalette palette(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x84, 0xe4));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
    return palette;
}

QPalette lightPalette() {
    QPalette palette(QColor(0xef, 0xef, 0xef));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

/// How the window is drawn; one picture of each state for each.
struct Look {
    const char* name;
    QPalette (*palette)();
    Qt::LayoutDirection direction;
};

/// Draws every state. The pictures are kept in the directory that QUIETLARK_PICTURES names, to be
/// looked at; without it they are only drawn. QT_SCALE_FACTOR=2 draws them for a sharper screen.
class ServerPickerPicturesTest : public PickerViewFixture,
                                 public testing::WithParamInterface<Look> {
protected:
    ServerPickerPicturesTest() {
        QApplication::setPalette(GetParam().palette());
        QApplication::setLayoutDirection(GetParam().direction);
    }
    ~ServerPickerPicturesTest() override {
        close();
        QApplication::setPalette(m_palette);
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void take(const char* name) {
        const QPixmap picture = view().grab();
        EXPECT_FALSE(picture.isNull());
        const QString path = qEnvironmentVariable("QUIETLARK_PICTURES");
        if (path.isEmpty()) return;
        const QString file = text(GetParam().name) + u'-' + text(name) + text(".png");
        ASSERT_TRUE(QDir().mkpath(path));
        EXPECT_TRUE(picture.save(QDir(path).filePath(file)));
    }

private:
    const QPalette m_palette = QApplication::palette();
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

INSTANTIATE_TEST_SUITE_P(Looks, ServerPickerPicturesTest,
                         testing::Values(Look{"Light", lightPalette, Qt::LeftToRight},
                                         Look{"Dark", darkPalette, Qt::LeftToRight},
                                         Look{"RightToLeft", lightPalette, Qt::RightToLeft}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace quietlark

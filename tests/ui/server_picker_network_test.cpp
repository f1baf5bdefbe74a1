#include <chrono>
#include <vector>

#include <QFile>

#include "ui/picker_network_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Küche");
const QString attic = QStringLiteral("Attic");

using ServerPickerNetworkTest = PickerNetworkFixture;

TEST_F(ServerPickerNetworkTest, AServerChosenFromTheListIsUsedByADictation) {
    server.on("/v1/models", http_reply::json(R"({"data": [{"id": "whisper-x"}]})"));
    server.on("/v1/audio/transcriptions", http_reply::json(R"({"text": "hello"})"));
    publisher->publishAtLocalhost(kitchen, 1, {"rtf=5"});
    publisher->publishAtLocalhost(office, server.port(), {"rtf=20"});
    open();
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_TRUE(lists(2));
    goDownTo(office);
    press(Qt::Key_Return);
    ASSERT_EQ(model->commitTick(), 1);
    dictate();
    EXPECT_TRUE(waitUntil([this] {
        const auto lines = server.requestLines();
        return !lines.empty() && lines.back() == "POST /v1/audio/transcriptions";
    }));
}

TEST_F(ServerPickerNetworkTest, TheCardsFollowTheNetwork) {
    open();
    searchAgain();
    EXPECT_EQ(card("network"), QStringLiteral("Looking…"));
    take("cards-looking");
    ASSERT_TRUE(cardsRead("Transcribe on this computer", "None found. Enter an address manually."));
    take("cards-none-found");
    publisher->publishAtLocalhost(kitchen, 8001, {"rtf=5"});
    ASSERT_TRUE(
        cardsRead("Faster than anything on your network", "1 server, slower than this computer."));
    take("cards-one-slower");
    publisher->publishAtLocalhost(attic, 8001, {"rtf=10"});
    ASSERT_TRUE(cardsRead("Faster than anything on your network",
                          "2 servers, all slower than this computer."));
    take("cards-all-slower");
    publisher->publishAtLocalhost(office, 8001, {"rtf=20"});
    ASSERT_TRUE(cardsRead("Slower than a server on your network", "3 servers found."));
    take("cards-faster");
    publisher->withdraw(kitchen);
    publisher->withdraw(attic);
    ASSERT_TRUE(cardsRead("Slower than a server on your network", "1 server found."));
    take("cards-one-found");
    publisher->withdraw(office);
    publisher->publishAtLocalhost(kitchen, 8001);
    ASSERT_TRUE(cardsRead("Transcribe on this computer", "1 server found."));
    take("cards-unrated");
    ASSERT_TRUE(files.model.ensureDirectory().has_value());
    QFile installed(files.model.active());
    ASSERT_TRUE(installed.open(QIODevice::WriteOnly));
    searchAgain();
    ASSERT_TRUE(waitUntil([this] {
        return card("local") == QStringLiteral("Transcribe on this computer.") &&
               card("network") == QStringLiteral("1 server found.");
    }));
    take("cards-model-installed");
}

TEST_F(ServerPickerNetworkTest, TheListSaysHowTheServersCompare) {
    open();
    model->setPhase(ServerPickerModel::Phase::remoteList);
    ASSERT_TRUE(reads("Looking for servers…"));
    take("list-looking");
    publisher->publishAtLocalhost(office, 8001, {"rtf=20"});
    publisher->publishAtLocalhost(attic, 8001, {"rtf=10"});
    publisher->publishAtLocalhost(kitchen, 8001, {"rtf=5"});
    ASSERT_TRUE(lists(3));
    EXPECT_EQ(hintOf(office), QStringLiteral("Faster than this computer"));
    EXPECT_EQ(hintOf(attic), QString());
    EXPECT_EQ(hintOf(kitchen), QStringLiteral("Slower than this computer"));
    goDownTo(office);
    take("list-hints");
    publisher->withdraw(office);
    EXPECT_TRUE(lists(2));
    EXPECT_FALSE(model->canConnect());
}

TEST_F(ServerPickerNetworkTest, AnAddressIsCheckedOverTheNetwork) {
    server.on("/", http_reply::answer(200, "<h1>Whisper.cpp</h1> /inference"));
    open();
    model->setPhase(ServerPickerModel::Phase::manualEntry);
    QTest::keyClicks(&address(), QStringLiteral("localhost:%1").arg(server.port()));
    EXPECT_TRUE(reads("Connected"));
    take("manual-connected");
    server.close();
    address().clear();
    QTest::keyClicks(&address(), QStringLiteral("localhost:%1").arg(server.port()));
    EXPECT_TRUE(reads("Can't reach that server"));
    take("manual-failed");
}

TEST_F(ServerPickerNetworkTest, HundredEditsDuringACheckWithdrawItAndLeaveTheNewestResult) {
    HttpServer hanging;
    for (const char* path : {"/api/v1/models", "/v1/models", "/"})
        hanging.on(path, http_reply::silence());
    server.on("/api/v1/models", http_reply::json(R"({"data": [{"id": "whisper-x"}]})"));
    open();
    model->setPhase(ServerPickerModel::Phase::manualEntry);
    address().setText(hanging.url());
    ASSERT_TRUE(waitUntil([&] { return !hanging.requests().empty(); }));

    int edits = 0;
    const Cancellable typing = scheduler.every(10ms, [&] {
        if (++edits < 100) address().setText(hanging.url(QStringLiteral("/%1").arg(edits)));
        if (edits == 100) address().setText(server.url());
    });
    EXPECT_TRUE(reads("Connected"));
    EXPECT_TRUE(waitUntil([&] { return hanging.openConnectionCount() == 0; }));
    EXPECT_EQ(server.requestLines(), std::vector<QByteArray>{"GET /api/v1/models"});
    EXPECT_EQ(model->manualProbe().model, QStringLiteral("whisper-x"));
}

}  // namespace
}  // namespace quietlark

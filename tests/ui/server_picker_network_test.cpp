#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <QTest>

#include "fakes/fake_audio_input.h"
#include "fakes/fake_key_synthesizer.h"
#include "fakes/fake_log.h"
#include "fakes/fake_model_fetcher.h"
#include "fakes/fake_pasteboard.h"
#include "fakes/fake_processor.h"
#include "fakes/fake_registered_service.h"
#include "fakes/fake_settings_panes.h"
#include "notifications/notification_center.h"
#include "peers/http_server.h"
#include "picker/server_picker_model.h"
#include "picker/server_step.h"
#include "platform/avahi/avahi_fixture.h"
#include "platform/linux/avahi/avahi_local_host_name.h"
#include "platform/qt/qt_http_client.h"
#include "servers/hardware_profile.h"
#include "servers/server_ranker.h"
#include "state/app_state.h"
#include "ui/look.h"
#include "ui/server_card.h"
#include "ui/server_list_model.h"
#include "ui/server_picker_editing_view.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Küche");
const QString attic = QStringLiteral("Attic");

/// The choice of a server with the network, the servers and the time of a real computer, whose
/// processor is an M1 Pro (estimate 10.0).
class ServerPickerNetworkTest : public AvahiFixture {
protected:
    void SetUp() override {
        AvahiFixture::SetUp();
        if (IsSkipped()) return;
        m_localHostName = std::make_unique<AvahiLocalHostName>(*daemon, scheduler);
        state = std::make_unique<AppState>(files, makers());
        model = std::make_unique<ServerPickerModel>(*state, m_ranker, m_transcription.resolver,
                                                    scheduler, ServerPickerModel::Options{});
        m_step = std::make_unique<ServerStep>(*model, *state, m_ranker, scheduler);
        m_view = std::make_unique<ServerPickerEditingView>(*model, *m_step);
    }
    void TearDown() override {
        m_view.reset();
        m_step.reset();
        model.reset();
        state.reset();
    }

    void open() {
        m_view->resize(560, 360);
        m_view->show();
        m_view->activateWindow();
        m_view->setFocus();
        ASSERT_TRUE(waitUntil([this] { return m_view->isActiveWindow(); }));
    }

    /// As when the window is opened, but at a time that the test knows.
    void searchAgain() {
        m_step->disappear();
        m_step->appear();
    }

    [[nodiscard]] QString card(const char* name) const {
        return m_view->findChild<ServerCard*>(QString::fromUtf8(name))->subtitle();
    }

    /// Whether the cards come to say this; the local one, that there is no model yet.
    [[nodiscard]] bool cardsRead(const char* onLocal, const char* onNetwork) {
        const QString local =
            QString::fromUtf8(onLocal) + QStringLiteral(". 1.6 GB model download.");
        return waitUntil([=, this] {
            return card("local") == local && card("network") == QString::fromUtf8(onNetwork);
        });
    }

    /// Whether the list comes to have that many rows.
    [[nodiscard]] bool lists(int count) {
        return waitUntil([=, this] { return list().model()->rowCount() == count; });
    }

    /// Whether exactly this text comes to stand somewhere.
    [[nodiscard]] bool reads(const char* words) {
        return waitUntil([=, this] {
            return std::ranges::any_of(m_view->findChildren<QLabel*>(), [=](const QLabel* label) {
                return label->isVisible() && label->text() == QString::fromUtf8(words);
            });
        });
    }

    [[nodiscard]] QString hintOf(const QString& name) {
        for (int row = 0; row < list().model()->rowCount(); ++row) {
            const QModelIndex index = list().model()->index(row, 0);
            if (index.data().toString() == name)
                return index.data(ServerListModel::hintRole).toString();
        }
        return QStringLiteral("not in the list");
    }

    QListView& list() { return *m_view->findChild<QListView*>(); }
    QLineEdit& address() { return *m_view->findChild<QLineEdit*>(); }

    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    /// Goes down the list to the server of that name.
    void goDownTo(const QString& name) {
        for (int row = 0; row < list().model()->rowCount(); ++row) {
            press(Qt::Key_Down);
            if (list().currentIndex().data().toString() == name) return;
        }
        FAIL() << "not in the list";
    }

    void take(const char* what) {
        takePicture(*m_view, QStringLiteral("network-") + QString::fromUtf8(what), looks.front());
    }

    void dictate() {
        state->dictation().beginRecord();
        m_microphone.hearTone(4096);
        state->dictation().endRecord();
    }

    QTemporaryDir directory;
    const AppState::Files files{directory.filePath(QStringLiteral("config.json")),
                                ModelFiles(directory.filePath(QStringLiteral("models"))),
                                EndpointFile(directory.filePath(QStringLiteral("endpoint")))};
    HttpServer server;
    std::unique_ptr<AppState> state;
    std::unique_ptr<ServerPickerModel> model;

private:
    AppState::Makers makers() {
        return {
            .discoveredServers =
                [this] {
                    return std::make_unique<DiscoveredServers>(*backend, *m_localHostName,
                                                               scheduler);
                },
            .daemon =
                [this] {
                    return std::make_unique<DaemonController>(m_service, m_panes, scheduler);
                },
            .modelDownloader =
                [this] {
                    return std::make_unique<ModelDownloader>(files.model, m_fetcher,
                                                             m_notifications, scheduler);
                },
            .dictation =
                [this](Dictation::Settings settings) {
                    return std::make_unique<Dictation>(std::move(settings), m_recorder,
                                                       m_transcription, m_paster, scheduler);
                },
        };
    }

    // What the user reads on this system, as in the pictures.
    const LookInForce m_look{looks.front()};
    FakeLog m_log;
    FakeAudioInput m_microphone;
    FakeKeySynthesizer m_keys;
    FakePasteboard m_pasteboard{scheduler};
    FakeRegisteredService m_service;
    FakeSettingsPanes m_panes;
    FakeModelFetcher m_fetcher;
    FakeProcessor m_processor{"Apple M1 Pro"};
    NotificationCenter m_notifications;
    HardwareProfile m_hardware{m_processor};
    ServerRanker m_ranker{m_hardware};
    QtHttpClient m_http;
    TranscriptionService m_transcription{ServerEndpoint(files.endpoint), ServerResolver(m_http),
                                         TranscriptionClient(m_http, scheduler, m_log)};
    Recorder m_recorder{Dictation::sampleRateHz, m_microphone};
    Paster m_paster{m_pasteboard, m_keys, scheduler};
    std::unique_ptr<AvahiLocalHostName> m_localHostName;
    std::unique_ptr<ServerStep> m_step;
    std::unique_ptr<ServerPickerEditingView> m_view;
};

TEST_F(ServerPickerNetworkTest, AServerChosenFromTheListIsUsedByADictation) {
    server.on("/v1/models", http_reply::json(R"({"data": [{"id": "whisper-x"}]})"));
    server.on("/v1/audio/transcriptions", http_reply::json(R"({"text": "hello"})"));
    publisher->publishAtLocalhost(kitchen, 1, {"rtf=5"});
    publisher->publishAtLocalhost(office, server.port(), {"rtf=20"});
    open();
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_TRUE(lists(2));
    list().setFocus();
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
    list().setFocus();
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

#include <memory>

#include <QApplication>
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
#include "ui/server_card.h"
#include "ui/server_picker_editing_view.h"

namespace quietlark {
namespace {

const QString office = QStringLiteral("Office");
const QString kitchen = QStringLiteral("Küche");

/// The choice of a server with the network, the servers and the time of a real computer, whose
/// processor is an M1 Pro (estimate 10.0).
class ServerPickerNetworkTest : public AvahiFixture {
protected:
    void SetUp() override {
        AvahiFixture::SetUp();
        if (IsSkipped()) return;
        m_localHostName = std::make_unique<AvahiLocalHostName>(*daemon, scheduler);
        state = std::make_unique<AppState>(m_files, makers());
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

    [[nodiscard]] bool networkCardReads(const char* words) {
        return waitUntil([this, words] {
            const auto* const card = m_view->findChild<ServerCard*>(QStringLiteral("network"));
            return card->subtitle() == QString::fromUtf8(words);
        });
    }

    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    /// Goes down the list to the server of that name.
    void goDownTo(const QString& name) {
        const auto* const list = m_view->findChild<QListView*>();
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            press(Qt::Key_Down);
            if (list->currentIndex().data().toString() == name) return;
        }
        FAIL() << "not in the list";
    }

    void dictate() {
        state->dictation().beginRecord();
        m_microphone.hearTone(4096);
        state->dictation().endRecord();
    }

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
                    return std::make_unique<ModelDownloader>(m_files.model, m_fetcher,
                                                             m_notifications, scheduler);
                },
            .dictation =
                [this](Dictation::Settings settings) {
                    return std::make_unique<Dictation>(std::move(settings), m_recorder,
                                                       m_transcription, m_paster, scheduler);
                },
        };
    }

    QTemporaryDir m_directory;
    const AppState::Files m_files{m_directory.filePath(QStringLiteral("config.json")),
                                  ModelFiles(m_directory.filePath(QStringLiteral("models"))),
                                  EndpointFile(m_directory.filePath(QStringLiteral("endpoint")))};
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
    TranscriptionService m_transcription{ServerEndpoint(m_files.endpoint), ServerResolver(m_http),
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
    ASSERT_TRUE(networkCardReads("2 servers found."));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    goDownTo(office);
    press(Qt::Key_Return);
    ASSERT_EQ(model->commitTick(), 1);
    dictate();
    EXPECT_TRUE(waitUntil([this] {
        const auto lines = server.requestLines();
        return !lines.empty() && lines.back() == "POST /v1/audio/transcriptions";
    }));
}

TEST_F(ServerPickerNetworkTest, TheCardFollowsTheNetwork) {
    open();
    EXPECT_TRUE(networkCardReads("Looking…"));
    publisher->publishAtLocalhost(kitchen, 8001, {"rtf=5"});
    EXPECT_TRUE(networkCardReads("1 server, slower than this Mac."));
    publisher->withdraw(kitchen);
    EXPECT_TRUE(networkCardReads("None found. Enter an address manually."));
}

TEST_F(ServerPickerNetworkTest, AnAddressIsCheckedOverTheNetwork) {
    server.on("/", http_reply::answer(200, "<h1>Whisper.cpp</h1> /inference"));
    open();
    model->setPhase(ServerPickerModel::Phase::manualEntry);
    QTest::keyClicks(QApplication::focusWidget(),
                     QStringLiteral("localhost:%1").arg(server.port()));
    EXPECT_TRUE(waitUntil([this] { return model->canConnect(); }));
}

}  // namespace
}  // namespace quietlark

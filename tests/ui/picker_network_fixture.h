#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include <QApplication>
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

/// The choice of a server with the network, the servers and the time of a real computer, whose
/// processor is an M1 Pro (estimate 10.0).
class PickerNetworkFixture : public AvahiFixture {
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

}  // namespace quietlark

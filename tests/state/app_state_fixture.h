#pragma once

#include <memory>

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_audio_input.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_key_synthesizer.h"
#include "fakes/fake_local_host_name.h"
#include "fakes/fake_log.h"
#include "fakes/fake_model_fetcher.h"
#include "fakes/fake_pasteboard.h"
#include "fakes/fake_registered_service.h"
#include "fakes/fake_scheduler.h"
#include "fakes/fake_service_browser.h"
#include "fakes/fake_settings_panes.h"
#include "notifications/notification_center.h"
#include "state/app_state.h"

namespace quietlark {

/// The application's state over a computer that the test plays: its own directory for settings,
/// model and endpoint file, and fakes for everything else.
class AppStateFixture : public ::testing::Test {
protected:
    using Case = DictationState::Case;

    static Config unconfigured() {
        Config config;
        config.onboardingComplete = true;
        return config;
    }

    static Config manualRemote(const QString& host = QStringLiteral("box")) {
        Config config = unconfigured();
        config.serverMode = ManualRemote{host, 8080, QStringLiteral("http")};
        return config;
    }

    static Config local() {
        Config config = unconfigured();
        config.serverMode = Local{};
        return config;
    }

    AppStateFixture() { service.holdAnswers(); }

    /// The settings that the state will load.
    void saved(const Config& config) { ASSERT_TRUE(config.save(files.config).has_value()); }

    /// The state, which the first call creates.
    AppState& state() {
        if (!m_state) m_state = std::make_unique<AppState>(files, makers());
        return *m_state;
    }

    /// The next state() is loaded anew.
    void restart() { m_state.reset(); }

    void installModel() {
        ASSERT_TRUE(files.model.ensureDirectory().has_value());
        write(files.model.active(), "model");
    }

    void removeModel() { QFile::remove(files.model.active()); }

    void serverPublishesItsEndpoint(const char* more = "") {
        write(endpointPath, QByteArray("local=127.0.0.1:9000\n") + more);
    }

    /// A dictation of one buffer, from beginning to end; answers how many requests it sent.
    std::size_t dictate() {
        const std::size_t before = network.requests().size();
        state().dictation().beginRecord();
        microphone.hearTone(4096);
        state().dictation().endRecord();
        scheduler.runPosted();
        network.runAnswers();
        scheduler.advance(Paster::visibilityDelay);
        return network.requests().size() - before;
    }

    /// Everything that is due now has happened, on the main queue, at the service manager and
    /// where the model is fetched.
    void settle() {
        for (int turn = 0; turn < 4; ++turn) {
            scheduler.runPosted();
            service.answer();
            fetcher.becomeStill();
        }
        scheduler.runPosted();
    }

    FakeScheduler scheduler;
    FakeLog log;
    FakeHttpClient network;
    FakeAudioInput microphone;
    FakePasteboard pasteboard{scheduler};
    FakeKeySynthesizer keys;
    FakeServiceBrowser browser{scheduler};
    FakeLocalHostName hostName;
    FakeRegisteredService service;
    FakeSettingsPanes panes;
    FakeModelFetcher fetcher;
    NotificationCenter notifications;

    QTemporaryDir directory;
    const QString endpointPath = directory.filePath(QStringLiteral("endpoint"));
    AppState::Files files{directory.filePath(QStringLiteral("Quietlark/config.json")),
                          ModelFiles(directory.filePath(QStringLiteral("models"))),
                          EndpointFile(endpointPath)};
    QStringList made;  ///< the parts that have been created, in order

private:
    static void write(const QString& path, const QByteArray& content) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    AppState::Makers makers() {
        return {
            .discoveredServers =
                [this] {
                    made << QStringLiteral("discoveredServers");
                    return std::make_unique<DiscoveredServers>(browser, hostName, scheduler);
                },
            .daemon =
                [this] {
                    made << QStringLiteral("daemon");
                    return std::make_unique<DaemonController>(service, panes, scheduler);
                },
            .modelDownloader =
                [this] {
                    made << QStringLiteral("modelDownloader");
                    return std::make_unique<ModelDownloader>(files.model, fetcher, notifications,
                                                             scheduler);
                },
            .dictation =
                [this](Dictation::Settings settings) {
                    made << QStringLiteral("dictation");
                    return std::make_unique<Dictation>(std::move(settings), m_recorder,
                                                       m_transcription, m_paster, scheduler);
                },
        };
    }

    TranscriptionService m_transcription{ServerEndpoint(files.endpoint), ServerResolver(network),
                                         TranscriptionClient(network, scheduler, log)};
    Recorder m_recorder{Dictation::sampleRateHz, microphone};
    Paster m_paster{pasteboard, keys, scheduler};
    std::unique_ptr<AppState> m_state;
};

}  // namespace quietlark

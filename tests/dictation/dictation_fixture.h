#pragma once

#include <utility>
#include <vector>

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "dictation/dictation.h"
#include "fakes/fake_audio_input.h"
#include "fakes/fake_http_client.h"
#include "fakes/fake_key_synthesizer.h"
#include "fakes/fake_log.h"
#include "fakes/fake_pasteboard.h"
#include "fakes/fake_scheduler.h"
#include "transcription/endpoint_file.h"

namespace quietlark {

/// Dictation as a whole, with the world around it played by the test. There is a server at
/// http://box:8080 that hears "Hello world".
class DictationFixture : public ::testing::Test {
protected:
    using Case = DictationState::Case;

    static constexpr auto uploadAddress = "http://box:8080/inference";

    DictationFixture() {
        config.serverMode = ManualRemote{QStringLiteral("box"), 8080, QStringLiteral("http")};
        QObject::connect(&dictation, &Dictation::onStateChange, &dictation,
                         [this](const DictationState& state) { changes.push_back(state.kind); });
        serverIsUp();
    }

    void serverIsUp() {
        network.respondTo(QStringLiteral("http://box:8080/"), 200, "whisper.cpp: POST /inference");
        serverAnswers("Hello world");
    }

    void serverAnswers(const char* text, int status = 200) {
        network.respondTo(QString::fromLatin1(uploadAddress), status, text);
    }

    void speak() {
        dictation.beginRecord();
        microphone.hearTone(4096);
    }

    void stopSpeaking() {
        dictation.endRecord();
        scheduler.runPosted();
    }

    /// A whole dictation, with every answer of the network; time passes only for the paste.
    void dictate() {
        speak();
        stopSpeaking();
        network.runAnswers();
        scheduler.advance(Paster::visibilityDelay);
    }

    std::vector<Case> takeChanges() {
        scheduler.runPosted();
        return std::exchange(changes, {});
    }

    Config config;
    FakeScheduler scheduler;
    FakeLog log;
    FakeHttpClient network;
    FakeAudioInput microphone;
    FakePasteboard pasteboard{scheduler};
    FakeKeySynthesizer keys;
    QTemporaryDir directory;
    EndpointFile endpointFile{directory.filePath(QStringLiteral("endpoint"))};
    TranscriptionService transcription{ServerEndpoint(endpointFile), ServerResolver(network),
                                       TranscriptionClient(network, scheduler, log)};
    Recorder recorder{Dictation::sampleRateHz, microphone};
    Paster paster{pasteboard, keys, scheduler};
    Dictation dictation{[this] { return config; }, recorder, transcription, paster, scheduler};
    std::vector<Case> changes;
};

}  // namespace quietlark

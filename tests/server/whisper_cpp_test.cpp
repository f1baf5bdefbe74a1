#include <atomic>
#include <csignal>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "audio/wav.h"
#include "fakes/fake_log.h"
#include "server/raw_http_client.h"
#include "server/whisper_engine.h"
#include "server/whisper_server.h"
#include "support/wait.h"

namespace quietlark {
namespace {

const std::string folder = QUIETLARK_WHISPER_CPP;
const std::string engineProgram =
    qEnvironmentVariable("QUIETLARK_WHISPER_SERVER",
                         QString::fromStdString(folder + "/whisper-server"))
        .toStdString();
const std::string modelFile = folder + "/model.bin";

// What the model hears in every half minute.
const std::string sentence = "hello wörld.";

// In seconds: what keeps it at work for a while.
constexpr std::size_t aLongTime = 120;

class WhisperCppTest : public testing::Test {
protected:
    void SetUp() override {
        if (!QFile::exists(QString::fromStdString(engineProgram)))
            GTEST_SKIP() << "whisper.cpp could not be built here; see the test whisper_cpp";
    }
};

/// The engine with whisper.cpp's own server as its child.
class WhisperCppEngineTest : public WhisperCppTest {
protected:
    void start(const std::string& model = modelFile) {
        m_engine = std::make_unique<WhisperEngine>(
            WhisperEngine::Settings{.program = engineProgram, .modelFile = model}, m_log);
    }

    tl::expected<std::string, EngineError> textOf(
        std::size_t seconds, std::function<bool()> isAbandoned = [] { return false; }) {
        const std::vector<std::int16_t> samples(seconds * SpeechEngine::sampleRateHz);
        const auto transcript =
            m_engine->transcribe({.samples = samples, .isAbandoned = std::move(isAbandoned)});
        if (!transcript) return tl::unexpected(transcript.error());
        return transcript->text;
    }

    bool isAtWork() const { return m_log.contains("processing 'audio.wav'"); }

    FakeLog m_log;
    std::unique_ptr<WhisperEngine> m_engine;
};

/// The server program with that engine.
class WhisperCppServerTest : public WhisperCppTest {
protected:
    static std::string model() {
        std::ifstream file(modelFile, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void start(const QStringList& arguments = {}) {
        ASSERT_TRUE(m_server.start(arguments).starts_with("listening on http://127.0.0.1:"));
    }

    RawHttpClient::Answer transcribed(double seconds, const std::string& fields = "",
                                      const char* path = "/v1/audio/transcriptions") const {
        const std::vector<std::int16_t> samples(static_cast<std::size_t>(seconds * 16000));
        const WavBytes wav = WAV::encode(samples, 16000, 1);
        const std::string_view file(reinterpret_cast<const char*>(wav.data()), wav.size());
        return RawHttpClient(m_server.port()).ask(postOf(path, formOf(file, fields)));
    }

    std::string textOf(double seconds, const std::string& fields = "",
                       const char* path = "/v1/audio/transcriptions") const {
        return transcribed(seconds, fieldOf("response_format", "text") + fields, path).body;
    }

    std::string detailsOf(double seconds, const std::string& fields = "") const {
        return transcribed(seconds, fieldOf("response_format", "verbose_json") + fields).body;
    }

    WhisperServer m_server{QString::fromStdString(engineProgram), model()};
};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST_F(WhisperCppEngineTest, ARecordingIsTranscribedAndWhatWasSaidIsNotInTheLog) {
    start();
    EXPECT_EQ(textOf(2), sentence);
    EXPECT_EQ(textOf(0), "");
    EXPECT_EQ(textOf(3), sentence);
    // By then, what it wrote to its standard error of the first is read; the rest it keeps back.
    EXPECT_TRUE(waitUntil([this] { return m_log.contains("(48000 samples"); }));
    EXPECT_FALSE(m_log.contains(" hello"));
    EXPECT_FALSE(m_log.contains("wörld"));
}

TEST_F(WhisperCppEngineTest, ACrashCostsTheRecordingThatItHeldAndNoOther) {
    start();
    std::jthread held([this] { EXPECT_EQ(textOf(aLongTime).error(), EngineError::Unavailable); });
    ASSERT_TRUE(waitUntil([this] { return isAtWork(); }));
    const pid_t child = childOf(getpid());
    ASSERT_GT(child, 0);
    kill(child, SIGKILL);
    held.join();
    EXPECT_EQ(textOf(2), sentence);
    EXPECT_NE(childOf(getpid()), child);
}

TEST_F(WhisperCppEngineTest, ARecordingThatNobodyWaitsForCostsNoChild) {
    start();
    EXPECT_EQ(textOf(aLongTime, [this] { return isAtWork(); }).error(), EngineError::Abandoned);
    const pid_t child = childOf(getpid());
    EXPECT_EQ(textOf(2), sentence);
    EXPECT_EQ(childOf(getpid()), child);
}

TEST_F(WhisperCppEngineTest, WhatItSaysOfAModelThatIsNoneIsInTheLog) {
    start(engineProgram);
    EXPECT_EQ(textOf(2).error(), EngineError::Unavailable);
    EXPECT_TRUE(m_log.contains("bad magic"));
}

TEST_F(WhisperCppServerTest, BothFlavoursTranscribeWithoutAnOption) {
    start();
    EXPECT_EQ(transcribed(2).body, "{\"text\":\"" + sentence + "\"}");
    EXPECT_EQ(transcribed(2, "", "/inference").body, "{\"text\":\"" + sentence + "\"}");
    EXPECT_TRUE(m_server.hasEndpointFile());
}

TEST_F(WhisperCppServerTest, SegmentsAndWholeWordsHaveTheirTimes) {
    start();
    const auto words = fieldOf("timestamp_granularities[]", "word");
    const std::string details = detailsOf(2.5, words);
    EXPECT_TRUE(contains(details, R"("language":"english")")) << details;
    EXPECT_TRUE(contains(details, R"("start":0.00,"end":2.00,"text":" hello wörld.")")) << details;
    EXPECT_TRUE(contains(details, R"({"word":"hello","start":)")) << details;
    EXPECT_TRUE(contains(details, R"({"word":"wörld.","start":)")) << details;
}

TEST_F(WhisperCppServerTest, SubtitlesOfALongRecordingGoOnAfterHalfAMinute) {
    start();
    EXPECT_EQ(transcribed(65, fieldOf("response_format", "srt")).body,
              "1\n00:00:00,000 --> 00:00:02,000\n" + sentence +
                  "\n\n2\n00:00:30,000 --> 00:00:32,000\n" + sentence +
                  "\n\n3\n00:01:00,000 --> 00:01:02,000\n" + sentence + "\n\n");
}

TEST_F(WhisperCppServerTest, AVeryShortRecordingIsHeardAndEndsWhereItEnds) {
    start();
    EXPECT_TRUE(contains(detailsOf(0.25), R"("start":0.00,"end":0.25)"));
}

TEST_F(WhisperCppServerTest, WhatOneRequestAsksForDoesNotHoldForTheNext) {
    start({QStringLiteral("--language=de")});
    const std::string asked = detailsOf(
        2, fieldOf("language", "fr") + fieldOf("temperature", "0.4") + fieldOf("prompt", "hello"));
    EXPECT_TRUE(contains(asked, R"("language":"french")")) << asked;
    EXPECT_TRUE(contains(asked, R"("temperature":0.40)")) << asked;
    const std::string next = detailsOf(2);
    EXPECT_TRUE(contains(next, R"("language":"german")")) << next;
    EXPECT_TRUE(contains(next, R"("temperature":0.00)")) << next;
}

TEST_F(WhisperCppServerTest, APromptHoweverLongCostsNobodyAnything) {
    start();
    const pid_t engine = m_server.engineId();
    EXPECT_EQ(textOf(2, fieldOf("prompt", std::string(400000, 'a'))), sentence + "\n");
    EXPECT_EQ(m_server.engineId(), engine);
}

TEST_F(WhisperCppServerTest, ATranslationIsOne) {
    start();
    EXPECT_EQ(textOf(2, fieldOf("translate", "true"), "/inference"), "greetings\n");
    EXPECT_EQ(textOf(2, "", "/inference"), sentence + "\n");
}

TEST_F(WhisperCppServerTest, ManyClientsAtOnceAreAllAnswered) {
    start();
    std::atomic<int> right = 0;
    std::vector<std::thread> clients;
    clients.reserve(16);
    for (int i = 0; i < 16; ++i)
        clients.emplace_back([&, i] { right += textOf(1 + 0.1 * i) == sentence + "\n"; });
    for (auto& client : clients)
        client.join();
    EXPECT_EQ(right, 16);
}

TEST_F(WhisperCppServerTest, TheEngineEndsWithTheServerHoweverThatEnds) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        ASSERT_NO_FATAL_FAILURE(start());
        const pid_t engine = m_server.engineId();
        ASSERT_GT(engine, 0);
        kill(static_cast<pid_t>(m_server.process().processId()), signal);
        EXPECT_TRUE(waitUntil([&] { return kill(engine, 0) != 0; })) << signal;
    }
}

}  // namespace quietlark

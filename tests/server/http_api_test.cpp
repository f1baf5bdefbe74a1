#include "server/http_api.h"

#include <gtest/gtest.h>

#include "server/fake_speech_engine.h"
#include "server/requests.h"

namespace quietlark {
namespace {

class HttpApiTest : public testing::Test {
protected:
    HttpResponse get(std::string_view path) {
        return m_api.answer({.method = "GET", .path = path, .form = {}});
    }

    using Form = std::multimap<std::string_view, std::string_view>;

    HttpResponse post(const Form& form, std::string_view path = "/inference") {
        return m_api.answer({.method = "POST", .path = path, .form = form});
    }

    /// The status of the refusal, 0 for none.
    int refused(const HttpHead& head) const {
        const auto refusal = m_api.refusal(head);
        return refusal ? refusal->status : 0;
    }

    static HttpHead upload() {
        return {.method = "POST",
                .path = "/inference",
                .contentType = "multipart/form-data; boundary=B",
                .contentLength = 1000};
    }

    static HttpHead head(std::string method, std::string path) {
        return {.method = std::move(method), .path = std::move(path)};
    }

    FakeSpeechEngine m_engine;
    HttpApi m_api{m_engine};
    const std::string m_wav = wavOf(16000);
};

}  // namespace

TEST_F(HttpApiTest, TheIndexNamesWhisperCppAndInference) {
    const auto index = get("/");
    EXPECT_EQ(index.status, 200);
    EXPECT_NE(index.body.find("whisper.cpp"), std::string::npos);
    EXPECT_NE(index.body.find("/inference"), std::string::npos);
}

TEST_F(HttpApiTest, TheListOfModelsHoldsTheEnginesModelLabelledForTranscription) {
    const auto models = get("/v1/models");
    EXPECT_EQ(models.status, 200);
    EXPECT_EQ(models.contentType, "application/json");
    EXPECT_EQ(models.body, R"({"object":"list","data":[{"id":"fake-model","object":"model",)"
                           R"("created":0,"owned_by":"quietlark","labels":["transcription"]}]})");
}

TEST_F(HttpApiTest, BothFlavoursAnswerWithTheText) {
    const auto whisper = post({{"file", m_wav}, {"response_format", "json"}});
    EXPECT_EQ(whisper.status, 200);
    EXPECT_EQ(whisper.body, R"({"text":"hello world"})");
    const auto openai = post({{"file", m_wav}, {"model", "whisper-1"}}, "/v1/audio/transcriptions");
    EXPECT_EQ(openai.body, R"({"text":"hello world"})");
}

TEST_F(HttpApiTest, PlainTextIsAnsweredOnRequest) {
    const auto response = post({{"file", m_wav}, {"response_format", "text"}});
    EXPECT_EQ(response.contentType, "text/plain; charset=utf-8");
    EXPECT_EQ(response.body, "hello world\n");
}

TEST_F(HttpApiTest, TranscriptsComeInEveryFormatThatClientsKnow) {
    const auto verbose = post({{"file", m_wav}, {"response_format", "verbose_json"}});
    EXPECT_EQ(verbose.contentType, "application/json");
    EXPECT_NE(verbose.body.find(R"("duration":1.00)"), std::string::npos);
    EXPECT_TRUE(post({{"file", m_wav}, {"response_format", "srt"}}).body.starts_with("1\n00:00:"));
    EXPECT_TRUE(post({{"file", m_wav}, {"response_format", "vtt"}}).body.starts_with("WEBVTT"));
}

TEST_F(HttpApiTest, TheTimesOfWordsAreGivenWhereTheEngineKnowsThem) {
    const Form form{{"file", m_wav},
                    {"response_format", "verbose_json"},
                    {"timestamp_granularities[]", "segment"},
                    {"timestamp_granularities[]", "word"}};
    EXPECT_EQ(post(form).status, 400);
    m_engine.words = {{0, 0.5, "hello"}};
    EXPECT_NE(post(form).body.find(R"("words":[{"word":"hello","start":0.00,"end":0.50}])"),
              std::string::npos);
    const auto silent = post({{"file", m_wav}, {"response_format", "verbose_json"}});
    EXPECT_EQ(silent.body.find("words"), std::string::npos);
}

TEST_F(HttpApiTest, TimesOfAnythingElseOrInAnotherFormatAreRefused) {
    EXPECT_EQ(post({{"file", m_wav}, {"timestamp_granularities[]", "segment"}}).status, 200);
    EXPECT_EQ(post({{"file", m_wav}, {"timestamp_granularities[]", "word"}}).status, 400);
    EXPECT_EQ(post({{"file", m_wav}, {"timestamp_granularities[]", "letter"}}).status, 400);
}

TEST_F(HttpApiTest, PromptTemperatureAndTranslationReachTheEngine) {
    EXPECT_EQ(post({{"file", m_wav},
                    {"prompt", "Quietlark"},
                    {"temperature", "0.4"},
                    {"translate", "true"}})
                  .status,
              200);
    EXPECT_EQ(m_engine.asked(), "Quietlark 0.40 translated");
    EXPECT_EQ(post({{"file", m_wav}, {"translate", "false"}}).status, 200);
    EXPECT_EQ(m_engine.asked(), " -");
    for (const char* temperature : {"warm", "1.1", "-1", "nan", "0.5 "})
        EXPECT_EQ(post({{"file", m_wav}, {"temperature", temperature}}).status, 400) << temperature;
}

TEST_F(HttpApiTest, ATranslationThatTheEngineDoesNotMakeIsRefused) {
    m_engine.result = tl::unexpected(EngineError::CannotTranslate);
    EXPECT_EQ(post({{"file", m_wav}, {"translate", "true"}}).status, 400);
}

TEST_F(HttpApiTest, AModelIsDescribedByItsName) {
    EXPECT_EQ(get("/v1/models/fake-model").status, 200);
    const auto other = get("/v1/models/other");
    EXPECT_EQ(other.status, 404);
    EXPECT_NE(other.body.find(R"("code":"model_not_found")"), std::string::npos);
}

TEST_F(HttpApiTest, ItsHealthIsThatOfTheEngine) {
    EXPECT_EQ(get("/health").body, R"({"status":"ok"})");
    m_engine.setReady(false);
    EXPECT_EQ(get("/health").status, 503);
}

TEST_F(HttpApiTest, TheLanguageOfTheSettingsIsForRequestsWithoutOne) {
    HttpApi german(m_engine, {.language = "de"});
    const HttpRequest silent{.method = "POST", .path = "/inference", .form = {{"file", m_wav}}};
    EXPECT_EQ(german.answer(silent).status, 400);
    auto english = silent;
    english.form.emplace("language", "en");
    EXPECT_EQ(german.answer(english).status, 200);
}

TEST_F(HttpApiTest, SilenceIsAnEmptyText) {
    m_engine.result = "";
    EXPECT_EQ(post({{"file", m_wav}}).body, R"({"text":""})");
}

TEST_F(HttpApiTest, ARecordingWithoutSamplesIsAnEmptyRecording) {
    EXPECT_EQ(post({{"file", wavOf(0)}}).status, 200);
    EXPECT_EQ(m_engine.sampleCount(), 0U);
    EXPECT_EQ(post({{"file", wavOf(1)}}).status, 200);
}

TEST_F(HttpApiTest, TheEngineGetsOneChannelAtItsOwnRate) {
    EXPECT_EQ(post({{"file", wavOf(2 * 48000, 48000, 2)}}).status, 200);
    EXPECT_NEAR(static_cast<double>(m_engine.sampleCount()), 16000, 2);
}

TEST_F(HttpApiTest, TheLengthOfTheSoundIsReportedForTheLog) {
    EXPECT_DOUBLE_EQ(post({{"file", wavOf(24000)}}).audioSeconds, 1.5);
}

TEST_F(HttpApiTest, AMissingFileIsNamed) {
    const auto response = post({{"response_format", "json"}});
    EXPECT_EQ(response.status, 400);
    EXPECT_EQ(response.body, R"({"error":{"message":"The form has no field named file.",)"
                             R"("type":"invalid_request_error","param":"file","code":null}})");
}

TEST_F(HttpApiTest, WhatIsNoWavFileIsRefused) {
    EXPECT_EQ(post({{"file", "hello"}}).status, 400);
    EXPECT_EQ(post({{"file", ""}}).status, 400);
    EXPECT_EQ(post({{"file", m_wav.substr(0, 100)}}).status, 400);
    EXPECT_EQ(m_engine.transcriptions(), 0);
}

TEST_F(HttpApiTest, MoreThanAnHourIsTooMuch) {
    EXPECT_EQ(post({{"file", wavOf(8000 * 3601, 8000)}}).status, 413);
    EXPECT_EQ(m_engine.transcriptions(), 0);
}

TEST_F(HttpApiTest, AResponseFormatThatThisServerDoesNotHaveIsRefused) {
    EXPECT_EQ(post({{"file", m_wav}, {"response_format", "pdf"}}).status, 400);
}

TEST_F(HttpApiTest, ALanguageThatTheModelWasNotMadeForIsRefused) {
    EXPECT_EQ(post({{"file", m_wav}, {"language", "de"}}).status, 400);
    EXPECT_EQ(post({{"file", m_wav}, {"language", "en"}}).status, 200);
}

TEST_F(HttpApiTest, AnEngineThatGivesUpIsTheServersFault) {
    m_engine.result = tl::unexpected(EngineError::Failed);
    const auto response = post({{"file", m_wav}});
    EXPECT_EQ(response.status, 500);
    EXPECT_FALSE(response.isWorthRetrying);
    EXPECT_NE(response.body.find("server_error"), std::string::npos);
}

TEST_F(HttpApiTest, ABusyServerTellsWhenToComeBack) {
    for (const auto error : {EngineError::Busy, EngineError::Unavailable}) {
        m_engine.result = tl::unexpected(error);
        const auto response = post({{"file", m_wav}});
        EXPECT_EQ(response.status, 503);
        EXPECT_GT(response.retryAfterSeconds, 0);
        EXPECT_TRUE(response.isWorthRetrying);
    }
}

TEST_F(HttpApiTest, ARecordingThatTakesTooLongIsNotToBeTriedAgain) {
    m_engine.result = tl::unexpected(EngineError::TimedOut);
    const auto response = post({{"file", m_wav}});
    EXPECT_EQ(response.status, 503);
    EXPECT_EQ(response.retryAfterSeconds, 0);
    EXPECT_FALSE(response.isWorthRetrying);
}

TEST_F(HttpApiTest, AServerThatStopsSaysSo) {
    m_engine.stop();
    EXPECT_EQ(post({{"file", m_wav}}).status, 503);
}

TEST_F(HttpApiTest, WhatItServesIsNotRefused) {
    EXPECT_EQ(refused(upload()), 0);
    EXPECT_EQ(refused(head("GET", "/")), 0);
    EXPECT_EQ(refused(head("HEAD", "/")), 0);
    EXPECT_EQ(refused(head("GET", "/v1/models")), 0);
}

TEST_F(HttpApiTest, OtherAddressesAreNotFound) {
    EXPECT_EQ(refused(head("GET", "/api/v1/models")), 404);
    EXPECT_EQ(refused(head("GET", "/inference/")), 404);
    EXPECT_EQ(refused(head("POST", "")), 404);
}

TEST_F(HttpApiTest, AnotherMethodIsNotAllowedAndTheRightOneIsNamed) {
    EXPECT_EQ(m_api.refusal(head("GET", "/inference"))->status, 405);
    EXPECT_EQ(m_api.refusal(head("GET", "/inference"))->allowedMethod, "POST");
    EXPECT_EQ(m_api.refusal(head("DELETE", "/"))->allowedMethod, "GET");
}

TEST_F(HttpApiTest, AnUploadMustSayHowLongItIs) {
    auto request = upload();
    request.contentLength = std::nullopt;
    EXPECT_EQ(refused(request), 411);
}

TEST_F(HttpApiTest, AnUploadOf64MiBIsTheLargest) {
    auto request = upload();
    request.contentLength = std::uint64_t{64} << 20U;
    EXPECT_EQ(refused(request), 0);
    ++*request.contentLength;
    EXPECT_EQ(refused(request), 413);
}

TEST_F(HttpApiTest, PagesOfOtherSitesAreRefusedBeforeAnythingElse) {
    auto request = upload();
    request.host = "127.0.0.1:8178";
    EXPECT_EQ(refused(request), 0);
    request.origin = "https://example.com";
    EXPECT_EQ(refused(request), 403);
}

TEST_F(HttpApiTest, OnlyPlainFormsAreRead) {
    auto request = upload();
    request.contentEncoding = "gzip";
    EXPECT_EQ(refused(request), 415);
    request = upload();
    request.contentType = "audio/wav";
    EXPECT_EQ(refused(request), 415);
    request.contentType = "Multipart/Form-Data; boundary=B";
    EXPECT_EQ(refused(request), 0);
}

}  // namespace quietlark

#include "transcription/transcription_client.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

#include "fakes/fake_http_client.h"
#include "fakes/fake_log.h"
#include "fakes/fake_scheduler.h"
#include "transcription/transcriber.h"

namespace quietlark {
namespace {

using std::chrono::milliseconds;

class TranscriptionClientTest : public testing::Test {
protected:
    void send(const char* language = "") {
        m_handle = m_client.transcribe(m_server, m_wav, QString::fromUtf8(language),
                                       [this](TranscriptionClient::Text text) {
                                           ++m_answers;
                                           m_text = std::move(text);
                                       });
    }
    /// The outcome of an upload that is answered thus, `elapsed` after it was sent.
    TranscriptionClient::Text answeredWith(int status, const QByteArray& body,
                                           milliseconds elapsed = milliseconds(1234)) {
        send();
        m_scheduler.advance(elapsed);
        m_http.respond(status, body);
        return m_text;
    }
    QString textOf(const QByteArray& body) {
        return answeredWith(200, body).value_or(QStringLiteral("(failed)"));
    }
    [[nodiscard]] const HttpRequest& request() const { return m_http.requests().back(); }
    [[nodiscard]] FakeLog::Line lastLine() const { return m_log.lines().back(); }
    static FakeLog::Line info(const char* text) { return {LogLevel::Info, text}; }
    static FakeLog::Line error(const char* text) { return {LogLevel::Error, text}; }

    FakeHttpClient m_http;
    FakeScheduler m_scheduler;
    FakeLog m_log;
    TranscriptionClient m_client{m_http, m_scheduler, m_log};
    ResolvedServer m_server{ServerFlavor::openai,
                            QUrl(QStringLiteral("http://h:1/v1/audio/transcriptions")),
                            QStringLiteral("m")};
    WavBytes m_wav{'R', 'I', 'F', 'F', 0, 1, 2};
    Cancellable m_handle;
    int m_answers = 0;
    TranscriptionClient::Text m_text;
};

TEST_F(TranscriptionClientTest, OneUploadIsSentWithinFiveMinutes) {
    send();
    ASSERT_EQ(m_http.requests().size(), 1U);
    EXPECT_EQ(request().method, HttpRequest::Method::Post);
    EXPECT_EQ(request().url, m_server.url);
    EXPECT_EQ(request().idleTimeout, std::chrono::minutes(5));
}

TEST_F(TranscriptionClientTest, BodyIsTheFormOfServerSoundAndLanguage) {
    send("de");
    const QByteArray prefix = "multipart/form-data; boundary=";
    ASSERT_TRUE(request().contentType.startsWith(prefix));
    const QByteArray boundary = request().contentType.sliced(prefix.size());
    EXPECT_EQ(request().body,
              Transcriber::multipartBody(boundary, m_wav,
                                         {{QStringLiteral("model"), QStringLiteral("m")},
                                          {QStringLiteral("language"), QStringLiteral("de")}}));
}

TEST_F(TranscriptionClientTest, BoundaryIsAFreshUppercaseUuidEachTime) {
    send();
    const QString first = QString::fromLatin1(request().contentType);
    send();
    const QRegularExpression pattern(
        QStringLiteral("^multipart/form-data; boundary=quietlark-"
                       "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$"));
    EXPECT_TRUE(pattern.match(first).hasMatch()) << first.toStdString();
    EXPECT_NE(first, QString::fromLatin1(request().contentType));
}

TEST_F(TranscriptionClientTest, StartIsLogged) {
    send("de");
    EXPECT_EQ(m_log.lines(),
              std::vector{info("transcribe start: url=http://h:1/v1/audio/transcriptions "
                               "flavor=openai wavBytes=7 lang=de")});
}

TEST_F(TranscriptionClientTest, StartIsLoggedWithoutALanguage) {
    m_server = {ServerFlavor::whispercpp, QUrl(QStringLiteral("http://h:1/inf erence")), {}};
    send();
    EXPECT_EQ(lastLine(), info("transcribe start: url=http://h:1/inf%20erence flavor=whispercpp "
                               "wavBytes=7 lang="));
}

TEST_F(TranscriptionClientTest, TextMemberIsCleaned) {
    EXPECT_EQ(textOf(R"({"text": " Hello   world\n"})"), QStringLiteral("Hello world"));
}

TEST_F(TranscriptionClientTest, BlankAudioIsAnEmptyText) {
    EXPECT_EQ(textOf(R"({"text": " [BLANK_AUDIO] "})"), QString());
    EXPECT_EQ(lastLine(), info("transcribe ok: 1.23s chars=0"));
}

TEST_F(TranscriptionClientTest, PlainTextAnswerIsCleaned) {
    EXPECT_EQ(textOf("hello [MUSIC] there"), QStringLiteral("hello there"));
}

TEST_F(TranscriptionClientTest, TextMemberThatIsANumberGivesTheWholeBody) {
    EXPECT_EQ(textOf("{\"text\":\n 5}"), QStringLiteral("{\"text\": 5}"));
}

TEST_F(TranscriptionClientTest, BodyThatIsNotUtf8IsAnEmptyText) {
    EXPECT_EQ(textOf("caf\xe9"), QString());
    EXPECT_EQ(textOf(""), QString());
}

TEST_F(TranscriptionClientTest, ControlCharactersDoNotGetThrough) {
    EXPECT_EQ(textOf("{\"text\": \"a\\u0007\\u001b[2Jb\\u202ec\\u0000\"}"),
              QStringLiteral("a[2Jbc"));
}

TEST_F(TranscriptionClientTest, SuccessIsLoggedWithTimeAndLength) {
    answeredWith(200, R"({"text": "four"})", milliseconds(61005));
    EXPECT_EQ(lastLine(), info("transcribe ok: 61.01s chars=4"));
}

TEST_F(TranscriptionClientTest, LengthCountsCharactersAsReadersDo) {
    answeredWith(200, "{\"text\": \"e\xcc\x81 \xf0\x9f\x91\x8d\xf0\x9f\x8f\xbd\"}",
                 milliseconds(0));
    EXPECT_EQ(lastLine(), info("transcribe ok: 0.00s chars=3"));
}

TEST_F(TranscriptionClientTest, EveryStatusFrom200To299IsSuccess) {
    for (const int status : {200, 201, 204, 299})
        EXPECT_TRUE(answeredWith(status, "a")) << status;
}

TEST_F(TranscriptionClientTest, EveryOtherStatusIsFailure) {
    for (const int status : {100, 199, 300, 302, 404, 500, 600}) {
        EXPECT_FALSE(answeredWith(status, "a")) << status;
    }
}

TEST_F(TranscriptionClientTest, RefusalCarriesStatusAndBodyAndIsLogged) {
    const auto text = answeredWith(500, "boom");
    ASSERT_FALSE(text);
    const TranscriberError::RequestFailed expected{500, QStringLiteral("boom")};
    EXPECT_EQ(std::get<TranscriberError::RequestFailed>(text.error().reason), expected);
    EXPECT_EQ(lastLine(), error("transcribe failed after 1.23s: HTTP 500 body=boom"));
}

TEST_F(TranscriptionClientTest, RefusalWithABodyThatIsNotUtf8CarriesNone) {
    answeredWith(500, "\xff", milliseconds(5));
    EXPECT_EQ(lastLine(), error("transcribe failed after 0.01s: HTTP 500 body="));
}

TEST_F(TranscriptionClientTest, PlaceholdersInABodyAreLoggedAsTheyAre) {
    answeredWith(500, "%1 %s %2");
    EXPECT_EQ(lastLine(), error("transcribe failed after 1.23s: HTTP 500 body=%1 %s %2"));
}

TEST_F(TranscriptionClientTest, AnswerWithoutAStatusIsAnInvalidResponse) {
    const auto text = answeredWith(0, "garbage");
    ASSERT_FALSE(text);
    EXPECT_TRUE(std::holds_alternative<TranscriberError::InvalidResponse>(text.error().reason));
    EXPECT_EQ(lastLine(), error("transcribe failed after 1.23s: invalidResponse"));
}

TEST_F(TranscriptionClientTest, TransportErrorIsPassedOnAndLoggedInFull) {
    send();
    m_scheduler.advance(milliseconds(2500));
    m_http.fail(
        {QStringLiteral("net"),
         7,
         QStringLiteral("It broke."),
         {{QStringLiteral("b"), QStringLiteral("2")}, {QStringLiteral("a"), QStringLiteral("1")}}});
    ASSERT_FALSE(m_text);
    EXPECT_EQ(m_text.error().localizedDescription(), QStringLiteral("It broke."));
    EXPECT_EQ(lastLine(),
              error("transcribe failed after 2.50s: net#7 It broke. userInfo={a = 1; b = 2}"));
}

TEST_F(TranscriptionClientTest, FailureIsNotRetried) {
    send();
    m_http.fail();
    EXPECT_EQ(m_http.requests().size(), 1U);
    EXPECT_EQ(m_http.openCount(), 0U);
    EXPECT_EQ(m_answers, 1);
}

TEST_F(TranscriptionClientTest, EveryUploadIsLoggedByTwoLines) {
    answeredWith(200, "a");
    answeredWith(404, "a");
    EXPECT_EQ(m_log.lines().size(), 4U);
}

TEST_F(TranscriptionClientTest, TranscriptIsNeverLogged) {
    answeredWith(200, R"({"text": "secret"})");
    EXPECT_FALSE(m_log.contains("secret"));
}

TEST_F(TranscriptionClientTest, DestroyedHandleWithdrawsTheUpload) {
    send();
    m_handle = Cancellable();
    EXPECT_EQ(m_http.openCount(), 0U);
    EXPECT_EQ(m_answers, 0);
}

}  // namespace
}  // namespace quietlark

#include "program/program_fixture.h"

namespace quietlark {
namespace {

class ProbeProgramTest : public ProgramFixture {
protected:
    Outcome probe() { return run({QStringLiteral("probe"), m_server.url()}); }
};

TEST_F(ProbeProgramTest, WhisperCppServerIsRecognised) {
    m_server.on("/", http_reply::answer(200, "<h1>Whisper.cpp</h1> /inference"));
    const Outcome outcome = probe();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.results,
              "flavor=whispercpp\nurl=" + m_server.url().toUtf8() + "/inference\nmodel=\n");
    EXPECT_EQ(outcome.messages, "");
    EXPECT_EQ(m_server.requestLines(),
              (std::vector<QByteArray>{"GET /api/v1/models", "GET /api/v1/models", "GET /v1/models",
                                       "GET /v1/models", "GET /"}));
    EXPECT_EQ(m_server.connectionCount(), 1);
}

TEST_F(ProbeProgramTest, OpenAICompatibleServerIsRecognisedWithItsModel) {
    m_server.on("/v1/models", http_reply::json(R"({"data": [{"id": "whisper-x"}]})"));
    EXPECT_EQ(probe().results, "flavor=openai\nurl=" + m_server.url().toUtf8() +
                                   "/v1/audio/transcriptions\nmodel=whisper-x\n");
}

TEST_F(ProbeProgramTest, ServerOfAnotherKindIsNone) {
    expectFailure(probe(), "No transcription server answers");
}

TEST_F(ProbeProgramTest, MissingServerIsNone) {
    m_server.close();
    expectFailure(probe(), "No transcription server answers");
}

TEST_F(ProbeProgramTest, ServerThatSpeaksGarbageIsNone) {
    for (const char* path : {"/", "/v1/models", "/api/v1/models"}) {
        m_server.on(path, http_reply::bytesAndClose("\x16\x03\x01 what?\r\n\r\n"));
    }
    expectFailure(probe(), "No transcription server answers");
}

TEST_F(ProbeProgramTest, EndlessAnswersAreNone) {
    m_server.on("/v1/models", http_reply::endless());
    m_server.on("/", http_reply::endless());
    expectFailure(probe(), "No transcription server answers");
}

TEST_F(ProbeProgramTest, WrongUsageEndsWithTwo) {
    expectFailure(run({QStringLiteral("probe")}), "URL", 2);
    expectFailure(run({QStringLiteral("probe"), QStringLiteral("h:1")}), "h:1", 2);
    expectFailure(run({QStringLiteral("sing")}), "sing", 2);
    EXPECT_EQ(m_server.connectionCount(), 0);
}

TEST_F(ProbeProgramTest, HelpAndVersionAreResults) {
    EXPECT_TRUE(run({QStringLiteral("--help")}).results.startsWith("Usage: quietlark"));
    EXPECT_TRUE(run({QStringLiteral("--version")}).results.startsWith("quietlark 0."));
    const Outcome help = run({QStringLiteral("probe"), QStringLiteral("--help")});
    EXPECT_TRUE(help.results.startsWith("Usage: quietlark probe"));
    EXPECT_EQ(help.exitCode, 0);
}

}  // namespace
}  // namespace quietlark

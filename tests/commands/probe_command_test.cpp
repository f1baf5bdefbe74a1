#include "commands/probe_command.h"

#include <sstream>

#include <gtest/gtest.h>

#include "commands/console.h"
#include "fakes/fake_http_client.h"
#include "transcription/server_resolver.h"

namespace quietlark {
namespace {

class ProbeCommandTest : public testing::Test {
protected:
    void serverHas(const char* url, const QByteArray& body) {
        m_http.respondTo(QString::fromUtf8(url), 200, body);
    }
    void run() {
        m_command.run({QStringLiteral("http://h:1")},
                      [this](ExitCode code) { m_exitCodes.push_back(code); });
        m_http.runAnswers();
    }

    FakeHttpClient m_http;
    ServerResolver m_resolver{m_http};
    std::ostringstream m_results;
    std::ostringstream m_messages;
    Console m_console{m_results, m_messages};
    ProbeCommand m_command{m_resolver, m_console};
    std::vector<ExitCode> m_exitCodes;
};

TEST_F(ProbeCommandTest, ServerWithAModelIsPrinted) {
    serverHas("http://h:1/v1/models", R"({"data": [{"id": "whisper-x"}]})");
    run();
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Done});
    EXPECT_EQ(m_results.str(),
              "flavor=openai\nurl=http://h:1/v1/audio/transcriptions\nmodel=whisper-x\n");
}

TEST_F(ProbeCommandTest, ServerWithoutAModelHasAnEmptyLine) {
    serverHas("http://h:1/", "whisper.cpp /inference");
    run();
    EXPECT_EQ(m_results.str(), "flavor=whispercpp\nurl=http://h:1/inference\nmodel=\n");
}

TEST_F(ProbeCommandTest, NameOfAModelCannotForgeALine) {
    serverHas("http://h:1/v1/models", R"({"data": [{"id": "whisper\nurl=x\u001b[0m"}]})");
    run();
    EXPECT_EQ(m_results.str(),
              "flavor=openai\nurl=http://h:1/v1/audio/transcriptions\nmodel=whisper url=x[0m\n");
}

TEST_F(ProbeCommandTest, NoServerIsASentence) {
    run();
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
    EXPECT_EQ(m_results.str(), "");
    EXPECT_EQ(m_messages.str(), "quietlark: No transcription server answers at http://h:1.\n");
}

TEST_F(ProbeCommandTest, ResultThatCannotBeWrittenIsAFailure) {
    serverHas("http://h:1/v1/models", "{}");
    m_results.setstate(std::ios::failbit);
    run();
    EXPECT_EQ(m_exitCodes, std::vector{ExitCode::Failed});
}

}  // namespace
}  // namespace quietlark

#include "transcription/server_resolver.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include "fakes/fake_http_client.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using Urls = std::vector<QString>;

const QByteArray whisperCppIndex = "<title>Whisper.cpp Server</title> POST /INFERENCE";
const QByteArray whisperModel = R"({"data": [{"id": "Whisper-Large"}]})";

class ServerResolverTest : public testing::Test {
protected:
    void serverHas(const char* url, const QByteArray& body, int status = 200) {
        m_http.respondTo(QString::fromUtf8(url), status, body);
    }
    std::optional<ResolvedServer> resolve(const char* address) {
        start(address);
        const bool isAnswered = waitUntil([this] {
            m_http.runAnswers();
            return m_answers > 0;
        });
        EXPECT_TRUE(isAnswered);
        return m_resolved;
    }
    void start(const char* address) {
        m_answers = 0;
        m_handle = m_resolver.resolveServer(QString::fromUtf8(address), m_timeout,
                                            [this](std::optional<ResolvedServer> resolved) {
                                                ++m_answers;
                                                m_resolved = std::move(resolved);
                                            });
    }
    static ResolvedServer openai(const char* url, std::optional<QString> model = std::nullopt) {
        return {ServerFlavor::openai, QUrl(QString::fromUtf8(url)), std::move(model)};
    }
    static ResolvedServer whispercpp(const char* url) {
        return {ServerFlavor::whispercpp, QUrl(QString::fromUtf8(url)), std::nullopt};
    }
    static Urls urls(const std::vector<const char*>& addresses) {
        Urls urls;
        for (const char* address : addresses)
            urls.push_back(QString::fromUtf8(address));
        return urls;
    }

    const std::chrono::milliseconds m_timeout{3000};
    FakeHttpClient m_http;
    ServerResolver m_resolver{m_http};
    Cancellable m_handle;
    int m_answers = 0;
    std::optional<ResolvedServer> m_resolved;
};

TEST_F(ServerResolverTest, UnreachableServerIsAskedFiveTimesInTheFixedOrder) {
    EXPECT_EQ(resolve("http://h:1"), std::nullopt);
    EXPECT_EQ(m_http.requestedUrls(),
              urls({"http://h:1/api/v1/models", "http://h:1/api/v1/models", "http://h:1/v1/models",
                    "http://h:1/v1/models", "http://h:1/"}));
}

TEST_F(ServerResolverTest, EveryQuestionIsAGetWithTheGivenTimeout) {
    EXPECT_EQ(resolve("http://h:1"), std::nullopt);
    for (const HttpRequest& request : m_http.requests()) {
        EXPECT_EQ(request.method, HttpRequest::Method::Get);
        EXPECT_EQ(request.idleTimeout, m_timeout);
    }
}

TEST_F(ServerResolverTest, NextQuestionIsAskedOnlyAfterTheAnswer) {
    start("http://h:1");
    for (std::size_t asked = 1; asked <= 5; ++asked) {
        EXPECT_EQ(m_http.requests().size(), asked);
        EXPECT_EQ(m_http.openCount(), 1U);
        m_http.fail();
    }
    EXPECT_EQ(m_answers, 1);
    EXPECT_EQ(m_http.requests().size(), 5U);
}

TEST_F(ServerResolverTest, ModelUnderTheFirstPrefixIsFoundByOneQuestion) {
    serverHas("http://h:1/api/v1/models", whisperModel);
    EXPECT_EQ(resolve("http://h:1"),
              openai("http://h:1/api/v1/audio/transcriptions", QStringLiteral("Whisper-Large")));
    EXPECT_EQ(m_http.requests().size(), 1U);
}

TEST_F(ServerResolverTest, ListWithoutASuitableModelIsFetchedAgainAndIdentifiesTheServer) {
    serverHas("http://h:1/api/v1/models", R"({"data": [{"id": "chat"}]})");
    EXPECT_EQ(resolve("http://h:1"), openai("http://h:1/api/v1/audio/transcriptions"));
    EXPECT_EQ(m_http.requestedUrls(),
              urls({"http://h:1/api/v1/models", "http://h:1/api/v1/models"}));
}

TEST_F(ServerResolverTest, EmptyObjectUnderTheSecondPrefixIsAServerWithoutAModel) {
    serverHas("http://h:1/v1/models", "{}");
    EXPECT_EQ(resolve("http://h:1"), openai("http://h:1/v1/audio/transcriptions"));
    EXPECT_EQ(m_http.requests().size(), 4U);
}

TEST_F(ServerResolverTest, ArrayIdentifiesTheServerToo) {
    serverHas("http://h:1/v1/models", "[]");
    EXPECT_EQ(resolve("http://h:1"), openai("http://h:1/v1/audio/transcriptions"));
}

TEST_F(ServerResolverTest, SecondAnswerCountsOnItsOwn) {
    start("http://h:1");
    m_http.respond(200, "{}");
    m_http.fail();
    m_http.respond(500);
    m_http.respond(200, whisperModel);
    EXPECT_EQ(m_resolved, openai("http://h:1/v1/audio/transcriptions"));
}

TEST_F(ServerResolverTest, OpenAICompatibleServerWinsOverAWhisperCppIndex) {
    serverHas("http://h:1/v1/models", whisperModel);
    serverHas("http://h:1/", whisperCppIndex);
    EXPECT_EQ(resolve("http://h:1")->flavor, ServerFlavor::openai);
}

TEST_F(ServerResolverTest, WhisperCppIsKnownByItsIndexWhateverTheCase) {
    serverHas("http://h:1/", whisperCppIndex);
    EXPECT_EQ(resolve("http://h:1"), whispercpp("http://h:1/inference"));
    EXPECT_EQ(m_http.requests().size(), 5U);
}

TEST_F(ServerResolverTest, IndexMustNameBothTheProgramAndItsUpload) {
    serverHas("http://h:1/", "whisper.cpp");
    EXPECT_EQ(resolve("http://h:1"), std::nullopt);
    serverHas("http://h:1/", "POST /inference");
    EXPECT_EQ(resolve("http://h:1"), std::nullopt);
}

TEST_F(ServerResolverTest, IndexThatIsNotUtf8IsNone) {
    serverHas("http://h:1/", whisperCppIndex + "\xff");
    EXPECT_EQ(resolve("http://h:1"), std::nullopt);
}

TEST_F(ServerResolverTest, OnlyStatus200Counts) {
    for (const int status : {201, 204, 299, 301, 404, 500}) {
        serverHas("http://h:1/v1/models", whisperModel, status);
        serverHas("http://h:1/", whisperCppIndex, status);
        EXPECT_EQ(resolve("http://h:1"), std::nullopt) << status;
    }
}

TEST_F(ServerResolverTest, AnswerThatIsNoJsonObjectOrArrayIsNone) {
    for (const char* body : {"", "null", "5", "\"text\"", "<html>", "{\"data\": ["}) {
        serverHas("http://h:1/api/v1/models", body);
        EXPECT_EQ(resolve("http://h:1"), std::nullopt) << body;
    }
}

TEST_F(ServerResolverTest, SpacesAndTrailingSlashesAreDropped) {
    serverHas("http://h:1/api/v1/models", "{}");
    EXPECT_EQ(resolve(" \n http://h:1/// \t"), openai("http://h:1/api/v1/audio/transcriptions"));
}

TEST_F(ServerResolverTest, PathOfTheAddressIsKept) {
    serverHas("http://h:1/speech/v1/models", "{}");
    EXPECT_EQ(resolve("http://h:1/speech/"), openai("http://h:1/speech/v1/audio/transcriptions"));
}

TEST_F(ServerResolverTest, EmptyAddressIsNone) {
    for (const char* address : {"", "  ", "/", " /// "}) {
        EXPECT_EQ(resolve(address), std::nullopt);
    }
    EXPECT_TRUE(m_http.requests().empty());
}

TEST_F(ServerResolverTest, InvalidAddressIsNoneWithoutAQuestion) {
    for (const char* address : {"h", "h:1", "127.0.0.1:8080", "http://", "http://h h", "/inference",
                                "http:///v1/audio/transcriptions", "h/inference",
                                "http://[::1/inference", "http://h/%zz/inference"}) {
        EXPECT_EQ(resolve(address), std::nullopt) << address;
    }
    EXPECT_TRUE(m_http.requests().empty());
}

TEST_F(ServerResolverTest, FullOpenAIUploadAddressIsUsedAsItIs) {
    EXPECT_EQ(resolve("http://h:1/v1/audio/transcriptions/"),
              openai("http://h:1/v1/audio/transcriptions"));
    EXPECT_EQ(m_http.requestedUrls(), urls({"http://h:1/v1/models"}));
}

TEST_F(ServerResolverTest, FullOpenAIUploadAddressGetsTheModelOfItsList) {
    serverHas("http://h:1/x/models", whisperModel);
    EXPECT_EQ(resolve("http://h:1/x/audio/transcriptions"),
              openai("http://h:1/x/audio/transcriptions", QStringLiteral("Whisper-Large")));
}

TEST_F(ServerResolverTest, FullWhisperCppUploadAddressIsUsedWithoutAQuestion) {
    EXPECT_EQ(resolve("https://h:1/inference/"), whispercpp("https://h:1/inference"));
    EXPECT_TRUE(m_http.requests().empty());
}

TEST_F(ServerResolverTest, NothingIsAnsweredBeforeTheCallReturns) {
    for (const char* address : {"", "h", "http://h/inference"}) {
        start(address);
        EXPECT_EQ(m_answers, 0) << address;
        EXPECT_TRUE(waitUntil([this] { return m_answers == 1; })) << address;
    }
}

TEST_F(ServerResolverTest, DestroyedHandleEndsTheQuestions) {
    start("http://h:1");
    m_handle = Cancellable();
    EXPECT_EQ(m_http.openCount(), 0U);
    EXPECT_EQ(m_answers, 0);
}

TEST_F(ServerResolverTest, DestroyedHandleAnswersNothingWhereNoQuestionWasNeeded) {
    start("http://h/inference");
    m_handle = Cancellable();
    bool hasTurned = false;
    QMetaObject::invokeMethod(
        qApp, [&hasTurned] { hasTurned = true; }, Qt::QueuedConnection);
    ASSERT_TRUE(waitUntil([&hasTurned] { return hasTurned; }));
    EXPECT_EQ(m_answers, 0);
}

TEST_F(ServerResolverTest, HandleMayBeDestroyedByTheHandler) {
    serverHas("http://h:1/v1/models", whisperModel);
    for (const char* address : {"http://h:1", "http://h:1/inference"}) {
        bool isAnswered = false;
        m_handle = m_resolver.resolveServer(QString::fromUtf8(address), m_timeout,
                                            [this, &isAnswered](const auto& resolved) {
                                                m_handle = Cancellable();
                                                isAnswered = resolved.has_value();
                                            });
        m_http.runAnswers();
        EXPECT_TRUE(waitUntil([&isAnswered] { return isAnswered; }));
    }
}

TEST_F(ServerResolverTest, TwoResolutionsDoNotMeet) {
    serverHas("http://a:1/v1/models", "{}");
    serverHas("http://b:1/", whisperCppIndex);
    std::vector<std::optional<ResolvedServer>> resolved;
    const auto keep = [&resolved](const auto& server) { resolved.push_back(server); };
    const Cancellable first =
        m_resolver.resolveServer(QStringLiteral("http://a:1"), m_timeout, keep);
    const Cancellable second =
        m_resolver.resolveServer(QStringLiteral("http://b:1"), m_timeout, keep);
    m_http.runAnswers();
    ASSERT_EQ(resolved.size(), 2U);
    EXPECT_EQ(resolved[0], openai("http://a:1/v1/audio/transcriptions"));
    EXPECT_EQ(resolved[1], whispercpp("http://b:1/inference"));
}

}  // namespace
}  // namespace quietlark

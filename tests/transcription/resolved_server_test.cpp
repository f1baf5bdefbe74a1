#include "transcription/resolved_server.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

TEST(ResolvedServerTest, FlavoursHaveNamesThatReadBack) {
    EXPECT_EQ(rawValue(ServerFlavor::whispercpp), QStringLiteral("whispercpp"));
    EXPECT_EQ(rawValue(ServerFlavor::openai), QStringLiteral("openai"));
    EXPECT_EQ(serverFlavor(QStringLiteral("whispercpp")), ServerFlavor::whispercpp);
    EXPECT_EQ(serverFlavor(QStringLiteral("openai")), ServerFlavor::openai);
    EXPECT_EQ(serverFlavor(QStringLiteral("OpenAI")), std::nullopt);
}

TEST(ResolvedServerTest, ServersAreEqualOnlyInAllThreeFields) {
    const ResolvedServer server{ServerFlavor::openai, QUrl(QStringLiteral("http://h/a")),
                                QStringLiteral("m")};
    EXPECT_EQ(server, ResolvedServer(server));
    ResolvedServer other = server;
    other.flavor = ServerFlavor::whispercpp;
    EXPECT_NE(server, other);
    other = server;
    other.url = QUrl(QStringLiteral("http://h/b"));
    EXPECT_NE(server, other);
    other = server;
    other.model = std::nullopt;
    EXPECT_NE(server, other);
}

}  // namespace
}  // namespace quietlark

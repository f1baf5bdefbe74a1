#include "config/server_mode.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

std::optional<ServerMode> decoded(const char* json) {
    return serverModeFromJson(QJsonDocument::fromJson(json).object().value(QLatin1String("mode")));
}

QByteArray encoded(const ServerMode& mode) {
    return QJsonDocument(serverModeToJson(mode)).toJson(QJsonDocument::Compact);
}

const ServerMode unconfigured = Unconfigured{};
const ServerMode local = Local{};

ServerMode manual(const QString& host, std::int64_t port, const QString& scheme) {
    return ManualRemote{host, port, scheme};
}

TEST(ServerModeTest, EmptyObjectIsUnconfigured) {
    EXPECT_EQ(decoded(R"({"mode": {}})"), unconfigured);
}

TEST(ServerModeTest, UnknownCaseIsUnconfigured) {
    EXPECT_EQ(decoded(R"({"mode": {"somethingNew": {"host": "h"}}})"), unconfigured);
}

TEST(ServerModeTest, FirstKnownCaseInFixedOrderWins) {
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": {"host": "h", "port": 1}, "local": {}}})"),
              local);
    EXPECT_EQ(decoded(R"({"mode": {"local": {}, "unconfigured": {}}})"), unconfigured);
    EXPECT_EQ(decoded(R"({"mode": {"manual": {"host": "old", "port": 1},
                                   "manualRemote": {"host": "new", "port": 2}}})"),
              manual(QStringLiteral("new"), 2, QStringLiteral("http")));
    EXPECT_EQ(decoded(R"({"mode": {"autoDiscover": {},
                                   "manual": {"host": "h", "port": 2}}})"),
              unconfigured);
}

TEST(ServerModeTest, CaseThatComesFirstButCannotBeReadIsAnErrorAllTheSame) {
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote": {},
                                   "manualRemote": {"host": "h", "port": 2}}})"),
              std::nullopt);
}

TEST(ServerModeTest, ValuesOfUnconfiguredAndLocalAreNotRead) {
    EXPECT_EQ(decoded(R"({"mode": {"unconfigured": 5}})"), unconfigured);
    EXPECT_EQ(decoded(R"({"mode": {"local": null}})"), local);
}

TEST(ServerModeTest, DiscoveredRemoteIsRead) {
    const ServerMode expected =
        DiscoveredRemote{QStringLiteral("Studio"), QStringLiteral("studio.local."), 8080};
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote":
                          {"instance": "Studio", "host": "studio.local.", "port": 8080}}})"),
              expected);
}

TEST(ServerModeTest, DiscoveredRemoteNeedsEveryValue) {
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote": {"host": "h", "port": 1}}})"), std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote": {"instance": "i", "port": 1}}})"),
              std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote": {"instance": "i", "host": "h"}}})"),
              std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote": null}})"), std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"discoveredRemote": "h"}})"), std::nullopt);
}

TEST(ServerModeTest, ManualRemoteWithoutSchemeIsHttp) {
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": {"host": "h", "port": 1}}})"),
              manual(QStringLiteral("h"), 1, QStringLiteral("http")));
}

TEST(ServerModeTest, ManualRemoteWithSchemeThatIsNoStringIsHttp) {
    for (const char* json : {R"({"mode": {"manualRemote": {"host": "h", "port": 1, "scheme": 5}}})",
                             R"({"mode": {"manualRemote": {"host": "h", "port": 1,
                                                           "scheme": null}}})"}) {
        EXPECT_EQ(decoded(json), manual(QStringLiteral("h"), 1, QStringLiteral("http")));
    }
}

TEST(ServerModeTest, ManualRemoteKeepsSchemeAsItIs) {
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": {"host": " h ", "port": 0, "scheme": ""}}})"),
              manual(QStringLiteral(" h "), 0, QString()));
}

TEST(ServerModeTest, ManualRemoteNeedsHostAndPort) {
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": {"port": 1}}})"), std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": {"host": "h"}}})"), std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": {"host": "h", "port": "1"}}})"), std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": {"manualRemote": []}})"), std::nullopt);
}

TEST(ServerModeTest, AutoDiscoverOfAnyValueIsUnconfigured) {
    EXPECT_EQ(decoded(R"({"mode": {"autoDiscover": {}}})"), unconfigured);
    EXPECT_EQ(decoded(R"({"mode": {"autoDiscover": [1, 2]}})"), unconfigured);
}

TEST(ServerModeTest, ManualOfEarlierVersionsIsManualRemote) {
    EXPECT_EQ(decoded(R"({"mode": {"manual": {"host": "h", "port": 9}}})"),
              manual(QStringLiteral("h"), 9, QStringLiteral("http")));
    EXPECT_EQ(decoded(R"({"mode": {"manual": {"host": "h", "port": 9, "scheme": "https"}}})"),
              manual(QStringLiteral("h"), 9, QStringLiteral("https")));
    EXPECT_EQ(decoded(R"({"mode": {"manual": {"host": "h"}}})"), std::nullopt);
}

TEST(ServerModeTest, AnythingButAnObjectIsAnError) {
    EXPECT_EQ(decoded(R"({"mode": "local"})"), std::nullopt);
    EXPECT_EQ(decoded(R"({"mode": null})"), std::nullopt);
    EXPECT_EQ(decoded(R"({})"), std::nullopt);
}

TEST(ServerModeTest, EveryCaseIsWrittenUnderItsOwnName) {
    EXPECT_EQ(encoded(Unconfigured{}), R"({"unconfigured":{}})");
    EXPECT_EQ(encoded(Local{}), R"({"local":{}})");
    EXPECT_EQ(encoded(DiscoveredRemote{QStringLiteral("i"), QStringLiteral("h"), 8080}),
              R"({"discoveredRemote":{"host":"h","instance":"i","port":8080}})");
    EXPECT_EQ(encoded(manual(QStringLiteral("h"), 443, QStringLiteral("https"))),
              R"({"manualRemote":{"host":"h","port":443,"scheme":"https"}})");
}

TEST(ServerModeTest, ServersThatDifferOnlyInPortAreUnequal) {
    const DiscoveredRemote server{QStringLiteral("i"), QStringLiteral("h"), 1};
    DiscoveredRemote other = server;
    EXPECT_EQ(ServerMode(server), ServerMode(other));
    other.port = 2;
    EXPECT_NE(ServerMode(server), ServerMode(other));
}

}  // namespace
}  // namespace quietlark

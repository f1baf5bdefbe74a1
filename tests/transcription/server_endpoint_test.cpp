#include "transcription/server_endpoint.h"

#include <limits>

#include "transcription/endpoint_file_fixture.h"

namespace quietlark {
namespace {

class ServerEndpointTest : public EndpointFileFixture {
protected:
    [[nodiscard]] std::optional<QString> baseURL(const ServerMode& mode) const {
        return ServerEndpoint(m_endpointFile).baseURL(mode);
    }
    [[nodiscard]] std::optional<QString> manual(const char* host, std::int64_t port,
                                                const char* scheme) const {
        return baseURL(ManualRemote{QString::fromUtf8(host), port, QString::fromUtf8(scheme)});
    }
    [[nodiscard]] std::optional<QString> discovered(const char* host, std::int64_t port) const {
        return baseURL(DiscoveredRemote{QStringLiteral("Studio"), QString::fromUtf8(host), port});
    }
};

TEST_F(ServerEndpointTest, UnconfiguredHasNoAddress) {
    EXPECT_EQ(baseURL(Unconfigured{}), std::nullopt);
}

TEST_F(ServerEndpointTest, LocalServerIsWhereItsFileSays) {
    write("local = 127.0.0.1:8080\n");
    EXPECT_EQ(baseURL(Local{}), QStringLiteral("http://127.0.0.1:8080"));
}

TEST_F(ServerEndpointTest, LocalServerWithoutAnAddressHasNone) {
    EXPECT_EQ(baseURL(Local{}), std::nullopt);
    write("display=127.0.0.1:8080\n");
    EXPECT_EQ(baseURL(Local{}), std::nullopt);
    write("local=\n");
    EXPECT_EQ(baseURL(Local{}), std::nullopt);
}

TEST_F(ServerEndpointTest, DiscoveredServerIsHttpAtItsHostAndPort) {
    EXPECT_EQ(discovered("studio.local.", 8080), QStringLiteral("http://studio.local.:8080"));
    EXPECT_EQ(discovered("\n studio \t", 1), QStringLiteral("http://studio:1"));
}

TEST_F(ServerEndpointTest, DiscoveredServerWithoutHostOrPortHasNoAddress) {
    EXPECT_EQ(discovered(" \n", 8080), std::nullopt);
    EXPECT_EQ(discovered("studio", 0), std::nullopt);
    EXPECT_EQ(discovered("studio", -1), std::nullopt);
}

TEST_F(ServerEndpointTest, ManualServerWithoutSchemeIsHttp) {
    EXPECT_EQ(manual(" myhost ", 8001, ""), QStringLiteral("http://myhost:8001"));
}

TEST_F(ServerEndpointTest, ManualServerKeepsItsScheme) {
    EXPECT_EQ(manual("myhost", 443, "https"), QStringLiteral("https://myhost:443"));
    EXPECT_EQ(manual("myhost", 443, " HTTPS"), QStringLiteral(" HTTPS://myhost:443"));
}

TEST_F(ServerEndpointTest, ManualServerWithoutHostOrPortHasNoAddress) {
    EXPECT_EQ(manual("myhost", 0, ""), std::nullopt);
    EXPECT_EQ(manual("myhost", -5, "http"), std::nullopt);
    EXPECT_EQ(manual("", 80, "http"), std::nullopt);
    EXPECT_EQ(manual("\xe2\x80\xa8 \xc2\x85", 80, "http"), std::nullopt);
}

TEST_F(ServerEndpointTest, HostIsTakenAsItStands) {
    EXPECT_EQ(manual("::1", 80, "http"), QStringLiteral("http://::1:80"));
    EXPECT_EQ(manual("[::1]", 80, "http"), QStringLiteral("http://[::1]:80"));
    EXPECT_EQ(manual("h", std::numeric_limits<std::int64_t>::max(), "http"),
              QStringLiteral("http://h:9223372036854775807"));
}

}  // namespace
}  // namespace quietlark

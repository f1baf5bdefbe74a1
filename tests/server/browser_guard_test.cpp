#include "server/browser_guard.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

HttpHead asked(std::string host, std::string origin = "") {
    return {.method = "POST",
            .path = "/inference",
            .host = std::move(host),
            .origin = std::move(origin)};
}

bool isRefused(const HttpHead& head, Audience audience = Audience::ThisComputer) {
    return foreignPageRefusal(head, audience).has_value();
}

}  // namespace

TEST(BrowserGuardTest, ProgramsAreWelcome) {
    for (const char* host : {"", "localhost", "LOCALHOST:80", "127.0.0.1:8178", "[::1]:8178",
                             "[::1]", "192.168.1.7:80", "localhost.:80"})
        EXPECT_FALSE(isRefused(asked(host))) << host;
}

TEST(BrowserGuardTest, TheServersOwnPageIsWelcome) {
    EXPECT_FALSE(isRefused(asked("127.0.0.1:8178", "http://127.0.0.1:8178")));
    EXPECT_FALSE(isRefused(asked("Localhost:8178", "http://localhost:8178")));
}

TEST(BrowserGuardTest, PagesOfOtherSitesAreNot) {
    for (const char* origin : {"http://example.com", "https://127.0.0.1:8178", "null",
                               "http://127.0.0.1:80", "http://127.0.0.1"})
        EXPECT_TRUE(isRefused(asked("127.0.0.1:8178", origin))) << origin;
}

TEST(BrowserGuardTest, NamesThatAnybodyCanHaveAreNot) {
    for (const Audience audience : {Audience::ThisComputer, Audience::Network})
        for (const char* host : {"example.com", "127.0.0.1.example.com", "a.b:8178", "local.com",
                                 "[::1].example.com", "1.2.3", "[x]"})
            EXPECT_TRUE(isRefused(asked(host, std::string("http://") + host), audience)) << host;
}

TEST(BrowserGuardTest, NamesWithinTheNetworkAreForServersThatShare) {
    for (const char* host : {"desk", "desk_1", "desk:8178", "desk.local", "Desk.Local.:8178",
                             "desk.lan", "desk.home.arpa"}) {
        EXPECT_FALSE(isRefused(asked(host), Audience::Network)) << host;
        EXPECT_TRUE(isRefused(asked(host), Audience::ThisComputer)) << host;
    }
}

TEST(BrowserGuardTest, TheComputersOwnNamesAreForServersThatShare) {
    const std::vector<std::string> names{"desk.fritz.box", "desk.example.com"};
    for (const char* host : {"desk.fritz.box", "Desk.Fritz.Box.:8178", "desk.example.com:8178"}) {
        EXPECT_FALSE(foreignPageRefusal(asked(host), Audience::Network, names)) << host;
        EXPECT_TRUE(foreignPageRefusal(asked(host), Audience::ThisComputer, names)) << host;
    }
    EXPECT_TRUE(foreignPageRefusal(asked("other.fritz.box"), Audience::Network, names));
    EXPECT_TRUE(foreignPageRefusal(asked("desk.fritz.box", "http://example.com"), Audience::Network,
                                   names));
}

TEST(BrowserGuardTest, WhatAPageFetchesWithoutSayingSoIsRefused) {
    HttpHead head{.method = "GET", .path = "/v1/models", .host = "127.0.0.1:8178"};
    for (const char* site : {"cross-site", "same-site"}) {
        head.fetchSite = site;
        head.fetchMode = "no-cors";
        EXPECT_TRUE(isRefused(head)) << site;
    }
}

TEST(BrowserGuardTest, ALinkMayLeadToTheIndexButNotToAnUpload) {
    HttpHead head{.method = "GET",
                  .path = "/",
                  .host = "127.0.0.1",
                  .fetchSite = "cross-site",
                  .fetchMode = "navigate"};
    EXPECT_FALSE(isRefused(head));
    head.method = "POST";
    EXPECT_TRUE(isRefused(head));
}

}  // namespace quietlark

#include "server/client_patience.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using namespace std::chrono_literals;

/// A transfer of which so many bytes move every second.
class ClientPatienceTest : public testing::Test {
protected:
    std::chrono::seconds lifeOf(std::uint64_t bytesPerSecond, std::chrono::seconds atMost) const {
        const ClientPatience::Clock::time_point start;
        auto deadline = start + m_patience.transfer;
        auto now = start;
        for (; now < deadline && now - start < atMost; now += 1s)
            deadline = m_patience.extended(deadline, bytesPerSecond, now);
        return std::chrono::duration_cast<std::chrono::seconds>(now - start);
    }

    const ClientPatience m_patience{.transfer = 30s, .bytesPerSecond = 1000};
};

}  // namespace

TEST_F(ClientPatienceTest, WhoKeepsUpThePaceMayGoOnForever) {
    EXPECT_EQ(lifeOf(1000, 24h), 24h);
}

TEST_F(ClientPatienceTest, WhoIsHalfAsFastIsLeftWhenTheReserveIsUsedUp) {
    const auto life = lifeOf(500, 24h);
    EXPECT_GE(life, 30s);
    EXPECT_LE(life, 60s);
}

TEST_F(ClientPatienceTest, WhoSendsNextToNothingIsLeft) {
    EXPECT_LE(lifeOf(1, 24h), 31s);
}

TEST_F(ClientPatienceTest, AFastBeginningIsNoLeaveToDawdle) {
    const ClientPatience::Clock::time_point now;
    EXPECT_EQ(m_patience.extended(now + 30s, 60 << 20, now), now + 30s);
    EXPECT_EQ(m_patience.extended(now + 1s, UINT64_MAX, now), now + 30s);
}

}  // namespace quietlark

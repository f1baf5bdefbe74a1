#include "servers/server_ranker.h"

#include <gtest/gtest.h>

#include "fakes/fake_processor.h"
#include "servers/hardware_profile.h"

namespace quietlark {
namespace {

using Entry = MDNSBrowser::Entry;
using Remotes = std::vector<Entry>;

Entry server(const char* name, std::optional<double> rtf = std::nullopt) {
    const QString text = QString::fromUtf8(name);
    return {text, text + QStringLiteral(".local"), 8001, std::nullopt, rtf, std::nullopt};
}

/// A computer with a processor of that brand.
class Computer {
public:
    explicit Computer(const char* brand) : m_processor(brand) {}

    [[nodiscard]] ServerRecommendation rank(const Remotes& remotes) const {
        return ServerRanker(m_hardware).rank(remotes);
    }
    [[nodiscard]] std::optional<SpeedHint> hint(std::optional<double> rtf) const {
        return ServerRanker(m_hardware).speedHint(server("box", rtf));
    }

private:
    FakeProcessor m_processor;
    HardwareProfile m_hardware{m_processor};
};

const LocalCandidate m2Pro{QStringLiteral("Apple M2 Pro"), 13.0};
const LocalCandidate unknown{};

TEST(ServerRankerTest, NoRemotesRecommendThisComputerEvenWithAnUnknownChip) {
    EXPECT_EQ(Computer("Apple M2 Pro").rank({}), ServerRecommendation(RecommendLocal{m2Pro}));
    EXPECT_EQ(Computer("AMD EPYC").rank({}), ServerRecommendation(RecommendLocal{unknown}));
}

TEST(ServerRankerTest, RemotesThatDoNotSayTheirSpeedAreAllShown) {
    const Remotes remotes{server("a"), server("b")};
    EXPECT_EQ(Computer("Apple M2 Pro").rank(remotes),
              ServerRecommendation(ShowList{m2Pro, remotes}));
}

TEST(ServerRankerTest, WithoutAVariantRatedRemotesAreAllShown) {
    const Remotes remotes{server("a", 30.0), server("b")};
    EXPECT_EQ(Computer("Intel(R) Core(TM) i7").rank(remotes),
              ServerRecommendation(ShowList{unknown, remotes}));
}

TEST(ServerRankerTest, AKnownChipWithoutAnEstimateShowsTheList) {
    const Remotes remotes{server("a", 30.0)};
    const LocalCandidate m5{QStringLiteral("Apple M5"), std::nullopt};
    EXPECT_EQ(Computer("Apple M5").rank(remotes), ServerRecommendation(ShowList{m5, remotes}));
}

TEST(ServerRankerTest, OnAnM2ProAServerAsFastAsThisComputerIsNotPreferred) {
    EXPECT_EQ(Computer("Apple M2 Pro").rank({server("a", 13.0)}),
              ServerRecommendation(RecommendLocal{m2Pro}));
}

TEST(ServerRankerTest, OnAnM2ProAServerFasterByALittleIsRecommendedWithoutAHint) {
    const Computer computer("Apple M2 Pro");
    EXPECT_EQ(computer.rank({server("a", 13.5)}),
              ServerRecommendation(RecommendRemote{server("a", 13.5)}));
    EXPECT_EQ(computer.hint(13.5), std::nullopt);
}

TEST(ServerRankerTest, OnAnM2ProAServerFasterByMuchIsRecommendedWithAHint) {
    const Computer computer("Apple M2 Pro");
    EXPECT_EQ(computer.rank({server("a", 20.0)}),
              ServerRecommendation(RecommendRemote{server("a", 20.0)}));
    EXPECT_EQ(computer.hint(20.0), SpeedHint::faster);
}

TEST(ServerRankerTest, OfTwoEquallyFastServersTheEarlierIsRecommended) {
    EXPECT_EQ(
        Computer("Apple M1").rank({server("slow", 8.0), server("a", 20.0), server("b", 20.0)}),
        ServerRecommendation(RecommendRemote{server("a", 20.0)}));
}

TEST(ServerRankerTest, TheFastestIsRecommendedWhereverItStands) {
    EXPECT_EQ(Computer("Apple M1").rank({server("a", 8.0), server("none"), server("b", 20.0)}),
              ServerRecommendation(RecommendRemote{server("b", 20.0)}));
}

TEST(ServerRankerTest, AServerOfZeroOrNegativeSpeedNeverWins) {
    const LocalCandidate m1{QStringLiteral("Apple M1"), 7.0};
    EXPECT_EQ(Computer("Apple M1").rank({server("a", 0.0), server("b", -3.0)}),
              ServerRecommendation(RecommendLocal{m1}));
}

TEST(ServerRankerTest, AServerOfTheSameSpeedHasNoHintAndOneOfFourFifthsIsSlower) {
    const Computer computer("Apple M1 Pro");  // 10.0
    EXPECT_EQ(computer.hint(10.0), std::nullopt);
    EXPECT_EQ(computer.hint(8.0), SpeedHint::slower);
}

TEST(ServerRankerTest, TheHintsBandIncludesItsEnds) {
    const Computer computer("Apple M1 Pro");  // 10.0
    EXPECT_EQ(computer.hint(12.5), SpeedHint::faster);
    EXPECT_EQ(computer.hint(12.4), std::nullopt);
    EXPECT_EQ(computer.hint(8.1), std::nullopt);
    EXPECT_EQ(computer.hint(-1.0), SpeedHint::slower);
}

TEST(ServerRankerTest, WithoutBothSpeedsThereIsNoHint) {
    EXPECT_EQ(Computer("Apple M1").hint(std::nullopt), std::nullopt);
    EXPECT_EQ(Computer("Apple M5").hint(20.0), std::nullopt);
    EXPECT_EQ(Computer("AMD EPYC").hint(20.0), std::nullopt);
}

TEST(ServerRecommendationTest, EqualityIsByCaseAndEveryField) {
    const ServerRecommendation list = ShowList{unknown, {server("a"), server("b")}};
    EXPECT_EQ(list, ServerRecommendation(ShowList{unknown, {server("a"), server("b")}}));
    EXPECT_NE(list, ServerRecommendation(ShowList{unknown, {server("b"), server("a")}}));
    EXPECT_NE(list, ServerRecommendation(ShowList{m2Pro, {server("a"), server("b")}}));
    EXPECT_NE(list, ServerRecommendation(RecommendLocal{unknown}));
}

}  // namespace
}  // namespace quietlark

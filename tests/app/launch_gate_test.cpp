#include "app/launch_gate.h"

#include <memory>

#include <gtest/gtest.h>

#include "fakes/fake_scheduler.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

class LaunchGateTest : public ::testing::Test {
protected:
    LaunchGateTest() {
        gate->wait([this] { return isKnown; }, [this] { ++launches; });
    }

    FakeScheduler scheduler;
    std::unique_ptr<LaunchGate> gate = std::make_unique<LaunchGate>(scheduler);
    bool isKnown = false;
    int launches = 0;
};

TEST_F(LaunchGateTest, TheLaunchFollowsOnceEverythingIsKnown) {
    scheduler.advance(500ms);
    EXPECT_EQ(launches, 0);
    isKnown = true;
    scheduler.advance(LaunchGate::lookInterval);
    EXPECT_EQ(launches, 1);
}

TEST_F(LaunchGateTest, TheLaunchDoesNotWaitForeverForASystemThatNeverAnswers) {
    scheduler.advance(LaunchGate::patience - 1ms);
    EXPECT_EQ(launches, 0);
    scheduler.advance(1ms);
    EXPECT_EQ(launches, 1);
}

TEST_F(LaunchGateTest, ThereIsOneLaunchOnly) {
    isKnown = true;
    scheduler.advance(10s);
    EXPECT_EQ(launches, 1);
}

TEST_F(LaunchGateTest, WithoutTheGateThereIsNone) {
    gate.reset();
    scheduler.advance(10s);
    EXPECT_EQ(launches, 0);
}

}  // namespace
}  // namespace quietlark

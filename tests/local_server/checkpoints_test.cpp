#include "local_server/checkpoints.h"

#include <atomic>
#include <limits>

#include <gtest/gtest.h>

#include "support/wait.h"

namespace quietlark {

namespace {

using namespace std::chrono_literals;

constexpr qint64 stride = Checkpoints::strideBytes;
/// Everything is too fast, and is not held up at all.
constexpr Checkpoints::Haste endless{.bytesPerSecond = 0, .headStartBytes = 0, .patience = 1h};

class CheckpointsTest : public testing::Test {
protected:
    [[nodiscard]] Checkpoints::Save save() {
        return [this](qint64 bytes) {
            m_saved = bytes;
            ++m_count;
            while (m_isHeld)
                std::this_thread::yield();
            return m_outcome;
        };
    }
    [[nodiscard]] bool saves(qint64 bytes) const {
        return waitUntil([&] { return m_saved == bytes; });
    }
    /// Writes faster than a slow disk saves.
    static void expectNeverTooMuchUnsaved(Checkpoints::Haste haste) {
        constexpr qint64 pieceBytes = 64 * 1024;
        std::atomic<qint64> saved = 0;
        const auto saveSlowly = [&saved](qint64 bytes) {
            for (int turn = 0; turn < 1000; ++turn)
                std::this_thread::yield();
            saved = bytes;
            return FileOutcome();
        };
        Checkpoints checkpoints(0, saveSlowly, haste);
        for (qint64 written = pieceBytes; written <= 32 * stride; written += pieceBytes) {
            EXPECT_TRUE(checkpoints.reach(written));
            ASSERT_LE(written - saved, Checkpoints::maxUnsavedBytes);
        }
    }

    std::atomic<qint64> m_saved = 0;
    std::atomic<int> m_count = 0;
    std::atomic<bool> m_isHeld = false;
    FileOutcome m_outcome;
};

}  // namespace

TEST_F(CheckpointsTest, AStrideIsSavedAsSoonAsItIsWritten) {
    Checkpoints checkpoints(100, save());
    EXPECT_TRUE(checkpoints.reach(100 + stride));
    EXPECT_TRUE(saves(100 + stride));
}

TEST_F(CheckpointsTest, LessThanAStrideIsNotSaved) {
    Checkpoints checkpoints(100, save());
    EXPECT_TRUE(checkpoints.reach(100 + stride - 1));
    EXPECT_TRUE(checkpoints.stop());
    EXPECT_EQ(m_count, 0);
}

TEST_F(CheckpointsTest, WhatIsWrittenDuringASaveIsSavedByTheNext) {
    m_isHeld = true;
    Checkpoints checkpoints(0, save(), endless);
    EXPECT_TRUE(checkpoints.reach(stride));
    ASSERT_TRUE(saves(stride));
    EXPECT_TRUE(checkpoints.reach(2 * stride));
    EXPECT_TRUE(checkpoints.reach(3 * stride));
    m_isHeld = false;
    EXPECT_TRUE(saves(3 * stride));
    EXPECT_EQ(m_count, 2);
}

TEST_F(CheckpointsTest, AWriterWaitsForASlowDisk) {
    // Every line is a slow one, whatever came before somebody looked.
    expectNeverTooMuchUnsaved({.bytesPerSecond = std::numeric_limits<qint64>::max()});
}

TEST_F(CheckpointsTest, AWriterInHasteWaitsOnceItsPatienceIsOver) {
    expectNeverTooMuchUnsaved({.bytesPerSecond = 0, .headStartBytes = 0, .patience = 0ms});
}

TEST_F(CheckpointsTest, AHeadStartAloneIsNoHaste) {
    expectNeverTooMuchUnsaved({.bytesPerSecond = 0, .headStartBytes = 32 * stride, .patience = 1h});
}

TEST(CheckpointsHasteTest, AGigabitLineIsNotInHaste) {
    constexpr double gigabitBytesPerSecond = 125e6;
    for (const auto elapsed : {0.001s, 0.1s, 1.0s, 60.0s, 3600.0s}) {
        const auto bytes = static_cast<qint64>(gigabitBytesPerSecond * elapsed.count());
        EXPECT_FALSE(Checkpoints::Haste().isOn(bytes, elapsed)) << elapsed.count();
    }
}

TEST(CheckpointsHasteTest, WhatTheComputerItselfSendsIsSoonInHaste) {
    EXPECT_TRUE(Checkpoints::Haste().isOn(25'000'000, 0.025s));
    EXPECT_TRUE(Checkpoints::Haste().isOn(1'000'000'000, 1s));
}

TEST(CheckpointsHasteTest, WhatHadArrivedBeforeIsNoHaste) {
    EXPECT_FALSE(Checkpoints::Haste().isOn(4 * 1024 * 1024, 0s));
}

TEST_F(CheckpointsTest, AFailureIsToldAtOnceAndMakesNobodyWait) {
    m_outcome = tl::unexpected(QStringLiteral("broken disk"));
    Checkpoints checkpoints(0, save());
    static_cast<void>(checkpoints.reach(stride));
    EXPECT_TRUE(waitUntil([&] { return !checkpoints.reach(stride); }));
    EXPECT_EQ(checkpoints.reach(100 * stride).error(), QStringLiteral("broken disk"));
}

TEST_F(CheckpointsTest, NothingIsSavedOnceTheyAreStopped) {
    Checkpoints checkpoints(100, save());
    EXPECT_TRUE(checkpoints.stop());
    EXPECT_TRUE(checkpoints.reach(100 + stride));
    EXPECT_TRUE(checkpoints.stop());
    EXPECT_EQ(m_count, 0);
    EXPECT_EQ(checkpoints.savedBytes(), 100);
}

TEST_F(CheckpointsTest, TheFirstFailureIsRememberedAndTheLast) {
    m_outcome = tl::unexpected(QStringLiteral("broken disk"));
    Checkpoints checkpoints(0, save());
    static_cast<void>(checkpoints.reach(stride));
    ASSERT_TRUE(saves(stride));
    static_cast<void>(checkpoints.reach(2 * stride));
    EXPECT_EQ(checkpoints.stop().error(), QStringLiteral("broken disk"));
    EXPECT_EQ(m_count, 1);
    EXPECT_EQ(checkpoints.savedBytes(), 0);
}

}  // namespace quietlark

#include "local_server/checkpoints.h"

#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "support/wait.h"

namespace quietlark {

namespace {

constexpr qint64 stride = Checkpoints::strideBytes;

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

    std::atomic<qint64> m_saved = 0;
    std::atomic<int> m_count = 0;
    std::atomic<bool> m_isHeld = false;
    FileOutcome m_outcome;
};

}  // namespace

TEST_F(CheckpointsTest, AStrideIsSavedAsSoonAsItIsWritten) {
    Checkpoints checkpoints(100, save());
    checkpoints.reach(100 + stride);
    EXPECT_TRUE(saves(100 + stride));
}

TEST_F(CheckpointsTest, LessThanAStrideIsNotSaved) {
    Checkpoints checkpoints(100, save());
    checkpoints.reach(100 + stride - 1);
    EXPECT_TRUE(checkpoints.stop());
    EXPECT_EQ(m_count, 0);
}

TEST_F(CheckpointsTest, WhatIsWrittenDuringASaveIsSavedByTheNext) {
    m_isHeld = true;
    Checkpoints checkpoints(0, save());
    checkpoints.reach(stride);
    ASSERT_TRUE(saves(stride));
    checkpoints.reach(2 * stride);
    checkpoints.reach(3 * stride);
    m_isHeld = false;
    EXPECT_TRUE(saves(3 * stride));
    EXPECT_EQ(m_count, 2);
}

TEST_F(CheckpointsTest, NothingIsSavedOnceTheyAreStopped) {
    Checkpoints checkpoints(0, save());
    EXPECT_TRUE(checkpoints.stop());
    checkpoints.reach(stride);
    EXPECT_TRUE(checkpoints.stop());
    EXPECT_EQ(m_count, 0);
}

TEST_F(CheckpointsTest, TheFirstFailureIsRememberedAndTheLast) {
    m_outcome = tl::unexpected(QStringLiteral("broken disk"));
    Checkpoints checkpoints(0, save());
    checkpoints.reach(stride);
    ASSERT_TRUE(saves(stride));
    checkpoints.reach(2 * stride);
    EXPECT_EQ(checkpoints.stop().error(), QStringLiteral("broken disk"));
    EXPECT_EQ(m_count, 1);
}

}  // namespace quietlark

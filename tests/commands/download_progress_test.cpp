#include "commands/download_progress.h"

#include <gtest/gtest.h>

namespace quietlark {

using namespace std::chrono_literals;

namespace {

constexpr qint64 megabyte = 1'000'000;

class DownloadProgressTest : public testing::Test {
protected:
    /// Megabytes, `time` after the beginning.
    void report(std::chrono::milliseconds time, qint64 written, qint64 total = 1600) {
        m_progress.report(DownloadProgress::TimePoint() + time, written * megabyte,
                          total * megabyte);
    }
    [[nodiscard]] std::string line() const { return m_progress.line().toStdString(); }
    [[nodiscard]] std::string bar(int columns) const {
        return m_progress.bar(columns).toStdString();
    }

    DownloadProgress m_progress;
};

}  // namespace

TEST_F(DownloadProgressTest, TellsTheShareAndTheAmount) {
    report(0s, 400);
    EXPECT_EQ(line(), " 25 %  400.0 MB of 1.6 GB");
}

TEST_F(DownloadProgressTest, TellsTheRateAndTheTimeLeftAfterASecond) {
    report(0s, 400);
    report(1s, 410);
    EXPECT_EQ(line(), " 25 %  410.0 MB of 1.6 GB  10.0 MB/s  2:00 left");
}

TEST_F(DownloadProgressTest, WhatWasThereBeforeIsNotPartOfTheRate) {
    report(0s, 1500);
    report(2s, 1510);
    EXPECT_EQ(m_progress.bytesPerSecond(), 5.0 * megabyte);
}

TEST_F(DownloadProgressTest, TheRateIsSmoothed) {
    report(0s, 1);
    report(1s, 11);
    report(2s, 11);
    EXPECT_EQ(m_progress.bytesPerSecond(), 8.0 * megabyte);
}

TEST_F(DownloadProgressTest, LongTimesHaveHours) {
    report(0s, 1);
    report(10s, 2);
    EXPECT_NE(line().find("  4:26:21 left"), std::string::npos) << line();
}

TEST_F(DownloadProgressTest, NoTimeIsGuessedWhenNothingMoves) {
    report(0s, 400);
    report(1s, 400);
    EXPECT_EQ(line(), " 25 %  400.0 MB of 1.6 GB  0 bytes/s");
}

TEST_F(DownloadProgressTest, AnUnknownSizeLeavesTheAmount) {
    report(0s, 400, 0);
    EXPECT_EQ(line(), "400.0 MB");
    EXPECT_EQ(bar(80), "400.0 MB");
}

TEST_F(DownloadProgressTest, TheBarFillsTheLine) {
    report(0s, 400);
    EXPECT_EQ(bar(80), "[##########------------------------------]  25 %  400.0 MB of 1.6 GB");
    EXPECT_EQ(bar(49), "[#####---------------]  25 %  400.0 MB of 1.6 GB");
}

TEST_F(DownloadProgressTest, ANarrowTerminalHasNoBar) {
    report(0s, 400);
    EXPECT_EQ(bar(30), " 25 %  400.0 MB of 1.6 GB");
    EXPECT_EQ(bar(5), " 25 %");
}

}  // namespace quietlark

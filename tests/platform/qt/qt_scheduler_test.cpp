#include "platform/qt/qt_scheduler.h"

#include <algorithm>
#include <memory>
#include <thread>

#include <QThread>
#include <gtest/gtest.h>

#include "fakes/fake_scheduler.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using std::chrono::milliseconds;

class VirtualTime {
public:
    Scheduler& scheduler() { return m_scheduler; }
    bool runUntil(const std::function<bool()>& condition) {
        for (int step = 0; step < 1000 && !condition(); ++step)
            m_scheduler.advance(milliseconds(1));
        return condition();
    }

private:
    FakeScheduler m_scheduler;
};

class RealTime {
public:
    Scheduler& scheduler() { return m_scheduler; }
    bool runUntil(const std::function<bool()>& condition) { return waitUntil(condition); }

private:
    QtScheduler m_scheduler;
};

template <typename Time>
class SchedulerContract : public testing::Test {
protected:
    Scheduler& scheduler() { return m_time.scheduler(); }
    std::function<void()> note(int number) {
        return [this, number] { m_notes.push_back(number); };
    }
    bool runUntilNotes(std::size_t count) {
        return m_time.runUntil([this, count] { return m_notes.size() >= count; });
    }

    Time m_time;
    QObject m_context;
    std::vector<int> m_notes;
};

class TimeName {
public:
    template <typename Time>
    static std::string GetName(int) {
        return std::is_same_v<Time, VirtualTime> ? "FakeScheduler" : "QtScheduler";
    }
};

using Times = testing::Types<VirtualTime, RealTime>;
TYPED_TEST_SUITE(SchedulerContract, Times, TimeName);

TYPED_TEST(SchedulerContract, NothingRunsBeforeTheCallReturns) {
    this->scheduler().after(milliseconds(0), &this->m_context, this->note(1));
    this->scheduler().post(this->note(2));
    EXPECT_TRUE(this->m_notes.empty());
    EXPECT_TRUE(this->runUntilNotes(2));
}

TYPED_TEST(SchedulerContract, DelayHasPassedWhenTheActionRuns) {
    const auto start = this->scheduler().now();
    Scheduler::Clock::time_point end;
    this->scheduler().after(milliseconds(20), &this->m_context, [this, &end] {
        end = this->scheduler().now();
        this->m_notes.push_back(1);
    });
    ASSERT_TRUE(this->runUntilNotes(1));
    EXPECT_GE(end - start, milliseconds(20));
}

TYPED_TEST(SchedulerContract, ShorterDelayRunsFirst) {
    this->scheduler().after(milliseconds(40), &this->m_context, this->note(2));
    this->scheduler().after(milliseconds(5), &this->m_context, this->note(1));
    ASSERT_TRUE(this->runUntilNotes(2));
    EXPECT_EQ(this->m_notes, (std::vector{1, 2}));
}

TYPED_TEST(SchedulerContract, ActionDoesNotRunOnceItsContextIsGone) {
    {
        QObject context;
        this->scheduler().after(milliseconds(1), &context, this->note(1));
    }
    this->scheduler().after(milliseconds(20), &this->m_context, this->note(2));
    ASSERT_TRUE(this->runUntilNotes(1));
    EXPECT_EQ(this->m_notes, std::vector{2});
}

TYPED_TEST(SchedulerContract, NegativeDelayIsNone) {
    this->scheduler().after(milliseconds(-5), &this->m_context, this->note(1));
    EXPECT_TRUE(this->runUntilNotes(1));
}

TYPED_TEST(SchedulerContract, RepeatsUntilItsHandleIsDestroyed) {
    auto repeating =
        std::make_unique<Cancellable>(this->scheduler().every(milliseconds(2), this->note(1)));
    EXPECT_TRUE(this->m_notes.empty());
    EXPECT_TRUE(this->runUntilNotes(3));
    repeating.reset();
    const auto count = this->m_notes.size();
    this->scheduler().after(milliseconds(10), &this->m_context, this->note(2));
    EXPECT_TRUE(this->runUntilNotes(count + 1));
    EXPECT_EQ(this->m_notes.back(), 2);
}

TYPED_TEST(SchedulerContract, RepeatingActionMayEndItself) {
    Cancellable repeating;
    repeating = this->scheduler().every(milliseconds(1), [&] {
        this->m_notes.push_back(1);
        repeating.cancel();
    });
    this->scheduler().after(milliseconds(10), &this->m_context, this->note(2));
    EXPECT_TRUE(this->runUntilNotes(2));
    EXPECT_EQ(this->m_notes, (std::vector{1, 2}));
}

TYPED_TEST(SchedulerContract, PostedActionsKeepTheirOrder) {
    for (int i = 0; i < 100; ++i)
        this->scheduler().post(this->note(i));
    ASSERT_TRUE(this->runUntilNotes(100));
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(this->m_notes[static_cast<std::size_t>(i)], i);
}

TYPED_TEST(SchedulerContract, WhatAnActionPostsRunsAfterWhatIsPostedAlready) {
    this->scheduler().post([this] { this->scheduler().post(this->note(3)); });
    this->scheduler().post(this->note(2));
    ASSERT_TRUE(this->runUntilNotes(2));
    EXPECT_EQ(this->m_notes, (std::vector{2, 3}));
}

class QtSchedulerTest : public testing::Test {
protected:
    QtScheduler m_scheduler;
};

TEST_F(QtSchedulerTest, PostFromAnotherThreadRunsOnTheMainThread) {
    QThread* ranOn = nullptr;
    auto value = std::make_unique<int>(0);
    std::thread other([this, &ranOn, &value] {
        *value = 5;
        m_scheduler.post([&ranOn] { ranOn = QThread::currentThread(); });
    });
    EXPECT_TRUE(waitUntil([&ranOn] { return ranOn != nullptr; }));
    EXPECT_EQ(*value, 5);
    EXPECT_EQ(ranOn, QThread::currentThread());
    other.join();
}

TEST_F(QtSchedulerTest, PostsOfManyThreadsAllRunEachThreadsInItsOrder) {
    constexpr int threadCount = 4;
    constexpr int postCount = 1000;
    std::vector<std::vector<int>> notes(threadCount);
    std::vector<std::thread> threads;
    for (auto& own : notes) {
        threads.emplace_back([this, &own] {
            for (int i = 0; i < postCount; ++i)
                m_scheduler.post([&own, i] { own.push_back(i); });
        });
    }
    EXPECT_TRUE(waitUntil([&notes] {
        return std::all_of(notes.begin(), notes.end(),
                           [](const auto& own) { return own.size() == postCount; });
    }));
    for (auto& thread : threads)
        thread.join();
    for (const auto& own : notes)
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
}

TEST_F(QtSchedulerTest, TimeDoesNotGoBack) {
    const auto before = m_scheduler.now();
    EXPECT_GE(m_scheduler.now(), before);
}

}  // namespace
}  // namespace quietlark

#include "platform/qt/qt_worker_thread.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/wait.h"

namespace quietlark {

TEST(QtWorkerThreadTest, RunsOnAThreadOfItsOwnInTheOrderOfTheCalls) {
    std::vector<int> order;
    std::atomic<bool> isElsewhere = false;
    {
        QtWorkerThread worker;
        worker.scheduler().post([&, here = std::this_thread::get_id()] {
            isElsewhere = std::this_thread::get_id() != here;
            order.push_back(1);
        });
        worker.scheduler().post([&] { order.push_back(2); });
    }
    EXPECT_TRUE(isElsewhere);
    EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST(QtWorkerThreadTest, HasTimersOfItsOwn) {
    std::atomic<bool> hasRun = false;
    QObject* context = nullptr;
    QtWorkerThread worker;
    worker.scheduler().post([&] {
        context = new QObject;
        worker.scheduler().after(std::chrono::milliseconds(1), context, [&] { hasRun = true; });
    });
    EXPECT_TRUE(waitUntil([&] { return hasRun.load(); }));
    worker.scheduler().post([&] { delete context; });
}

TEST(QtWorkerThreadTest, LeavesNothingBehindThatIsKeptForEachThread) {
    static std::atomic<int> kept = 0;
    struct KeptForEachThread {
        KeptForEachThread() { ++kept; }
        ~KeptForEachThread() { --kept; }
    };
    {
        QtWorkerThread worker;
        worker.scheduler().post([] { thread_local const KeptForEachThread something; });
    }
    EXPECT_EQ(kept, 0);
}

TEST(QtWorkerThreadTest, WhatIsToBeDeletedLaterIsDeletedInTheEnd) {
    std::atomic<bool> isDeleted = false;
    {
        QtWorkerThread worker;
        worker.scheduler().post([&] {
            auto* object = new QObject;
            QObject::connect(object, &QObject::destroyed, object, [&] { isDeleted = true; });
            object->deleteLater();
        });
    }
    EXPECT_TRUE(isDeleted);
}

}  // namespace quietlark

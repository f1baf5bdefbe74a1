#include "server/connection_pool.h"

#include <atomic>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "support/wait.h"

namespace quietlark {
namespace {

/// Makes every new thread of this program ask for more memory than there can be.
class NoMoreThreads {
public:
    NoMoreThreads() {
        pthread_getattr_default_np(&m_usual);
        pthread_attr_t impossible = m_usual;
        pthread_attr_setstacksize(&impossible, std::size_t{1} << 60U);
        pthread_setattr_default_np(&impossible);
    }
    ~NoMoreThreads() { pthread_setattr_default_np(&m_usual); }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t m_usual{};
};

}  // namespace

TEST(ConnectionPoolTest, AConnectionWaitsWhileTheSystemHasNoMoreThreads) {
    const int crowded = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
    std::atomic<int> served = 0;
    ConnectionPool pool(4, crowded);
    {
        const NoMoreThreads state;
        EXPECT_THROW(std::thread([] {}), std::system_error);
        pool.enqueue([&served] { ++served; });
    }
    EXPECT_EQ(served, 0);
    pool.enqueue([&served] { ++served; });
    EXPECT_TRUE(waitUntil([&served] { return served == 2; }));
    pool.shutdown();
    close(crowded);
}

}  // namespace quietlark

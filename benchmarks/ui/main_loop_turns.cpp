// Preloaded into a program: writes how long its main thread was busy between two waits of its event
// loop, a line each, "MILLISECONDS OF WHICH-ON-THE-PROCESSOR", into the file that
// QUIETLARK_TURNS names.

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

double now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// One wait of an event loop after the other; the first begins what is measured.
class Turns {
public:
    Turns() {
        if (const char* path = std::getenv("QUIETLARK_TURNS"))
            m_file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }

    void beginWait() {
        if (m_file < 0 || m_wall == 0) return;
        const double wall = now(CLOCK_MONOTONIC) - m_wall;
        if (wall >= 1) dprintf(m_file, "%.1f %.1f\n", wall, now(CLOCK_THREAD_CPUTIME_ID) - m_cpu);
    }

    void endWait() {
        m_wall = now(CLOCK_MONOTONIC);
        m_cpu = now(CLOCK_THREAD_CPUTIME_ID);
    }

private:
    int m_file = -1;
    double m_wall = 0;
    double m_cpu = 0;
};

/// Who waits for one file only waits for an answer, in the middle of something.
bool isEventLoop(nfds_t count) {
    return gettid() == getpid() && count > 1;
}

}  // namespace

extern "C" int poll(pollfd* files, nfds_t count, int timeout) {
    static auto* const real = reinterpret_cast<decltype(&poll)>(dlsym(RTLD_NEXT, "poll"));
    static Turns turns;
    if (!isEventLoop(count)) return real(files, count, timeout);
    turns.beginWait();
    const int ready = real(files, count, timeout);
    turns.endWait();
    return ready;
}

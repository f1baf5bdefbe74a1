#pragma once

#include <memory>

#include <pulse/pulseaudio.h>

#include "platform/linux/pulse/pulse_pointer.h"

namespace quietlark {

/// The audio thread: libpulse's event loop on a thread of its own. Also the lock that keeps its
/// callbacks away, for std::scoped_lock; every call of libpulse from outside them needs it.
class PulseMainloop {
public:
    PulseMainloop();
    ~PulseMainloop();
    PulseMainloop(const PulseMainloop&) = delete;
    PulseMainloop& operator=(const PulseMainloop&) = delete;

    void lock() { pa_threaded_mainloop_lock(m_loop.get()); }
    void unlock() { pa_threaded_mainloop_unlock(m_loop.get()); }

    /// Lets go of the lock until wake() is called, as a condition variable does.
    void wait() { pa_threaded_mainloop_wait(m_loop.get()); }
    void wake() { pa_threaded_mainloop_signal(m_loop.get(), 0); }

    [[nodiscard]] pa_mainloop_api* api() { return pa_threaded_mainloop_get_api(m_loop.get()); }

private:
    std::unique_ptr<pa_threaded_mainloop, PulseRelease<pa_threaded_mainloop_free>> m_loop;
};

}  // namespace quietlark

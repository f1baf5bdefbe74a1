#include "platform/linux/pulse/pulse_mainloop.h"

namespace quietlark {

PulseMainloop::PulseMainloop() : m_loop(pa_threaded_mainloop_new()) {
    pa_threaded_mainloop_set_name(m_loop.get(), "audio");
    pa_threaded_mainloop_start(m_loop.get());
}

PulseMainloop::~PulseMainloop() {
    pa_threaded_mainloop_stop(m_loop.get());
}

}  // namespace quietlark

// libpulse hands static mutexes and used packets from thread to thread by atomics, which the thread
// sanitizer cannot see in a library that is not built with it.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:^pa_mutex_lock$\n"
           "race:^pa_packet_new_data$\n"
           "race:^pa_srbchannel_read$\n"
           "race:^pa_iochannel_read_with_ancil_data$\n";
}

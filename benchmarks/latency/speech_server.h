#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include <QByteArray>

#include "latency/keyboard.h"

namespace quietlark::benchmark {

/// A speech server that answers at once and notes when an upload's bytes came in and when its
/// answer went out. One connection at a time.
class SpeechServer {
public:
    /// When the parts of one upload passed this end.
    struct Upload {
        Clock::time_point firstByte;
        Clock::time_point lastByte;
        Clock::time_point answered;
        std::size_t bytes = 0;
    };

    SpeechServer();
    ~SpeechServer();

    [[nodiscard]] std::uint16_t port() const { return m_port; }

    /// Waits for the next upload, five seconds at most.
    [[nodiscard]] bool awaitUpload(Upload& upload);

private:
    void serve();
    void serveConnection(int socket);

    int m_listener;
    std::uint16_t m_port = 0;
    std::mutex m_mutex;
    std::condition_variable m_uploaded;
    Upload m_upload;
    bool m_hasUpload = false;
    std::thread m_thread;
};

}  // namespace quietlark::benchmark

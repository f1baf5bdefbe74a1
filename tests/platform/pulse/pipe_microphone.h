#pragma once

#include <algorithm>
#include <span>

#include <QFile>
#include <fcntl.h>
#include <unistd.h>

#include "peers/pulse_server.h"
#include "support/wait.h"

namespace quietlark {

/// The writing end of a microphone that PulseServer::pipeMicrophone() made.
class PipeMicrophone {
public:
    explicit PipeMicrophone(const PulseServer& server,
                            const QString& name = QStringLiteral("microphone"))
        : m_pipe(::open(QFile::encodeName(server.pipePath(name)).constData(),
                        O_WRONLY | O_NONBLOCK | O_CLOEXEC)) {}
    ~PipeMicrophone() { ::close(m_pipe); }
    PipeMicrophone(const PipeMicrophone&) = delete;
    PipeMicrophone& operator=(const PipeMicrophone&) = delete;

    /// Returns when all of it is in the pipe, some perhaps not yet read by the server.
    void speak(std::span<const float> samples) {
        auto bytes = std::as_bytes(samples);
        const auto write = [&] {
            const auto written = ::write(m_pipe, bytes.data(), bytes.size());
            bytes = bytes.subspan(std::size_t(std::max<ssize_t>(written, 0)));
            return bytes.empty();
        };
        (void)waitUntil(write);
    }

private:
    int m_pipe;
};

/// Samples that are all different, so that a lost or doubled one shows.
inline std::vector<float> distinctSamples(std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = float(i + 1) / float(count + 1);
    return samples;
}

}  // namespace quietlark

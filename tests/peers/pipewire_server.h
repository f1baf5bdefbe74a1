#pragma once

#include <memory>

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

#include "peers/child_process.h"

namespace quietlark {

/// A real PipeWire of its own that speaks PulseAudio's protocol, without hardware: a loudspeaker
/// "speaker", whose monitor is the default source, and a silent microphone "microphone". Default
/// devices show up a moment after construction.
class PipewireServer {
public:
    PipewireServer();

    /// For PULSE_SERVER.
    [[nodiscard]] QByteArray address() const;

    /// Runs `pactl` to its end; answers its standard output.
    QByteArray pactl(const QStringList& arguments) const;

private:
    [[nodiscard]] QString path(const char* file) const;
    [[nodiscard]] QProcessEnvironment environment() const;
    std::unique_ptr<ChildProcess> run(const char* program, const QStringList& arguments,
                                      const char* socket) const;

    QTemporaryDir m_directory;
    std::unique_ptr<ChildProcess> m_bus;
    std::unique_ptr<ChildProcess> m_pipewire;
    std::unique_ptr<ChildProcess> m_wireplumber;
    std::unique_ptr<ChildProcess> m_pulse;
};

}  // namespace quietlark

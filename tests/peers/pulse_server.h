#pragma once

#include <memory>

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

#include "peers/child_process.h"

namespace quietlark {

/// A real PulseAudio server of its own, without hardware.
class PulseServer {
public:
    /// A loudspeaker "speaker" that plays at once and a microphone "microphone" that hears what it
    /// plays.
    static QStringList loopback();

    /// A microphone that hears what is written to the pipe of its name, 32-bit floats of one
    /// channel.
    static QString pipeMicrophone(const QString& name, int sampleRateHz = 48000);

    /// `modules` as `pulseaudio --load` takes them.
    explicit PulseServer(QStringList modules = loopback());

    /// For PULSE_SERVER; the same after restart().
    [[nodiscard]] QByteArray address() const;
    [[nodiscard]] QString pipePath(const QString& microphone) const;

    /// This process's environment with the server as the user's own.
    [[nodiscard]] QProcessEnvironment environment() const;

    /// Runs `pactl` to its end; answers its standard output.
    QByteArray pactl(const QStringList& arguments) const;

    /// How many streams of clients are recording at this moment.
    [[nodiscard]] qsizetype recordStreams() const;

    /// Starts the server if it does not run, and waits until it answers.
    void start();
    void end();

    /// Keeps the server from doing anything, as an overloaded machine would.
    void freeze();
    void thaw();

private:
    QTemporaryDir m_directory;
    QStringList m_modules;
    std::unique_ptr<ChildProcess> m_server;
};

}  // namespace quietlark

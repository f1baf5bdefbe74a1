#include "peers/pulse_server.h"

#include <QFile>
#include <signal.h>

#include "support/wait.h"

namespace quietlark {

QStringList PulseServer::loopback() {
    return {QStringLiteral("module-null-sink sink_name=speaker rate=48000 format=float32le "
                           "channels=2 norewinds=1"),
            QStringLiteral("module-remap-source source_name=microphone master=speaker.monitor")};
}

QString PulseServer::pipeMicrophone(const QString& name, int sampleRateHz) {
    return QStringLiteral(
               "module-pipe-source source_name=%1 file=%1 rate=%2 format=float32le "
               "channels=1")
        .arg(name)
        .arg(sampleRateHz);
}

PulseServer::PulseServer(QStringList modules) : m_modules(std::move(modules)) {
    start();
}

QByteArray PulseServer::address() const {
    return "unix:" + m_directory.filePath(QStringLiteral("native")).toUtf8();
}

QString PulseServer::pipePath(const QString& microphone) const {
    return m_directory.filePath(microphone);
}

QProcessEnvironment PulseServer::environment() const {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto* directory : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH"})
        environment.insert(QString::fromLatin1(directory), m_directory.path());
    environment.insert(QStringLiteral("PULSE_SERVER"), QString::fromUtf8(address()));
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    environment.remove(QStringLiteral("DISPLAY"));
    return environment;
}

QByteArray PulseServer::pactl(const QStringList& arguments) const {
    return ChildProcess(QStringLiteral("pactl"), arguments, environment()).readAll();
}

qsizetype PulseServer::recordStreams() const {
    const QByteArray streams =
        pactl({QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("source-outputs")});
    // Modules record too, by other means.
    return streams.count("protocol-native");
}

void PulseServer::start() {
    if (m_server && m_server->isRunning()) return;
    QStringList arguments = {
        QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--use-pid-file=no"),
        QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--log-level=error")};
    for (const QString& module : m_modules)
        arguments << QStringLiteral("--load=") + module;
    // Last, so that a client finds everything in place.
    arguments << QStringLiteral("--load=module-native-protocol-unix auth-anonymous=1 socket=") +
                     m_directory.filePath(QStringLiteral("native"));
    // A server does not go looking for another one.
    auto serverEnvironment = environment();
    serverEnvironment.remove(QStringLiteral("PULSE_SERVER"));
    m_server =
        std::make_unique<ChildProcess>(QStringLiteral("pulseaudio"), arguments, serverEnvironment);
    const QString socket = m_directory.filePath(QStringLiteral("native"));
    (void)waitUntil(
        [&] { return QFile::exists(socket) && !pactl({QStringLiteral("info")}).isEmpty(); });
}

void PulseServer::end() {
    m_server.reset();
    QFile::remove(m_directory.filePath(QStringLiteral("native")));
}

void PulseServer::freeze() {
    ::kill(static_cast<pid_t>(m_server->processId()), SIGSTOP);
}

void PulseServer::thaw() {
    ::kill(static_cast<pid_t>(m_server->processId()), SIGCONT);
}

}  // namespace quietlark

#include "peers/pipewire_server.h"

#include <QFile>

#include "support/wait.h"

namespace quietlark {
namespace {

constexpr auto busConfiguration = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";

}  // namespace

PipewireServer::PipewireServer() {
    QFile configuration(path("bus.conf"));
    if (configuration.open(QIODevice::WriteOnly))
        configuration.write(QString::fromLatin1(busConfiguration).arg(path("bus")).toUtf8());
    configuration.close();
    m_bus =
        run("dbus-daemon",
            {QStringLiteral("--nofork"), QStringLiteral("--config-file"), configuration.fileName()},
            "bus");
    m_pipewire = run("pipewire", {}, "pipewire-0");
    m_wireplumber = run("wireplumber", {}, nullptr);
    m_pulse = run("pipewire-pulse", {}, "pulse/native");
    pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
           QStringLiteral("sink_name=speaker")});
    pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
           QStringLiteral("media.class=Audio/Source/Virtual"),
           QStringLiteral("sink_name=microphone")});
    const auto areDefault = [this] {
        pactl({QStringLiteral("set-default-sink"), QStringLiteral("speaker")});
        pactl({QStringLiteral("set-default-source"), QStringLiteral("speaker.monitor")});
        return pactl({QStringLiteral("info")}).contains("Default Source: speaker.monitor");
    };
    (void)waitUntil(areDefault);
}

QByteArray PipewireServer::address() const {
    return "unix:" + path("pulse/native").toUtf8();
}

QByteArray PipewireServer::pactl(const QStringList& arguments) const {
    return ChildProcess(QStringLiteral("pactl"), arguments, environment()).readAll();
}

QString PipewireServer::path(const char* file) const {
    return m_directory.filePath(QString::fromLatin1(file));
}

QProcessEnvironment PipewireServer::environment() const {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto* variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME",
                                 "XDG_DATA_HOME", "PIPEWIRE_RUNTIME_DIR"})
        environment.insert(QString::fromLatin1(variable), m_directory.path());
    environment.insert(QStringLiteral("PULSE_RUNTIME_PATH"), path("pulse"));
    environment.insert(QStringLiteral("PULSE_SERVER"), QString::fromUtf8(address()));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                       QStringLiteral("unix:path=") + path("bus"));
    environment.insert(QStringLiteral("WIREPLUMBER_DEBUG"), QStringLiteral("E"));
    environment.remove(QStringLiteral("DISPLAY"));
    return environment;
}

std::unique_ptr<ChildProcess> PipewireServer::run(const char* program, const QStringList& arguments,
                                                  const char* socket) const {
    auto process =
        std::make_unique<ChildProcess>(QString::fromLatin1(program), arguments, environment());
    if (socket) (void)waitUntil([&] { return QFile::exists(path(socket)); });
    return process;
}

}  // namespace quietlark

#include "peers/avahi_peer.h"

#include <QDBusConnectionInterface>
#include <QFile>
#include <QUuid>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/wait.h"

namespace quietlark {

namespace {

// Obeys one line of standard input after the other, and answers each with "done".
constexpr char script[] = R"(
mount -t tmpfs -o mode=755 tmpfs /run
mkdir /run/avahi-daemon
ip link set lo up
if [ "$2" = several ]; then
    ip link add near type veth peer name far
    ip address add 10.77.0.1/24 dev near
    ip link set near up
    ip link set far up
fi
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$1/bus
while read -r what; do
    case $what in
        start-bus)
            dbus-daemon --config-file="$1/bus.conf" --nofork --nopidfile & bus=$!
            until [ -S "$1/bus" ]; do sleep 0.01; done ;;
        stop-bus) kill -KILL "$bus" "$daemon"; wait "$bus" "$daemon"; rm -f "$1/bus" ;;
        freeze-bus) kill -STOP "$bus" ;;
        thaw-bus) kill -CONT "$bus" ;;
        start-daemon)
            rm -f /run/avahi-daemon/pid
            avahi-daemon -f "$1/avahi.conf" --no-drop-root --no-chroot --no-rlimits & daemon=$! ;;
        stop-daemon) kill -TERM "$daemon"; wait "$daemon" ;;
        kill-daemon) kill -KILL "$daemon"; wait "$daemon" ;;
        freeze-daemon) kill -STOP "$daemon" ;;
        thaw-daemon) kill -CONT "$daemon" ;;
        end) exit ;;
    esac
    echo done
done 2>/dev/null
)";

constexpr char busConfiguration[] = R"(<busconfig>
  <listen>unix:path=%1/bus</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
)";

constexpr char avahiConfiguration[] = R"([server]
host-name=%1
use-ipv4=yes
use-ipv6=%2
allow-interfaces=%3
[publish]
publish-hinfo=no
publish-workstation=no
)";

void write(const QString& path, const QString& text) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) file.write(text.toUtf8());
}

}  // namespace

bool AvahiPeer::canRun() {
    const pid_t child = fork();
    if (child == 0) _exit(unshare(CLONE_NEWNET | CLONE_NEWNS) == 0 ? 0 : 1);
    int status = 1;
    return waitpid(child, &status, 0) == child && status == 0;
}

AvahiPeer::AvahiPeer(Network network) {
    writeConfiguration(network);
    m_namespace = std::make_unique<ChildProcess>(
        QStringLiteral("unshare"),
        QStringList{QStringLiteral("--net"), QStringLiteral("--mount"),
                    QStringLiteral("--propagation=private"), QStringLiteral("--pid"),
                    QStringLiteral("--fork"), QStringLiteral("--kill-child"),
                    QStringLiteral("--mount-proc"), QStringLiteral("bash"), QStringLiteral("-c"),
                    QString::fromLatin1(script), QStringLiteral("avahi-peer"), m_directory.path(),
                    network == Network::Several ? QStringLiteral("several") : QString()});
    startBus();
    startDaemon();
}

AvahiPeer::~AvahiPeer() {
    // With the first process of their namespace all the others end.
    m_namespace->writeLine("end");
    (void)waitUntil([this] { return !m_namespace->isRunning(); });
}

QString AvahiPeer::busAddress() const {
    return QStringLiteral("unix:path=%1/bus").arg(m_directory.path());
}

QString AvahiPeer::hostName() {
    return QStringLiteral("quiet-peer");
}

void AvahiPeer::startDaemon() {
    command("start-daemon");
    const QString name = QUuid::createUuid().toString();
    (void)waitUntil([&] {
        const auto bus = QDBusConnection::connectToBus(busAddress(), name);
        return bus.isConnected() &&
               bus.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.Avahi"));
    });
    QDBusConnection::disconnectFromBus(name);
}

void AvahiPeer::stopDaemon() {
    command("stop-daemon");
}

void AvahiPeer::killDaemon() {
    command("kill-daemon");
}

void AvahiPeer::freezeDaemon() {
    command("freeze-daemon");
}

void AvahiPeer::thawDaemon() {
    command("thaw-daemon");
}

void AvahiPeer::startBus() {
    command("start-bus");
}

void AvahiPeer::stopBus() {
    command("stop-bus");
}

void AvahiPeer::freezeBus() {
    command("freeze-bus");
}

void AvahiPeer::thawBus() {
    command("thaw-bus");
}

void AvahiPeer::command(const QByteArray& line) {
    m_namespace->writeLine(line);
    const QByteArray answer = m_namespace->readLine();
    if (answer != "done") qWarning("the Avahi peer did not %s", line.constData());
}

void AvahiPeer::writeConfiguration(Network network) const {
    const bool several = network == Network::Several;
    write(m_directory.filePath(QStringLiteral("bus.conf")),
          QString::fromLatin1(busConfiguration).arg(m_directory.path()));
    write(m_directory.filePath(QStringLiteral("avahi.conf")),
          QString::fromLatin1(avahiConfiguration)
              .arg(hostName(), several ? QStringLiteral("yes") : QStringLiteral("no"),
                   several ? QStringLiteral("lo,near") : QStringLiteral("lo")));
}

}  // namespace quietlark

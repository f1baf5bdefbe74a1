#include "peers/systemd_user.h"

#include <QDir>
#include <QFile>

#include "support/wait.h"

namespace quietlark {

SystemdUser::SystemdUser()
    : m_process(std::make_unique<ChildProcess>(
          QStringLiteral("bash"),
          QStringList{QStringLiteral(QUIETLARK_PEERS "/systemd_user.sh"), m_directory.path()})) {
    const QByteArray answer = m_process->readLine();
    if (answer == "ready") return;
    m_whyNot = answer.isEmpty() ? QByteArray("It did not start.") : answer;
}

SystemdUser::~SystemdUser() {
    QDBusConnection::disconnectFromBus(m_connection);
    m_process->closeInput();
    (void)waitUntil([this] { return !m_process->isRunning(); });
}

QDBusConnection SystemdUser::connectToBus() {
    const QString address =
        QStringLiteral("unix:path=") + m_directory.filePath(QStringLiteral("run/bus"));
    m_connection = address;
    return QDBusConnection::connectToBus(address, m_connection);
}

bool SystemdUser::run(const QString& command) {
    m_process->writeLine(command.toUtf8());
    return m_process->readLine() == "exit 0";
}

bool SystemdUser::installUnit(const QString& unit, const QString& text) {
    const QDir units(m_directory.filePath(QStringLiteral("home/.local/share/systemd/user")));
    if (!units.mkpath(QStringLiteral("."))) return false;
    QFile file(units.filePath(unit));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) return false;
    file.close();
    return run(QStringLiteral("systemctl --user daemon-reload"));
}

}  // namespace quietlark

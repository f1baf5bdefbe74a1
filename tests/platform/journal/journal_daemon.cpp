#include "platform/journal/journal_daemon.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>

#include "support/wait.h"

namespace quietlark {
namespace {

const QString configurationFolder = QStringLiteral("/run/systemd/journald.conf.d");
const QString socketPath = QStringLiteral("/run/systemd/journal/socket");
const QString controlSocketPath = QStringLiteral("/run/systemd/journal/io.systemd.journal");

constexpr char configuration[] =
    "[Journal]\n"
    "Storage=volatile\n"
    "RuntimeMaxUse=512M\n"
    "RateLimitBurst=0\n"
    "ReadKMsg=no\n"
    "Audit=no\n";

bool hasSynced() {
    ChildProcess program(QStringLiteral("journalctl"), {QStringLiteral("--sync")});
    return waitUntil([&program] { return !program.isRunning(); }) && program.exitCode() == 0;
}

/// Returns once the daemon has written down all that it was sent. It takes lines before it takes
/// orders.
void sync() {
    if (!waitUntil(hasSynced)) qWarning("journalctl --sync failed");
}

}  // namespace

bool usePrivateRun() {
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/run", "tmpfs", 0, "mode=755,size=1G") == 0;
}

JournalDaemon::JournalDaemon() {
    QDir().mkpath(configurationFolder);
    QDir().mkpath(QStringLiteral("/run/log/journal"));
    QFile file(configurationFolder + QStringLiteral("/test.conf"));
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(configuration);
    file.close();
    m_daemon.emplace(QStringLiteral("/lib/systemd/systemd-journald"));
    m_isListening =
        waitUntil([this] { return QFileInfo::exists(socketPath) || !m_daemon->isRunning(); });
    m_isListening = m_isListening && m_daemon->isRunning();
}

JournalDaemon::~JournalDaemon() {
    m_daemon.reset();
    QFile::remove(socketPath);
    QFile::remove(controlSocketPath);
}

std::vector<QJsonObject> JournalDaemon::entries(const QString& identifier) const {
    sync();
    const QByteArray lines = ChildProcess(QStringLiteral("journalctl"),
                                          {QStringLiteral("--directory=/run/log/journal"),
                                           QStringLiteral("--all"), QStringLiteral("--output=json"),
                                           QStringLiteral("--identifier=") + identifier})
                                 .readAll();
    std::vector<QJsonObject> entries;
    for (const QByteArray& line : lines.split('\n')) {
        if (!line.isEmpty()) entries.push_back(QJsonDocument::fromJson(line).object());
    }
    return entries;
}

void JournalDaemon::suspend() const {
    kill(static_cast<pid_t>(m_daemon->processId()), SIGSTOP);
}

void JournalDaemon::resume() const {
    kill(static_cast<pid_t>(m_daemon->processId()), SIGCONT);
}

}  // namespace quietlark

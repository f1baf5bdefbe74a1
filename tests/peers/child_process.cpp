#include "peers/child_process.h"

#include <signal.h>
#include <sys/prctl.h>

#include "support/wait.h"

namespace quietlark {

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment) {
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(program, arguments);
    m_process.waitForStarted();
}

ChildProcess::~ChildProcess() {
    end();
}

bool ChildProcess::isRunning() const {
    return m_process.state() == QProcess::Running;
}

QByteArray ChildProcess::readLine(std::chrono::milliseconds limit) {
    const auto lineOrEnd = [this] { return m_process.canReadLine() || !isRunning(); };
    if (!waitUntil(lineOrEnd, limit) || !m_process.canReadLine()) return {};
    return m_process.readLine().trimmed();
}

void ChildProcess::writeLine(const QByteArray& line) {
    m_process.write(line + '\n');
    m_process.waitForBytesWritten();
}

QByteArray ChildProcess::readAll(std::chrono::milliseconds limit) {
    if (!waitUntil([this] { return !isRunning(); }, limit)) return {};
    return m_process.readAllStandardOutput();
}

void ChildProcess::end() {
    if (!isRunning()) return;
    m_process.terminate();
    if (m_process.waitForFinished(3000)) return;
    m_process.kill();
    m_process.waitForFinished(3000);
}

}  // namespace quietlark

#include <csignal>

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "program/quit_signals.h"

namespace quietlark {

namespace {

// Blocked for good, so that they are left to the descriptor. Threads inherit this.
int openSignalDescriptor() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, number);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

}  // namespace

QuitSignals::QuitSignals()
    : m_descriptor(openSignalDescriptor()), m_notifier(m_descriptor, QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &QuitSignals::onSignal);
}

QuitSignals::~QuitSignals() {
    m_notifier.setEnabled(false);
    close(m_descriptor);
}

void QuitSignals::onSignal() {
    signalfd_siginfo info;
    while (read(m_descriptor, &info, sizeof info) == sizeof info)
        Q_EMIT quitRequested();
}

}  // namespace quietlark

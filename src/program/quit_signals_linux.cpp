#include <csignal>

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "program/quit_signals.h"

namespace quietlark {

namespace {

sigset_t quitSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present = {};
        sigaction(number, nullptr, &present);
        if (present.sa_handler != SIG_IGN) sigaddset(&signals, number);
    }
    return signals;
}

int openSignalDescriptor() {
    const sigset_t signals = quitSignals();
    return signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

}  // namespace

void QuitSignals::block() {
    const sigset_t signals = quitSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

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

#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace quietlark {

/// Turns SIGINT, SIGTERM and SIGHUP into a signal on the main thread, so that the program can end
/// in good order. One at a time in a process. A signal that whoever started the program has it
/// ignore, as nohup does, stays ignored.
class QuitSignals final : public QObject {
    Q_OBJECT

public:
    /// Keeps the signals from ending the program at once, before any of these is there to take
    /// them. Call it before there is any other thread: threads inherit it, and one that has not
    /// would still end the program.
    static void block();

    QuitSignals();
    ~QuitSignals() override;

Q_SIGNALS:
    void quitRequested();

private:
    void onSignal();

    int m_descriptor;  ///< a signalfd
    QSocketNotifier m_notifier;
};

}  // namespace quietlark

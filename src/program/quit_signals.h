#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace quietlark {

/// Turns SIGINT, SIGTERM and SIGHUP into a signal on the main thread, so that the program can end
/// in good order. Create it before any other thread; one at a time in a process.
class QuitSignals final : public QObject {
    Q_OBJECT

public:
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

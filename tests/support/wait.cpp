#include "support/wait.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace quietlark {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    QTimer heartbeat;
    heartbeat.start(1);
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool spinUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
    }
    return true;
}

}  // namespace quietlark

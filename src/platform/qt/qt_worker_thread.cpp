#include "platform/qt/qt_worker_thread.h"

namespace quietlark {

QtWorkerThread::QtWorkerThread() {
    m_thread.start();
}

QtWorkerThread::~QtWorkerThread() {
    m_scheduler.post([this] { m_thread.quit(); });
    m_thread.wait();
}

}  // namespace quietlark

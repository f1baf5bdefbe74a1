#include "platform/qt/qt_worker_thread.h"

#include <future>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

namespace quietlark {

QtWorkerThread::QtWorkerThread() {
    std::promise<QThread*> started;
    m_thread = std::thread([this, &started] {
        QEventLoop loop;
        m_loop = &loop;
        started.set_value(QThread::currentThread());
        loop.exec();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    m_scheduler.emplace(*started.get_future().get());
}

QtWorkerThread::~QtWorkerThread() {
    m_scheduler->post([this] { m_loop->quit(); });
    m_thread.join();
}

}  // namespace quietlark

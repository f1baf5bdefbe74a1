// model_download_benchmark: downloads the model as the application does, from QUIETLARK_MODEL_URL
// into XDG_DATA_HOME, and prints what that cost: the time, the memory beyond what the program had
// before, and the longest time for which the main thread could not take an event.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

#include <QCoreApplication>
#include <QFile>
#include <QProcessEnvironment>

#include "local_server/background_model_fetcher.h"
#include "local_server/model_downloader.h"
#include "notifications/notification_center.h"
#include "platform/qt/qt_http_streams.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/qt/qt_worker_thread.h"

namespace quietlark {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

double memoryMegabytes(const QByteArray& field) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (!line.startsWith(field)) continue;
        return line.sliced(field.size()).simplified().split(' ').first().toDouble() / 1000;
    }
    return 0;
}

/// Asks for the next turn of the event loop again and again, and notes the longest wait for it.
class EventLoopWatch {
public:
    explicit EventLoopWatch(Scheduler& scheduler) : m_scheduler(scheduler) {}

    void tick() {
        const auto now = Clock::now();
        if (m_last != Clock::time_point()) m_longest = std::max(m_longest, now - m_last);
        m_last = now;
        m_scheduler.after(std::chrono::milliseconds(1), &m_context, [this] { tick(); });
    }
    [[nodiscard]] double longestMilliseconds() const { return Milliseconds(m_longest).count(); }

private:
    Scheduler& m_scheduler;
    QObject m_context;
    Clock::time_point m_last;
    Clock::duration m_longest{0};
};

int run() {
    using Case = ModelDownloader::State::Case;
    const ModelFiles files = ModelFiles::atDefaultDirectory();
    QtScheduler scheduler;
    QtWorkerThread worker;
    NotificationCenter notifications;
    BackgroundModelFetcher fetcher(
        ModelSource::configured(QProcessEnvironment::systemEnvironment()), files, scheduler,
        worker.scheduler(), [] { return std::make_unique<QtHttpStreams>(); });
    ModelDownloader downloader(files, fetcher, notifications, scheduler);
    EventLoopWatch watch(scheduler);
    watch.tick();
    const double idleMegabytes = memoryMegabytes("VmRSS:");
    const auto start = Clock::now();
    QObject::connect(&downloader, &ModelDownloader::stateChanged, [&](const auto& state) {
        if (state.kind == Case::failed) std::fprintf(stderr, "%s\n", qPrintable(state.message));
        if (state.kind == Case::failed || state.kind == Case::ready) {
            QCoreApplication::exit(state.kind == Case::ready ? 0 : 1);
        }
    });
    downloader.start();
    const int code = QCoreApplication::exec();
    std::printf("%.2f s, %.1f MB beyond idle, main thread busy for %.1f ms at most\n",
                Milliseconds(Clock::now() - start).count() / 1000,
                memoryMegabytes("VmHWM:") - idleMegabytes, watch.longestMilliseconds());
    return code;
}

}  // namespace

}  // namespace quietlark

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    return quietlark::run();
}

// model_download_benchmark: downloads the model as the application does, from QUIETLARK_MODEL_URL
// into XDG_DATA_HOME, and prints what that cost: the time, the memory beyond what the program had
// before, and the longest time that the main thread spent on one event, the start included. Fails
// when that is more than it may be.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

#include <QCoreApplication>
#include <QFile>
#include <QProcessEnvironment>
#include <QThread>
#include <sys/resource.h>

#include "local_server/background_model_fetcher.h"
#include "local_server/model_downloader.h"
#include "notifications/notification_center.h"
#include "platform/curl/curl_http_streams.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/qt/qt_worker_thread.h"

namespace quietlark {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr double maxMegabytes = 20;
constexpr double maxMilliseconds = 10;

double memoryMegabytes(const QByteArray& field) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (!line.startsWith(field)) continue;
        return line.sliced(field.size()).simplified().split(' ').first().toDouble() / 1000;
    }
    return 0;
}

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Notes how long the main thread was busy with one event, at most.
class WatchedApplication final : public QCoreApplication {
public:
    using QCoreApplication::QCoreApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        const auto start = Clock::now();
        const bool isDone = QCoreApplication::notify(receiver, event);
        if (QThread::currentThread() == thread()) {
            m_longest = std::max(m_longest, Clock::now() - start);
        }
        return isDone;
    }
    [[nodiscard]] double longestMilliseconds() const { return Milliseconds(m_longest).count(); }

private:
    Clock::duration m_longest{0};
};

int run(const WatchedApplication& application) {
    using Case = ModelDownloader::State::Case;
    const ModelFiles files = ModelFiles::atDefaultDirectory();
    QtScheduler scheduler;
    QtWorkerThread worker;
    NotificationCenter notifications;
    BackgroundModelFetcher fetcher(
        ModelSource::configured(QProcessEnvironment::systemEnvironment()), files, scheduler,
        worker.scheduler(), [] { return std::make_unique<CurlHttpStreams>(); });
    ModelDownloader downloader(files, fetcher, notifications, scheduler);
    const double idleMegabytes = memoryMegabytes("VmRSS:");
    const auto start = Clock::now();
    QObject::connect(&downloader, &ModelDownloader::stateChanged, [&](const auto& state) {
        if (state.kind == Case::failed) std::fprintf(stderr, "%s\n", qPrintable(state.message));
        if (state.kind == Case::failed || state.kind == Case::ready) {
            QCoreApplication::exit(state.kind == Case::ready ? 0 : 1);
        }
    });
    QMetaObject::invokeMethod(
        &downloader, [&downloader] { downloader.start(); }, Qt::QueuedConnection);
    const int code = QCoreApplication::exec();
    const double megabytes = memoryMegabytes("VmHWM:") - idleMegabytes;
    std::printf(
        "%.3f s (processor %.3f s), %.1f MB beyond idle, main thread busy for %.1f ms at most\n",
        Milliseconds(Clock::now() - start).count() / 1000, processorSeconds(), megabytes,
        application.longestMilliseconds());
    if (code != 0) return code;
    return megabytes <= maxMegabytes && application.longestMilliseconds() <= maxMilliseconds ? 0
                                                                                             : 1;
}

}  // namespace

}  // namespace quietlark

int main(int argc, char** argv) {
    const quietlark::WatchedApplication application(argc, argv);
    return quietlark::run(application);
}

#include "local_server/model_downloader.h"

#include <algorithm>
#include <utility>

#include <QPointer>

#include "notifications/notification_center.h"
#include "platform/scheduler.h"

namespace quietlark {

ModelDownloader::ModelDownloader(ModelFiles files, ModelFetcher& fetcher,
                                 NotificationCenter& notifications, Scheduler& scheduler)
    : m_files(std::move(files)),
      m_fetcher(fetcher),
      m_notifications(notifications),
      m_scheduler(scheduler),
      m_state{m_files.isInstalled() ? State::Case::ready : State::Case::idle} {}

void ModelDownloader::start() {
    if (m_state.kind == State::Case::ready || m_task) return;
    if (const auto directory = m_files.ensureDirectory(); !directory) {
        onNextTurn([this, reason = directory.error()] {
            setState({State::Case::failed, tr("Couldn't create models directory: ") + reason});
        });
        return;
    }
    // Before the fetcher can post anything.
    onNextTurn([this] { onStarted(); });
    m_task = m_fetcher.fetch(
        {.onProgress = [this](qint64 written, qint64 expected) { onProgress(written, expected); },
         .onEnd = [this](const ModelFetcher::Outcome& outcome) { onEnd(outcome); }});
}

void ModelDownloader::cancel() {
    m_task.reset();
}

void ModelDownloader::stop(std::function<void()> onStopped) {
    cancel();
    m_fetcher.whenStill([self = QPointer(this), onStopped = std::move(onStopped)] {
        if (self) onStopped();
    });
}

void ModelDownloader::onNextTurn(std::function<void()> action) {
    m_scheduler.post([self = QPointer(this), action = std::move(action)] {
        if (self) action();
    });
}

void ModelDownloader::onStarted() {
    m_progress.reset();
    m_bytesWritten = 0;
    m_totalBytes = 0;
    Q_EMIT progressChanged();
    setState({State::Case::downloading});
}

void ModelDownloader::onProgress(qint64 written, qint64 expected) {
    if (written <= m_bytesWritten && expected <= m_totalBytes) return;
    m_bytesWritten = std::max(m_bytesWritten, written);
    m_totalBytes = std::max(m_totalBytes, expected);
    if (m_totalBytes >= 1) {
        const double share =
            static_cast<double>(m_bytesWritten) / static_cast<double>(m_totalBytes);
        m_progress = std::max(m_progress.value_or(0), share);
    }
    Q_EMIT progressChanged();
}

void ModelDownloader::onEnd(const ModelFetcher::Outcome& outcome) {
    m_task.reset();
    if (!outcome) return setState({State::Case::failed, outcome.error()});
    m_progress = 1.0;
    Q_EMIT progressChanged();
    setState({State::Case::ready});
    m_notifications.post(notification::modelReady);
}

void ModelDownloader::setState(State state) {
    if (m_state == state) return;
    m_state = std::move(state);
    Q_EMIT stateChanged(m_state);
}

}  // namespace quietlark

#pragma once

#include <functional>
#include <optional>
#include <system_error>

#include <QObject>

#include "local_server/download_answer.h"
#include "local_server/model_fetcher.h"
#include "local_server/model_files.h"
#include "local_server/model_source.h"
#include "local_server/received_model.h"
#include "platform/directory_lock.h"
#include "platform/http_stream.h"
#include "platform/scheduler.h"

namespace quietlark {

/// One attempt to bring the model: finds what is here, asks for the rest, writes it, verifies and
/// installs it. It waits for the disk, so it has a thread of its own, on which everything here
/// runs; `scheduler` and `http` belong to that thread.
class ModelTransfer final : public QObject {
    Q_OBJECT

public:
    ModelTransfer(ModelSource source, ModelFiles files, HttpStreams& http, Scheduler& scheduler,
                  ModelFetcher::Handlers handlers);

    /// Runs once. The last handler runs at the latest after the source's total time-out and what
    /// installing takes.
    void start();

    /// Breaks the attempt off and saves what was received. No handler runs any more.
    void cancel();

private:
    void refuse(std::error_code reason);
    [[nodiscard]] std::optional<QString> lackOfSpace(std::optional<qint64> totalBytes) const;
    void hashWhatIsHere();

    void ask();
    void askFor(std::optional<RangeAsked> range);
    void send(HttpStreamRequest request);
    void onHead(const HttpHead& head);
    void onAnswer(const WholeModel& answer);
    void onAnswer(const RestOfModel& answer);
    void onAnswer(const OtherModel& answer);
    void onAnswer(const RefusedModel& answer);
    /// False when it has ended with that.
    bool begin(std::optional<qint64> totalBytes, const std::function<FileOutcome()>& open);
    [[nodiscard]] std::optional<qint64> expectedBytes() const;
    void onBytes(QByteArrayView bytes);
    void reportProgress();
    void onEnd(const tl::expected<void, TransportError>& outcome);
    void watchTime();

    void install();
    void failInstall(const QString& reason);
    void finish(const ModelFetcher::Outcome& outcome);

    const ModelSource m_source;
    const ModelFiles m_files;
    HttpStreams& m_http;
    Scheduler& m_scheduler;
    ModelFetcher::Handlers m_handlers;

    std::optional<DirectoryLock> m_lock;
    std::optional<ReceivedModel> m_received;  ///< while the attempt runs
    std::optional<RangeAsked> m_asked;
    HttpStreamRequest m_firstRequest;
    int m_redirectCount = 0;
    Scheduler::Clock::time_point m_startedAt;
    Scheduler::Clock::time_point m_lastActivity;
    Cancellable m_exchange;
};

}  // namespace quietlark

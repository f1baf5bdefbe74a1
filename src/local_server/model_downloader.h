#pragma once

#include <functional>
#include <optional>

#include <QObject>
#include <QString>

#include "local_server/model_fetcher.h"
#include "local_server/model_files.h"
#include "platform/cancellable.h"

namespace quietlark {

class NotificationCenter;
class Scheduler;

/// The speech model's way to this computer, for everybody who shows it. Main thread.
///
/// Ends in `ready`, with notification::modelReady posted, or in `failed`; another start() continues
/// from what has been received. Destroying it cancels.
class ModelDownloader final : public QObject {
    Q_OBJECT

public:
    struct State {
        enum class Case {
            idle,         ///< no model, no download
            downloading,  ///< under way, or cancelled
            paused,       ///< interrupted; for observers, never entered here
            ready,        ///< the model is installed
            failed,       ///< the last attempt failed with `message`
        };

        Case kind = Case::idle;
        QString message = {};  ///< for the user; of `failed` only

        bool operator==(const State&) const = default;
    };

    ModelDownloader(ModelFiles files, ModelFetcher& fetcher, NotificationCenter& notifications,
                    Scheduler& scheduler);

    [[nodiscard]] const State& state() const { return m_state; }
    /// From 0 to 1, never backwards within one download; absent until the size is known.
    [[nodiscard]] std::optional<double> progress() const { return m_progress; }
    /// Bytes received, those of earlier attempts included; never fewer within one download.
    [[nodiscard]] qint64 bytesWritten() const { return m_bytesWritten; }
    /// Bytes in all; 0 while unknown.
    [[nodiscard]] qint64 totalBytes() const { return m_totalBytes; }

    /// Starts or continues the download, unless the model is there or one is under way. The state
    /// changes when the event loop gets to it.
    void start();

    /// Stops the download and keeps what has been received for the next start(). The state stays.
    void cancel();

    /// As cancel(), and runs `onStopped` later, once the files are no longer touched.
    void stop(std::function<void()> onStopped);

Q_SIGNALS:
    void stateChanged(const quietlark::ModelDownloader::State& state);
    /// One of progress(), bytesWritten() and totalBytes() has changed.
    void progressChanged();

private:
    void onNextTurn(std::function<void()> action);
    void onStarted();
    void onProgress(qint64 written, qint64 expected);
    void onEnd(const ModelFetcher::Outcome& outcome);
    void setState(State state);

    const ModelFiles m_files;
    ModelFetcher& m_fetcher;
    NotificationCenter& m_notifications;
    Scheduler& m_scheduler;

    State m_state;
    std::optional<double> m_progress;
    qint64 m_bytesWritten = 0;
    qint64 m_totalBytes = 0;
    std::optional<Cancellable> m_task;  ///< what is under way
};

}  // namespace quietlark

#pragma once

#include <functional>

#include <QObject>

#include "commands/command_line.h"
#include "commands/exit_code.h"
#include "local_server/model_downloader.h"
#include "local_server/model_files.h"

namespace quietlark {

class Console;
class ProgressLine;
class Scheduler;

/// `quietlark model`: what there is of the speech model, and the rest of it.
class ModelCommand final : public QObject {
    Q_OBJECT

public:
    using DoneHandler = std::function<void(ExitCode)>;

    ModelCommand(const ModelFiles& files, ModelDownloader& downloader, const Scheduler& scheduler,
                 ProgressLine& progress, Console& console);

    /// Runs once.
    void run(const ModelArguments& arguments, DoneHandler onDone);

    /// Stops the download, for the next command to continue, and ends once that is saved.
    void interrupt();

private:
    void onStopped();
    void printStatus();
    void download();
    void showProgress();
    void onState(const ModelDownloader::State& state);
    void printFile();
    void fail(const QString& sentence);

    const ModelFiles& m_files;
    ModelDownloader& m_downloader;
    const Scheduler& m_scheduler;
    ProgressLine& m_progress;
    Console& m_console;
    DoneHandler m_onDone;
    bool m_isInterrupted = false;
};

}  // namespace quietlark

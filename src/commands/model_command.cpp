#include "commands/model_command.h"

#include <utility>

#include <QPointer>

#include "commands/console.h"
#include "commands/progress_line.h"
#include "local_server/model_status.h"
#include "platform/scheduler.h"

namespace quietlark {

namespace {

QString word(ModelStatus::Case kind) {
    switch (kind) {
        case ModelStatus::Case::missing:
            return QStringLiteral("missing");
        case ModelStatus::Case::incomplete:
            return QStringLiteral("incomplete");
        case ModelStatus::Case::installed:
            return QStringLiteral("installed");
    }
    return {};
}

}  // namespace

ModelCommand::ModelCommand(const ModelFiles& files, ModelDownloader& downloader,
                           const Scheduler& scheduler, ProgressLine& progress, Console& console)
    : m_files(files),
      m_downloader(downloader),
      m_scheduler(scheduler),
      m_progress(progress),
      m_console(console) {}

void ModelCommand::run(const ModelArguments& arguments, DoneHandler onDone) {
    m_onDone = std::move(onDone);
    if (arguments.action == ModelArguments::Action::Status) return printStatus();
    download();
}

void ModelCommand::interrupt() {
    if (std::exchange(m_isInterrupted, true)) return;
    m_downloader.disconnect(this);
    m_downloader.stop([self = QPointer(this)] {
        if (self) self->onStopped();
    });
}

void ModelCommand::onStopped() {
    const ModelStatus::Case kind = ModelStatus::read(m_files).kind;
    // The last step cannot be called off.
    if (kind == ModelStatus::Case::installed) return printFile();
    const bool isKept = kind == ModelStatus::Case::incomplete;
    fail(isKept ? tr("Stopped; the next download continues from here.")
                : tr("Stopped; the next download starts anew."));
}

void ModelCommand::printStatus() {
    const ModelStatus status = ModelStatus::read(m_files);
    const QString total = status.totalBytes ? QString::number(*status.totalBytes) : QString();
    const bool isPrinted = m_console.print(QStringLiteral("state=") + word(status.kind)) &&
                           m_console.print(QStringLiteral("file=") + m_files.active()) &&
                           m_console.print(QStringLiteral("bytes=%1").arg(status.bytes)) &&
                           m_console.print(QStringLiteral("total=") + total);
    if (!isPrinted) return fail(tr("The result could not be written."));
    m_onDone(ExitCode::Done);
}

void ModelCommand::download() {
    if (m_downloader.state().kind == ModelDownloader::State::Case::ready) return printFile();
    connect(&m_downloader, &ModelDownloader::progressChanged, this, &ModelCommand::showProgress);
    connect(&m_downloader, &ModelDownloader::stateChanged, this, &ModelCommand::onState);
    m_downloader.start();
}

void ModelCommand::showProgress() {
    m_progress.report(m_scheduler.now(), m_downloader.bytesWritten(), m_downloader.totalBytes());
}

void ModelCommand::onState(const ModelDownloader::State& state) {
    using Case = ModelDownloader::State::Case;
    if (state.kind == Case::failed) return fail(state.message);
    if (state.kind == Case::ready) printFile();
}

void ModelCommand::printFile() {
    m_progress.clear();
    if (!m_console.print(m_files.active())) return fail(tr("The result could not be written."));
    m_onDone(ExitCode::Done);
}

void ModelCommand::fail(const QString& sentence) {
    m_progress.clear();
    m_console.complain(sentence);
    m_onDone(ExitCode::Failed);
}

}  // namespace quietlark

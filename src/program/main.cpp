#include <iostream>
#include <memory>

#include <QCoreApplication>
#include <QProcessEnvironment>

#include "commands/command_line.h"
#include "commands/console.h"
#include "commands/model_command.h"
#include "commands/probe_command.h"
#include "commands/progress_line.h"
#include "commands/silent_log.h"
#include "commands/transcribe_command.h"
#include "config/config.h"
#include "local_server/background_model_fetcher.h"
#include "local_server/model_downloader.h"
#include "local_server/model_files.h"
#include "local_server/model_source.h"
#include "notifications/notification_center.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt/qt_http_streams.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/qt/qt_worker_thread.h"
#include "platform/terminal.h"
#include "program/application.h"
#include "program/quit_signals.h"
#include "transcription/endpoint_file.h"
#include "transcription/server_endpoint.h"
#include "transcription/server_resolver.h"

namespace quietlark {

namespace {

/// Runs a command within the event loop until it is done.
template <typename Command, typename Arguments>
int runToItsEnd(Command& command, const Arguments& arguments) {
    const auto onDone = [](ExitCode code) { QCoreApplication::exit(static_cast<int>(code)); };
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { command.run(arguments, onDone); },
        Qt::QueuedConnection);
    return QCoreApplication::exec();
}

/// Does what the arguments ask for; answers the exit code.
class Dispatcher {
public:
    int operator()(const TranscribeArguments& arguments) {
        QtHttpClient http;
        QtScheduler scheduler;
        SilentLog log;
        const EndpointFile endpointFile;
        const ServerEndpoint endpoint(endpointFile);
        const Config config = Config::load(Config::defaultFileURL());
        ServerResolver resolver(http);
        TranscriptionClient client(http, scheduler, log);
        TranscribeCommand command(resolver, client, endpoint, config, m_console);
        return runToItsEnd(command, arguments);
    }

    int operator()(const ProbeArguments& arguments) {
        QtHttpClient http;
        ServerResolver resolver(http);
        ProbeCommand command(resolver, m_console);
        return runToItsEnd(command, arguments);
    }

    int operator()(const ModelArguments& arguments) {
        const QuitSignals quitSignals;
        const ModelFiles files = ModelFiles::atDefaultDirectory();
        QtScheduler scheduler;
        QtWorkerThread worker;
        NotificationCenter notifications;
        BackgroundModelFetcher fetcher(
            ModelSource::configured(QProcessEnvironment::systemEnvironment()), files, scheduler,
            worker.scheduler(), [] { return std::make_unique<QtHttpStreams>(); });
        ModelDownloader downloader(files, fetcher, notifications, scheduler);
        ProgressLine progress(std::cerr, messageTerminalColumns());
        ModelCommand command(files, downloader, scheduler, progress, m_console);
        QObject::connect(&quitSignals, &QuitSignals::quitRequested, &command,
                         &ModelCommand::interrupt);
        return runToItsEnd(command, arguments);
    }

    int operator()(const ShowText& show) {
        return exitStatus(m_console.print(show.text) ? ExitCode::Done : ExitCode::Failed);
    }

    int operator()(const UsageError& error) { return wrongUsage(error.sentence); }

    int operator()(const StartApplication&) {
        Application application;
        return application.run();
    }

private:
    int wrongUsage(const QString& sentence) {
        m_console.complain(sentence);
        return exitStatus(ExitCode::WrongUsage);
    }
    static int exitStatus(ExitCode code) { return static_cast<int>(code); }

    Console m_console{std::cout, std::cerr};
};

}  // namespace

}  // namespace quietlark

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const auto invocation = quietlark::parseCommandLine(QCoreApplication::arguments());
    return std::visit(quietlark::Dispatcher{}, invocation);
}

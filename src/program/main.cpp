#include <iostream>

#include <QCoreApplication>

#include "commands/command_line.h"
#include "commands/console.h"
#include "commands/probe_command.h"
#include "commands/silent_log.h"
#include "commands/transcribe_command.h"
#include "config/config.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt/qt_scheduler.h"
#include "program/application.h"
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

#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>

#include <QApplication>
#include <QIcon>
#include <QProcessEnvironment>

#include "app/made_folders.h"
#include "commands/command_line.h"
#include "commands/console.h"
#include "commands/dictation_command.h"
#include "commands/doctor_command.h"
#include "commands/model_command.h"
#include "commands/probe_command.h"
#include "commands/progress_line.h"
#include "commands/servers_command.h"
#include "commands/silent_log.h"
#include "commands/transcribe_command.h"
#include "config/config.h"
#include "local_server/background_model_fetcher.h"
#include "local_server/model_downloader.h"
#include "local_server/model_files.h"
#include "local_server/model_source.h"
#include "notifications/notification_center.h"
#include "platform/base_directories.h"
#include "platform/curl/curl_http_streams.h"
#include "platform/linux/processor/linux_processor.h"
#include "platform/own_file.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt/qt_scheduler.h"
#include "platform/qt/qt_worker_thread.h"
#include "platform/terminal.h"
#include "program/application.h"
#include "program/display.h"
#include "program/examination.h"
#include "program/own_traces.h"
#include "program/quit_signals.h"
#include "program/single_instance.h"
#include "program/wording.h"
#include "servers/hardware_profile.h"
#include "servers/server_ranker.h"
#include "transcription/endpoint_file.h"
#include "transcription/server_resolver.h"

namespace quietlark {

namespace {

/// Runs what `begin` begins within the event loop, until it calls what it is given.
template <typename Begin>
int runToItsEnd(const Begin& begin) {
    const auto onDone = [](ExitCode code) { QCoreApplication::exit(static_cast<int>(code)); };
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { begin(onDone); }, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

template <typename Command, typename Arguments>
int runToItsEnd(Command& command, const Arguments& arguments) {
    return runToItsEnd([&](auto onDone) { command.run(arguments, onDone); });
}

/// Does what the arguments ask for; answers the exit code.
class Dispatcher {
public:
    int operator()(const TranscribeArguments& arguments) {
        QtHttpClient http;
        QtScheduler scheduler;
        SilentLog log;
        const Config config = Config::load(Config::defaultFileURL());
        const auto server = configuredServer(Config::defaultFileURL(), config, EndpointFile());
        ServerResolver resolver(http);
        TranscriptionClient client(http, scheduler, log);
        TranscribeCommand command(resolver, client, server, config, m_console);
        return runToItsEnd(command, arguments);
    }

    int operator()(const ProbeArguments& arguments) {
        QtHttpClient http;
        ServerResolver resolver(http);
        ProbeCommand command(resolver, m_console);
        return runToItsEnd(command, arguments);
    }

    int operator()(const ModelArguments& arguments) {
        if (arguments.action == ModelArguments::Action::Download) {
            if (isHomeOfAnother()) return exitStatus(ExitCode::Failed);
            OwnTraces traces(Config::defaultFileURL());
            noteMissingFolders(traces.defaults, traces.files);
        }
        const QuitSignals quitSignals;
        const ModelFiles files = ModelFiles::atDefaultDirectory();
        QtScheduler scheduler;
        QtWorkerThread worker;
        NotificationCenter notifications;
        BackgroundModelFetcher fetcher(
            ModelSource::configured(QProcessEnvironment::systemEnvironment()), files, scheduler,
            worker.scheduler(), [] { return std::make_unique<CurlHttpStreams>(); });
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

    int operator()(const DictationArguments& arguments) {
        SessionBusApplication application(QDBusConnection::sessionBus());
        DictationCommand command(application, m_console);
        return runToItsEnd(command, arguments);
    }

    int operator()(const ServersArguments& arguments) {
        QtScheduler scheduler;
        SystemBus bus(scheduler);
        AvahiDaemon avahi(bus);
        AvahiServiceBrowser network(avahi, scheduler);
        AvahiLocalHostName localHostName(avahi, scheduler);
        LocalNetworkProbe probe(network);
        DiscoveredServers servers(network, localHostName, scheduler);
        const auto problem = [&probe]() -> std::optional<QString> {
            if (const auto& unavailable = probe.unavailable()) return unavailable->reason;
            return std::nullopt;
        };
        const LinuxProcessor processor;
        const HardwareProfile hardware(processor);
        const ServerRanker ranker(hardware);
        ServersCommand command(servers, ranker, problem, scheduler, m_console);
        return runToItsEnd(command, arguments);
    }

    int operator()(const DoctorArguments&) {
        Examination examination(qobject_cast<QApplication*>(qApp) != nullptr);
        DoctorCommand command(examination.checks(), examination.scheduler(), m_console);
        return runToItsEnd([&](auto onDone) { command.run(onDone); });
    }

    int operator()(const StartApplication&) {
        if (!qobject_cast<QApplication*>(qApp)) {
            m_console.complain(
                QCoreApplication::translate("Display",
                                            "There is no X server to show anything on; run this "
                                            "within the desktop, or see quietlark --help."));
            return exitStatus(ExitCode::Failed);
        }
        if (isHomeOfAnother()) return exitStatus(ExitCode::Failed);
        std::optional<Application> application;
        const auto carryOut = [&application](DictationOrder order) {
            return application ? application->carryOut(order) : DictationReport();
        };
        SingleInstance instance(QDBusConnection::sessionBus(), carryOut, m_console);
        instance.start([&] { application.emplace(instance.service(), m_console); });
        return QCoreApplication::exec();
    }

private:
    /// Says so. Whose it is could not change or remove what root would write there.
    bool isHomeOfAnother() {
        for (const QString& directory : {configHome(), dataHome()}) {
            if (!wouldWriteAmongOthersFiles(directory)) continue;
            m_console.complain(
                QCoreApplication::translate(
                    "Home", "%1 belongs to another user. Run quietlark as that user, without sudo.")
                    .arg(directory));
            return true;
        }
        return false;
    }

    int wrongUsage(const QString& sentence) {
        m_console.complain(sentence);
        return exitStatus(ExitCode::WrongUsage);
    }
    static int exitStatus(ExitCode code) { return static_cast<int>(code); }

    Console m_console{std::cout, std::cerr};
};

/// The application and a download have something to put in order before they end.
bool endsInGoodOrder(int argc, char** argv) {
    return argc < 2 || std::string_view(argv[1]) == "model";
}

/// The application and the doctor need the desktop; the other commands work without one.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    const bool isDoctor = argc > 1 && std::string_view(argv[1]) == "doctor";
    if ((argc > 1 && !isDoctor) || !hasDisplay())
        return std::make_unique<QCoreApplication>(argc, argv);
    reportLostDisplay();
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QString name = QStringLiteral("net.quietlark.app");
    QApplication::setDesktopFileName(name);
    // For desktops that do not know the file.
    const QIcon ownIcon(QStringLiteral(":/quietlark/net.quietlark.app.svg"));
    QApplication::setWindowIcon(QIcon::fromTheme(name, ownIcon));
    return application;
}

}  // namespace

}  // namespace quietlark

int main(int argc, char** argv) {
    if (quietlark::endsInGoodOrder(argc, argv)) quietlark::QuitSignals::block();
    const auto application = quietlark::makeApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quietlark"));
    quietlark::useWordingOfThisSystem(*application);
    const auto invocation = quietlark::parseCommandLine(QCoreApplication::arguments());
    return std::visit(quietlark::Dispatcher{}, invocation);
}

#include "commands/command_line.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QHash>
#include <QUrl>

namespace quietlark {

namespace {

class CommandLine {
    Q_DECLARE_TR_FUNCTIONS(CommandLine)

public:
    static QString help() {
        return tr(
            "Usage: quietlark [COMMAND]\n"
            "Push-to-talk dictation. Without a command it waits for the hotkey.\n"
            "\n"
            "Commands:\n"
            "  transcribe FILE.wav  Prints what is said in a recording.\n"
            "  probe URL            Prints what kind of transcription server answers there.\n"
            "  model status         Prints whether the speech model is there, and how much of it.\n"
            "  model download       Fetches the speech model; goes on where it was stopped.\n"
            "  servers              Lists the transcription servers on the local network.\n"
            "  dictation ACTION     Has the running program start, stop, toggle or tell its "
            "status.\n"
            "  doctor               Says what works here, what is missing and what to do.\n"
            "\n"
            "Options:\n"
            "  -h, --help     Shows this help; after a command, the help for it.\n"
            "  -v, --version  Shows the version.\n"
            "\n"
            "Exit status: 0 done, 1 failed, 2 wrong usage.");
    }
    static QString version() {
        return QStringLiteral("quietlark ") + QStringLiteral(QUIETLARK_VERSION);
    }
    static Invocation transcribe(const QStringList& arguments);
    static Invocation probe(const QStringList& arguments);
    static Invocation model(const QStringList& arguments);
    static Invocation dictation(const QStringList& arguments);
    static Invocation servers(const QStringList& arguments);
    static Invocation doctor(const QStringList& arguments);
    static Invocation unknown(const QString& argument) {
        if (argument.startsWith(u'-')) {
            return UsageError{tr("There is no option “%1”; see quietlark --help.").arg(argument)};
        }
        return UsageError{tr("There is no command “%1”; see quietlark --help.").arg(argument)};
    }

private:
    struct ActionTexts {
        QString command;  ///< what the command is for
        QString action;   ///< what its operand means
        QString refusal;  ///< of anything else, %1
    };

    /// A command whose operand is one of a few words.
    template <typename Arguments, typename Action>
    static Invocation actionOf(const QHash<QString, Action>& actions, const ActionTexts& texts,
                               const QStringList& arguments);
    static std::optional<Invocation> parse(QCommandLineParser& parser, const QString& operand,
                                           const QStringList& arguments);
    /// The parser's own text knows the program's path, but not the command.
    static QString helpText(const QCommandLineParser& parser, const QString& command,
                            const QString& operand) {
        const QString text = parser.helpText().trimmed();
        return tr("Usage: quietlark %1 [OPTIONS] %2").arg(command, operand).trimmed() +
               text.sliced(text.indexOf(u'\n'));
    }
    static UsageError notAServer(const QString& text) {
        return {tr("“%1” is not a server’s address, which looks like http://host:port.").arg(text)};
    }
};

const QString helpOption = QStringLiteral("help");
const QString serverOption = QStringLiteral("server");
const QString languageOption = QStringLiteral("language");
const QString secondsOption = QStringLiteral("seconds");
constexpr int longestSearchSeconds = 3600;

bool isServerAddress(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    const bool isHttp =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isHttp && !url.host().isEmpty();
}

std::optional<QString> value(const QCommandLineParser& parser, const QString& option) {
    if (!parser.isSet(option)) return std::nullopt;
    return parser.value(option);
}

/// What is common to all commands, whose operand may be empty for none; nothing when the command is
/// to be run.
std::optional<Invocation> CommandLine::parse(QCommandLineParser& parser, const QString& operand,
                                             const QStringList& arguments) {
    parser.addOption({{QStringLiteral("h"), helpOption}, tr("Shows this help.")});
    const QString& command = arguments.at(1);
    if (!parser.parse(arguments)) {
        return UsageError{tr("%1 See quietlark %2 --help.").arg(parser.errorText(), command)};
    }
    if (parser.isSet(helpOption)) return ShowText{helpText(parser, command, operand)};
    // The first is the command's own name.
    const qsizetype count = parser.positionalArguments().size() - 1;
    if (count == (operand.isEmpty() ? 0 : 1)) return std::nullopt;
    if (operand.isEmpty()) {
        return UsageError{tr("%1 takes no operand; see quietlark %1 --help.").arg(command)};
    }
    const QString text = count < 1 ? tr("%1 is missing; see quietlark %2 --help.")
                                   : tr("There is more than one %1; see quietlark %2 --help.");
    return UsageError{text.arg(operand, command)};
}

Invocation CommandLine::transcribe(const QStringList& arguments) {
    const QString operand = QStringLiteral("FILE.wav");
    QCommandLineParser parser;
    parser.setApplicationDescription(tr("Prints what is said in a recording."));
    parser.addPositionalArgument(operand, tr("The recording; - for standard input."));
    parser.addOption({serverOption, tr("The server to ask, instead of the configured one."),
                      QStringLiteral("URL")});
    parser.addOption({languageOption, tr("The language spoken, instead of the configured one."),
                      QStringLiteral("CODE")});
    if (auto outcome = parse(parser, operand, arguments)) return *outcome;
    const auto server = value(parser, serverOption);
    if (server && !isServerAddress(*server)) return notAServer(*server);
    return TranscribeArguments{parser.positionalArguments().last(), server,
                               value(parser, languageOption)};
}

Invocation CommandLine::probe(const QStringList& arguments) {
    const QString operand = QStringLiteral("URL");
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Prints what kind of transcription server answers at an address, where uploads go and, "
           "if it names any, the model."));
    parser.addPositionalArgument(operand, tr("The server’s address, such as http://host:port."));
    if (auto outcome = parse(parser, operand, arguments)) return *outcome;
    const QString server = parser.positionalArguments().last();
    if (!isServerAddress(server)) return notAServer(server);
    return ProbeArguments{server};
}

template <typename Arguments, typename Action>
Invocation CommandLine::actionOf(const QHash<QString, Action>& actions, const ActionTexts& texts,
                                 const QStringList& arguments) {
    const QString operand = QStringLiteral("ACTION");
    QCommandLineParser parser;
    parser.setApplicationDescription(texts.command);
    parser.addPositionalArgument(operand, texts.action);
    if (auto outcome = parse(parser, operand, arguments)) return *outcome;
    const QString action = parser.positionalArguments().last();
    if (!actions.contains(action)) return UsageError{texts.refusal.arg(action)};
    return Arguments{actions.value(action)};
}

Invocation CommandLine::model(const QStringList& arguments) {
    using Action = ModelArguments::Action;
    return actionOf<ModelArguments, Action>(
        {{QStringLiteral("status"), Action::Status},
         {QStringLiteral("download"), Action::Download}},
        {tr("Prints what there is of the local server’s speech model, or fetches it. A download "
            "that is stopped, by Ctrl-C or otherwise, is continued by the next."),
         tr("What to do: status or download."), tr("“%1” is neither status nor download.")},
        arguments);
}

Invocation CommandLine::dictation(const QStringList& arguments) {
    return actionOf<DictationArguments, DictationOrder>(
        {{QStringLiteral("start"), DictationOrder::start},
         {QStringLiteral("stop"), DictationOrder::stop},
         {QStringLiteral("toggle"), DictationOrder::toggle},
         {QStringLiteral("status"), DictationOrder::status}},
        {tr("Drives the program that runs in this session, for desktops that bind keys themselves. "
            "Prints how dictation stands."),
         tr("What to do: start, stop, toggle or status."),
         tr("“%1” is none of start, stop, toggle and status.")},
        arguments);
}

Invocation CommandLine::servers(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(tr(
        "Lists the transcription servers that announce themselves on the local network: name, "
        "address, speed as a multiple of real time, model, processor, and how that compares with "
        "this computer. Then says whom to prefer."));
    parser.addOption(
        {secondsOption, tr("How long to listen for them; 3 if not given."), QStringLiteral("N")});
    if (auto outcome = parse(parser, QString(), arguments)) return *outcome;
    ServersArguments chosen;
    if (const auto text = value(parser, secondsOption)) {
        bool isNumber = false;
        const int seconds = text->toInt(&isNumber);
        if (!isNumber || seconds < 1 || seconds > longestSearchSeconds) {
            return UsageError{tr("“%1” is not a number of seconds from 1 to %2.")
                                  .arg(*text, QString::number(longestSearchSeconds))};
        }
        chosen.duration = std::chrono::seconds(seconds);
    }
    return chosen;
}

Invocation CommandLine::doctor(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Prints a line for each permission and each part of the desktop that dictation needs. "
           "The exit status is 1 when anything is missing."));
    if (auto outcome = parse(parser, QString(), arguments)) return *outcome;
    return DoctorArguments{};
}

}  // namespace

Invocation parseCommandLine(const QStringList& arguments) {
    const QString first = arguments.value(1);
    if (arguments.size() < 2) return StartApplication{};
    if (first == QLatin1String("transcribe")) return CommandLine::transcribe(arguments);
    if (first == QLatin1String("probe")) return CommandLine::probe(arguments);
    if (first == QLatin1String("model")) return CommandLine::model(arguments);
    if (first == QLatin1String("dictation")) return CommandLine::dictation(arguments);
    if (first == QLatin1String("servers")) return CommandLine::servers(arguments);
    if (first == QLatin1String("doctor")) return CommandLine::doctor(arguments);
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        return ShowText{CommandLine::help()};
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        return ShowText{CommandLine::version()};
    }
    return CommandLine::unknown(first);
}

}  // namespace quietlark

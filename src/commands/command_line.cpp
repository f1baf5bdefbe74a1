#include "commands/command_line.h"

#include <QCommandLineParser>
#include <QCoreApplication>
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
    static Invocation unknown(const QString& argument) {
        if (argument.startsWith(u'-')) {
            return UsageError{tr("There is no option “%1”; see quietlark --help.").arg(argument)};
        }
        return UsageError{tr("There is no command “%1”; see quietlark --help.").arg(argument)};
    }

private:
    static std::optional<Invocation> parse(QCommandLineParser& parser, const QString& operand,
                                           const QStringList& arguments);
    /// The parser's own text knows the program's path, but not the command.
    static QString helpText(const QCommandLineParser& parser, const QString& command,
                            const QString& operand) {
        const QString text = parser.helpText().trimmed();
        return tr("Usage: quietlark %1 [OPTIONS] %2").arg(command, operand) +
               text.sliced(text.indexOf(u'\n'));
    }
    static UsageError notAServer(const QString& text) {
        return {tr("“%1” is not a server’s address, which looks like http://host:port.").arg(text)};
    }
};

const QString helpOption = QStringLiteral("help");
const QString serverOption = QStringLiteral("server");
const QString languageOption = QStringLiteral("language");

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

/// What is common to all commands of one operand; nothing when the command is to be run.
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
    if (count == 1) return std::nullopt;
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

Invocation CommandLine::model(const QStringList& arguments) {
    const QString operand = QStringLiteral("ACTION");
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Prints what there is of the local server’s speech model, or fetches it. A download "
           "that is stopped, by Ctrl-C or otherwise, is continued by the next."));
    parser.addPositionalArgument(operand, tr("What to do: status or download."));
    if (auto outcome = parse(parser, operand, arguments)) return *outcome;
    const QString action = parser.positionalArguments().last();
    if (action == QLatin1String("status")) return ModelArguments{ModelArguments::Action::Status};
    if (action == QLatin1String("download")) {
        return ModelArguments{ModelArguments::Action::Download};
    }
    return UsageError{tr("“%1” is neither status nor download.").arg(action)};
}

}  // namespace

Invocation parseCommandLine(const QStringList& arguments) {
    const QString first = arguments.value(1);
    if (arguments.size() < 2) return StartApplication{};
    if (first == QLatin1String("transcribe")) return CommandLine::transcribe(arguments);
    if (first == QLatin1String("probe")) return CommandLine::probe(arguments);
    if (first == QLatin1String("model")) return CommandLine::model(arguments);
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        return ShowText{CommandLine::help()};
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        return ShowText{CommandLine::version()};
    }
    return CommandLine::unknown(first);
}

}  // namespace quietlark

#pragma once

#include <optional>
#include <variant>

#include <QString>
#include <QStringList>

namespace quietlark {

/// No command: the application itself is wanted.
struct StartApplication {};

/// `transcribe FILE.wav [--server URL] [--language CODE]`
struct TranscribeArguments {
    QString file;                     ///< "-" for standard input
    std::optional<QString> server;    ///< instead of the configured one
    std::optional<QString> language;  ///< instead of the configured one
};

/// `probe URL`
struct ProbeArguments {
    QString server;
};

/// `model status`, `model download`
struct ModelArguments {
    enum class Action { Status, Download };

    Action action = Action::Status;
};

/// `--help`, `--version`: a text that answers everything.
struct ShowText {
    QString text;  ///< without a last line end
};

/// Arguments that mean nothing.
struct UsageError {
    QString sentence;  ///< for the user
};

using Invocation = std::variant<StartApplication, TranscribeArguments, ProbeArguments,
                                ModelArguments, ShowText, UsageError>;

/// Understands the program's arguments, the first of which is the program's name. Needs a
/// QCoreApplication. No side effects.
[[nodiscard]] Invocation parseCommandLine(const QStringList& arguments);

}  // namespace quietlark

#pragma once

#include <chrono>
#include <optional>
#include <variant>

#include <QString>
#include <QStringList>

#include "platform/running_application.h"

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

/// `dictation start|stop|toggle|status`
struct DictationArguments {
    DictationOrder order = DictationOrder::status;
};

/// `servers [--seconds N]`
struct ServersArguments {
    std::chrono::seconds duration{3};  ///< of the search; at least one
};

/// `doctor`
struct DoctorArguments {};

/// `--help`, `--version`: a text that answers everything.
struct ShowText {
    QString text;  ///< without a last line end
};

/// Arguments that mean nothing.
struct UsageError {
    QString sentence;  ///< for the user
};

using Invocation =
    std::variant<StartApplication, TranscribeArguments, ProbeArguments, ModelArguments,
                 DictationArguments, ServersArguments, DoctorArguments, ShowText, UsageError>;

/// Understands the program's arguments, the first of which is the program's name. Needs a
/// QCoreApplication. No side effects.
[[nodiscard]] Invocation parseCommandLine(const QStringList& arguments);

}  // namespace quietlark

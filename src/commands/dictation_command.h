#pragma once

#include <functional>

#include "commands/command_line.h"
#include "commands/exit_code.h"
#include "platform/cancellable.h"
#include "platform/running_application.h"

namespace quietlark {

class Console;

/// `quietlark dictation`: drives the program that runs in this session.
class DictationCommand {
public:
    using DoneHandler = std::function<void(ExitCode)>;

    DictationCommand(RunningApplication& application, Console& console);

    /// Runs once. Fails when nothing runs, and when dictation answers with an error of its own.
    void run(const DictationArguments& arguments, DoneHandler onDone);

private:
    void onAnswer(const RunningApplication::Answer& answer);
    void fail(const QString& sentence);

    RunningApplication& m_application;
    Console& m_console;
    DoneHandler m_onDone;
    Cancellable m_question;
};

}  // namespace quietlark

#include "commands/dictation_command.h"

#include <utility>

#include <QCoreApplication>

#include "commands/console.h"

namespace quietlark {

DictationCommand::DictationCommand(RunningApplication& application, Console& console)
    : m_application(application), m_console(console) {}

void DictationCommand::run(const DictationArguments& arguments, DoneHandler onDone) {
    m_onDone = std::move(onDone);
    m_question = m_application.order(
        arguments.order, [this](const RunningApplication::Answer& answer) { onAnswer(answer); });
}

void DictationCommand::onAnswer(const RunningApplication::Answer& answer) {
    if (!answer) return fail(answer.error().reason);
    if (!m_console.print(answer->state)) {
        return fail(
            QCoreApplication::translate("DictationCommand", "The result could not be written."));
    }
    if (!answer->message.isEmpty()) return fail(answer->message);
    m_onDone(ExitCode::Done);
}

void DictationCommand::fail(const QString& sentence) {
    m_console.complain(sentence);
    m_onDone(ExitCode::Failed);
}

}  // namespace quietlark

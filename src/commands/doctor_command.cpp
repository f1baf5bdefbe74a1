#include "commands/doctor_command.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>

#include "commands/console.h"

namespace quietlark {

namespace {

class Sentences {
    Q_DECLARE_TR_FUNCTIONS(DoctorCommand)

public:
    static QString line(const DoctorCheck& check, const std::optional<QString>& problem) {
        const QString verdict = problem ? tr("missing") : tr("ok");
        const QString detail = problem ? *problem : check.state();
        return detail.isEmpty() ? tr("%1\t%2").arg(verdict, check.name)
                                : tr("%1\t%2: %3").arg(verdict, check.name, detail);
    }
    static QString notWritten() { return tr("The result could not be written."); }
};

}  // namespace

DoctorCommand::DoctorCommand(std::vector<DoctorCheck> checks, Scheduler& scheduler,
                             Console& console)
    : m_checks(std::move(checks)), m_scheduler(scheduler), m_console(console) {}

void DoctorCommand::run(DoneHandler onDone) {
    m_onDone = std::move(onDone);
    m_deadline = m_scheduler.now() + patience;
    m_looking = m_scheduler.every(lookInterval, [this] { look(); });
}

void DoctorCommand::look() {
    const bool allWell = std::ranges::none_of(
        m_checks, [](const DoctorCheck& check) { return check.problem().has_value(); });
    if (!allWell && m_scheduler.now() < m_deadline) return;
    m_looking.cancel();
    report();
}

void DoctorCommand::report() {
    ExitCode code = ExitCode::Done;
    for (const DoctorCheck& check : m_checks) {
        const auto problem = check.problem();
        if (problem) code = ExitCode::Failed;
        if (m_console.print(Sentences::line(check, problem))) continue;
        m_console.complain(Sentences::notWritten());
        return m_onDone(ExitCode::Failed);
    }
    m_onDone(code);
}

}  // namespace quietlark

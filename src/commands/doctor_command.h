#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include <QString>

#include "commands/exit_code.h"
#include "platform/scheduler.h"

namespace quietlark {

class Console;

/// One thing that dictation needs.
struct DoctorCheck {
    QString name;
    /// What is wrong, as a sentence that says what to do about it; nothing when all is well. Asked
    /// again and again until all is well, for some answers take a moment.
    std::function<std::optional<QString>()> problem;
    /// How it is when all is well; empty for nothing to tell.
    std::function<QString()> state = [] { return QString(); };
};

/// `quietlark doctor`: a line for each thing that dictation needs.
class DoctorCommand {
public:
    using DoneHandler = std::function<void(ExitCode)>;

    /// How long a thing may take to be well.
    static constexpr std::chrono::milliseconds patience{2000};
    static constexpr std::chrono::milliseconds lookInterval{20};

    DoctorCommand(std::vector<DoctorCheck> checks, Scheduler& scheduler, Console& console);

    /// Runs once. Fails when anything is missing.
    void run(DoneHandler onDone);

private:
    void look();
    void report();

    const std::vector<DoctorCheck> m_checks;
    Scheduler& m_scheduler;
    Console& m_console;
    DoneHandler m_onDone;
    Scheduler::Clock::time_point m_deadline;
    Cancellable m_looking;
};

}  // namespace quietlark

#pragma once

#include <string>
#include <vector>

#include <sys/types.h>
#include <tl/expected.hpp>

namespace quietlark {

/// Another program that works for this one, and never outlives it, nor the thread that started it.
class EngineProcess {
public:
    /// Starts a program by its absolute path. It works in the root folder, has no standard input,
    /// and what it writes goes to output(). The error is the system's description.
    [[nodiscard]] static tl::expected<EngineProcess, std::string> start(
        const std::string& program, const std::vector<std::string>& arguments);

    EngineProcess(EngineProcess&& other) noexcept;
    /// Ends the program at once, if it has not ended yet.
    ~EngineProcess();
    EngineProcess& operator=(EngineProcess&&) = delete;

    /// A descriptor to read, without waiting, what it writes.
    [[nodiscard]] int output() const { return m_output; }

    /// A descriptor that becomes readable when the program has ended.
    [[nodiscard]] int end() const { return m_end; }

    /// Collects a program that has ended: how, in words such as "exited with status 1".
    [[nodiscard]] std::string wait();

private:
    EngineProcess(pid_t id, int output, int end) : m_id(id), m_output(output), m_end(end) {}

    pid_t m_id;
    int m_output;
    int m_end;
};

}  // namespace quietlark

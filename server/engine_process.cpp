#include "server/engine_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quietlark {
namespace {

constexpr int cannotExecute = 127;

/// What the new process does until it is the other program. Only system calls: another thread may
/// have held the heap's lock when this process was copied.
[[noreturn]] void become(const char* program, char* const* arguments, int output, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Where the parent has died in the meantime, there is nobody left to send the signal.
    if (getppid() != parent) _exit(cannotExecute);
    // Ctrl-C in a terminal is for the parent, which ends this one when it is ready to.
    setpgid(0, 0);
    signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    // The folder that this was started in may go, or hold things that the program would take for
    // its own.
    if (chdir("/") != 0) _exit(cannotExecute);
    // Clients' connections must not stay open here when the parent closes them.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execv(program, arguments);
    _exit(cannotExecute);
}

}  // namespace

tl::expected<EngineProcess, std::string> EngineProcess::start(
    const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> pointers{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);

    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) return tl::unexpected(std::string(strerror(errno)));
    const pid_t parent = getpid();
    const pid_t id = fork();
    if (id == 0) become(program.c_str(), pointers.data(), pipe[1], parent);
    const int error = errno;
    close(pipe[1]);
    if (id < 0) {
        close(pipe[0]);
        return tl::unexpected(std::string(strerror(error)));
    }
    fcntl(pipe[0], F_SETFL, O_NONBLOCK);
    // glibc 2.36 declares its own function for this in a way that only C can call.
    const auto end = static_cast<int>(syscall(SYS_pidfd_open, id, 0));
    return EngineProcess(id, pipe[0], end);
}

EngineProcess::EngineProcess(EngineProcess&& other) noexcept
    : m_id(std::exchange(other.m_id, -1)),
      m_output(std::exchange(other.m_output, -1)),
      m_end(std::exchange(other.m_end, -1)) {}

EngineProcess::~EngineProcess() {
    if (m_id > 0) {
        kill(m_id, SIGKILL);
        (void)wait();
    }
    if (m_output >= 0) close(m_output);
    if (m_end >= 0) close(m_end);
}

std::string EngineProcess::wait() {
    int status = 0;
    while (waitpid(m_id, &status, 0) < 0 && errno == EINTR)
        continue;
    m_id = -1;
    if (WIFSIGNALED(status)) return "was ended by signal " + std::to_string(WTERMSIG(status));
    return "exited with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace quietlark

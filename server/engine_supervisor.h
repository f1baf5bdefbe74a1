#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/log.h"
#include "server/engine_process.h"
#include "server/speech_engine.h"
#include "server/whisper_client.h"

namespace quietlark {

/// Keeps a whisper.cpp server running as a child of this program: starts it, asks it how it is,
/// writes its output to the log, ends it when it hangs, and starts it again after a pause that
/// doubles with every failure. All that on a thread of its own.
class EngineSupervisor {
public:
    struct Program {
        std::string path;
        std::vector<std::string> arguments;  ///< beside those that say where to listen
    };

    struct Times {
        std::chrono::milliseconds firstPause{500};  ///< before a new start
        std::chrono::milliseconds longestPause{60000};
        std::chrono::milliseconds start{300000};      ///< for loading the model
        std::chrono::milliseconds probeEvery{10000};  ///< when it is running
        std::chrono::milliseconds probe{10000};       ///< for an answer to one
    };

    /// A child that is ready. Each one has its own number.
    struct Child {
        WhisperClient::Address address;
        std::uint64_t number = 0;
    };

    /// `onReadyChange` hears when a child becomes ready or ceases to be, on the supervisor's
    /// thread.
    EngineSupervisor(Program program, Times times, std::function<void(bool isReady)> onReadyChange,
                     Log& log);
    ~EngineSupervisor();

    /// Waits until a child is ready. Unavailable when none is by the deadline, or when the program
    /// has failed to start several times in a row; it is started again all the same.
    [[nodiscard]] tl::expected<Child, EngineError> child(
        std::chrono::steady_clock::time_point deadline);

    [[nodiscard]] bool isReady() const;

    /// Ends a child that does not answer as it should; another takes its place.
    void replace(const Child& child);

    /// Ends the child for good. Any thread.
    void stop();
    [[nodiscard]] bool isStopping() const;

private:
    using Clock = std::chrono::steady_clock;
    enum class Event { Nothing, Ended, Replaced, Stopped };

    void run();
    // Runs one child to its end; whether it had become ready.
    bool runChild();
    bool becomesReady(EngineProcess& process, const WhisperClient& client);
    void superviseReady(EngineProcess& process, const WhisperClient& client);
    Event waitFor(EngineProcess& process, std::chrono::milliseconds time);
    bool pause(std::chrono::milliseconds time);
    void readOutput(const EngineProcess& process);
    void setReady(const std::optional<Child>& child);
    void countFailedStart();
    void wake() const;

    const Program m_program;
    const Times m_times;
    const std::function<void(bool)> m_onReadyChange;
    Log& m_log;
    const int m_wakeEvent;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Child> m_child;  ///< while it is ready
    std::uint64_t m_number = 0;
    int m_failedStarts = 0;  ///< without a success since
    bool m_isReplacing = false;
    bool m_isStopping = false;

    std::string m_line;        ///< of the child's output, as far as it has been written
    bool m_hasOutput = false;  ///< until the child closes it
    std::thread m_thread;
};

}  // namespace quietlark

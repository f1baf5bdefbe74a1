// How soon the microphone is heard and let go, beside parec, on a PulseAudio server of its own.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <sys/resource.h>

#include "dictation/recorder.h"
#include "peers/pulse_server.h"
#include "platform/linux/pulse/pulse_audio_input.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int runs = 40;

double millisecondsSince(Clock::time_point before) {
    return std::chrono::duration<double, std::milli>(Clock::now() - before).count();
}

void printRow(const char* name, std::vector<double> milliseconds) {
    std::ranges::sort(milliseconds);
    std::printf("%-46s %8.1f %8.1f %8.1f\n", name, milliseconds.front(),
                milliseconds[milliseconds.size() / 2], milliseconds.back());
}

/// From the press to the first frame at the tap.
double firstFrame(AudioInput& input) {
    std::atomic<bool> heard = false;
    const auto before = Clock::now();
    input.installTap(1, input.inputFormat(), [&heard](const AudioBuffer&) { heard = true; });
    (void)input.start();
    while (!heard)
        std::this_thread::sleep_for(100us);
    const double milliseconds = millisecondsSince(before);
    input.removeTap();
    input.stop();
    return milliseconds;
}

double firstByteOfParec(const PulseServer& server) {
    const auto before = Clock::now();
    QProcess parec;
    parec.setProcessEnvironment(server.environment());
    parec.start(QStringLiteral("parec"), {QStringLiteral("--latency-msec=10")});
    parec.waitForReadyRead();
    const double milliseconds = millisecondsSince(before);
    parec.kill();
    parec.waitForFinished();
    return milliseconds;
}

/// From the release to the finished recording, at any point of a fragment.
double stopTime(Recorder& recorder, int run) {
    (void)recorder.start();
    std::this_thread::sleep_for(300ms + run * 700us);
    const auto before = Clock::now();
    (void)recorder.stop();
    return millisecondsSince(before);
}

struct Effort {
    double cpuPercent;
    double wakeupsPerSecond;
};

Effort effortDuring(std::chrono::seconds time) {
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    std::this_thread::sleep_for(time);
    getrusage(RUSAGE_SELF, &after);
    const auto seconds = [](const timeval& t) {
        return double(t.tv_sec) + 1e-6 * double(t.tv_usec);
    };
    const double cpu = seconds(after.ru_utime) - seconds(before.ru_utime) +
                       seconds(after.ru_stime) - seconds(before.ru_stime);
    // One switch is this thread's own sleep.
    const auto switches = double(after.ru_nvcsw - before.ru_nvcsw - 1);
    return {100 * cpu / double(time.count()), switches / double(time.count())};
}

int measure() {
    const PulseServer server;
    PulseAudioInput input(server.address());
    if (!waitUntil([&] { return input.inputFormat().channels > 0; })) {
        std::fputs("No microphone has appeared.\n", stderr);
        return 1;
    }
    Recorder recorder(16000, input);

    std::vector<double> first;
    std::vector<double> parec;
    std::vector<double> stop;
    for (int i = 0; i < runs; ++i) {
        first.push_back(firstFrame(input));
        parec.push_back(firstByteOfParec(server));
        stop.push_back(stopTime(recorder, i));
    }
    std::printf("%-46s %8s %8s %8s\n", "milliseconds", "least", "median", "most");
    printRow("press to first frame, PulseAudioInput", first);
    printRow("start to first byte, parec --latency-msec=10", parec);
    printRow("release to finished recording, Recorder::stop", stop);

    std::this_thread::sleep_for(1s);  // the server tells that the microphone has come to rest
    const Effort idle = effortDuring(5s);
    (void)recorder.start();
    const Effort recording = effortDuring(5s);
    (void)recorder.stop();
    std::printf("idle: %.2f %% CPU, %.1f wake-ups a second\n", idle.cpuPercent,
                idle.wakeupsPerSecond);
    std::printf("recording: %.2f %% CPU, %.1f wake-ups a second\n", recording.cpuPercent,
                recording.wakeupsPerSecond);
    return 0;
}

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return quietlark::measure();
}

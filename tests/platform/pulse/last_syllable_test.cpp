#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "peers/pipewire_server.h"
#include "peers/pulse_server.h"
#include "platform/linux/pulse/pulse_audio_input.h"
#include "platform/pulse/ear.h"
#include "platform/pulse/player.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

constexpr AudioFormat stereo48k{.sampleRateHz = 48000, .channels = 2};
constexpr std::int64_t framesPerMillisecond = 48;

std::vector<float> noise(std::size_t frames) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> level(-0.5F, 0.5F);
    std::vector<float> samples(frames);
    std::ranges::generate(samples, [&] { return level(random); });
    return samples;
}

std::vector<float> leftChannel(const std::vector<float>& stereo) {
    std::vector<float> left(stereo.size() / 2);
    for (std::size_t i = 0; i < left.size(); ++i)
        left[i] = stereo[2 * i];
    return left;
}

/// Where in `sound` the recording ends: its last millisecond is looked for. A machine that is too
/// busy to play in time has silence instead, which says nothing.
std::int64_t endOfRecording(std::vector<float> recorded, const std::vector<float>& sound) {
    constexpr auto length = std::size_t(framesPerMillisecond);
    while (!recorded.empty() && recorded.back() == 0.0F)
        recorded.pop_back();
    if (recorded.size() < length) return 0;
    const auto isSame = [](float a, float b) { return std::abs(a - b) < 0.001F; };
    const auto found = std::search(sound.begin(), sound.end(),
                                   recorded.end() - std::ptrdiff_t(length), recorded.end(), isSame);
    return found == sound.end() ? 0 : found - sound.begin() + std::ptrdiff_t(length);
}

/// Plays a noise, stops listening in its midst, and expects to have heard what had been played.
void expectAllHeardUpToTheStop(const QByteArray& server) {
    Ear ear;
    PulseAudioInput input(server, 20s);
    ASSERT_TRUE(waitUntil([&] { return input.inputFormat() == stereo48k; }));
    input.installTap(4096, stereo48k, ear.tap());
    ASSERT_TRUE(input.start());
    ASSERT_TRUE(waitUntil([&] { return !ear.buffers().empty(); }));

    const auto sound = noise(5 * 48000);
    Player player(server, sound);
    ASSERT_TRUE(waitUntil([&] { return player.heardFrames() > 24000; }));
    const std::int64_t heard = player.heardFrames();
    input.removeTap();
    EXPECT_GE(endOfRecording(leftChannel(ear.heard()), sound), heard - 3 * framesPerMillisecond);
}

TEST(LastSyllable, IsHeardWithPulseAudio) {
    PulseServer server;
    expectAllHeardUpToTheStop(server.address());
}

TEST(LastSyllable, IsHeardWithPipewire) {
    PipewireServer server;
    expectAllHeardUpToTheStop(server.address());
}

}  // namespace
}  // namespace quietlark

#include <functional>
#include <memory>
#include <ostream>

#include <gtest/gtest.h>

#include "fakes/fake_audio_input.h"
#include "peers/pulse_server.h"
#include "platform/linux/pulse/pulse_audio_input.h"
#include "platform/pulse/ear.h"
#include "platform/pulse/pipe_microphone.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

/// A microphone of one channel at 48 kHz, and someone to speak into it.
class Studio {
public:
    virtual ~Studio() = default;
    virtual AudioInput& input() = 0;
    /// Returns when what is spoken from now on is heard.
    virtual void awaitOpen() = 0;
    virtual void speak(std::span<const float> samples) = 0;
};

class FakeStudio final : public Studio {
public:
    AudioInput& input() override { return m_input; }
    void awaitOpen() override {}
    void speak(std::span<const float> samples) override { m_input.hear(samples); }

private:
    FakeAudioInput m_input;
};

class PulseStudio final : public Studio {
public:
    AudioInput& input() override { return m_input; }
    void awaitOpen() override {
        ASSERT_TRUE(waitUntil([this] { return m_server.recordStreams() == 1; }));
    }
    void speak(std::span<const float> samples) override { m_microphone.speak(samples); }

private:
    PulseServer m_server{{PulseServer::pipeMicrophone(QStringLiteral("microphone"))}};
    PipeMicrophone m_microphone{m_server};
    // With time enough on a machine that is busy otherwise.
    PulseAudioInput m_input{m_server.address(), 20s};
};

struct StudioKind {
    const char* name;
    std::function<std::unique_ptr<Studio>()> make;

    friend std::ostream& operator<<(std::ostream& out, const StudioKind& kind) {
        return out << kind.name;
    }
};

class AudioInputContract : public ::testing::TestWithParam<StudioKind> {
protected:
    void SetUp() override {
        ASSERT_TRUE(waitUntil([this] { return format() == expected; }));
    }

    [[nodiscard]] AudioFormat format() const { return studio->input().inputFormat(); }

    void listen(Ear& listener, std::uint32_t bufferFrames = 4096) {
        studio->input().installTap(bufferFrames, format(), listener.tap());
        ASSERT_TRUE(studio->input().start());
        studio->awaitOpen();
    }

    const AudioFormat expected{.sampleRateHz = 48000, .channels = 1};
    Ear ear;
    const std::unique_ptr<Studio> studio = GetParam().make();
};

TEST_P(AudioInputContract, BuffersHaveTheSizeAskedForAndTheFormat) {
    listen(ear, 480);
    const auto spoken = distinctSamples(960);
    studio->speak(spoken);
    ASSERT_TRUE(waitUntil([&] { return ear.buffers().size() == 2; }));
    EXPECT_EQ(ear.buffers()[0].size(), 480u);
    EXPECT_EQ(ear.formats(), (std::vector<AudioFormat>{expected, expected}));
    EXPECT_EQ(ear.heard(), spoken);
}

TEST_P(AudioInputContract, RemovingTheTapHandsOverAllThatWasSaidBefore) {
    listen(ear);
    const auto spoken = distinctSamples(10000);
    studio->speak(spoken);
    studio->input().removeTap();
    EXPECT_EQ(ear.heard(), spoken);
}

TEST_P(AudioInputContract, NothingIsHeardAfterTheTapWasRemoved) {
    listen(ear);
    studio->input().removeTap();
    studio->speak(distinctSamples(10000));
    studio->input().removeTap();
    studio->input().stop();
    EXPECT_TRUE(ear.buffers().empty());
}

TEST_P(AudioInputContract, RemovingWithoutATapIsHarmless) {
    studio->input().removeTap();
    listen(ear);
    studio->input().removeTap();
    studio->input().removeTap();
    EXPECT_TRUE(ear.buffers().empty());
}

TEST_P(AudioInputContract, StoppingWithoutAStartIsHarmless) {
    studio->input().stop();
    listen(ear);
    studio->input().stop();
    studio->input().stop();
    EXPECT_TRUE(ear.buffers().empty());
}

TEST_P(AudioInputContract, ASecondStartChangesNothing) {
    listen(ear);
    ASSERT_TRUE(studio->input().start());
    const auto spoken = distinctSamples(5000);
    studio->speak(spoken);
    studio->input().removeTap();
    EXPECT_EQ(ear.heard(), spoken);
}

TEST_P(AudioInputContract, AnotherTapReplacesTheFirst) {
    Ear first;
    listen(first);
    studio->input().installTap(480, format(), ear.tap());
    studio->awaitOpen();
    const auto spoken = distinctSamples(480);
    studio->speak(spoken);
    ASSERT_TRUE(waitUntil([&] { return ear.buffers().size() == 1; }));
    EXPECT_EQ(ear.heard(), spoken);
    EXPECT_TRUE(first.buffers().empty());
}

TEST_P(AudioInputContract, OneRecordingFollowsAnother) {
    for (int i = 0; i < 3; ++i) {
        Ear thisTime;
        listen(thisTime);
        const auto spoken = distinctSamples(std::size_t(5000 + i));
        studio->speak(spoken);
        studio->input().removeTap();
        studio->input().stop();
        EXPECT_EQ(thisTime.heard(), spoken);
    }
}

TEST_P(AudioInputContract, RemovingTheTapAtOnceGivesNothing) {
    studio->input().installTap(4096, format(), ear.tap());
    ASSERT_TRUE(studio->input().start());
    studio->input().removeTap();
    studio->input().stop();
    EXPECT_TRUE(ear.buffers().empty());
}

INSTANTIATE_TEST_SUITE_P(
    , AudioInputContract,
    ::testing::Values(StudioKind{"Fake", [] { return std::make_unique<FakeStudio>(); }},
                      StudioKind{"Pulse", [] { return std::make_unique<PulseStudio>(); }}),
    [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace quietlark

#include <algorithm>
#include <cmath>
#include <numeric>

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "audio/wav_file.h"
#include "dictation/recorder.h"
#include "peers/pulse_server.h"
#include "platform/linux/pulse/pulse_audio_input.h"
#include "support/wait.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

constexpr double rateHz = 16000;
using Samples = std::vector<std::int16_t>;

Samples samplesOf(const WavBytes& bytes) {
    const auto file = WavFile::parse(bytes);
    return file ? file->convertedTo(rateHz) : Samples();
}

WavBytes contents(const QString& path) {
    QFile file(path);
    (void)file.open(QIODevice::ReadOnly);
    const QByteArray bytes = file.readAll();
    return {bytes.begin(), bytes.end()};
}

/// How much of `sound` is in `recorded` from `offset` on: 1 is all of it, at any level.
double likeness(const Samples& recorded, std::size_t offset, const Samples& sound,
                std::size_t stride) {
    double both = 0;
    double inRecorded = 0;
    double inSound = 0;
    for (std::size_t i = 0; i < sound.size() && offset + i < recorded.size(); i += stride) {
        const double a = recorded[offset + i];
        const double b = sound[i];
        both += a * b;
        inRecorded += a * a;
        inSound += b * b;
    }
    return both / std::sqrt(std::max(1.0, inRecorded * inSound));
}

std::size_t bestOffset(const Samples& recorded, const Samples& sound) {
    std::vector<double> scores(recorded.size() > sound.size() ? recorded.size() - sound.size() : 1);
    for (std::size_t i = 0; i < scores.size(); ++i)
        scores[i] = likeness(recorded, i, sound, 16);
    return std::size_t(std::ranges::max_element(scores) - scores.begin());
}

double level(std::span<const std::int16_t> samples) {
    const double energy = std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus(),
                                                [](double sample) { return sample * sample; });
    return std::sqrt(energy / double(std::max<std::size_t>(1, samples.size())));
}

class RecordedSpeech : public ::testing::Test {
protected:
    void SetUp() override {
        const QStringList arguments = {QStringLiteral("-voice"), QStringLiteral("rms"),
                                       QStringLiteral("-t"),     QStringLiteral("open the door"),
                                       QStringLiteral("-o"),     speechFile()};
        (void)ChildProcess(QStringLiteral("flite"), arguments).readAll();
        speech = samplesOf(contents(speechFile()));
        ASSERT_GT(speech.size(), 8000u);
        ASSERT_TRUE(waitUntil([this] { return input.inputFormat().channels > 0; }));
    }

    [[nodiscard]] QString speechFile() const {
        return directory.filePath(QStringLiteral("speech.wav"));
    }

    /// Returns when the last of it has left the loudspeaker.
    void speak() {
        (void)ChildProcess(QStringLiteral("paplay"), {speechFile()}, server.environment())
            .readAll();
    }

    QTemporaryDir directory;
    PulseServer server;
    PulseAudioInput input{server.address(), 20s};
    Recorder recorder{rateHz, input};
    Samples speech;
};

TEST_F(RecordedSpeech, IsWhatWasSaid) {
    ASSERT_TRUE(recorder.start());
    ASSERT_TRUE(waitUntil([this] { return server.recordStreams() == 1; }));
    speak();
    const auto recording = recorder.stop();
    ASSERT_TRUE(recording);

    const Samples recorded = samplesOf(*recording);
    ASSERT_GE(recorded.size(), speech.size());
    const std::size_t offset = bestOffset(recorded, speech);
    EXPECT_GT(likeness(recorded, offset, speech, 1), 0.99);
    EXPECT_NEAR(level(std::span(recorded).subspan(offset, speech.size())) / level(speech), 1, 0.03);
}

}  // namespace
}  // namespace quietlark

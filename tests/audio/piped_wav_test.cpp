#include <QString>
#include <gtest/gtest.h>

#include "audio/wav.h"
#include "audio/wav_file.h"
#include "peers/child_process.h"

namespace quietlark {
namespace {

/// What a command of the shell writes into its pipe.
WavBytes outputOf(const QString& command) {
    const QByteArray bytes =
        ChildProcess(QStringLiteral("sh"), {QStringLiteral("-c"), command}).readAll();
    return {bytes.begin(), bytes.end()};
}

std::size_t zeroCrossings(const std::vector<std::int16_t>& samples) {
    std::size_t count = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        count += (samples[i - 1] < 0) != (samples[i] < 0) ? 1 : 0;
    return count;
}

class PipedWavTest : public testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(PipedWavTest, SoxsSoundIsReadToItsEnd) {
    for (const int rateHz : {8000, 44100, 96000}) {
        for (const int channels : {1, 2}) {
            SCOPED_TRACE(testing::Message() << rateHz << " Hz, " << channels << " channels");
            const WavBytes bytes = outputOf(
                QStringLiteral("sox -R -V1 -n -r %1 -c %2 %3 -t wav - synth 0.5 sine 1000 gain -6")
                    .arg(rateHz)
                    .arg(channels)
                    .arg(QLatin1String(GetParam())));
            const auto file = WavFile::parse(bytes);
            ASSERT_TRUE(file) << file.error().description;
            EXPECT_EQ(file->sampleRateHz(), static_cast<std::uint32_t>(rateHz));
            EXPECT_EQ(file->channels(), channels);
            EXPECT_EQ(file->frames(), static_cast<std::size_t>(rateHz / 2));
            const auto converted = file->convertedTo(16000);
            EXPECT_NEAR(static_cast<double>(converted.size()), 8000, 2);
            EXPECT_NEAR(static_cast<double>(zeroCrossings(converted)), 1000, 6);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryEncoding, PipedWavTest,
                         testing::Values("-e unsigned-integer -b 8", "-e signed-integer -b 16",
                                         "-e signed-integer -b 24", "-e signed-integer -b 32",
                                         "-e floating-point -b 32", "-e floating-point -b 64"));

TEST(PipedRecordingTest, ARecordingThatHasNoEndYetIsReadAsFarAsItGoes) {
    const WavBytes bytes = outputOf(QStringLiteral(
        "arecord -q -D null -t wav -f S16_LE -r 16000 -c 1 - 2>/dev/null | head -c 32044"));
    const auto file = WavFile::parse(bytes);
    ASSERT_TRUE(file) << file.error().description;
    EXPECT_EQ(file->sampleRateHz(), 16000U);
    EXPECT_EQ(file->frames(), 16000U);
}

}  // namespace quietlark

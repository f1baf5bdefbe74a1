#include "server/speed_meter.h"

#include <gtest/gtest.h>

#include "server/fake_speech_engine.h"
#include "server/measured_engine.h"

namespace quietlark {

using std::chrono::seconds;

TEST(SpeedMeterTest, TheMedianOfTheLatestIsTheSpeed) {
    SpeedMeter meter;
    EXPECT_EQ(meter.add(10, seconds(10)), 1);
    EXPECT_EQ(meter.add(30, seconds(10)), 2);
    EXPECT_EQ(meter.add(1000, seconds(10)), 3);
    EXPECT_EQ(meter.add(20, seconds(10)), 2.5);
}

TEST(SpeedMeterTest, WhatIsLongAgoCountsNoMore) {
    SpeedMeter meter;
    for (std::size_t i = 0; i < SpeedMeter::mostSamples; ++i)
        (void)meter.add(1, seconds(1));
    for (std::size_t i = 0; i + 1 < SpeedMeter::mostSamples; ++i)
        (void)meter.add(4, seconds(1));
    EXPECT_EQ(meter.add(4, seconds(1)), 4);
}

TEST(SpeedMeterTest, ShortRecordingsDoNotCount) {
    SpeedMeter meter;
    EXPECT_FALSE(meter.add(0.9, seconds(1)));
    EXPECT_FALSE(meter.add(5, seconds(0)));
}

TEST(MeasuredEngineTest, OnlyTranscribedRecordingsCount) {
    FakeSpeechEngine fake;
    int reports = 0;
    MeasuredEngine engine(fake, [&](double rtf) { reports += rtf > 0 ? 1 : 0; });
    const std::vector<std::int16_t> samples(16000);
    EXPECT_EQ(engine.transcribe({.samples = samples})->text, "hello world");
    EXPECT_EQ(reports, 1);
    fake.result = tl::unexpected(EngineError::Failed);
    EXPECT_FALSE(engine.transcribe({.samples = samples}));
    fake.result = "late";
    fake.setReady(false);
    EXPECT_TRUE(engine.transcribe({.samples = samples}));
    EXPECT_EQ(reports, 1);
}

TEST(MeasuredEngineTest, TheEngineBehindItIsAskedAndStopped) {
    FakeSpeechEngine fake;
    MeasuredEngine engine(fake, [](double) {});
    EXPECT_EQ(engine.modelId(), "fake-model");
    EXPECT_TRUE(engine.isReady());
    EXPECT_FALSE(engine.understands("de"));
    engine.stop();
    EXPECT_EQ(engine.transcribe({}).error(), EngineError::Stopping);
}

}  // namespace quietlark

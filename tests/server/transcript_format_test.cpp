#include "server/transcript_format.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

const Transcript transcript{.text = "Hello there. How <are> you?",
                            .language = "english",
                            .segments = {{0, 1.5, " Hello there."},
                                         {.startSeconds = 3661.0625,
                                          .endSeconds = 3662,
                                          .text = "How <are>\nyou?",
                                          .tokens = {7, 8},
                                          .temperature = 0.2,
                                          .meanLogProbability = -0.28154,
                                          .compressionRatio = 1.36,
                                          .noSpeechProbability = 0.0098}}};

std::string as(TranscriptFormat format) {
    return formatted(transcript, format, 3662.25);
}

}  // namespace

TEST(TranscriptFormatTest, FormatsAreKnownByName) {
    EXPECT_EQ(transcriptFormatOf(""), TranscriptFormat::Json);
    EXPECT_EQ(transcriptFormatOf("json"), TranscriptFormat::Json);
    EXPECT_EQ(transcriptFormatOf("verbose_json"), TranscriptFormat::VerboseJson);
    EXPECT_EQ(transcriptFormatOf("vtt"), TranscriptFormat::Vtt);
    EXPECT_FALSE(transcriptFormatOf("JSON"));
    EXPECT_FALSE(transcriptFormatOf("diarized_json"));
}

TEST(TranscriptFormatTest, JsonAndTextHoldTheText) {
    EXPECT_EQ(as(TranscriptFormat::Json), R"({"text":"Hello there. How <are> you?"})");
    EXPECT_EQ(as(TranscriptFormat::Text), "Hello there. How <are> you?\n");
}

TEST(TranscriptFormatTest, VerboseJsonHoldsLanguageDurationAndSegments) {
    EXPECT_EQ(as(TranscriptFormat::VerboseJson),
              R"({"task":"transcribe","language":"english","duration":3662.25,)"
              R"("text":"Hello there. How <are> you?","segments":[)"
              R"({"id":0,"seek":0,"start":0.00,"end":1.50,"text":" Hello there.","tokens":[],)"
              R"("temperature":0.00,"avg_logprob":0.0000,"compression_ratio":1.00,)"
              R"("no_speech_prob":0.0000},)"
              R"({"id":1,"seek":0,"start":3661.06,"end":3662.00,"text":"How <are>\u000ayou?",)"
              R"("tokens":[7,8],"temperature":0.20,"avg_logprob":-0.2815,)"
              R"("compression_ratio":1.36,"no_speech_prob":0.0098}],)"
              R"("usage":{"type":"duration","seconds":3663}})");
}

TEST(TranscriptFormatTest, VerboseJsonHoldsWordsAndTranslationsWhereThereAreSome) {
    const Transcript words{.words = {{{0.25, 0.5, "Hi"}, {0.5, 1, "\"you\""}}},
                           .isTranslation = true};
    EXPECT_EQ(formatted(words, TranscriptFormat::VerboseJson, 1),
              R"({"task":"translate","language":"","duration":1.00,"text":"","segments":[],)"
              R"("words":[{"word":"Hi","start":0.25,"end":0.50},)"
              R"({"word":"\"you\"","start":0.50,"end":1.00}],)"
              R"("usage":{"type":"duration","seconds":1}})");
}

TEST(TranscriptFormatTest, SrtNumbersItsSubtitles) {
    EXPECT_EQ(as(TranscriptFormat::Srt),
              "1\n00:00:00,000 --> 00:00:01,500\nHello there.\n\n"
              "2\n01:01:01,063 --> 01:01:02,000\nHow <are> you?\n\n");
}

TEST(TranscriptFormatTest, VttEscapesWhatItGivesAMeaningTo) {
    EXPECT_EQ(as(TranscriptFormat::Vtt),
              "WEBVTT\n\n00:00:00.000 --> 00:00:01.500\nHello there.\n\n"
              "01:01:01.063 --> 01:01:02.000\nHow &lt;are&gt; you?\n\n");
}

TEST(TranscriptFormatTest, NothingSaidIsAnEmptyDocument) {
    EXPECT_EQ(formatted({}, TranscriptFormat::Srt, 1), "");
    EXPECT_EQ(formatted({}, TranscriptFormat::Vtt, 1), "WEBVTT\n\n");
    EXPECT_EQ(formatted({}, TranscriptFormat::VerboseJson, 1),
              R"({"task":"transcribe","language":"","duration":1.00,"text":"","segments":[],)"
              R"("usage":{"type":"duration","seconds":1}})");
}

}  // namespace quietlark

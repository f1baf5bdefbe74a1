#include "server/whisper_answer.h"

#include <gtest/gtest.h>

namespace quietlark {

TEST(WhisperAnswerTest, AWordThatIsCutInTwoIsWholeInTheText) {
    const auto transcript = parseWhisperAnswer(
        R"({"text":" what your coun\ntry can do\n for you\n","segments":[)"
        R"({"text":" what your coun"},{"text":"try can do"},{"text":" for you"}]})");
    ASSERT_TRUE(transcript);
    EXPECT_EQ(transcript->text, "what your country can do for you");
    EXPECT_EQ(transcript->segments.size(), 3U);
}

TEST(WhisperAnswerTest, TextLanguageAndSegmentsAreRead) {
    const auto transcript = parseWhisperAnswer(
        R"({"task":"transcribe","language":"german","duration":2.5,"text":" Guten Tag.\n",)"
        R"("segments":[{"id":0,"start":0.5,"end":2,"text":" Guten Tag.","tokens":[1,2]}]})");
    ASSERT_TRUE(transcript);
    EXPECT_EQ(transcript->text, "Guten Tag.");
    EXPECT_EQ(transcript->language, "german");
    ASSERT_EQ(transcript->segments.size(), 1U);
    EXPECT_EQ(transcript->segments[0].startSeconds, 0.5);
    EXPECT_EQ(transcript->segments[0].endSeconds, 2);
    EXPECT_EQ(transcript->segments[0].text, " Guten Tag.");
}

TEST(WhisperAnswerTest, WhatItTellsOfASegmentIsKept) {
    const auto segments =
        parseWhisperAnswer(
            R"({"text":"a b","segments":[{"text":"a","tokens":[50364,7],"temperature":0.2,)"
            R"("avg_logprob":-0.25,"no_speech_prob":0.125,"seek":300},)"
            R"({"text":" b","tokens":["x"],"avg_logprob":null,"compression_ratio":1.5,"seek":1e300}]})")
            ->segments;
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(segments[0].tokens, (std::vector<int>{50364, 7}));
    EXPECT_EQ(segments[0].seek, 300);
    EXPECT_EQ(segments[1].seek, 0);
    EXPECT_EQ(segments[0].temperature, 0.2);
    EXPECT_EQ(segments[0].meanLogProbability, -0.25);
    EXPECT_EQ(segments[0].compressionRatio, 1);
    EXPECT_EQ(segments[0].noSpeechProbability, 0.125);
    EXPECT_TRUE(segments[1].tokens.empty());
    EXPECT_EQ(segments[1].meanLogProbability, 0);
    EXPECT_EQ(segments[1].compressionRatio, 1.5);
}

TEST(WhisperAnswerTest, TokensAreJoinedToWords) {
    const auto words =
        parseWhisperAnswer(
            R"({"text":"x","segments":[{"text":"x","words":[)"
            R"({"word":" your","start":0.1,"end":0.2},{"word":" coun","start":0.2,"end":0.4}]},)"
            R"({"text":"x","words":[{"word":"try","start":0.4,"end":0.5},)"
            R"({"word":".","start":0.5,"end":0.6}]}]})")
            ->words;
    ASSERT_TRUE(words);
    ASSERT_EQ(words->size(), 2U);
    EXPECT_EQ((*words)[0].text, "your");
    EXPECT_EQ((*words)[1].text, "country.");
    EXPECT_EQ((*words)[1].startSeconds, 0.2);
    EXPECT_EQ((*words)[1].endSeconds, 0.6);
}

TEST(WhisperAnswerTest, WordsThatAreNotToldAreUnknown) {
    EXPECT_FALSE(parseWhisperAnswer(R"({"text":"a"})")->words);
    EXPECT_FALSE(parseWhisperAnswer(R"({"text":"a","segments":[{"text":"a"}]})")->words);
    EXPECT_FALSE(parseWhisperAnswer(R"({"text":"a","segments":[7]})")->words);
    EXPECT_TRUE(parseWhisperAnswer(R"({"text":"","segments":[]})")->words->empty());
    EXPECT_TRUE(parseWhisperAnswer(R"({"text":"","segments":[{"words":[7,{}]}]})")->words);
}

TEST(WhisperAnswerTest, TheTextAloneIsEnough) {
    EXPECT_EQ(parseWhisperAnswer(R"({"text":""})")->text, "");
    EXPECT_EQ(parseWhisperAnswer(R"({"text":" \n"})")->text, "");
    EXPECT_EQ(parseWhisperAnswer(R"({"text":" a coun\ntry\n"})")->text, "a country");
    EXPECT_EQ(parseWhisperAnswer(R"({"text":"a","segments":7,"language":[]})")->text, "a");
    EXPECT_TRUE(parseWhisperAnswer(R"({"text":"a","segments":[7]})")->segments.empty());
}

TEST(WhisperAnswerTest, AnythingElseIsNoAnswer) {
    for (const char* body :
         {"", "hello", "[]", "{}", R"({"error":"no"})", R"({"text":7})", R"({"text":"a")"})
        EXPECT_FALSE(parseWhisperAnswer(body)) << body;
}

TEST(WhisperAnswerTest, BrokenCharactersAreReplaced) {
    EXPECT_EQ(parseWhisperAnswer("{\"text\":\"a\xe3\x81\"}")->text, "a\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(parseWhisperAnswer("{\"text\":\"\xc0\x80\xff\"}")->text,
              "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    const std::string whole = "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80";
    EXPECT_EQ(parseWhisperAnswer("{\"text\":\"" + whole + "\"}")->text, whole);
}

}  // namespace quietlark

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

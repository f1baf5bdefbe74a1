#include "local_server/download_answer.h"

#include <gtest/gtest.h>

namespace quietlark {

namespace {

class DownloadAnswerTest : public testing::Test {
protected:
    DownloadAnswerTest() { m_source.url = QUrl(QStringLiteral("https://models.example/m.bin")); }

    /// To the request for the whole model.
    [[nodiscard]] DownloadAnswer whole(std::vector<HttpHeader> headers, int status = 200) const {
        return readAnswer({status, std::move(headers)}, m_source, std::nullopt);
    }
    /// To the request for what comes after the 40th of 100 bytes.
    [[nodiscard]] DownloadAnswer rest(std::vector<HttpHeader> headers, int status = 206) const {
        return readAnswer({status, std::move(headers)}, m_source, m_asked);
    }
    [[nodiscard]] static bool isOther(const DownloadAnswer& answer) {
        return std::holds_alternative<OtherModel>(answer);
    }
    [[nodiscard]] static std::string refusal(const DownloadAnswer& answer) {
        const auto* refused = std::get_if<RefusedModel>(&answer);
        return refused ? refused->reason.toStdString() : "not refused";
    }
    [[nodiscard]] QByteArray validatorFrom(std::vector<HttpHeader> headers) const {
        headers.emplace_back("Content-Length", "100");
        return std::get<WholeModel>(whole(std::move(headers))).validator;
    }

    const HttpHeader sameTag{"ETag", "\"tag\""};
    ModelSource m_source;
    RangeAsked m_asked{40, "\"tag\"", 100};
};

}  // namespace

TEST_F(DownloadAnswerTest, AGoodAnswerTellsTheLength) {
    EXPECT_EQ(std::get<WholeModel>(whole({{"Content-Length", "100"}})).totalBytes, 100);
}

TEST_F(DownloadAnswerTest, AStrongTagIsTheValidatorRatherThanTheDate) {
    EXPECT_EQ(validatorFrom({{"Last-Modified", "today"}, {"ETag", "\"tag\""}}), "\"tag\"");
}

TEST_F(DownloadAnswerTest, TheDateIsTheValidatorWhereTheTagIsWeakOrMissing) {
    EXPECT_EQ(validatorFrom({{"Last-Modified", "today"}, {"ETag", "W/\"tag\""}}), "today");
    EXPECT_EQ(validatorFrom({{"Last-Modified", "today"}}), "today");
}

TEST_F(DownloadAnswerTest, ThereMayBeNoValidator) {
    EXPECT_EQ(validatorFrom({}), "");
    EXPECT_EQ(validatorFrom({{"ETag", "W/\"tag\""}}), "");
    EXPECT_EQ(validatorFrom({{"ETag", "\"t\x01g\""}}), "");
}

TEST_F(DownloadAnswerTest, AnyOtherStatusIsRefusedWithTheModelsAddress) {
    for (const int status : {204, 206, 302, 403, 404, 416, 500}) {
        EXPECT_EQ(refusal(whole({}, status)),
                  "HTTP " + std::to_string(status) + " from https://models.example/m.bin");
    }
    EXPECT_EQ(refusal(rest({}, 404)), "HTTP 404 from https://models.example/m.bin");
}

TEST_F(DownloadAnswerTest, ACodingIsRefused) {
    EXPECT_EQ(refusal(whole({{"Content-Length", "9"}, {"Content-Encoding", "gzip"}})),
              "The server sent the model in a coding that was not asked for (gzip).");
    EXPECT_EQ(refusal(rest({{"Content-Encoding", "br"}})),
              "The server sent the model in a coding that was not asked for (br).");
    EXPECT_EQ(refusal(whole({{"Content-Length", "9"}, {"Content-Encoding", "identity"}})),
              "not refused");
}

TEST_F(DownloadAnswerTest, WithoutALengthTheEndMustShowOtherwise) {
    EXPECT_NE(refusal(whole({})), "not refused");
    EXPECT_NE(refusal(whole({{"Content-Length", "many"}})), "not refused");
    EXPECT_NE(refusal(whole({{"Content-Length", "-5"}})), "not refused");
    EXPECT_EQ(refusal(whole({{"Transfer-Encoding", "chunked"}})), "not refused");
    m_source.sha256 = "digest";
    EXPECT_EQ(refusal(whole({})), "not refused");
}

TEST_F(DownloadAnswerTest, AnotherLengthThanThePublishedOneIsRefused) {
    m_source.lengthBytes = 99;
    EXPECT_EQ(refusal(whole({{"Content-Length", "100"}})),
              "The server offers 100 bytes, but the model has 99.");
}

TEST_F(DownloadAnswerTest, TheRangeThatWasAskedForIsTheRest) {
    const auto answer = rest({{"Content-Range", "bytes 40-99/100"}, {"ETag", "\"tag\""}});
    EXPECT_EQ(std::get<RestOfModel>(answer).totalBytes, 100);
}

TEST_F(DownloadAnswerTest, AnUnknownTotalIsTakenFromTheRange) {
    m_asked.totalBytes.reset();
    const auto answer = rest({{"Content-Range", "bytes 40-99/100"}, sameTag});
    EXPECT_EQ(std::get<RestOfModel>(answer).totalBytes, 100);
    EXPECT_TRUE(isOther(rest({{"Content-Range", "bytes 40-99/*"}, sameTag})));
}

TEST_F(DownloadAnswerTest, TheWholeModelMayComeInsteadOfTheRest) {
    const auto answer = rest({{"Content-Length", "100"}}, 200);
    EXPECT_EQ(std::get<WholeModel>(answer).totalBytes, 100);
}

TEST_F(DownloadAnswerTest, AnotherRangeIsAnotherModel) {
    for (const char* range :
         {"bytes 0-99/100", "bytes 41-99/100", "bytes 40-98/100", "bytes 40-99/101",
          "bytes 40-120/121", "bytes 40-99", "lines 40-99/100", "bytes 40-99999999999999999999/100",
          "bytes -40-99/100", "bytes 40-39/100", "bytes 40-9223372036854775807/*", ""}) {
        EXPECT_TRUE(isOther(rest({{"Content-Range", range}, sameTag}))) << range;
    }
    EXPECT_TRUE(isOther(rest({{"Content-Type", "multipart/byteranges"}, sameTag})));
}

TEST_F(DownloadAnswerTest, ARangeOfAnotherLengthThanItSaysIsAnotherModel) {
    const HttpHeader range{"Content-Range", "bytes 40-99/100"};
    EXPECT_TRUE(isOther(rest({range, sameTag, {"Content-Length", "59"}})));
    EXPECT_FALSE(isOther(rest({range, sameTag, {"Content-Length", "60"}})));
}

TEST_F(DownloadAnswerTest, AnotherTagOrDateIsAnotherModel) {
    EXPECT_TRUE(isOther(rest({{"Content-Range", "bytes 40-99/100"}, {"ETag", "\"new\""}})));
    m_asked.validator = "yesterday";
    EXPECT_TRUE(isOther(rest({{"Content-Range", "bytes 40-99/100"}, {"Last-Modified", "today"}})));
    EXPECT_FALSE(isOther(rest({{"Content-Range", "bytes 40-99/100"},
                               {"ETag", "\"new\""},
                               {"Last-Modified", "yesterday"}})));
}

TEST_F(DownloadAnswerTest, WithoutItsTagARangeIsTakenOnlyWhereADigestTells) {
    EXPECT_TRUE(isOther(rest({{"Content-Range", "bytes 40-99/100"}})));
    m_source.sha256 = "digest";
    EXPECT_FALSE(isOther(rest({{"Content-Range", "bytes 40-99/100"}})));
}

TEST_F(DownloadAnswerTest, ADateNeedNotBeSaidAgain) {
    m_asked.validator = "yesterday";
    EXPECT_FALSE(isOther(rest({{"Content-Range", "bytes 40-99/100"}})));
}

TEST_F(DownloadAnswerTest, ARangeBeyondTheEndIsAnotherModel) {
    EXPECT_TRUE(isOther(rest({{"Content-Range", "bytes */30"}}, 416)));
}

TEST_F(DownloadAnswerTest, ARefusalNamesTheAbsoluteAddress) {
    m_source.url = QUrl(QStringLiteral("https://models.example/a%20model.bin"));
    EXPECT_EQ(refusal(whole({}, 404)), "HTTP 404 from https://models.example/a%20model.bin");
}

}  // namespace quietlark

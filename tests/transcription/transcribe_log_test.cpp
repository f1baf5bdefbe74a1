#include "transcription/transcribe_log.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

using std::chrono::milliseconds;

std::string failed(const TranscriberError& error) {
    return transcribe_log::failedLine(milliseconds(10), error);
}

TEST(TranscribeLogTest, ErrorsOfCallersAreLoggedWithTheirNumber) {
    EXPECT_EQ(failed({TranscriberError::EmptyURL{}}),
              "transcribe failed after 0.01s: TranscriberError#1 "
              "No address of a transcription server is set. userInfo={}");
    EXPECT_EQ(failed({TranscriberError::Unresolvable{}}),
              "transcribe failed after 0.01s: TranscriberError#2 "
              "No transcription server was found at that address. userInfo={}");
}

TEST(TranscribeLogTest, LinesAreUtf8) {
    EXPECT_EQ(failed({TranscriberError::RequestFailed{500, QStringLiteral("\u00fc")}}),
              "transcribe failed after 0.01s: HTTP 500 body=\xc3\xbc");
}

TEST(TranscribeLogTest, SecondsHaveTwoDecimals) {
    EXPECT_EQ(transcribe_log::okLine(milliseconds(0), {}), "transcribe ok: 0.00s chars=0");
    EXPECT_EQ(transcribe_log::okLine(milliseconds(299994), {}), "transcribe ok: 299.99s chars=0");
    EXPECT_EQ(transcribe_log::okLine(milliseconds(3600000), {}), "transcribe ok: 3600.00s chars=0");
}

}  // namespace
}  // namespace quietlark

#include "transcription/transcriber_error.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

QString description(const TranscriberError& error) {
    return error.localizedDescription();
}

TEST(TranscriberErrorTest, EveryErrorIsOneSentence) {
    for (const TranscriberError& error :
         {TranscriberError{TranscriberError::RequestFailed{500, QStringLiteral("a\nb")}},
          TranscriberError{TranscriberError::EmptyURL{}},
          TranscriberError{TranscriberError::Unresolvable{}},
          TranscriberError{TranscriberError::InvalidResponse{}}}) {
        EXPECT_TRUE(description(error).endsWith(u'.'));
        EXPECT_EQ(description(error).count(QStringLiteral(". ")), 0);
        EXPECT_FALSE(description(error).contains(u'\n'));
    }
}

TEST(TranscriberErrorTest, RefusalNamesItsStatus) {
    const TranscriberError error{TranscriberError::RequestFailed{503, {}}};
    EXPECT_TRUE(description(error).contains(QStringLiteral("503")));
}

TEST(TranscriberErrorTest, TransportErrorSpeaksForItself) {
    const TransportError transport{QStringLiteral("net"), 7, QStringLiteral("It broke."), {}};
    EXPECT_EQ(description(TranscriberError{transport}), QStringLiteral("It broke."));
}

}  // namespace
}  // namespace quietlark

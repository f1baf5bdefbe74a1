#include "platform/qt/upload_body.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

TEST(UploadBodyTest, BodyIsReadInPiecesToItsEnd) {
    UploadBody body("hello", [] {});
    EXPECT_EQ(body.size(), 5);
    EXPECT_EQ(body.read(3), "hel");
    EXPECT_EQ(body.read(3), "lo");
    EXPECT_TRUE(body.atEnd());
}

TEST(UploadBodyTest, EveryBeginningIsReported) {
    int beginnings = 0;
    UploadBody body("hello", [&beginnings] { ++beginnings; });
    EXPECT_EQ(beginnings, 0);
    EXPECT_EQ(body.read(3), "hel");
    EXPECT_EQ(body.read(3), "lo");
    EXPECT_EQ(beginnings, 1);
    body.allowRestart();
    EXPECT_TRUE(body.reset());
    EXPECT_EQ(body.readAll(), "hello");
    EXPECT_EQ(beginnings, 2);
}

TEST(UploadBodyTest, BodyDoesNotStartOverUnlessAllowed) {
    UploadBody body("hello", [] {});
    EXPECT_EQ(body.read(3), "hel");
    EXPECT_FALSE(body.reset());
    EXPECT_EQ(body.readAll(), "lo");
}

TEST(UploadBodyTest, PermissionToStartOverHoldsOnce) {
    UploadBody body("hello", [] {});
    body.allowRestart();
    EXPECT_EQ(body.readAll(), "hello");
    EXPECT_TRUE(body.reset());
    EXPECT_EQ(body.readAll(), "hello");
    EXPECT_FALSE(body.reset());
}

TEST(UploadBodyTest, PermissionToStartOverCanBeTakenBack) {
    UploadBody body("hello", [] {});
    body.allowRestart();
    body.forbidRestart();
    EXPECT_FALSE(body.reset());
}

}  // namespace
}  // namespace quietlark

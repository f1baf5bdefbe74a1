#include "local_server/redirect_policy.h"

#include <gtest/gtest.h>

namespace quietlark {

namespace {

const HttpStreamRequest first{QUrl(QStringLiteral("https://models.example/model.bin")),
                              {{"Range", "bytes=5-"}, {"If-Range", "\"tag\""}}};
const HttpStreamRequest proposal{QUrl(QStringLiteral("https://models.example/proposed")),
                                 {{"Accept", "*/*"}}};

HttpHead redirect(const char* location, int status = 302) {
    return {status, {{"Location", location}}, proposal};
}

}  // namespace

TEST(RedirectPolicyTest, TheLocationIsAskedWithTheHeadersOfTheFirstRequest) {
    for (const int status : {301, 302, 303, 307, 308}) {
        const auto next = redirected(redirect("https://mirror.example/a?b=%2F", status), first);
        ASSERT_TRUE(next);
        EXPECT_EQ(next->url.toEncoded(), "https://mirror.example/a?b=%2F");
        EXPECT_EQ(next->headers, first.headers);
    }
}

TEST(RedirectPolicyTest, TheLocationIsTakenExactlyAsGiven) {
    const auto next = redirected(redirect("/elsewhere"), first);
    EXPECT_EQ(next->url.toEncoded(), "/elsewhere");
}

TEST(RedirectPolicyTest, TheNameOfTheHeaderMayBeInAnyCase) {
    const HttpHead head{302, {{"lOCATION", "https://mirror.example/"}}, {}};
    EXPECT_EQ(redirected(head, first)->url.host(), QStringLiteral("mirror.example"));
}

TEST(RedirectPolicyTest, ARedirectWithoutALocationIsFollowedAsTheSystemProposes) {
    EXPECT_EQ(redirected({302, {}, proposal}, first), proposal);
}

TEST(RedirectPolicyTest, ALocationThatIsNoAddressIsFollowedAsTheSystemProposes) {
    EXPECT_EQ(redirected(redirect("https://mirror.example/a b"), first), proposal);
    EXPECT_EQ(redirected(redirect("http://[broken"), first), proposal);
    EXPECT_EQ(redirected(redirect(""), first), proposal);
}

TEST(RedirectPolicyTest, WithoutAProposalThatIsTheAnswer) {
    EXPECT_EQ(redirected({302, {}, {}}, first), std::nullopt);
}

TEST(RedirectPolicyTest, AnyOtherAnswerIsNoRedirect) {
    for (const int status : {200, 206, 300, 304, 404})
        EXPECT_EQ(redirected(redirect("https://mirror.example/", status), first), std::nullopt);
}

}  // namespace quietlark

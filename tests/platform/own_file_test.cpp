#include "platform/own_file.h"

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class OwnFileTest : public FileTree {};

TEST_F(OwnFileTest, ADirectoryOfTheUsersIsTheirsAndSoIsOneToBeMadeInIt) {
    makeFolder("home");
    EXPECT_TRUE(isOwnPlace(at("home")));
    EXPECT_TRUE(isOwnPlace(at("home/.config/deeper")));
    EXPECT_FALSE(wouldWriteAmongOthersFiles(at("home/.config")));
}

TEST_F(OwnFileTest, AnotherUsersDirectoryIsNotNorIsOneToBeMadeInIt) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    makeFolder("home/.config");
    give("home", 1234);
    EXPECT_FALSE(isOwnPlace(at("home")));
    EXPECT_TRUE(wouldWriteAmongOthersFiles(at("home/.local/share")));
    EXPECT_TRUE(isOwnPlace(at("home/.config")));
}

TEST_F(OwnFileTest, WhereALinkLeadsCounts) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    makeFolder("theirs");
    makeFolder("ours");
    give("theirs", 1234);
    link("home/.config", at("theirs"));
    link("theirs/.config", at("ours"));
    EXPECT_FALSE(isOwnPlace(at("home/.config")));
    EXPECT_TRUE(isOwnPlace(at("theirs/.config")));
}

}  // namespace
}  // namespace quietlark

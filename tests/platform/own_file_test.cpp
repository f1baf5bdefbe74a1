#include "platform/own_file.h"

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class OwnFileTest : public FileTree {};

TEST_F(OwnFileTest, ALinkThatStillLeadsThereIsRemoved) {
    write("bundle/program");
    link("bin/program", at("bundle/program"));
    link("bin/relative", QStringLiteral("../bundle/program"));
    removeOwnLink(at("bin/program"), at("bundle/program").toUtf8());
    removeOwnLink(at("bin/relative"), "../bundle/program");
    EXPECT_EQ(listing(), "bin bundle bundle/program");
}

TEST_F(OwnFileTest, WhatHasTakenThePlaceOfALinkStays) {
    link("bin/elsewhere", at("other/program"));
    link("bin/longer", at("bundle/program-2"));
    write("bin/file", at("bundle/program").toUtf8());
    write("bin/folder/thesis");
    makeFolder("bin/empty");
    const std::string before = listing();
    for (const char* path :
         {"bin/elsewhere", "bin/longer", "bin/file", "bin/folder", "bin/empty", "bin/missing"}) {
        removeOwnLink(at(path), at("bundle/program").toUtf8());
        removeOwnLink(at(path), QByteArray());
    }
    EXPECT_EQ(listing(), before);
}

TEST_F(OwnFileTest, AnotherUsersLinkStays) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    link("program", QStringLiteral("/bundle/program"));
    give("program", 1234);
    removeOwnLink(at("program"), "/bundle/program");
    EXPECT_TRUE(exists("program"));
}

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

#include "platform/linux/removal/linux_own_files.h"

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class LinuxOwnFilesTest : public FileTree {
protected:
    LinuxOwnFiles files() const {
        return LinuxOwnFiles({at("home/.config"), at("home/.local/share")},
                             {QStringLiteral("/"), at("home")},
                             {at("home/.local"), at("home/.local/share"), at("home/.config"),
                              at("home/.config/autostart")});
    }

    void removeFolder(const char* path, const QStringList& entries = {}) const {
        files().removeFolder({at(path), entries});
    }
    void removeSettings(const char* path) const {
        removeFolder(path, {QStringLiteral("config.json"), QStringLiteral("defaults.ini")});
    }
    void removeModels(const char* path) const {
        removeFolder(path, {QStringLiteral("models/active.bin"),
                            QStringLiteral("models/active.bin.resume")});
    }
};

// By convention

TEST_F(LinuxOwnFilesTest, AFolderThatIsOursByConventionGoesWithEverythingInIt) {
    write("home/.config/Quietlark/config.json");
    write("home/.config/Quietlark/.hidden/deep/down");
    makeFolder("home/.config/Quietlark/empty");
    removeSettings("home/.config/Quietlark");
    EXPECT_EQ(listing(), "home home/.config");
}

TEST_F(LinuxOwnFilesTest, OnlyThatNameCounts) {
    for (const char* path : {"home/.config/quietlark", "home/.config/Quietlark.old",
                             "home/.config/Other", "home/.config"}) {
        write((std::string(path) + "/config.json").c_str());
        removeSettings(path);
    }
    EXPECT_TRUE(exists("home/.config/quietlark/config.json"));
    EXPECT_TRUE(exists("home/.config/Quietlark.old/config.json"));
    EXPECT_TRUE(exists("home/.config/Other/config.json"));
    EXPECT_TRUE(exists("home/.config/config.json"));
}

TEST_F(LinuxOwnFilesTest, AMissingFolderIsNoFailure) {
    makeFolder("home");
    removeSettings("home/.config/Quietlark");
    EXPECT_EQ(listing(), "home");
}

TEST_F(LinuxOwnFilesTest, TheParentMayBeALinkOfTheUsers) {
    write("dotfiles/Quietlark/config.json");
    write("dotfiles/Other/config.json");
    link("home/.config", at("dotfiles"));
    removeSettings("home/.config/Quietlark");
    EXPECT_FALSE(exists("dotfiles/Quietlark"));
    EXPECT_TRUE(exists("dotfiles/Other/config.json"));
}

TEST_F(LinuxOwnFilesTest, OfALinkInItsPlaceTheLinkGoesAndWhatItLeadsToStays) {
    write("elsewhere/config.json");
    link("home/.config/Quietlark", at("elsewhere"));
    removeSettings("home/.config/Quietlark");
    EXPECT_FALSE(exists("home/.config/Quietlark"));
    EXPECT_TRUE(exists("elsewhere/config.json"));
}

TEST_F(LinuxOwnFilesTest, LinksInItGoAndWhatTheyLeadToStays) {
    write("elsewhere/thesis");
    link("home/.local/share/Quietlark/models", at("elsewhere"));
    link("home/.local/share/Quietlark/thesis", at("elsewhere/thesis"));
    link("home/.local/share/Quietlark/up", QStringLiteral("../../.."));
    link("home/.local/share/Quietlark/nowhere", QStringLiteral("nowhere"));
    removeModels("home/.local/share/Quietlark");
    EXPECT_FALSE(exists("home/.local/share/Quietlark"));
    EXPECT_TRUE(exists("elsewhere/thesis"));
}

TEST_F(LinuxOwnFilesTest, TheOtherNameOfAHardLinkedFileStays) {
    write("thesis");
    makeFolder("home/.config/Quietlark");
    ASSERT_EQ(::link(QFile::encodeName(at("thesis")).constData(),
                     QFile::encodeName(at("home/.config/Quietlark/config.json")).constData()),
              0);
    removeSettings("home/.config/Quietlark");
    EXPECT_FALSE(exists("home/.config/Quietlark"));
    EXPECT_EQ(read(at("thesis")), "content");
}

TEST_F(LinuxOwnFilesTest, AFileInItsPlaceStays) {
    write("home/.config/Quietlark");
    removeSettings("home/.config/Quietlark");
    EXPECT_TRUE(exists("home/.config/Quietlark"));
}

TEST_F(LinuxOwnFilesTest, AnEndlesslyDeepFolderEndsNothingElse) {
    std::string path = "home/.config/Quietlark";
    for (int level = 0; level < 150; ++level)
        path += "/d";
    makeFolder(path.c_str());
    write("home/.config/Quietlark/config.json");
    removeSettings("home/.config/Quietlark");
    EXPECT_FALSE(exists("home/.config/Quietlark/config.json"));
}

// Where the environment has led

TEST_F(LinuxOwnFilesTest, ElsewhereOnlyWhatWeWriteGoes) {
    write("Documents/Quietlark/config.json");
    write("Documents/Quietlark/config.json.Xy3kq1");
    write("Documents/Quietlark/defaults.ini.lock");
    write("Documents/Quietlark/config.jsonnet");
    write("Documents/Quietlark/config.json.backup");
    write("Documents/Quietlark/thesis/chapter");
    removeSettings("Documents/Quietlark");
    EXPECT_EQ(listing("Documents"),
              "Quietlark Quietlark/config.json.backup Quietlark/config.jsonnet Quietlark/thesis "
              "Quietlark/thesis/chapter");
}

TEST_F(LinuxOwnFilesTest, ElsewhereTheFolderGoesOnceItIsEmpty) {
    write("Documents/Quietlark/config.json");
    removeSettings("Documents/Quietlark");
    EXPECT_EQ(listing("Documents"), "");
}

TEST_F(LinuxOwnFilesTest, ElsewhereTheFolderOfTheModelsIsHeldToTheSame) {
    write("Documents/Quietlark/models/active.bin");
    write("Documents/Quietlark/models/active.bin.resume.new");
    removeModels("Documents/Quietlark");
    EXPECT_EQ(listing("Documents"), "");
    write("Documents/Quietlark/models/active.bin");
    write("Documents/Quietlark/models/ggml-tiny.bin");
    removeModels("Documents/Quietlark");
    EXPECT_EQ(listing("Documents"), "Quietlark Quietlark/models Quietlark/models/ggml-tiny.bin");
}

TEST_F(LinuxOwnFilesTest, ElsewhereALinkStaysAsItIs) {
    write("other/config.json");
    link("Documents/Quietlark", at("other"));
    link("Music/Quietlark/models", at("other"));
    removeSettings("Documents/Quietlark");
    removeFolder("Music/Quietlark", {QStringLiteral("models/config.json")});
    EXPECT_TRUE(exists("Documents/Quietlark"));
    EXPECT_TRUE(exists("Music/Quietlark/models"));
    EXPECT_TRUE(exists("other/config.json"));
}

TEST_F(LinuxOwnFilesTest, ARelativePathMeansNothing) {
    write("Quietlark/config.json");
    const QString before = QDir::currentPath();
    QDir::setCurrent(at(""));
    files().removeFolder({QStringLiteral("Quietlark"), {QStringLiteral("config.json")}});
    files().removeFolder({QString(), {QStringLiteral("config.json")}});
    files().removeFile(QStringLiteral("Quietlark/config.json"));
    files().removeFile(QString());
    QDir::setCurrent(before);
    EXPECT_TRUE(exists("Quietlark/config.json"));
}

// Folders that programs share

TEST_F(LinuxOwnFilesTest, TheMissingSharedFoldersAreThoseOfWhichThereIsNothing) {
    makeFolder("home/.config");
    link("home/.config/autostart", at("missing"));
    EXPECT_EQ(files().missingFolders(), (QStringList{at("home/.local"), at("home/.local/share")}));
}

TEST_F(LinuxOwnFilesTest, EmptyFoldersGoTogetherWithThoseTheyAreIn) {
    makeFolder("home/.local/share");
    makeFolder("home/.config/autostart");
    files().removeEmptyFolders({at("home/.local"), at("home/.local/share"), at("home/.config")});
    EXPECT_EQ(listing("home"), ".config .config/autostart");
}

TEST_F(LinuxOwnFilesTest, OnlyEmptySharedFoldersOfTheUsersGo) {
    for (const char* folder : {"home/empty", "home/elsewhere", "home/.config/Other"})
        makeFolder(folder);
    link("home/.local", at("home/elsewhere"));
    write("home/.config/autostart");
    files().removeEmptyFolders({at("home"), at("home/empty"), at("home/.local"), at("home/.config"),
                                at("home/.config/Other"), at("home/.config/autostart"), QString(),
                                QStringLiteral("/"), QStringLiteral("home/empty")});
    EXPECT_EQ(listing("home"), ".config .config/Other .config/autostart .local elsewhere empty");
}

TEST_F(LinuxOwnFilesTest, AnotherUsersEmptyFolderStays) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    makeFolder("home/.config/autostart");
    give("home/.config/autostart", 1234);
    files().removeEmptyFolders({at("home/.config"), at("home/.config/autostart")});
    EXPECT_TRUE(exists("home/.config/autostart"));
}

// What stays in any case

TEST_F(LinuxOwnFilesTest, TheHomeDirectoryStaysWhateverItsName) {
    write("users/Quietlark/thesis");
    write("users/Quietlark/config.json");
    const LinuxOwnFiles inOddHome({at("users")}, {at("users/Quietlark")}, {});
    LinuxOwnFiles(inOddHome).removeFolder({at("users/Quietlark"), {QStringLiteral("config.json")}});
    EXPECT_EQ(listing("users"), "Quietlark Quietlark/thesis");
}

TEST_F(LinuxOwnFilesTest, AFolderThatHoldsTheHomeDirectoryStays) {
    write("data/Quietlark/me/thesis");
    link("odd", at("data/Quietlark/me"));
    LinuxOwnFiles({at("data")}, {at("odd")}, {}).removeFolder({at("data/Quietlark"), {}});
    EXPECT_TRUE(exists("data/Quietlark/me/thesis"));
}

TEST_F(LinuxOwnFilesTest, AnEmptyHomeDirectoryStaysToo) {
    makeFolder("users/Quietlark");
    LinuxOwnFiles({at("users")}, {at("users/Quietlark")}, {})
        .removeFolder({at("users/Quietlark"), {}});
    LinuxOwnFiles({}, {at("users/Quietlark")}, {}).removeFolder({at("users/Quietlark"), {}});
    EXPECT_TRUE(exists("users/Quietlark"));
}

TEST_F(LinuxOwnFilesTest, WhatBelongsToAnotherUserStays) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    write("home/.config/Quietlark/config.json");
    write("home/.config/Quietlark/theirs/file");
    give("home/.config/Quietlark/theirs", 1234);
    write("home/.local/share/Quietlark/theirs");
    give("home/.local/share/Quietlark", 1234);
    removeSettings("home/.config/Quietlark");
    removeModels("home/.local/share/Quietlark");
    EXPECT_FALSE(exists("home/.config/Quietlark/config.json"));
    EXPECT_TRUE(exists("home/.config/Quietlark/theirs/file"));
    EXPECT_TRUE(exists("home/.local/share/Quietlark/theirs"));
}

TEST_F(LinuxOwnFilesTest, AnotherFileSystemStays) {
    if (!canMount()) GTEST_SKIP() << "only root can mount";
    mountFileSystem("home/.local/share/Quietlark/models");
    write("home/.local/share/Quietlark/models/active.bin");
    write("home/.local/share/Quietlark/other");
    removeModels("home/.local/share/Quietlark");
    EXPECT_TRUE(exists("home/.local/share/Quietlark/models/active.bin"));
    EXPECT_FALSE(exists("home/.local/share/Quietlark/other"));
    unmount("home/.local/share/Quietlark/models");
}

TEST_F(LinuxOwnFilesTest, AFolderMountedFromTheSameFileSystemStays) {
    if (!canMount()) GTEST_SKIP() << "only root can mount";
    write("thesis/chapter");
    mountFolder("thesis", "home/.local/share/Quietlark/models");
    mountFolder("thesis", "home/.config/Quietlark");
    removeModels("home/.local/share/Quietlark");
    removeFolder("home/.config/Quietlark", {QStringLiteral("chapter")});
    EXPECT_TRUE(exists("thesis/chapter"));
    unmount("home/.local/share/Quietlark/models");
    unmount("home/.config/Quietlark");
}

// Single files

TEST_F(LinuxOwnFilesTest, AFileGoesAndAFolderOfItsNameStays) {
    write("tmp/quietlark.log");
    write("tmp/quietlark.endpoint/file");
    files().removeFile(at("tmp/quietlark.log"));
    files().removeFile(at("tmp/quietlark.endpoint"));
    files().removeFile(at("tmp/missing"));
    EXPECT_EQ(listing("tmp"), "quietlark.endpoint quietlark.endpoint/file");
}

TEST_F(LinuxOwnFilesTest, OfALinkToAFileTheLinkGoes) {
    write("thesis");
    link("tmp/quietlark.log", at("thesis"));
    files().removeFile(at("tmp/quietlark.log"));
    EXPECT_FALSE(exists("tmp/quietlark.log"));
    EXPECT_TRUE(exists("thesis"));
}

TEST_F(LinuxOwnFilesTest, AnotherUsersFileStays) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    write("tmp/quietlark.log");
    give("tmp/quietlark.log", 1234);
    files().removeFile(at("tmp/quietlark.log"));
    EXPECT_TRUE(exists("tmp/quietlark.log"));
}

}  // namespace
}  // namespace quietlark

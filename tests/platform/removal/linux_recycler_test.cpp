#include "platform/linux/removal/linux_recycler.h"

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class LinuxRecyclerTest : public FileTree {
protected:
    LinuxRecyclerTest() { install("home/.local/opt/Quietlark"); }

    void install(const std::string& bundle) const {
        write((bundle + "/bin/quietlark").c_str());
        write((bundle + "/lib/libpart.so").c_str());
        write((bundle + "/share/applications/net.quietlark.app.desktop").c_str());
    }

    tl::expected<void, RecycleError> recyclePath(const QString& path) const {
        return LinuxRecycler(
                   {{at("opt/"), at("home/.local/opt/")}, {at("home")}, at("dpkg/quietlark.list")},
                   FreedesktopTrash(at("home/.local/share")),
                   Registration(at("home"), {at("home/.config")}, {at("home/.local/share")}))
            .recycle(path);
    }

    tl::expected<void, RecycleError> recycle(const char* path) const {
        return recyclePath(at(path));
    }

    /// The sentence of a failure that has touched nothing.
    QString refusal(const QString& path) const {
        const auto before = listing();
        const auto recycled = recyclePath(path);
        EXPECT_EQ(listing(), before);
        EXPECT_FALSE(recycled.has_value());
        return recycled ? QString() : recycled.error().localizedDescription;
    }

    void expectRefused(const char* path) const {
        EXPECT_TRUE(refusal(at(path)).startsWith(
            at(path) + QStringLiteral(" is not a folder of Quietlark's alone")));
    }
};

TEST_F(LinuxRecyclerTest, ABundleOfOurOwnGoesToTheTrashWithItsLinks) {
    link("home/.local/bin/quietlark", at("home/.local/opt/Quietlark/bin/quietlark"));
    link("home/.config/autostart/net.quietlark.app.desktop",
         at("home/.local/opt/Quietlark/share/applications/net.quietlark.app.desktop"));
    write("home/.local/bin/other");
    ASSERT_TRUE(recycle("home/.local/opt/Quietlark").has_value());
    EXPECT_EQ(listing("home/.local/opt"), "");
    EXPECT_EQ(listing("home/.local/bin"), "other");
    EXPECT_EQ(listing("home/.config"), "autostart");
    EXPECT_TRUE(exists("home/.local/share/Trash/files/Quietlark/bin/quietlark"));
}

TEST_F(LinuxRecyclerTest, FoldersThatWereMadeForItGoWhereNothingElseIsInThem) {
    link("home/.local/bin/quietlark", at("home/.local/opt/Quietlark/bin/quietlark"));
    link("home/.local/share/man/man1/quietlark.1", at("home/.local/opt/Quietlark/share/man"));
    write("home/.local/share/man/man1/other.1");
    write("home/.local/opt/Quietlark/share/quietlark/registered",
          at("home/.local/opt/").toUtf8() + '\n' + at("home/.local/bin/").toUtf8() + '\n' +
              at("home/.local/share/man/").toUtf8() + '\n' +
              at("home/.local/share/man/man1/").toUtf8() + '\n');
    ASSERT_TRUE(recycle("home/.local/opt/Quietlark").has_value());
    EXPECT_EQ(listing("home/.local/share/man"), "man1 man1/other.1");
    EXPECT_FALSE(exists("home/.local/bin"));
    EXPECT_FALSE(exists("home/.local/opt"));
}

TEST_F(LinuxRecyclerTest, AFolderBelowARootPassesToo) {
    install("opt/tools/Quietlark");
    EXPECT_TRUE(recycle("opt/tools/Quietlark").has_value());
    EXPECT_EQ(listing("opt"), "tools");
}

TEST_F(LinuxRecyclerTest, WhereTheTrashRefusesTheBundleIsAllThatIsLeft) {
    write("home/.local/share");
    link("home/.local/bin/quietlark", at("home/.local/opt/Quietlark/bin/quietlark"));
    const auto recycled = recycle("home/.local/opt/Quietlark");
    ASSERT_FALSE(recycled.has_value());
    EXPECT_TRUE(recycled.error().localizedDescription.startsWith(
        at("home/.local/opt/Quietlark") + QStringLiteral(" could not be moved to the Trash: ")));
    EXPECT_TRUE(exists("home/.local/opt/Quietlark/bin/quietlark"));
    EXPECT_FALSE(exists("home/.local/bin/quietlark"));
}

// What a package manager has installed

TEST_F(LinuxRecyclerTest, APackagedProgramNamesThePackageToRemove) {
    write("usr/bin/quietlark");
    write("dpkg/quietlark.list", "/.\n" + at("usr/bin/quietlark").toUtf8() + "\n/usr/bin\n");
    const QString sentence = QStringLiteral(
        "Quietlark was installed as a package. Remove the package quietlark with your package "
        "manager, for example with: sudo apt remove quietlark");
    EXPECT_EQ(refusal(at("usr/bin/quietlark")), sentence);
    EXPECT_EQ(refusal(at("usr")), sentence);
}

TEST_F(LinuxRecyclerTest, APackageBelowARootIsLeftToThePackageManager) {
    install("opt/Quietlark");
    write("dpkg/quietlark.list", at("opt/Quietlark/bin/quietlark").toUtf8() + '\n');
    EXPECT_TRUE(refusal(at("opt/Quietlark")).contains(QStringLiteral("the package quietlark")));
}

TEST_F(LinuxRecyclerTest, ABundleBesideThePackageIsStillOurs) {
    write("dpkg/quietlark.list", "/usr/bin/quietlark\n");
    EXPECT_TRUE(recycle("home/.local/opt/Quietlark").has_value());
}

// What is not ours alone

TEST_F(LinuxRecyclerTest, SharedAndOddDirectoriesAreRefused) {
    install("usr");
    install("home");
    install("home/.local");
    for (const char* path : {"usr", "home", "home/.local", "home/.local/opt", "missing"})
        expectRefused(path);
    for (const char* path : {"/", "/usr", "/usr/bin/quietlark", ""})
        EXPECT_FALSE(refusal(QString::fromLatin1(path)).isEmpty());
}

TEST_F(LinuxRecyclerTest, OnlyThatNameBelowARootCounts) {
    install("home/.local/opt/quietlark");
    install("home/.local/opt/Quietlark-2");
    install("home/Downloads/Quietlark");
    expectRefused("home/.local/opt/quietlark");
    expectRefused("home/.local/opt/Quietlark-2");
    expectRefused("home/Downloads/Quietlark");
}

TEST_F(LinuxRecyclerTest, WhereTheFolderReallyIsCounts) {
    install("home/Downloads/Quietlark");
    makeFolder("opt");
    expectRefused("opt/../home/Downloads/Quietlark");
    link("opt/downloads", at("home/Downloads"));
    expectRefused("opt/downloads/Quietlark");
    EXPECT_TRUE(exists("home/Downloads/Quietlark/bin/quietlark"));
}

TEST_F(LinuxRecyclerTest, ARelativePathIsRefused) {
    const QString before = QDir::currentPath();
    QDir::setCurrent(at("home/.local/opt"));
    EXPECT_FALSE(refusal(QStringLiteral("Quietlark")).isEmpty());
    QDir::setCurrent(before);
}

TEST_F(LinuxRecyclerTest, AFolderThatLacksAPartOfTheProgramIsNone) {
    QFile::remove(at("home/.local/opt/Quietlark/share/applications/net.quietlark.app.desktop"));
    expectRefused("home/.local/opt/Quietlark");
    write("opt/Quietlark/share/applications/net.quietlark.app.desktop");
    link("opt/Quietlark/bin/quietlark", QStringLiteral("/bin/true"));
    expectRefused("opt/Quietlark");
}

TEST_F(LinuxRecyclerTest, AFolderThatHoldsSomethingElseIsNotOursAlone) {
    write("home/.local/opt/Quietlark/.git/config");
    expectRefused("home/.local/opt/Quietlark");
}

TEST_F(LinuxRecyclerTest, ALinkIsNoBundle) {
    install("opt/real/Quietlark");
    link("opt/Quietlark", at("opt/real/Quietlark"));
    expectRefused("opt/Quietlark");
}

TEST_F(LinuxRecyclerTest, AFolderThatHoldsTheHomeDirectoryIsRefused) {
    install("opt/Quietlark");
    makeFolder("opt/Quietlark/share/home");
    const auto recycled =
        LinuxRecycler({{at("opt/")}, {at("opt/Quietlark/share/home")}, at("no-package")},
                      FreedesktopTrash(at("home/.local/share")), Registration(at("home"), {}, {}))
            .recycle(at("opt/Quietlark"));
    EXPECT_FALSE(recycled.has_value());
    EXPECT_TRUE(exists("opt/Quietlark/bin/quietlark"));
}

TEST_F(LinuxRecyclerTest, AnotherUsersBundleIsRefusedWithTheReason) {
    if (!isRoot()) GTEST_SKIP() << "only root can give files to another user";
    give("home/.local/opt/Quietlark", 1234);
    EXPECT_EQ(refusal(at("home/.local/opt/Quietlark")),
              at("home/.local/opt/Quietlark") +
                  QStringLiteral(" belongs to another user, who alone can remove it."));
}

TEST_F(LinuxRecyclerTest, AMountPointIsRefused) {
    if (!canMount()) GTEST_SKIP() << "only root can mount";
    mountFolder("home/.local/opt/Quietlark", "opt/Quietlark");
    expectRefused("opt/Quietlark");
    unmount("opt/Quietlark");
}

}  // namespace
}  // namespace quietlark

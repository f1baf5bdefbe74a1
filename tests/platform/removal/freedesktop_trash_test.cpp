#include "platform/linux/removal/freedesktop_trash.h"

#include <QDateTime>
#include <fcntl.h>

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class FreedesktopTrashTest : public FileTree {
protected:
    tl::expected<void, QString> move(const char* path) const {
        return FreedesktopTrash(at("home/.local/share")).move(at(path));
    }

    /// The value that the file keeps under that name.
    QString infoValue(const char* path, const char* name) const {
        for (const QByteArray& line : read(at(path)).split('\n')) {
            if (line.startsWith(QByteArray(name) + '=')) {
                return QString::fromUtf8(line.mid(line.indexOf('=') + 1));
            }
        }
        return {};
    }
    QString infoPath(const char* path) const {
        return QString::fromUtf8(QByteArray::fromPercentEncoding(infoValue(path, "Path").toUtf8()));
    }

    static constexpr const char* trash = "home/.local/share/Trash";
};

TEST_F(FreedesktopTrashTest, AFolderIsMovedWithEverythingInIt) {
    write("opt/Quietlark/bin/quietlark");
    write("opt/Quietlark/share/help");
    ASSERT_TRUE(move("opt/Quietlark").has_value());
    EXPECT_EQ(listing("opt"), "");
    EXPECT_EQ(listing(trash),
              "files files/Quietlark files/Quietlark/bin files/Quietlark/bin/quietlark "
              "files/Quietlark/share files/Quietlark/share/help info info/Quietlark.trashinfo");
}

TEST_F(FreedesktopTrashTest, ItIsKnownWhereItCameFromAndWhen) {
    write("opt/a b ü%/Quietlark");
    const auto before = QDateTime::currentDateTime().addSecs(-1);
    ASSERT_TRUE(move("opt/a b ü%/Quietlark").has_value());
    const char* info = "home/.local/share/Trash/info/Quietlark.trashinfo";
    EXPECT_TRUE(read(at(info)).startsWith("[Trash Info]\n"));
    EXPECT_TRUE(
        infoValue(info, "Path").endsWith(QStringLiteral("/opt/a%20b%20%C3%BC%25/Quietlark")));
    EXPECT_EQ(infoPath(info), at("opt/a b ü%/Quietlark"));
    const auto date = QDateTime::fromString(infoValue(info, "DeletionDate"),
                                            QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
    EXPECT_GE(date, before);
    EXPECT_LE(date, QDateTime::currentDateTime());
}

TEST_F(FreedesktopTrashTest, TheTrashIsMadeForTheUserAlone) {
    write("Quietlark");
    ASSERT_TRUE(move("Quietlark").has_value());
    for (const char* path : {"home/.local/share/Trash", "home/.local/share/Trash/files",
                             "home/.local/share/Trash/info"}) {
        struct stat status {};
        ASSERT_EQ(::stat(QFile::encodeName(at(path)).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0700u);
    }
}

TEST_F(FreedesktopTrashTest, WhatIsInTheTrashAlreadyStaysThere) {
    for (int time = 0; time < 3; ++time) {
        write("Quietlark/file", QByteArray::number(time));
        ASSERT_TRUE(move("Quietlark").has_value());
    }
    EXPECT_EQ(read(at("home/.local/share/Trash/files/Quietlark/file")), "0");
    EXPECT_EQ(read(at("home/.local/share/Trash/files/Quietlark.2/file")), "1");
    EXPECT_EQ(read(at("home/.local/share/Trash/files/Quietlark.3/file")), "2");
    EXPECT_EQ(infoPath("home/.local/share/Trash/info/Quietlark.3.trashinfo"), at("Quietlark"));
}

TEST_F(FreedesktopTrashTest, AnEmptyFolderThatLostItsRecordIsNotReplaced) {
    makeFolder("home/.local/share/Trash/files/Quietlark");
    write("Quietlark/file");
    ASSERT_TRUE(move("Quietlark").has_value());
    EXPECT_TRUE(exists("home/.local/share/Trash/files/Quietlark.2/file"));
    EXPECT_FALSE(exists("home/.local/share/Trash/info/Quietlark.trashinfo"));
}

TEST_F(FreedesktopTrashTest, OfALinkTheLinkIsMoved) {
    write("elsewhere/thesis");
    link("Quietlark", at("elsewhere"));
    ASSERT_TRUE(move("Quietlark").has_value());
    EXPECT_TRUE(QFileInfo(at("home/.local/share/Trash/files/Quietlark")).isSymLink());
    EXPECT_TRUE(exists("elsewhere/thesis"));
}

TEST_F(FreedesktopTrashTest, LinksInAFolderStayLinks) {
    write("elsewhere/thesis");
    link("Quietlark/out", at("elsewhere"));
    ASSERT_TRUE(move("Quietlark").has_value());
    EXPECT_TRUE(QFileInfo(at("home/.local/share/Trash/files/Quietlark/out")).isSymLink());
    EXPECT_TRUE(exists("elsewhere/thesis"));
}

TEST_F(FreedesktopTrashTest, WhatIsNotThereLeavesNothingInTheTrash) {
    makeFolder("home");
    const auto moved = move("Quietlark");
    ASSERT_FALSE(moved.has_value());
    EXPECT_EQ(moved.error(), at("Quietlark") + QStringLiteral(" could not be moved to the Trash: "
                                                              "No such file or directory."));
    EXPECT_EQ(listing(trash), "files info");
}

TEST_F(FreedesktopTrashTest, WithoutATrashEverythingStays) {
    write("home");
    write("Quietlark/file");
    const auto moved = move("Quietlark");
    ASSERT_FALSE(moved.has_value());
    EXPECT_FALSE(moved.error().contains(QStringLiteral("Success")));
    EXPECT_TRUE(exists("Quietlark/file"));
}

TEST_F(FreedesktopTrashTest, ATrashWhoseFoldersAreLinksIsNotUsed) {
    makeFolder("elsewhere");
    link("home/.local/share/Trash/files", at("elsewhere"));
    write("Quietlark/file");
    EXPECT_FALSE(move("Quietlark").has_value());
    EXPECT_TRUE(exists("Quietlark/file"));
    EXPECT_EQ(listing("elsewhere"), "");
}

class OtherFileSystemTest : public FreedesktopTrashTest {
protected:
    void SetUp() override {
        if (!canMount()) GTEST_SKIP() << "only root can mount";
        mountFileSystem("disk");
        write("disk/opt/Quietlark/bin/quietlark");
        makeFolder("home");
    }
    void TearDown() override {
        if (exists("disk/opt")) unmount("disk");
    }
};

TEST_F(OtherFileSystemTest, TheTrashAtItsTopIsUsed) {
    ASSERT_TRUE(move("disk/opt/Quietlark").has_value());
    EXPECT_EQ(listing("disk"),
              ".Trash-0 .Trash-0/files .Trash-0/files/Quietlark .Trash-0/files/Quietlark/bin "
              ".Trash-0/files/Quietlark/bin/quietlark .Trash-0/info "
              ".Trash-0/info/Quietlark.trashinfo opt");
    EXPECT_EQ(infoPath("disk/.Trash-0/info/Quietlark.trashinfo"), QStringLiteral("opt/Quietlark"));
}

TEST_F(OtherFileSystemTest, TheAdministratorsTrashIsUsedWhereItIsSticky) {
    makeFolder("disk/.Trash");
    ASSERT_EQ(::chmod(QFile::encodeName(at("disk/.Trash")).constData(), 01777), 0);
    ASSERT_TRUE(move("disk/opt/Quietlark").has_value());
    EXPECT_TRUE(exists("disk/.Trash/0/files/Quietlark/bin/quietlark"));
}

TEST_F(OtherFileSystemTest, ATrashThatAnybodyMayChangeOrThatIsALinkIsNotUsed) {
    makeFolder("disk/.Trash");
    makeFolder("disk/trap");
    link("disk/.Trash-0", at("disk/trap"));
    EXPECT_FALSE(move("disk/opt/Quietlark").has_value());
    EXPECT_TRUE(exists("disk/opt/Quietlark/bin/quietlark"));
    EXPECT_EQ(listing("disk/trap"), "");
    EXPECT_EQ(listing("disk/.Trash"), "");
}

TEST_F(OtherFileSystemTest, AMountPointItselfCannotBeMovedAndStays) {
    const auto moved = move("disk");
    EXPECT_FALSE(moved.has_value());
    EXPECT_TRUE(exists("disk/opt/Quietlark/bin/quietlark"));
}

TEST_F(FreedesktopTrashTest, AnotherThingInThePlaceOfTheOneThatIsMeantStays) {
    write("opt/Quietlark/thesis");
    makeFolder("meant");
    const Descriptor parent(
        ::open(QFile::encodeName(at("opt")).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const Descriptor meant(
        ::open(QFile::encodeName(at("meant")).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const auto moved = FreedesktopTrash(at("home/.local/share"))
                           .move(FreedesktopTrash::Item{at("opt/Quietlark"), parent, meant});
    EXPECT_FALSE(moved.has_value());
    EXPECT_TRUE(exists("opt/Quietlark/thesis"));
    EXPECT_EQ(listing("home/.local/share/Trash"), "files info");
}

}  // namespace
}  // namespace quietlark

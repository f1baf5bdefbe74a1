#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

/// The program ends.
class X11PasteboardHandoverTest : public X11PasteboardTest {
protected:
    void managerRuns(const QStringList& arguments = {}) {
        m_manager = server.start(peerProgram("clipboard_manager"), arguments);
        ASSERT_EQ(m_manager->readLine(), "managing");
    }

    QByteArray pasted(const char* target = "UTF8_STRING") {
        return ClipboardReader(server).text(target);
    }

    ChildProcess& manager() { return *m_manager; }

private:
    std::unique_ptr<ChildProcess> m_manager;
};

TEST_F(X11PasteboardHandoverTest, AManagerKeepsWhatWasRestored) {
    managerRuns();
    userCopies({QStringLiteral("text/html=text:<b>a</b>"), QStringLiteral("UTF8_STRING=text:a")});
    restore(dictate(QStringLiteral("dictated")));
    quit();
    EXPECT_EQ(manager().readLine(), "saved text/html UTF8_STRING");
    EXPECT_EQ(pasted(), "a");
    EXPECT_EQ(pasted("text/html"), "<b>a</b>");
}

TEST_F(X11PasteboardHandoverTest, AManagerKeepsWhatATextStillCovers) {
    managerRuns();
    userCopies("copied");
    (void)dictate(QStringLiteral("dictated"));
    quit();
    EXPECT_EQ(manager().readLine(), "saved UTF8_STRING");
    EXPECT_EQ(pasted(), "copied");
}

TEST_F(X11PasteboardHandoverTest, AManagerKeepsALargeImage) {
    managerRuns();
    userCopies({QStringLiteral("image/png=pattern:8000000")});
    restore(dictate(QStringLiteral("dictated")));
    quit();
    EXPECT_EQ(manager().readLine(), "saved image/png");
}

TEST_F(X11PasteboardHandoverTest, ARestoreThatWasJustOrderedIsHandedOver) {
    managerRuns();
    userCopies("copied");
    const auto before = dictate(QStringLiteral("dictated"));
    pasteboard().restore(before);
    quit();
    EXPECT_EQ(manager().readLine(), "saved UTF8_STRING");
    EXPECT_EQ(pasted(), "copied");
}

TEST_F(X11PasteboardHandoverTest, TheTextIsNeverHandedOver) {
    managerRuns();
    EXPECT_FALSE(set(QStringLiteral("dictated")));
    quit();
    EXPECT_EQ(ClipboardReader(server).ask("owner"), "free");
}

TEST_F(X11PasteboardHandoverTest, ATextThatWasKeptIsHandedOver) {
    managerRuns();
    userCopies("copied");
    (void)dictate(QStringLiteral("dictated"));
    pasteboard().keepString();
    quit();
    EXPECT_FALSE(manager().readLine().isEmpty());
    EXPECT_EQ(pasted(), "dictated");
}

TEST_F(X11PasteboardHandoverTest, AnEmptyPasteboardIsNotHandedOver) {
    managerRuns();
    restore(dictate(QStringLiteral("dictated")));
    quit();
    EXPECT_EQ(ClipboardReader(server).ask("owner"), "free");
}

TEST_F(X11PasteboardHandoverTest, WithoutAManagerTheProgramJustEnds) {
    userCopies("copied");
    restore(dictate(QStringLiteral("dictated")));
    quit();
    EXPECT_EQ(ClipboardReader(server).ask("owner"), "free");
}

TEST_F(X11PasteboardHandoverTest, AManagerThatHangsDoesNotKeepTheProgramFromEnding) {
    auto limits = patient();
    limits.handover = 50ms;
    open(limits);
    managerRuns({QStringLiteral("hang")});
    userCopies("copied");
    restore(dictate(QStringLiteral("dictated")));
    quit();
    EXPECT_EQ(ClipboardReader(server).ask("owner"), "free");
}

TEST_F(X11PasteboardHandoverTest, AReaderThatHasBegunGetsAllOfIt) {
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    ClipboardReader reader(server);
    ASSERT_EQ(reader.ask("begin UTF8_STRING"), "begun");
    reader.process().writeLine("finish");
    quit();
    EXPECT_EQ(reader.nextLine(),
              describe(XPeer::Value{"UTF8_STRING", 8, QByteArray(1'000'000, 'x')}));
}

}  // namespace
}  // namespace quietlark

#include <signal.h>

#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

using namespace std::chrono_literals;

/// Another program reads what was dictated.
class X11PasteboardServeTest : public X11PasteboardTest {
protected:
    void SetUp() override {
        X11PasteboardTest::SetUp();
        m_reader.emplace(server);
    }

    ClipboardReader& reader() { return *m_reader; }

    /// What the reader says of a representation with these bytes.
    static QByteArray described(const char* type, const QByteArray& data, int format = 8) {
        return describe(XPeer::Value{type, format, data});
    }

private:
    std::optional<ClipboardReader> m_reader;
};

TEST_F(X11PasteboardServeTest, EveryEncodingOfTheTextIsServed) {
    (void)dictate(QStringLiteral("na\u00efve"));
    const QByteArray utf8 = "na\xc3\xafve";
    const QByteArray latin1 = "na\xefve";
    EXPECT_EQ(reader().ask("get UTF8_STRING"), described("UTF8_STRING", utf8));
    EXPECT_EQ(reader().ask("get text/plain;charset=utf-8"),
              described("text/plain;charset=utf-8", utf8));
    EXPECT_EQ(reader().ask("get text/plain"), described("text/plain", utf8));
    EXPECT_EQ(reader().ask("get STRING"), described("STRING", latin1));
    EXPECT_EQ(reader().ask("get TEXT"), described("STRING", latin1));
}

TEST_F(X11PasteboardServeTest, TextBeyondLatin1IsServedAsUtf8WhereTheReaderLeavesTheChoice) {
    (void)dictate(QStringLiteral("\u2192 x"));
    EXPECT_EQ(reader().ask("get TEXT"), described("UTF8_STRING", "\xe2\x86\x92 x"));
    EXPECT_EQ(reader().ask("get STRING"), described("STRING", "? x"));
}

TEST_F(X11PasteboardServeTest, TheTextIsMarkedAsNothingToKeep) {
    (void)dictate(QStringLiteral("a"));
    EXPECT_EQ(reader().text("x-kde-passwordManagerHint"), "secret");
}

TEST_F(X11PasteboardServeTest, ATextThatIsKeptIsNoLongerMarked) {
    (void)dictate(QStringLiteral("a"));
    pasteboard().keepString();
    settle();
    EXPECT_EQ(reader().text("x-kde-passwordManagerHint"), "refused");
    EXPECT_EQ(reader().ask("targets"),
              "TARGETS TIMESTAMP MULTIPLE UTF8_STRING text/plain;charset=utf-8 STRING TEXT "
              "text/plain");
}

TEST_F(X11PasteboardServeTest, TargetsListsWhatIsServed) {
    (void)dictate(QStringLiteral("a"));
    EXPECT_EQ(reader().ask("targets"),
              "TARGETS TIMESTAMP MULTIPLE UTF8_STRING text/plain;charset=utf-8 STRING TEXT "
              "text/plain x-kde-passwordManagerHint");
}

TEST_F(X11PasteboardServeTest, TheTimestampIsATimeOfTheServers) {
    (void)dictate(QStringLiteral("a"));
    const auto answer = reader().ask("get TIMESTAMP");
    EXPECT_TRUE(answer.startsWith("INTEGER 32 4 ")) << answer.toStdString();
    EXPECT_FALSE(answer.endsWith(described("INTEGER", QByteArray(4, '\0'), 32).right(40)));
}

TEST_F(X11PasteboardServeTest, SeveralTargetsCanBeReadAtOnce) {
    (void)dictate(QStringLiteral("a"));
    EXPECT_EQ(reader().ask("multiple UTF8_STRING image/png STRING"),
              "UTF8_STRING: UTF8_STRING 8 1 a");
    EXPECT_EQ(reader().nextLine(), "image/png: refused");
    EXPECT_EQ(reader().nextLine(), "STRING: STRING 8 1 a");
}

TEST_F(X11PasteboardServeTest, WhatIsNotThereIsRefused) {
    (void)dictate(QStringLiteral("a"));
    EXPECT_EQ(reader().ask("get image/png"), "refused");
    EXPECT_EQ(reader().ask("get MULTIPLE"), "refused");
}

TEST_F(X11PasteboardServeTest, AReaderThatNamesNoPropertyIsServed) {
    (void)dictate(QStringLiteral("a"));
    EXPECT_EQ(reader().ask("nothing STRING"), "STRING 8 1 a");
    EXPECT_EQ(reader().ask("nothing MULTIPLE"), "refused");
}

TEST_F(X11PasteboardServeTest, XclipReadsTheText) {
    (void)dictate(QStringLiteral("to xclip"));
    EXPECT_EQ(server.run(QStringLiteral("xclip"),
                         {QStringLiteral("-o"), QStringLiteral("-sel"), QStringLiteral("c")}),
              "to xclip");
}

TEST_F(X11PasteboardServeTest, ALongTextIsServedInPieces) {
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    EXPECT_EQ(reader().ask("get UTF8_STRING"),
              described("UTF8_STRING", QByteArray(1'000'000, 'x')));
}

TEST_F(X11PasteboardServeTest, SeveralLongRepresentationsCanBeReadAtOnce) {
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    const QByteArray text(1'000'000, 'x');
    EXPECT_EQ(reader().ask("multiple UTF8_STRING STRING"),
              "UTF8_STRING: " + described("UTF8_STRING", text));
    EXPECT_EQ(reader().nextLine(), "STRING: " + described("STRING", text));
}

TEST_F(X11PasteboardServeTest, AnEmptyTextIsServed) {
    (void)dictate(QString());
    EXPECT_EQ(reader().ask("get UTF8_STRING"), "UTF8_STRING 8 0");
}

TEST_F(X11PasteboardServeTest, ASecondTextReplacesTheFirst) {
    (void)dictate(QStringLiteral("first"));
    (void)dictate(QStringLiteral("second"));
    EXPECT_EQ(reader().text(), "second");
}

TEST_F(X11PasteboardServeTest, AReaderWhoseWindowIsGoneDoesNotHoldUpOthers) {
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    EXPECT_EQ(reader().ask("leave UTF8_STRING"), "left");
    EXPECT_EQ(reader().ask("leave STRING"), "left");
    EXPECT_EQ(reader().text("x-kde-passwordManagerHint"), "secret");
}

TEST_F(X11PasteboardServeTest, AReaderThatEndsAmidPiecesDoesNotHoldUpOthers) {
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    ClipboardReader dying(server);
    EXPECT_EQ(dying.ask("begin UTF8_STRING"), "begun");
    dying.process().end();
    EXPECT_EQ(reader().text("x-kde-passwordManagerHint"), "secret");
    EXPECT_EQ(reader().ask("begin UTF8_STRING"), "begun");
    EXPECT_EQ(reader().ask("drop"), "dropped");
    EXPECT_EQ(reader().text("x-kde-passwordManagerHint"), "secret");
    // Nothing is left to wait for, else this would not return.
    quit();
}

TEST_F(X11PasteboardServeTest, AReaderThatTakesNoMorePiecesIsGivenUp) {
    auto limits = patient();
    limits.piece = 50ms;
    open(limits);
    (void)dictate(QString(1'000'000, QLatin1Char('x')));
    EXPECT_EQ(reader().ask("begin UTF8_STRING"), "begun");
    quit();
}

TEST_F(X11PasteboardServeTest, ACopyOfAnotherProgramEndsTheService) {
    (void)dictate(QStringLiteral("dictated"));
    userCopies("copied");
    EXPECT_EQ(reader().text(), "copied");
    EXPECT_EQ(item(), (PasteboardItem{{"UTF8_STRING", "copied"}}));
}

}  // namespace
}  // namespace quietlark

#include <gtest/gtest.h>

#include "peers/x_server.h"

namespace quietlark {
namespace {

/// A program that captures keys, on a real screen, and hands that press them there.
class KeyCaptureProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(screen.display().isEmpty());
        program = screen.start(QStringLiteral(KEY_CAPTURE_PROGRAM), {});
        const QByteArray window = program->readLine();
        ASSERT_TRUE(window.startsWith("window ")) << window.constData();
        screen.run(QStringLiteral("xdotool"),
                   {QStringLiteral("windowfocus"), QString::fromLatin1(window.mid(7))});
        ASSERT_EQ(program->readLine(), "active");
    }

    void order(const QByteArray& word) {
        program->writeLine(word);
        ASSERT_EQ(program->readLine(), word);
    }

    /// Keys by X11 number, which is a place on the keyboard.
    void press(const QStringList& keys) {
        screen.run(QStringLiteral("xdotool"), QStringList{QStringLiteral("key")} + keys);
    }

    QByteArray typed() {
        program->writeLine("text");
        return program->readLine();
    }

    XServer screen;
    std::unique_ptr<ChildProcess> program;
};

const QString d = QStringLiteral("40");
const QString x = QStringLiteral("53");

TEST_F(KeyCaptureProgramTest, ACombinationIsTakenWithItsModifiers) {
    order("capture");
    press({QStringLiteral("37+64+40")});
    EXPECT_EQ(program->readLine(), "key 2 c0000");
    order("release");
    press({x});
    EXPECT_EQ(typed(), "x");
}

TEST_F(KeyCaptureProgramTest, TheKeysOfEditingAreTakenToo) {
    press({d, x});
    order("capture");
    press({QStringLiteral("37+38"), QStringLiteral("22")});
    EXPECT_EQ(program->readLine(), "key 0 40000");
    EXPECT_EQ(program->readLine(), "key 51 0");
    EXPECT_EQ(typed(), "dx");
}

TEST_F(KeyCaptureProgramTest, ModifiersAloneAreNotTaken) {
    order("capture");
    press({QStringLiteral("37"), QStringLiteral("50"), QStringLiteral("71")});
    EXPECT_EQ(program->readLine(), "key 96 0");
}

TEST_F(KeyCaptureProgramTest, AKeyIsItsPlaceInAnyLayout) {
    screen.run(QStringLiteral("setxkbmap"), {QStringLiteral("fr")});
    order("capture");
    press({QStringLiteral("24")});
    EXPECT_EQ(program->readLine(), "key 12 0");
    order("release");
    press({QStringLiteral("24")});
    EXPECT_EQ(typed(), "a");
}

}  // namespace
}  // namespace quietlark

#include "platform/linux/x11/focused_window.h"

#include <gtest/gtest.h>

#include "peers/x_server.h"
#include "platform/linux/x11/keys/x11_key_connection.h"
#include "platform/x11/keys/key_window.h"

using namespace quietlark;

namespace {

class FocusedWindowTest : public ::testing::Test {
protected:
    std::optional<WindowClass> focused() {
        return focusedWindow(m_connection.xcb(), m_connection.rootWindow());
    }

    XServer m_server;
    X11KeyConnection m_connection{m_server.display()};
};

}  // namespace

TEST_F(FocusedWindowTest, HasTheNamesThatItsProgramGaveIt) {
    KeyWindow window(m_server.display(), "XTerm");
    window.takeFocus();
    ASSERT_TRUE(focused());
    EXPECT_EQ(focused()->instance, "xterm");
    EXPECT_EQ(focused()->className, "XTerm");
}

TEST_F(FocusedWindowTest, TheNamesAreFoundAroundTheWindowThatHasTheFocus) {
    KeyWindow window(m_server.display(), "Editor");
    window.takeFocusWithAChild();
    ASSERT_TRUE(focused());
    EXPECT_EQ(focused()->className, "Editor");
}

TEST_F(FocusedWindowTest, MayHaveNoNames) {
    KeyWindow window(m_server.display());
    window.takeFocus();
    ASSERT_TRUE(focused());
    EXPECT_EQ(focused()->className, "");
}

TEST_F(FocusedWindowTest, ThereIsNoneWhenNoWindowHasTheFocus) {
    KeyWindow window(m_server.display(), "Editor");
    window.dropFocus();
    EXPECT_FALSE(focused());
}

TEST_F(FocusedWindowTest, IsTheOneUnderThePointerWhereTheFocusFollowsIt) {
    KeyWindow window(m_server.display(), "Editor");
    window.letFocusFollowPointer();
    m_server.run(QStringLiteral("xdotool"),
                 {QStringLiteral("mousemove"), QStringLiteral("50"), QStringLiteral("50")});
    ASSERT_TRUE(focused());
    EXPECT_EQ(focused()->className, "Editor");
}

TEST_F(FocusedWindowTest, ThereIsNoneWhenThePointerIsOverNoWindow) {
    KeyWindow window(m_server.display(), "Editor");
    window.letFocusFollowPointer();
    m_server.run(QStringLiteral("xdotool"),
                 {QStringLiteral("mousemove"), QStringLiteral("500"), QStringLiteral("500")});
    EXPECT_FALSE(focused());
}

TEST(IsTerminal, KnowsATerminalByEitherName) {
    EXPECT_TRUE(isTerminal({"xterm", "XTerm"}));
    EXPECT_TRUE(isTerminal({"my-own-title", "Gnome-terminal"}));
    EXPECT_TRUE(isTerminal({"sakura", ""}));
    EXPECT_TRUE(isTerminal({"", "org.wezfurlong.wezterm"}));
}

TEST(PastesPrimary, IsWhatOldTerminalsDo) {
    EXPECT_TRUE(pastesPrimary({"xterm", "XTerm"}));
    EXPECT_TRUE(pastesPrimary({"urxvt", "URxvt"}));
    EXPECT_FALSE(pastesPrimary({"sakura", "Sakura"}));
    EXPECT_FALSE(pastesPrimary({"mousepad", "Mousepad"}));
    EXPECT_FALSE(pastesPrimary({"", ""}));
}

TEST(IsTerminal, AnEditorIsNone) {
    EXPECT_FALSE(isTerminal({"mousepad", "Mousepad"}));
    EXPECT_FALSE(isTerminal({"", ""}));
    EXPECT_FALSE(isTerminal({"xterm-settings", "Settings"}));
}

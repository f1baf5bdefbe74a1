#include "app/menus.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

constexpr ModifierFlags command = modifier::command;
constexpr ModifierFlags commandOption = modifier::command | modifier::option;
constexpr ModifierFlags commandShift = modifier::command | modifier::shift;

MenuItem item(const char* title, MenuAction action) {
    return {QString::fromUtf8(title), action, {}};
}

MenuItem item(const char* title, MenuAction action, const char* key,
              ModifierFlags modifiers = command) {
    return {QString::fromUtf8(title), action, KeyEquivalent{QString::fromUtf8(key), modifiers}};
}

const MenuItem separator = MenuItem::separator();

std::vector<MenuItem> mainMenuItems(std::size_t index) {
    return buildMainMenu(QStringLiteral("Lark")).at(index).items;
}

TEST(MenusTest, TheStatusMenuOpensPreferencesAndQuits) {
    const std::vector expected{
        item("Preferences\u2026", MenuAction::openPrefs, ","),
        separator,
        item("Quit Quietlark", MenuAction::terminate, "q"),
    };
    EXPECT_EQ(statusMenu().items, expected);
}

TEST(MenusTest, TheMainMenuHasFourMenus) {
    QStringList titles;
    for (const Menu& menu : buildMainMenu(QStringLiteral("Lark")))
        titles << menu.title;
    EXPECT_EQ(titles.join(u'|'), QStringLiteral("|File|Edit|Window"));
}

TEST(MenusTest, TheApplicationMenuNamesTheProcess) {
    const std::vector expected{
        item("About Lark", MenuAction::about),
        separator,
        item("Settings\u2026", MenuAction::openPrefs, ","),
        separator,
        item("Hide Lark", MenuAction::hide, "h"),
        item("Hide Others", MenuAction::hideOthers, "h", commandOption),
        item("Show All", MenuAction::unhideAll),
        separator,
        item("Quit Lark", MenuAction::terminate, "q"),
    };
    EXPECT_EQ(mainMenuItems(0), expected);
}

TEST(MenusTest, TheFileMenuClosesTheWindow) {
    EXPECT_EQ(mainMenuItems(1), std::vector{item("Close Window", MenuAction::closeWindow, "w")});
}

TEST(MenusTest, TheEditMenuHasTheStandardKeystrokes) {
    const std::vector expected{
        item("Undo", MenuAction::undo, "z"),
        item("Redo", MenuAction::redo, "z", commandShift),
        separator,
        item("Cut", MenuAction::cut, "x"),
        item("Copy", MenuAction::copy, "c"),
        item("Paste", MenuAction::paste, "v"),
        item("Delete", MenuAction::deleteSelection),
        item("Select All", MenuAction::selectAll, "a"),
    };
    EXPECT_EQ(mainMenuItems(2), expected);
}

TEST(MenusTest, TheWindowMenuListsTheWindows) {
    const std::vector expected{
        item("Minimize", MenuAction::minimize, "m"),
        item("Zoom", MenuAction::zoom),
        separator,
        item("Bring All to Front", MenuAction::arrangeInFront),
    };
    EXPECT_EQ(mainMenuItems(3), expected);
    EXPECT_EQ(buildMainMenu(QStringLiteral("Lark")).at(3).role, Menu::Role::windows);
}

}  // namespace
}  // namespace quietlark

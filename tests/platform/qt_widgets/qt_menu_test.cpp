#include "platform/qt_widgets/qt_menu.h"

#include <gtest/gtest.h>

namespace quietlark {
namespace {

const MenuItem quit{QStringLiteral("Quit"), MenuAction::terminate,
                    KeyEquivalent{QStringLiteral("q")}};
const MenuItem about{QStringLiteral("About"), MenuAction::about, {}};

class QtMenuTest : public ::testing::Test {
protected:
    void fill(std::vector<MenuItem> items) {
        fillMenu(menu, {QStringLiteral("File"), std::move(items)},
                 [this](MenuAction action) { chosen.push_back(action); });
    }

    QMenu menu;
    std::vector<MenuAction> chosen;
};

TEST_F(QtMenuTest, ItemsStandInTheirOrder) {
    fill({about, MenuItem::separator(), quit});
    ASSERT_EQ(menu.actions().size(), 3);
    EXPECT_EQ(menu.title(), QStringLiteral("File"));
    EXPECT_EQ(menu.actions()[0]->text(), QStringLiteral("About"));
    EXPECT_TRUE(menu.actions()[1]->isSeparator());
    EXPECT_EQ(menu.actions()[2]->text(), QStringLiteral("Quit"));
}

TEST_F(QtMenuTest, ChoosingAnItemReportsItsAction) {
    fill({about, quit});
    menu.actions()[1]->trigger();
    EXPECT_EQ(chosen, std::vector{MenuAction::terminate});
}

TEST_F(QtMenuTest, FillingAgainReplacesWhatWasThere) {
    fill({about, quit});
    fill({quit});
    ASSERT_EQ(menu.actions().size(), 1);
    EXPECT_EQ(menu.actions()[0]->text(), QStringLiteral("Quit"));
}

TEST_F(QtMenuTest, CommandIsQtsControl) {
    fill({about, quit});
    EXPECT_TRUE(menu.actions()[0]->shortcut().isEmpty());
    EXPECT_EQ(menu.actions()[1]->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
}

TEST(KeySequenceTest, EveryModifierIsTranslated) {
    EXPECT_EQ(keySequence({QStringLiteral("z"), modifier::command | modifier::shift}),
              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
    EXPECT_EQ(keySequence({QStringLiteral("h"), modifier::command | modifier::option}),
              QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_H));
    EXPECT_EQ(keySequence({QStringLiteral("a"), modifier::control}),
              QKeySequence(Qt::META | Qt::Key_A));
}

TEST(KeySequenceTest, APunctuationMarkIsAKeyToo) {
    EXPECT_EQ(keySequence({QStringLiteral(",")}), QKeySequence(Qt::CTRL | Qt::Key_Comma));
}

}  // namespace
}  // namespace quietlark

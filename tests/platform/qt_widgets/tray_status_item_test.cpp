#include "platform/qt_widgets/tray_status_item.h"

#include <gtest/gtest.h>

#include "support/wait.h"
#include "tray_desktop.h"

namespace quietlark {
namespace {

using Host = TrayDesktop::Host;

const QColor magenta(255, 0, 255);
const QColor green(0, 255, 0);

class TrayStatusItemTest : public ::testing::TestWithParam<Host> {
protected:
    /// The icon is on the screen; meanwhile the program's seconds pass.
    bool iconAppears(const QColor& color = magenta) {
        return waitUntil([&] {
            tell("wait 1000");
            return desktop.areaOf(color).has_value();
        });
    }

    bool iconDisappears() {
        return waitUntil([this] { return !desktop.areaOf(magenta).has_value(); });
    }

    void startBoth() {
        desktop.startHost();
        ASSERT_TRUE(desktop.startProgram());
        ASSERT_TRUE(iconAppears());
    }

    void clickIcon(int button) {
        const auto icon = desktop.areaOf(magenta);
        ASSERT_TRUE(icon.has_value());
        desktop.click(icon->center(), button);
    }

    void tell(const char* command) { desktop.program().writeLine(command); }

    QByteArray nextLine() { return desktop.program().readLine(); }

    /// A menu of the program's own is open.
    bool menuIsOpen() {
        return waitUntil([this] {
            tell("menuIsOpen");
            return nextLine() == "yes";
        });
    }

    void leftClickOpensTheMenu() {
        clickIcon(1);
        ASSERT_EQ(nextLine(), "menuNeedsUpdate");
        ASSERT_TRUE(menuIsOpen());
    }

    TrayDesktop desktop{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Hosts, TrayStatusItemTest, ::testing::Values(Host::icewm, Host::lxqtPanel),
                         [](const auto& test) {
                             return test.param == Host::icewm ? "XEmbed" : "StatusNotifierItem";
                         });

TEST_P(TrayStatusItemTest, AppearsInATrayThatIsThere) {
    desktop.startHost();
    ASSERT_TRUE(desktop.startProgram());
    EXPECT_TRUE(iconAppears());
}

TEST_P(TrayStatusItemTest, AppearsInATrayThatComesLate) {
    ASSERT_TRUE(desktop.startProgram());
    tell("wait 1000");
    EXPECT_FALSE(desktop.areaOf(magenta).has_value());
    desktop.startHost();
    EXPECT_TRUE(iconAppears());
}

TEST_P(TrayStatusItemTest, AppearsAgainInATrayThatStartsAgain) {
    startBoth();
    desktop.stopHost();
    ASSERT_TRUE(iconDisappears());
    desktop.startHost();
    EXPECT_TRUE(iconAppears());
}

TEST_P(TrayStatusItemTest, WithoutATraySaysSoOnceAndStillUsesOneThatComes) {
    ASSERT_TRUE(desktop.startProgram());
    tell("wait 9999");
    tell("wait 1");
    EXPECT_EQ(nextLine(), "noTray");
    tell("wait 60000");
    desktop.startHost();
    EXPECT_TRUE(iconAppears());
    tell("menuIsOpen");
    EXPECT_EQ(nextLine(), "no");
}

TEST_P(TrayStatusItemTest, ShowsAnotherSymbolInPlaceOfTheOneBefore) {
    startBoth();
    const QRect icon = *desktop.areaOf(magenta);
    const QImage before = desktop.picture(icon);
    tell("symbol bubble.left.fill");
    EXPECT_TRUE(waitUntil([&] { return desktop.picture(icon) != before; }));
}

TEST_P(TrayStatusItemTest, TakesTheColourThatTheDesktopChangesTo) {
    startBoth();
    tell("colour #00ff00");
    EXPECT_TRUE(iconAppears(green));
    EXPECT_TRUE(iconDisappears());
}

TEST_P(TrayStatusItemTest, ItsMenuIsBroughtUpToDateWhenItOpens) {
    startBoth();
    clickIcon(3);
    EXPECT_EQ(nextLine(), "menuNeedsUpdate");
}

TEST_P(TrayStatusItemTest, ALeftClickOpensTheMenuToo) {
    startBoth();
    leftClickOpensTheMenu();
    desktop.pressKeys({QStringLiteral("Down"), QStringLiteral("Return")});
    EXPECT_EQ(nextLine(), "chosen Preferences");
}

TEST_P(TrayStatusItemTest, EveryItemOfTheMenuActs) {
    startBoth();
    leftClickOpensTheMenu();
    desktop.pressKeys({QStringLiteral("Down"), QStringLiteral("Down"), QStringLiteral("Return")});
    EXPECT_EQ(nextLine(), "chosen Quit");
}

class NotifierMenuTest : public TrayStatusItemTest {};

INSTANTIATE_TEST_SUITE_P(Hosts, NotifierMenuTest, ::testing::Values(Host::lxqtPanel),
                         [](const auto&) { return "StatusNotifierItem"; });

TEST_P(NotifierMenuTest, TheItemsOfTheMenuThatThePanelDrawsActToo) {
    startBoth();
    ASSERT_TRUE(desktop.chooseOnBus(QStringLiteral("Preferences")));
    EXPECT_EQ(nextLine(), "chosen Preferences");
    ASSERT_TRUE(desktop.chooseOnBus(QStringLiteral("Quit")));
    EXPECT_EQ(nextLine(), "chosen Quit");
}

}  // namespace
}  // namespace quietlark

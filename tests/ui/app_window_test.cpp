#include "ui/app_window.h"

#include <QApplication>
#include <QCursor>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include "support/wait.h"

namespace quietlark {
namespace {

const WindowStyle style{QStringLiteral("Window"), QSize(300, 200)};

TEST(AppWindowTest, ItIsAsLargeAsItsStyleSaysInTheMiddleOfTheScreen) {
    AppWindow window(new QWidget, style, 20);
    window.show();
    EXPECT_EQ(window.size(), style.contentSize);
    const QPoint off = window.geometry().center() - window.screen()->availableGeometry().center();
    EXPECT_LE(off.manhattanLength(), 40) << "as far as its frame may move it";
}

TEST(AppWindowTest, ItComesUpInTheMiddleAgain) {
    AppWindow window(new QWidget, style, 20);
    window.show();
    const QPoint middle = window.pos();
    window.move(0, 0);
    window.hide();
    window.show();
    EXPECT_EQ(window.pos(), middle);
}

TEST(AppWindowTest, ItGrowsWithWhatItsContentNeeds) {
    auto* content = new QWidget;
    AppWindow window(content, style, 20);
    window.show();
    content->setMinimumHeight(400);
    EXPECT_TRUE(waitUntil([&window] { return window.height() == 440; }));
    content->setMinimumHeight(0);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.height(), 440);
}

/// Has the user at the other, smaller screen as long as it lives.
class PointerOnSmallScreen {
public:
    PointerOnSmallScreen() { QCursor::setPos(screen().geometry().center()); }
    ~PointerOnSmallScreen() { QCursor::setPos(m_before); }
    PointerOnSmallScreen(const PointerOnSmallScreen&) = delete;
    PointerOnSmallScreen& operator=(const PointerOnSmallScreen&) = delete;

    QScreen& screen() const { return *QGuiApplication::screens().at(1); }

private:
    const QPoint m_before = QCursor::pos();
};

TEST(AppWindowTest, ItComesUpOnTheScreenThatTheUserIsAtWithNoMoreThanItsRoom) {
    AppWindow window(new QWidget, {QString(), QSize(1200, 800)}, 20);
    const PointerOnSmallScreen pointer;
    window.show();
    EXPECT_TRUE(pointer.screen().geometry().contains(window.geometry()));
}

TEST(AppWindowTest, ThePointerOnASmallerScreenLeavesItAsItIs) {
    auto* content = new QWidget;
    AppWindow window(content, {QString(), QSize(1200, 800)}, 20);
    window.show();
    const PointerOnSmallScreen pointer;
    content->setMinimumHeight(900);
    EXPECT_TRUE(waitUntil([&window] { return window.height() == 940; }));
    EXPECT_EQ(window.width(), 1200);
}

TEST(AppWindowTest, ItIsFittedAgainWhenItComesUpAgain) {
    auto* content = new QWidget;
    AppWindow window(content, style, 20);
    window.show();
    content->setMinimumHeight(400);
    EXPECT_TRUE(waitUntil([&window] { return window.height() == 440; }));
    window.hide();
    content->setMinimumHeight(0);
    window.show();
    EXPECT_EQ(window.size(), style.contentSize);
}

TEST(AppWindowTest, ContentLargerThanTheScreenIsScrolled) {
    auto* content = new QWidget;
    content->setMinimumSize(100, 100'000);
    AppWindow window(content, style, 20);
    window.show();
    EXPECT_LT(window.height(), window.screen()->geometry().height());
    EXPECT_EQ(content->height(), 100'000);
}

}  // namespace
}  // namespace quietlark

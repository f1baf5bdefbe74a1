#include "ui/qt_application_shell.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include "app/window_presenter.h"
#include "fakes/fake_app_windows.h"
#include "support/wait.h"

namespace quietlark {
namespace {

class QtApplicationShellTest : public ::testing::Test {
protected:
    /// The one on the screen.
    static QMessageBox& box() {
        QList<QMessageBox*> visible;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box && box->isVisible()) visible << box;
        }
        EXPECT_EQ(visible.size(), 1);
        EXPECT_TRUE(waitUntil([&] { return visible.front()->isActiveWindow(); }));
        return *visible.front();
    }

    static bool isAnythingShown() {
        const auto widgets = QApplication::topLevelWidgets();
        return std::any_of(widgets.begin(), widgets.end(),
                           [](const QWidget* widget) { return widget->isVisible(); });
    }

    /// Their texts from left to right, without the marks of their keys.
    static QString buttonsInOrder() {
        QList<QAbstractButton*> buttons = box().buttons();
        std::ranges::sort(buttons, {}, [](const QAbstractButton* button) { return button->x(); });
        QStringList texts;
        for (const QAbstractButton* button : buttons)
            texts << button->text().remove(u'&');
        return texts.join(u' ');
    }

    static QPushButton& button(const char* text) {
        for (QAbstractButton* each : box().buttons()) {
            if (each->text().remove(u'&') == QString::fromLatin1(text))
                return *qobject_cast<QPushButton*>(each);
        }
        ADD_FAILURE() << "no button " << text;
        static QPushButton none;
        return none;
    }

    void ask() {
        presenter.askWhetherToUninstall(
            [this](bool isConfirmed) { answers << (isConfirmed ? "yes" : "no"); });
    }

    QtApplicationShell shell;
    FakeAppWindows windows;
    WindowPresenter presenter{windows, shell};
    QByteArrayList answers;
};

TEST_F(QtApplicationShellTest, TheQuestionIsAsItIsWorded) {
    ask();
    EXPECT_EQ(box().icon(), QMessageBox::Warning);
    EXPECT_EQ(box().windowTitle(), QStringLiteral("Uninstall Quietlark?"));
    EXPECT_EQ(box().text(),
              QStringLiteral(
                  "This will stop the background server, delete the downloaded model and all "
                  "settings, revoke granted permissions, and move Quietlark to the Trash. macOS "
                  "will prompt for your administrator password to revoke the permissions. You can "
                  "always reinstall by downloading the app again."));
    EXPECT_EQ(box().windowModality(), Qt::ApplicationModal);
    box().close();
}

TEST_F(QtApplicationShellTest, UninstallStandsFirstAndIsDestructive) {
    ask();
    EXPECT_EQ(buttonsInOrder(), QStringLiteral("Uninstall Cancel"));
    EXPECT_EQ(box().buttonRole(&button("Uninstall")), QMessageBox::DestructiveRole);
    EXPECT_EQ(box().buttonRole(&button("Cancel")), QMessageBox::RejectRole);
    box().close();
}

TEST_F(QtApplicationShellTest, UninstallIsTheOneYes) {
    ask();
    QTest::mouseClick(&button("Uninstall"), Qt::LeftButton);
    EXPECT_EQ(answers, QByteArrayList{"yes"});
    EXPECT_FALSE(isAnythingShown());
}

TEST_F(QtApplicationShellTest, CancelEscapeReturnAndClosingAreNo) {
    ask();
    QTest::mouseClick(&button("Cancel"), Qt::LeftButton);
    ask();
    QTest::keyClick(&box(), Qt::Key_Escape);
    ask();
    EXPECT_TRUE(button("Cancel").isDefault());
    EXPECT_FALSE(button("Uninstall").isDefault());
    QTest::keyClick(&box(), Qt::Key_Return);
    ask();
    box().close();
    EXPECT_EQ(answers, (QByteArrayList{"no", "no", "no", "no"}));
    EXPECT_FALSE(isAnythingShown());
}

TEST_F(QtApplicationShellTest, AnotherAlertInItsPlaceIsANo) {
    ask();
    presenter.showServerStartFailure(QStringLiteral("No."));
    EXPECT_EQ(answers, QByteArrayList{"no"});
    EXPECT_EQ(box().text(), QStringLiteral("No."));
    box().close();
    EXPECT_EQ(answers, QByteArrayList{"no"});
}

TEST_F(QtApplicationShellTest, AnAlertTellsWhenItHasBeenRead) {
    int times = 0;
    presenter.showRecycleFailure(QStringLiteral("Remove the package quietlark."),
                                 [&times] { ++times; });
    EXPECT_EQ(box().icon(), QMessageBox::Warning);
    EXPECT_EQ(box().windowTitle(), QStringLiteral("Couldn't move Quietlark to the Trash"));
    EXPECT_EQ(box().text(), QStringLiteral("Remove the package quietlark."));
    EXPECT_EQ(buttonsInOrder(), QStringLiteral("OK"));
    EXPECT_EQ(times, 0);
    QTest::keyClick(&box(), Qt::Key_Return);
    EXPECT_EQ(times, 1);
    EXPECT_FALSE(isAnythingShown());
}

}  // namespace
}  // namespace quietlark

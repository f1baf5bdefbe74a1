#include <array>
#include <string>

#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>

#include "ui/picker_view_fixture.h"

namespace quietlark {
namespace {

class ServerListPageTest : public PickerViewFixture {
protected:
    void publishMany(int count) {
        for (int i = 0; i < count; ++i)
            publish(QByteArray("Box " + QByteArray::number(i)).constData());
    }
    /// The name of the row at the upper edge of the list.
    QString topName() { return list().indexAt({1, 1}).data().toString(); }
    /// Where that row stands below the upper edge of the list.
    int heightOf(const char* name) {
        const auto row = static_cast<int>(names().indexOf(text(name)));
        return list().visualRect(list().model()->index(row, 0)).top();
    }
    /// The name of the row with the focus, or nothing.
    QString currentName() { return list().currentIndex().data().toString(); }

    /// The server of that name answers again and so goes to the end of the list.
    void answerAgain(const char* name) { publish(name, std::to_string(++m_answers).c_str()); }

    /// What the pointer shows that rests on the first row.
    QString toolTipOfFirstRow() {
        const QPoint place = list().visualRect(list().model()->index(0, 0)).center();
        QHelpEvent rest(QEvent::ToolTip, place, list().viewport()->mapToGlobal(place));
        QApplication::sendEvent(list().viewport(), &rest);
        return QToolTip::text();
    }

private:
    int m_answers = 0;
};

TEST_F(ServerListPageTest, WithoutServersItSaysThatItLooks) {
    showList();
    EXPECT_TRUE(reads("Servers on your local network"));
    EXPECT_TRUE(reads("Looking for servers…"));
    publish("Box");
    EXPECT_FALSE(reads("Looking for servers…"));
    EXPECT_EQ(names(), QStringList{text("Box")});
}

TEST_F(ServerListPageTest, TheFirstArrowKeyChoosesTheFirstServer) {
    publish("A");
    publish("B");
    showList();
    ASSERT_TRUE(list().hasFocus());
    EXPECT_EQ(selectedName(), QString());
    press(Qt::Key_Down);
    EXPECT_EQ(model().listSelection(), idOf("A"));
    press(Qt::Key_Down);
    EXPECT_EQ(model().listSelection(), idOf("B"));
    press(Qt::Key_Up);
    EXPECT_EQ(model().listSelection(), idOf("A"));
}

TEST_F(ServerListPageTest, TheKeyboardBeginsAtTheTopHoweverTheServersMovedBefore) {
    publish("A");
    publish("B");
    view();
    answerAgain("A");
    model().setPhase(Phase::remoteList);
    EXPECT_EQ(currentName(), text("B"));
}

TEST_F(ServerListPageTest, TheSpaceBarChoosesTheServerWithTheFocus) {
    publish("A");
    publish("B");
    showList();
    press(Qt::Key_Space);
    EXPECT_EQ(model().listSelection(), idOf("A"));
}

TEST_F(ServerListPageTest, TheFocusFollowsTheChosenServerToTheEndOfTheList) {
    publish("A");
    publish("B");
    publish("C");
    showList();
    press(Qt::Key_Down);
    answerAgain("A");
    EXPECT_EQ(names(), (QStringList{text("B"), text("C"), text("A")}));
    EXPECT_EQ(currentName(), text("A"));
    press(Qt::Key_Space);
    EXPECT_EQ(model().listSelection(), idOf("A"));
    press(Qt::Key_Up);
    EXPECT_EQ(model().listSelection(), idOf("C"));
}

TEST_F(ServerListPageTest, AfterTheChosenServerAnArrowKeyChoosesItsNeighbour) {
    publish("A");
    publish("B");
    publish("C");
    showList();
    model().setListSelection(idOf("B"));
    withdraw("B");
    ASSERT_EQ(selectedName(), QString());
    EXPECT_EQ(currentName(), text("C"));
    press(Qt::Key_Down);
    EXPECT_EQ(model().listSelection(), idOf("C"));
}

TEST_F(ServerListPageTest, WhatIsChosenHasTheFocusWhateverTheNetworkDoes) {
    constexpr std::array all{"A", "B", "C", "D"};
    showList();
    quint32 random = 1;
    const auto next = [&random](quint32 bound) {
        random = random * 1664525 + 1013904223;
        return (random >> 16) % bound;
    };
    for (int step = 0; step < 500; ++step) {
        const char* const name = all[next(all.size())];
        if (next(3) == 0) {
            withdraw(name);
        } else {
            answerAgain(name);
        }
        if (names().isEmpty()) continue;
        ASSERT_TRUE(list().hasFocus()) << "step " << step;
        press(std::array{Qt::Key_Down, Qt::Key_Up, Qt::Key_Space}[next(3)]);
        ASSERT_EQ(currentName(), selectedName()) << "step " << step;
        ASSERT_EQ(model().listSelection(), idOf(selectedName().toUtf8().constData()));
    }
}

TEST_F(ServerListPageTest, TheListHasTheKeyboardAsSoonAsThereIsAServer) {
    showList();
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), text("Looking for servers…"));
    publish("A");
    EXPECT_TRUE(list().hasFocus());
    press(Qt::Key_Down);
    EXPECT_EQ(selectedName(), text("A"));
}

TEST_F(ServerListPageTest, WhereTheUserIsElsewhereTheFirstServerLeavesTheKeyboardThere) {
    showList();
    press(Qt::Key_Tab);
    QWidget* const elsewhere = QApplication::focusWidget();
    publish("A");
    EXPECT_EQ(QApplication::focusWidget(), elsewhere);
    EXPECT_FALSE(list().hasFocus());
}

TEST_F(ServerListPageTest, TheListHasTheKeyboardAgainWhenServersComeBack) {
    publish("A");
    showList();
    press(Qt::Key_Down);
    withdraw("A");
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), text("Looking for servers…"));
    publish("A");
    EXPECT_TRUE(list().hasFocus());
    EXPECT_EQ(selectedName(), text("A"));
}

TEST_F(ServerListPageTest, TheSelectionStaysWhileServersComeAndGo) {
    publish("A");
    publish("B");
    publish("C");
    showList();
    model().setListSelection(idOf("B"));
    EXPECT_EQ(selectedName(), text("B"));
    withdraw("A");
    publish("D");
    EXPECT_EQ(selectedName(), text("B"));
    EXPECT_EQ(model().listSelection(), idOf("B"));
}

TEST_F(ServerListPageTest, ASelectedServerThatGoesLeavesNoOtherSelected) {
    publish("A");
    publish("B");
    showList();
    model().setListSelection(idOf("A"));
    withdraw("A");
    EXPECT_EQ(selectedName(), QString());
    EXPECT_EQ(model().listSelection(), idOf("A"));
    publish("A");
    EXPECT_EQ(selectedName(), text("A"));
}

TEST_F(ServerListPageTest, AClickBesideTheRowsKeepsTheSelection) {
    publish("A");
    showList();
    model().setListSelection(idOf("A"));
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {},
                      list().viewport()->rect().bottomLeft() - QPoint(-5, 5));
    EXPECT_EQ(selectedName(), text("A"));
}

TEST_F(ServerListPageTest, TheScrollPositionStaysWhileServersComeAndGo) {
    publishMany(40);
    showList();
    list().scrollTo(list().model()->index(20, 0), QListView::PositionAtTop);
    const QString top = topName();
    ASSERT_EQ(top, text("Box 20"));
    withdraw("Box 3");
    withdraw("Box 30");
    publish("Late");
    EXPECT_EQ(topName(), top);
}

TEST_F(ServerListPageTest, WhatIsSeenStaysWhenTheTopmostServerAnswersAgain) {
    publishMany(40);
    showList();
    list().scrollTo(list().model()->index(20, 0), QListView::PositionAtTop);
    const int height = heightOf("Box 21");
    answerAgain("Box 20");
    EXPECT_EQ(names().back(), text("Box 20"));
    EXPECT_EQ(heightOf("Box 21"), height);
    EXPECT_EQ(topName(), text("Box 19"));
}

TEST_F(ServerListPageTest, TheLastOfAThousandServersCanBeChosen) {
    publishMany(1000);
    showList();
    press(Qt::Key_End);
    EXPECT_EQ(model().listSelection(), idOf("Box 999"));
    EXPECT_TRUE(model().canConnect());
}

TEST_F(ServerListPageTest, WhatTheNetworkSendsIsNeverMarkup) {
    publish("<h1>Big</h1>");
    showList();
    EXPECT_EQ(names(), QStringList{text("<h1>Big</h1>")});
    const QString tip = list().model()->index(0, 0).data(Qt::ToolTipRole).toString();
    EXPECT_FALSE(tip.contains(text("<h1>")));
    for (const QLabel* label : view().findChildren<QLabel*>())
        EXPECT_TRUE(label->textFormat() == Qt::PlainText || label->text().isEmpty());
}

TEST_F(ServerListPageTest, ALongNameDoesNotWidenTheWindow) {
    showList();
    const int before = view().minimumSizeHint().width();
    publish(QByteArray(5000, 'x').constData());
    EXPECT_EQ(view().minimumSizeHint().width(), before);
    EXPECT_FALSE(list().horizontalScrollBar()->isVisible());
}

TEST_F(ServerListPageTest, ANameThatIsCutOffIsWholeInTheToolTip) {
    const QByteArray name = "A name of sixty-three bytes, which is the most that a service has.";
    publish(name.constData());
    showList();
    EXPECT_TRUE(toolTipOfFirstRow().contains(QString::fromUtf8(name)));
}

}  // namespace
}  // namespace quietlark

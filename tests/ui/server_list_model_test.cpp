#include "ui/server_list_model.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

ServerRow row(const QString& id, const QString& hint = {}) {
    return {id, QStringLiteral("Name of ") + id, id + QStringLiteral(".local:1"), hint};
}

class ServerListModelTest : public testing::Test {
protected:
    /// One row for each letter.
    void show(const char* letters) {
        std::vector<ServerRow> rows;
        for (const char* letter = letters; *letter != '\0'; ++letter)
            rows.push_back(row(QString(QLatin1Char(*letter))));
        model.setRows(rows);
    }
    [[nodiscard]] std::string shown() const {
        std::string letters;
        for (int i = 0; i < model.rowCount(); ++i)
            letters += model.index(i).data(ServerListModel::idRole).toString().toStdString();
        return letters;
    }
    /// What a screen reader says of a row, and what it adds.
    QStringList said(const ServerRow& row) {
        model.setRows({row});
        return {model.index(0).data(Qt::AccessibleTextRole).toString(),
                model.index(0).data(Qt::AccessibleDescriptionRole).toString()};
    }

    ServerListModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ServerListModelTest, BringsTheRowsToAnyOthers) {
    for (const char* letters : {"abc", "", "cab", "abc", "xaybzc", "zyx", "x", "abcdefghij"}) {
        show(letters);
        EXPECT_EQ(shown(), letters);
    }
}

TEST_F(ServerListModelTest, ARowThatStaysIsTheSameRow) {
    show("abc");
    const QPersistentModelIndex b(model.index(1));
    show("xcb");
    ASSERT_TRUE(b.isValid());
    EXPECT_EQ(b.row(), 2);
    EXPECT_EQ(b.data(ServerListModel::idRole), QStringLiteral("b"));
}

TEST_F(ServerListModelTest, WhatGoesToTheEndMovesOnceAndNothingElseMoves) {
    show("abcdefghij");
    const QSignalSpy moved(&model, &ServerListModel::rowsMoved);
    show("bcdefghija");
    EXPECT_EQ(moved.count(), 1);
    show("befghijacd");
    EXPECT_EQ(moved.count(), 3);
}

TEST_F(ServerListModelTest, TheSameRowsAgainChangeNothing) {
    show("abc");
    const QSignalSpy inserted(&model, &ServerListModel::rowsInserted);
    const QSignalSpy removed(&model, &ServerListModel::rowsRemoved);
    const QSignalSpy changed(&model, &ServerListModel::dataChanged);
    show("abc");
    EXPECT_EQ(inserted.count() + removed.count() + changed.count(), 0);
}

TEST_F(ServerListModelTest, ANewHintChangesTheRow) {
    model.setRows({row(QStringLiteral("a"))});
    const QSignalSpy changed(&model, &ServerListModel::dataChanged);
    model.setRows({row(QStringLiteral("a"), QStringLiteral("Faster than this Mac"))});
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(ServerListModelTest, AScreenReaderHearsTheHint) {
    model.setRows({row(QStringLiteral("a"), QStringLiteral("Faster than this Mac"))});
    EXPECT_EQ(model.index(0).data(Qt::AccessibleTextRole),
              QStringLiteral("Name of a, Faster than this Mac"));
}

TEST_F(ServerListModelTest, AScreenReaderHearsWhatTellsServersOfOneNameApart) {
    ServerRow box = row(QStringLiteral("a"), QStringLiteral("Faster than this Mac"));
    EXPECT_EQ(said(box),
              (QStringList{QStringLiteral("Name of a, Faster than this Mac"), box.address}));
    box.detail = box.address;
    EXPECT_EQ(said(box), (QStringList{QStringLiteral("Name of a, a.local:1, Faster than this Mac"),
                                      QString()}));
}

TEST_F(ServerListModelTest, MarkupInANameIsEscapedInTheToolTip) {
    model.setRows({{QStringLiteral("id"), QStringLiteral("<img src=x>"), QStringLiteral("a&b:1"),
                    QString()}});
    EXPECT_EQ(model.index(0).data(Qt::ToolTipRole),
              QStringLiteral("<qt>&lt;img src=x&gt;<br>a&amp;b:1</qt>"));
}

}  // namespace
}  // namespace quietlark

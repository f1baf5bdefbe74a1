#pragma once

#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTest>

#include "picker/picker_fixture.h"
#include "picker/server_step.h"
#include "support/wait.h"
#include "ui/server_card.h"
#include "ui/server_picker_editing_view.h"

namespace quietlark {

/// The choice of a server in a window, as a user sees and works it.
class PickerViewFixture : public PickerFixture {
protected:
    ~PickerViewFixture() override { m_view.reset(); }

    /// The window, which the first call opens.
    ServerPickerEditingView& view() {
        if (m_view) return *m_view;
        m_step = std::make_unique<ServerStep>(model(), state(), ranker, scheduler);
        m_view = std::make_unique<ServerPickerEditingView>(model(), *m_step);
        m_view->resize(560, 360);
        m_view->show();
        m_view->activateWindow();
        m_view->setFocus();
        EXPECT_TRUE(waitUntil([this] { return m_view->isActiveWindow(); }));
        scheduler.runPosted();
        return *m_view;
    }
    void close() { m_view.reset(); }

    void showList() {
        view();
        model().setPhase(Phase::remoteList);
    }
    void showManualEntry() {
        view();
        model().setPhase(Phase::manualEntry);
    }

    ServerCard& card(const char* name) { return *find<ServerCard>(name); }
    QAbstractButton& button(const char* name) { return *find<QAbstractButton>(name); }
    QListView& list() { return *find<QListView>(); }
    QLineEdit& address() { return *find<QLineEdit>(); }

    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    void write(const char* what) { QTest::keyClicks(QApplication::focusWidget(), text(what)); }

    /// Whether the user can read exactly this text somewhere.
    bool reads(const char* what) {
        for (const QLabel* label : view().findChildren<QLabel*>()) {
            if (label->isVisible() && label->text() == text(what)) return true;
        }
        return false;
    }

    /// The names in the list, from top to bottom.
    QStringList names() {
        QStringList all;
        for (int row = 0; row < list().model()->rowCount(); ++row)
            all << list().model()->index(row, 0).data().toString();
        return all;
    }
    /// The name that is selected in the list, or nothing.
    QString selectedName() {
        const auto selected = list().selectionModel()->selectedIndexes();
        return selected.isEmpty() ? QString() : selected.first().data().toString();
    }

private:
    template <typename Widget>
    Widget* find(const char* name = "") {
        return view().findChild<Widget*>(text(name));
    }

    std::unique_ptr<ServerStep> m_step;
    std::unique_ptr<ServerPickerEditingView> m_view;
};

}  // namespace quietlark

#include "ui/server_list_page.h"

#include <QItemSelectionModel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "picker/server_picker_model.h"
#include "ui/page_labels.h"
#include "ui/server_list_view.h"
#include "ui/server_row_delegate.h"

namespace quietlark {

ServerListPage::ServerListPage(ServerPickerModel& model, ServerStep& step)
    : m_model(model),
      m_step(step),
      m_content(new QStackedWidget),
      m_empty(makeEmptyState()),
      m_list(new ServerListView),
      m_otherAddress(new QPushButton(tr("Enter another address"))) {
    setUpList();
    m_content->addWidget(m_empty);
    m_content->addWidget(m_list);
    m_otherAddress->setAutoDefault(true);
    giveAir(*m_otherAddress);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(makeHeading(tr("Servers on your local network")));
    layout->addWidget(m_content, 1);
    layout->addWidget(m_otherAddress, 0, Qt::AlignLeading);

    connect(m_otherAddress, &QPushButton::clicked, this,
            [this] { m_model.setPhase(ServerPickerModel::Phase::manualEntry); });
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ServerListPage::onSelectionChanged);
    connect(m_list, &QListView::doubleClicked, &m_model, &ServerPickerModel::advance);
    refresh();
}

void ServerListPage::refresh() {
    const QScopedValueRollback isRefreshing(m_isRefreshing, true);
    const Heights before = heightsFromTop();
    m_rows.setRows(m_step.rows());
    showSelection();
    keepInPlace(before);

    const bool isEmpty = m_rows.rowCount() == 0;
    // Hands the focus on, so that the keyboard is the list's as soon as there is a server.
    m_content->setCurrentWidget(isEmpty ? m_empty : m_list);
    setFocusProxy(m_content->currentWidget());
}

QWidget* ServerListPage::makeEmptyState() {
    auto* empty = new QLabel;
    auto* layout = new QVBoxLayout(empty);
    QLabel* label = makePlainLabel(tr("Looking for servers…"));
    label->setAlignment(Qt::AlignCenter);
    // It has the focus while there is no server, and so is a label that can be read out.
    empty->setAccessibleName(label->text());
    layout->addStretch();
    layout->addWidget(label);
    layout->addWidget(makeBusyBar(label->text()), 0, Qt::AlignHCenter);
    layout->addStretch();
    return empty;
}

void ServerListPage::setUpList() {
    m_list->setModel(&m_rows);
    m_list->setItemDelegate(new ServerRowDelegate(m_list));
    m_list->setAccessibleName(tr("Servers on your local network"));
    m_list->setUniformItemSizes(true);
    m_list->setVerticalScrollMode(QListView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setEditTriggers(QListView::NoEditTriggers);
}

void ServerListPage::onSelectionChanged() {
    if (m_isRefreshing) return;
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    // A click beside the rows chooses nothing else.
    if (selected.isEmpty()) return refresh();
    m_model.setListSelection(selected.first().data(ServerListModel::idRole).toString());
}

/// The list itself moves on to a neighbour when the selected row goes; the choice does not. Until
/// there is one the keyboard begins at the first row.
void ServerListPage::showSelection() {
    QItemSelectionModel& selection = *m_list->selectionModel();
    const QModelIndex chosen = m_rows.indexOf(m_model.listSelection().value_or(QString()));
    if (!chosen.isValid()) {
        selection.clearSelection();
        if (!selection.currentIndex().isValid() || !m_list->hasFocus())
            selection.setCurrentIndex(m_rows.index(0), QItemSelectionModel::NoUpdate);
    } else if (selection.currentIndex() != chosen || !selection.isSelected(chosen)) {
        selection.setCurrentIndex(chosen, QItemSelectionModel::ClearAndSelect);
    }
}

/// Where the rows stand that are seen, and those below them.
ServerListPage::Heights ServerListPage::heightsFromTop() const {
    Heights heights;
    const QModelIndex top = m_list->indexAt({0, 0});
    if (!top.isValid()) return heights;
    for (int row = top.row(); row < m_rows.rowCount(); ++row) {
        const QModelIndex index = m_rows.index(row);
        heights.insert(index.data(ServerListModel::idRole).toString(),
                       m_list->visualRect(index).top());
    }
    return heights;
}

/// Scrolls so that what was seen stands where it stood, however many rows came or went above it. A
/// server that answers again goes to the end of the list; the view stays with the others.
void ServerListPage::keepInPlace(const Heights& before) {
    for (int row = 0; row < m_rows.rowCount(); ++row) {
        const QModelIndex index = m_rows.index(row);
        const auto height = before.constFind(index.data(ServerListModel::idRole).toString());
        if (height == before.cend()) continue;
        QScrollBar* const bar = m_list->verticalScrollBar();
        return bar->setValue(bar->value() + m_list->visualRect(index).top() - *height);
    }
}

}  // namespace quietlark

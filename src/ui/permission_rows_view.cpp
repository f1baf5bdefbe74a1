#include "ui/permission_rows_view.h"

#include <utility>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/page_labels.h"
#include "ui/symbol_label.h"

namespace quietlark {

namespace {

using Tone = SymbolLabel::Tone;

QLayout* makeTexts(const PermissionRow& row) {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(makeHeading(row.label));
    texts->addWidget(makeCaption(row.blurb));
    return texts;
}

}  // namespace

PermissionRowsView::PermissionRowsView(Mark mark) : m_mark(mark), m_layout(new QVBoxLayout(this)) {
    m_layout->setContentsMargins({});
    m_layout->setSpacing(fontMetrics().height() * 2 / 3);
}

void PermissionRowsView::setRows(const std::vector<PermissionRow>& rows) {
    QStringList now;
    for (const PermissionRow& row : rows)
        now << (row.isGranted ? u'+' : u'-') + row.label;
    if (std::exchange(m_shown, now) == now && !now.isEmpty()) return;
    const auto* focused = window()->focusWidget();
    const bool hasFocus = focused && isAncestorOf(focused);
    const QString focusedName = hasFocus ? focused->objectName() : QString();
    const int focusedRow = hasFocus ? m_layout->indexOf(focused->parentWidget()) : 0;
    while (QLayoutItem* item = m_layout->takeAt(0)) {
        // Later, since a click on one of its buttons may be what leads here.
        item->widget()->hide();
        item->widget()->setParent(nullptr);
        item->widget()->deleteLater();
        delete item;
    }
    for (const PermissionRow& row : rows) {
        QWidget* widget = makeRow(row);
        m_layout->addWidget(widget);
        // At once, for a button among them that is to have the focus.
        widget->show();
    }
    if (hasFocus) focusButton(focusedName, focusedRow);
}

void PermissionRowsView::focusButton(const QString& name, int row) {
    auto* button = findChild<QPushButton*>(name);
    for (int next = row; !button && next < m_layout->count(); ++next)
        button = m_layout->itemAt(next)->widget()->findChild<QPushButton*>();
    if (!button) button = findChild<QPushButton*>();
    if (button) button->setFocus();
}

QWidget* PermissionRowsView::makeRow(const PermissionRow& row) const {
    const int edge = fontMetrics().height() * 3 / 2;
    auto* widget = new QWidget;
    auto* layout = new QHBoxLayout(widget);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height() * 2 / 3);
    if (m_mark == Mark::warning) {
        layout->addWidget(
            new SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"), edge, Tone::warning));
    }
    layout->addLayout(makeTexts(row), 1);
    if (row.isGranted) {
        auto* check = new SymbolLabel(QStringLiteral("checkmark.circle.fill"), edge, Tone::success);
        check->setAccessibleName(tr("Granted: %1").arg(row.label));
        layout->addWidget(check);
        return widget;
    }
    QPushButton* button = makeButton(tr("Grant"));
    button->setObjectName(row.label);
    button->setAccessibleName(tr("Grant: %1").arg(row.label));
    button->setAccessibleDescription(row.blurb);
    connect(button, &QPushButton::clicked, button, row.grant);
    layout->addWidget(button, 0, Qt::AlignVCenter);
    return widget;
}

}  // namespace quietlark

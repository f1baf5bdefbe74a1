#include "ui/server_row_delegate.h"

#include <algorithm>

#include <QApplication>
#include <QPainter>

#include "ui/ink.h"
#include "ui/server_list_model.h"
#include "ui/symbol_pixmap.h"

namespace quietlark {

namespace {

int gap(const QStyleOptionViewItem& option) {
    return option.fontMetrics.height() / 2;
}

/// Background, selection and focus as the style draws them, without the text.
void drawEmptyRow(QPainter& painter, QStyleOptionViewItem option) {
    option.text.clear();
    const QStyle* const style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &option, &painter, option.widget);
}

/// One line of text where a line begins in `place`, cut off where it is too long. The network's
/// text reads in its own direction, whatever that of the program.
void drawLine(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place,
              const QString& text) {
    const QRect shown = QStyle::visualRect(option.direction, option.rect, place);
    const QString line = option.fontMetrics.elidedText(text, Qt::ElideRight, place.width());
    const auto alignment =
        QStyle::visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.drawText(shown, alignment.toInt() | Qt::AlignAbsolute | Qt::TextSingleLine, line);
}

}  // namespace

void ServerRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& item,
                              const QModelIndex& index) const {
    QStyleOptionViewItem option = item;
    initStyleOption(&option, index);
    painter->save();
    drawEmptyRow(*painter, option);

    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QColor text =
        option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QColor quiet = isSelected ? text : secondaryText(option.palette);
    const QRect row = option.rect.adjusted(gap(option), 0, -gap(option), 0);
    const int edge = option.fontMetrics.height();
    const QRect mark(row.left(), row.center().y() - edge / 2 + 1, edge, edge);
    const QString symbol =
        isSelected ? QStringLiteral("largecircle.fill.circle") : QStringLiteral("circle");
    painter->drawPixmap(QStyle::visualRect(option.direction, option.rect, mark),
                        symbolPixmap(symbol, quiet, edge, painter->device()->devicePixelRatioF()));

    const QString hint = index.data(ServerListModel::hintRole).toString();
    QRect name = row;
    name.setLeft(mark.right() + 1 + gap(option));
    // One more, as the advance is rounded.
    const int hintWidth = hint.isEmpty() ? 0
                                         : std::min(option.fontMetrics.horizontalAdvance(hint) + 1,
                                                    name.width() * 3 / 4);
    QRect far = name;
    far.setLeft(row.right() + 1 - hintWidth);
    if (hintWidth > 0) name.setRight(far.left() - gap(option) - 1);
    painter->setFont(option.font);
    painter->setPen(text);
    drawLine(*painter, option, name, index.data(Qt::DisplayRole).toString());
    painter->setPen(quiet);
    drawLine(*painter, option, far, hint);
    painter->restore();
}

QSize ServerRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    // As wide as the list: what is longer gives way instead of scrolling.
    return {0, option.fontMetrics.height() + gap(option) + 2};
}

}  // namespace quietlark

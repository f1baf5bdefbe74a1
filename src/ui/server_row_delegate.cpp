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

/// One line of text where a line begins in `place`, shortened where it is too long. The network's
/// text reads in its own direction, whatever that of the program.
void drawLine(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place,
              const QString& text, Qt::TextElideMode shortened = Qt::ElideRight) {
    const QRect shown = QStyle::visualRect(option.direction, option.rect, place);
    const QString line = option.fontMetrics.elidedText(text, shortened, place.width());
    const auto alignment =
        QStyle::visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.drawText(shown, alignment.toInt() | Qt::AlignAbsolute | Qt::TextSingleLine, line);
}

/// The texts of a row and where they stand, as read from left to right.
struct Texts {
    QString name, detail, hint;
    QRect nameAt = {}, detailAt = {}, hintAt = {};
};

/// In `row`, the room for all of them. The name gives way first: others may have the same.
Texts textsOf(const QModelIndex& index, const QStyleOptionViewItem& option, const QRect& row) {
    Texts texts{.name = index.data(Qt::DisplayRole).toString(),
                .detail = index.data(ServerListModel::detailRole).toString(),
                .hint = index.data(ServerListModel::hintRole).toString()};
    // One more, as the advance is rounded.
    const auto widthOf = [&](const QString& text, int most) {
        const int advance = option.fontMetrics.horizontalAdvance(text) + 1;
        return text.isEmpty() ? 0 : std::min(advance, most);
    };
    QRect rest = row;
    const int hintWidth = widthOf(texts.hint, rest.width() * 3 / 4);
    texts.hintAt = rest;
    texts.hintAt.setLeft(row.right() + 1 - hintWidth);
    if (hintWidth > 0) rest.setRight(texts.hintAt.left() - gap(option) - 1);

    const int besideName = rest.width() - widthOf(texts.name, rest.width()) - gap(option);
    const int detailWidth = widthOf(texts.detail, std::max(besideName, rest.width() * 3 / 4));
    const int detailRoom = detailWidth > 0 ? detailWidth + gap(option) : 0;
    texts.nameAt = rest;
    texts.nameAt.setWidth(widthOf(texts.name, rest.width() - detailRoom));
    texts.detailAt = rest;
    texts.detailAt.setLeft(texts.nameAt.right() + 1 + gap(option));
    texts.detailAt.setWidth(detailWidth);
    return texts;
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
    QRect row = option.rect.adjusted(gap(option), 0, -gap(option), 0);
    const int edge = option.fontMetrics.height();
    const QRect mark(row.left(), row.center().y() - edge / 2 + 1, edge, edge);
    const QString symbol =
        isSelected ? QStringLiteral("largecircle.fill.circle") : QStringLiteral("circle");
    painter->drawPixmap(QStyle::visualRect(option.direction, option.rect, mark),
                        symbolPixmap(symbol, quiet, edge, painter->device()->devicePixelRatioF()));

    row.setLeft(mark.right() + 1 + gap(option));
    const Texts texts = textsOf(index, option, row);
    painter->setFont(option.font);
    painter->setPen(text);
    drawLine(*painter, option, texts.nameAt, texts.name);
    painter->setPen(quiet);
    // The host may be what several servers share, and the port what tells them apart.
    drawLine(*painter, option, texts.detailAt, texts.detail, Qt::ElideMiddle);
    drawLine(*painter, option, texts.hintAt, texts.hint);
    painter->restore();
}

QSize ServerRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    // As wide as the list: what is longer gives way instead of scrolling.
    return {0, option.fontMetrics.height() + gap(option) + 2};
}

}  // namespace quietlark

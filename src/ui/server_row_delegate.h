#pragma once

#include <QStyledItemDelegate>

namespace quietlark {

/// Draws a row of ServerListModel: a radio mark, the name, which gives way when there is little
/// room, its detail, and the hint at the far end. Text is drawn as it is, whatever it looks like.
class ServerRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
};

}  // namespace quietlark

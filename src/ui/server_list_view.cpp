#include "ui/server_list_view.h"

#include <QItemSelectionModel>
#include <QKeyEvent>

namespace quietlark {

void ServerListView::keyPressEvent(QKeyEvent* event) {
    const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (isArrow && currentIndex().isValid() && !selectionModel()->hasSelection())
        return selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
    QListView::keyPressEvent(event);
}

}  // namespace quietlark

#pragma once

#include <QListView>

namespace quietlark {

/// A list of which one row may be chosen. The keyboard begins at the row with the focus: where none
/// is chosen an arrow key chooses that one, and the next goes on from there.
class ServerListView final : public QListView {
    Q_OBJECT

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace quietlark

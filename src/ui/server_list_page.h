#pragma once

#include <QHash>
#include <QWidget>

#include "ui/server_list_model.h"

class QListView;
class QPushButton;
class QStackedWidget;

namespace quietlark {

class ServerPickerModel;
class ServerStep;

/// The servers on the network, and the way to one that is not there.
class ServerListPage final : public QWidget {
    Q_OBJECT

public:
    ServerListPage(ServerPickerModel& model, ServerStep& step);

    void refresh();

private:
    /// By the ids of the rows, in pixels below the upper edge of the list.
    using Heights = QHash<QString, int>;

    [[nodiscard]] QWidget* makeEmptyState();
    void setUpList();
    void onSelectionChanged();
    void showSelection();
    [[nodiscard]] Heights heightsFromTop() const;
    void keepInPlace(const Heights& before);

    ServerPickerModel& m_model;
    ServerStep& m_step;
    ServerListModel m_rows;
    QStackedWidget* m_content;
    QWidget* m_empty;
    QListView* m_list;
    QPushButton* m_otherAddress;
    bool m_isRefreshing = false;
};

}  // namespace quietlark

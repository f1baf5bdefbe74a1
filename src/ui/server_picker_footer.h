#pragma once

#include <QWidget>

class QPushButton;

namespace quietlark {

class ServerPickerModel;

/// The buttons below the choice of a server: the way out, and on.
class ServerPickerFooter final : public QWidget {
    Q_OBJECT

public:
    explicit ServerPickerFooter(ServerPickerModel& model);

    /// For a window in which something comes before the choice: adds the way back there from its
    /// beginning.
    void offerWayBack();

    [[nodiscard]] QPushButton& connectButton() { return *m_connect; }

Q_SIGNALS:
    void wentBack();

private:
    void refresh();

    ServerPickerModel& m_model;
    QPushButton* m_back;
    bool m_offersWayBack = false;
    QPushButton* m_leave;
    QPushButton* m_connect;
};

}  // namespace quietlark

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

private:
    void refresh();

    ServerPickerModel& m_model;
    QPushButton* m_leave;
    QPushButton* m_connect;
};

}  // namespace quietlark

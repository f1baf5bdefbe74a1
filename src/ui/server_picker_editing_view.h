#pragma once

#include <QWidget>

namespace quietlark {

class ServerPickerModel;
class ServerStep;

/// The whole choice of a server, buttons included, as part of any window. Return goes on and Escape
/// back, wherever the focus is.
class ServerPickerEditingView final : public QWidget {
    Q_OBJECT

public:
    /// Both must outlive the view.
    ServerPickerEditingView(ServerPickerModel& model, ServerStep& step);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    ServerPickerModel& m_model;
};

}  // namespace quietlark

#pragma once

#include <memory>

#include <QWidget>

namespace quietlark {

class ReturnKey;
class ServerPickerModel;
class ServerStep;

/// The whole choice of a server, buttons included, as part of any window. Return goes on and Escape
/// back, wherever the focus is.
class ServerPickerEditingView final : public QWidget {
    Q_OBJECT

public:
    /// Both must outlive the view.
    ServerPickerEditingView(ServerPickerModel& model, ServerStep& step);
    ~ServerPickerEditingView() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    ServerPickerModel& m_model;
    std::unique_ptr<ReturnKey> m_returnKey;
};

}  // namespace quietlark

#pragma once

#include <memory>

#include <QWidget>

#include "screens/general_pane_model.h"

namespace quietlark {

/// What Preferences offer for the program as a whole.
class GeneralPane final : public QWidget {
    Q_OBJECT

public:
    explicit GeneralPane(std::unique_ptr<GeneralPaneModel> model);

private:
    const std::unique_ptr<GeneralPaneModel> m_model;
};

}  // namespace quietlark

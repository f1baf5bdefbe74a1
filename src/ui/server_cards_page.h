#pragma once

#include <QWidget>

#include "ui/server_card.h"

namespace quietlark {

class ServerPickerModel;
class ServerStep;

/// This computer or the network: one card each.
class ServerCardsPage final : public QWidget {
    Q_OBJECT

public:
    ServerCardsPage(ServerPickerModel& model, ServerStep& step);

    void refresh();

private:
    ServerPickerModel& m_model;
    ServerStep& m_step;
    ServerCard* m_local;
    ServerCard* m_network;
};

}  // namespace quietlark

#pragma once

#include <memory>

#include <QWidget>

#include "picker/server_picker_model.h"

namespace quietlark {

class ServerStep;

/// One choice of a server from its beginning to its end, for a window to put in.
class ServerPickerPane final : public QWidget {
    Q_OBJECT

public:
    ServerPickerPane(AppState& appState, const ServerRanker& ranker, ServerResolver& resolver,
                     Scheduler& scheduler, ServerPickerModel::Options options);
    ~ServerPickerPane() override;

    /// As ServerPickerFooter::offerWayBack().
    void offerWayBack();

Q_SIGNALS:
    /// The settings have the user's choice.
    void committed();
    void cancelled();
    void wentBack();

private:
    ServerPickerModel m_model;
    std::unique_ptr<ServerStep> m_step;
    std::unique_ptr<QWidget> m_view;
};

}  // namespace quietlark

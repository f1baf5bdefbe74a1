#include "ui/server_picker_pane.h"

#include <QVBoxLayout>

#include "picker/server_step.h"
#include "ui/server_picker_editing_view.h"
#include "ui/server_picker_footer.h"

namespace quietlark {

ServerPickerPane::ServerPickerPane(AppState& appState, const ServerRanker& ranker,
                                   ServerResolver& resolver, Scheduler& scheduler,
                                   ServerPickerModel::Options options)
    : m_model(appState, ranker, resolver, scheduler, options),
      m_step(std::make_unique<ServerStep>(m_model, appState, ranker, scheduler)),
      m_view(std::make_unique<ServerPickerEditingView>(m_model, *m_step)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_view.get());
    // The window that it is put in has margins of its own.
    m_view->layout()->setContentsMargins({});
    setFocusProxy(m_view.get());
    connect(&m_model, &ServerPickerModel::commitTickChanged, this, &ServerPickerPane::committed);
    connect(&m_model, &ServerPickerModel::cancelTickChanged, this, &ServerPickerPane::cancelled);
}

ServerPickerPane::~ServerPickerPane() = default;

void ServerPickerPane::offerWayBack() {
    auto* footer = m_view->findChild<ServerPickerFooter*>();
    connect(footer, &ServerPickerFooter::wentBack, this, &ServerPickerPane::wentBack);
    footer->offerWayBack();
}

}  // namespace quietlark

#include "ui/server_step_view.h"

#include <QHideEvent>
#include <QShowEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "picker/server_picker_model.h"
#include "picker/server_step.h"
#include "ui/manual_entry_page.h"
#include "ui/page_labels.h"
#include "ui/server_cards_page.h"
#include "ui/server_list_page.h"

namespace quietlark {

using Phase = ServerPickerModel::Phase;

ServerStepView::ServerStepView(ServerPickerModel& model, ServerStep& step)
    : m_model(model),
      m_step(step),
      m_pages(new QStackedWidget),
      m_cards(new ServerCardsPage(model, step)),
      m_list(new ServerListPage(model, step)),
      m_manual(new ManualEntryPage(model)) {
    for (QWidget* page : {static_cast<QWidget*>(m_cards), static_cast<QWidget*>(m_list),
                          static_cast<QWidget*>(m_manual)})
        m_pages->addWidget(page);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height());
    layout->addWidget(makeTitle(tr("Where should Quietlark transcribe?")));
    layout->addWidget(m_pages, 1);

    connect(&m_model, &ServerPickerModel::changed, this, &ServerStepView::refresh);
    connect(&m_step, &ServerStep::changed, this, &ServerStepView::refresh);
    m_pages->setCurrentWidget(page());
    setFocusProxy(page());
}

ServerStepView::~ServerStepView() {
    // A window that closes hides its parts without an event.
    m_step.disappear();
    m_model.onManualEntryDisappear();
}

void ServerStepView::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) m_step.appear();
    QWidget::showEvent(event);
}

void ServerStepView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_step.disappear();
    QWidget::hideEvent(event);
}

void ServerStepView::refresh() {
    m_cards->refresh();
    m_list->refresh();
    m_manual->refresh();
    if (m_pages->currentWidget() == page()) return;
    m_pages->setCurrentWidget(page());
    setFocusProxy(page());
    page()->setFocus();
}

QWidget* ServerStepView::page() const {
    switch (m_model.phase()) {
        case Phase::cards:
            return m_cards;
        case Phase::remoteList:
            return m_list;
        case Phase::manualEntry:
            return m_manual;
    }
    return m_cards;
}

}  // namespace quietlark

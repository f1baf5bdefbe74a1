#include "ui/server_picker_editing_view.h"

#include <QKeyEvent>
#include <QVBoxLayout>

#include "picker/server_picker_model.h"
#include "ui/return_key.h"
#include "ui/server_picker_footer.h"
#include "ui/server_step_view.h"

namespace quietlark {

using WayOut = ServerPickerModel::WayOut;

ServerPickerEditingView::ServerPickerEditingView(ServerPickerModel& model, ServerStep& step)
    : m_model(model) {
    auto* view = new ServerStepView(model, step);
    auto* layout = new QVBoxLayout(this);
    const int margin = fontMetrics().height();
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    layout->addWidget(view, 1);
    auto* footer = new ServerPickerFooter(model);
    layout->addWidget(footer);
    m_returnKey = std::make_unique<ReturnKey>(*this, footer->connectButton());
    setFocusProxy(view);
}

ServerPickerEditingView::~ServerPickerEditingView() = default;

void ServerPickerEditingView::keyPressEvent(QKeyEvent* event) {
    // Leaving the choice open is no small step back.
    const bool canLeave = m_model.wayOut() == WayOut::back || m_model.wayOut() == WayOut::cancel;
    if (event->key() != Qt::Key_Escape || !canLeave) return QWidget::keyPressEvent(event);
    // One press is one step, however long the key is held.
    if (!event->isAutoRepeat()) m_model.leave();
}

}  // namespace quietlark

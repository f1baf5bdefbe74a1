#include "ui/server_picker_editing_view.h"

#include <QKeyEvent>
#include <QVBoxLayout>

#include "picker/server_picker_model.h"
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
    layout->addWidget(new ServerPickerFooter(model));
    setFocusProxy(view);
}

void ServerPickerEditingView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && m_model.canConnect()) return m_model.advance();
    // Leaving the choice open is no small step back.
    const bool canLeave = m_model.wayOut() == WayOut::back || m_model.wayOut() == WayOut::cancel;
    if (event->key() == Qt::Key_Escape && canLeave) return m_model.leave();
    QWidget::keyPressEvent(event);
}

}  // namespace quietlark

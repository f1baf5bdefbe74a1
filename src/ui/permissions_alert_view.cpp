#include "ui/permissions_alert_view.h"

#include <QShowEvent>
#include <QVBoxLayout>

#include "ui/page_labels.h"
#include "ui/permission_rows_view.h"

namespace quietlark {

namespace {

constexpr int viewWidth = 420;  // points

}  // namespace

PermissionsAlertView::PermissionsAlertView(Permissions& permissions, Scheduler& scheduler)
    : m_permissions(permissions),
      m_poll(permissions, scheduler),
      m_rows(new PermissionRowsView(PermissionRowsView::Mark::warning)) {
    setFixedWidth(viewWidth);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height() / 2);
    layout->addWidget(makeTitle(tr("Quietlark needs your permission")));
    layout->addWidget(
        makePlainLabel(tr("Grant each item below in System Settings to dictate again.")));
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addWidget(m_rows);
    layout->addStretch();
    connect(&m_poll, &PermissionPoll::changed, this, &PermissionsAlertView::refresh);
    connect(&m_poll, &PermissionPoll::allGranted, this, &PermissionsAlertView::allGranted);
    refresh();
}

void PermissionsAlertView::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) m_poll.start();
    QWidget::showEvent(event);
}

void PermissionsAlertView::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) m_poll.stop();
    QWidget::hideEvent(event);
}

void PermissionsAlertView::refresh() {
    m_rows->setRows(m_permissions.missing(m_poll.status()));
}

}  // namespace quietlark

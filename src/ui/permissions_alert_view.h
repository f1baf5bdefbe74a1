#pragma once

#include <QWidget>

#include "screens/permission_list.h"
#include "screens/permission_poll.h"

namespace quietlark {

class PermissionRowsView;

/// Says which permissions dictation lacks, and helps to grant them. Looks for them while it is
/// shown.
class PermissionsAlertView final : public QWidget {
    Q_OBJECT

public:
    PermissionsAlertView(Permissions& permissions, Scheduler& scheduler);

Q_SIGNALS:
    /// Nothing is missing any more.
    void allGranted();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();

    PermissionList m_permissions;
    PermissionPoll m_poll;
    PermissionRowsView* m_rows;
};

}  // namespace quietlark

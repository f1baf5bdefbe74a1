#pragma once

#include <functional>
#include <vector>

#include <QCoreApplication>
#include <QString>

#include "permissions/permissions.h"

namespace quietlark {

/// One of the four grants as a window shows it.
struct PermissionRow {
    QString label;
    QString blurb;  ///< what it is for
    bool isGranted = false;
    std::function<void()> grant;  ///< asks for it, or shows where to give it
};

/// The four grants, in the order in which windows show them. Main thread.
class PermissionList {
    Q_DECLARE_TR_FUNCTIONS(PermissionList)

public:
    explicit PermissionList(Permissions& permissions) : m_permissions(permissions) {}

    /// All four, in the few words of somebody's first time.
    [[nodiscard]] std::vector<PermissionRow> all(const Permissions::Status& status) const;

    /// Those that `status` lacks, in the words for somebody who dictated before.
    [[nodiscard]] std::vector<PermissionRow> missing(const Permissions::Status& status) const;

private:
    Permissions& m_permissions;
};

}  // namespace quietlark

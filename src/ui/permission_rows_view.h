#pragma once

#include <vector>

#include <QStringList>
#include <QWidget>

#include "screens/permission_list.h"

class QVBoxLayout;

namespace quietlark {

/// Grants in a column, each with a button while it is not given.
class PermissionRowsView final : public QWidget {
    Q_OBJECT

public:
    /// What stands before the words of a grant that is not given.
    enum class Mark { none, warning };

    explicit PermissionRowsView(Mark mark);

    /// Shows these; a button that has the focus keeps it, or leaves it to the next one.
    void setRows(const std::vector<PermissionRow>& rows);

private:
    void focusButton(const QString& name, int row);
    [[nodiscard]] QWidget* makeRow(const PermissionRow& row) const;

    const Mark m_mark;
    QStringList m_shown;  ///< what the rows differ by
    QVBoxLayout* m_layout;
};

}  // namespace quietlark

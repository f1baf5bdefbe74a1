#pragma once

#include <vector>

#include <QAbstractListModel>

#include "picker/server_step.h"

namespace quietlark {

/// The rows of a list of servers. A row that stays is the same row to whoever selects or shows it.
class ServerListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        hintRole = Qt::UserRole,  ///< how fast, or empty
        idRole,                   ///< which server
    };

    /// Brings the rows to these, by removing, moving and inserting as few as it takes.
    void setRows(const std::vector<ServerRow>& rows);

    /// The row of that server; invalid when there is none.
    [[nodiscard]] QModelIndex indexOf(const QString& id) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    void removeMissing(const std::vector<ServerRow>& rows);
    void putInPlace(int position, const ServerRow& row);
    [[nodiscard]] int positionOf(const QString& id) const;

    std::vector<ServerRow> m_rows;
};

}  // namespace quietlark

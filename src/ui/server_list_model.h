#pragma once

#include <vector>

#include <QAbstractListModel>
#include <QHash>

#include "picker/server_step.h"

namespace quietlark {

/// The rows of a list of servers. A row that stays is the same row to whoever selects or shows it.
class ServerListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        hintRole = Qt::UserRole,  ///< how fast, or empty
        idRole,                   ///< which server
        detailRole,               ///< what tells it from others of its name, or empty
    };

    /// Brings the rows to these, no two of which have one id. What is gone is removed, what is new
    /// is inserted, and a row that stands further down now is moved there.
    void setRows(const std::vector<ServerRow>& rows);

    /// The row of that server; invalid when there is none.
    [[nodiscard]] QModelIndex indexOf(const QString& id) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    /// By the ids of the rows, from 0.
    using Places = QHash<QString, int>;

    void removeMissing(const Places& places);
    void putInOrder(const Places& places);
    void moveBelowEarlier(int row, const Places& places);
    void insertAndUpdate(const std::vector<ServerRow>& rows);

    std::vector<ServerRow> m_rows;
};

}  // namespace quietlark

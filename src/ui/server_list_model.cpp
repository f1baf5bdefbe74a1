#include "ui/server_list_model.h"

#include <algorithm>
#include <iterator>

namespace quietlark {

namespace {

/// Tool tips take what looks like markup for it, so the text is escaped.
QString toolTip(const ServerRow& row) {
    return QStringLiteral("<qt>%1<br>%2</qt>")
        .arg(row.name.toHtmlEscaped(), row.address.toHtmlEscaped());
}

QString spoken(const ServerRow& row) {
    QStringList parts{row.name, row.detail, row.hint};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

}  // namespace

void ServerListModel::setRows(const std::vector<ServerRow>& rows) {
    Places places;
    for (const ServerRow& row : rows)
        places.insert(row.id, static_cast<int>(places.size()));
    removeMissing(places);
    putInOrder(places);
    insertAndUpdate(rows);
}

QModelIndex ServerListModel::indexOf(const QString& id) const {
    const auto found = std::ranges::find(m_rows, id, &ServerRow::id);
    return found == m_rows.end() ? QModelIndex() : index(static_cast<int>(found - m_rows.begin()));
}

int ServerListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant ServerListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const ServerRow& row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return row.name;
        case Qt::ToolTipRole:
            return toolTip(row);
        case Qt::AccessibleTextRole:
            return spoken(row);
        case Qt::AccessibleDescriptionRole:
            // Said once only.
            return row.detail.isEmpty() ? row.address : QString();
        case detailRole:
            return row.detail;
        case hintRole:
            return row.hint;
        case idRole:
            return row.id;
        default:
            return {};
    }
}

void ServerListModel::removeMissing(const Places& places) {
    for (int i = rowCount() - 1; i >= 0; --i) {
        if (places.contains(m_rows[static_cast<std::size_t>(i)].id)) continue;
        beginRemoveRows({}, i, i);
        m_rows.erase(m_rows.begin() + i);
        endRemoveRows();
    }
}

void ServerListModel::putInOrder(const Places& places) {
    const auto placeOf = [&](const ServerRow& row) { return places.value(row.id); };
    std::vector<int> inOrder;
    std::ranges::transform(m_rows, std::back_inserter(inOrder), placeOf);
    std::ranges::sort(inOrder);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        while (placeOf(m_rows[i]) != inOrder[i])
            moveBelowEarlier(static_cast<int>(i), places);
    }
}

/// Moves the row down below the last of those that come before it.
void ServerListModel::moveBelowEarlier(int row, const Places& places) {
    const auto from = m_rows.begin() + row;
    const int place = places.value(from->id);
    const auto last = std::find_if(m_rows.rbegin(), m_rows.rend(), [&](const ServerRow& other) {
        return places.value(other.id) < place;
    });
    beginMoveRows({}, row, row, {}, static_cast<int>(last.base() - m_rows.begin()));
    std::rotate(from, from + 1, last.base());
    endMoveRows();
}

/// Those that stay have their order, so what is not where it belongs is new.
void ServerListModel::insertAndUpdate(const std::vector<ServerRow>& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int position = static_cast<int>(i);
        if (i == m_rows.size() || m_rows[i].id != rows[i].id) {
            beginInsertRows({}, position, position);
            m_rows.insert(m_rows.begin() + position, rows[i]);
            endInsertRows();
        } else if (m_rows[i] != rows[i]) {
            m_rows[i] = rows[i];
            Q_EMIT dataChanged(index(position), index(position));
        }
    }
}

}  // namespace quietlark

#include "ui/server_list_model.h"

#include <algorithm>

namespace quietlark {

namespace {

/// Tool tips take what looks like markup for it, so the text is escaped.
QString toolTip(const ServerRow& row) {
    return QStringLiteral("<qt>%1<br>%2</qt>")
        .arg(row.name.toHtmlEscaped(), row.address.toHtmlEscaped());
}

QString spoken(const ServerRow& row) {
    return row.hint.isEmpty() ? row.name : QStringLiteral("%1, %2").arg(row.name, row.hint);
}

}  // namespace

void ServerListModel::setRows(const std::vector<ServerRow>& rows) {
    removeMissing(rows);
    for (std::size_t i = 0; i < rows.size(); ++i)
        putInPlace(static_cast<int>(i), rows[i]);
}

QModelIndex ServerListModel::indexOf(const QString& id) const {
    const int position = positionOf(id);
    return position < 0 ? QModelIndex() : index(position);
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
            return row.address;
        case hintRole:
            return row.hint;
        case idRole:
            return row.id;
        default:
            return {};
    }
}

void ServerListModel::removeMissing(const std::vector<ServerRow>& rows) {
    for (int i = rowCount() - 1; i >= 0; --i) {
        const QString& id = m_rows[static_cast<std::size_t>(i)].id;
        if (std::ranges::any_of(rows, [&](const ServerRow& row) { return row.id == id; })) continue;
        beginRemoveRows({}, i, i);
        m_rows.erase(m_rows.begin() + i);
        endRemoveRows();
    }
}

void ServerListModel::putInPlace(int position, const ServerRow& row) {
    const int current = positionOf(row.id);
    if (current < 0) {
        beginInsertRows({}, position, position);
        m_rows.insert(m_rows.begin() + position, row);
        endInsertRows();
        return;
    }
    if (current != position) {
        // What comes before has its place, so the row can only stand further down.
        beginMoveRows({}, current, current, {}, position);
        std::rotate(m_rows.begin() + position, m_rows.begin() + current,
                    m_rows.begin() + current + 1);
        endMoveRows();
    }
    ServerRow& shown = m_rows[static_cast<std::size_t>(position)];
    if (shown == row) return;
    shown = row;
    Q_EMIT dataChanged(index(position), index(position));
}

int ServerListModel::positionOf(const QString& id) const {
    const auto found =
        std::ranges::find_if(m_rows, [&](const ServerRow& row) { return row.id == id; });
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

}  // namespace quietlark

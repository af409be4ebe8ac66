#include "clients/clientsearchmodel.h"

#include "shell/database.h"
#include "shell/strings.h"

namespace fenlark {

ClientSearchModel::ClientSearchModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void ClientSearchModel::search(Database &db, const ClientSearchCriteria &criteria)
{
    std::vector<qint32> ids = searchClientIds(db, criteria);
    beginResetModel();
    m_db = &db;
    m_ids = std::move(ids);
    m_rows.assign(m_ids.size(), std::nullopt);
    endResetModel();
}

void ClientSearchModel::clear()
{
    beginResetModel();
    m_ids.clear();
    m_rows.clear();
    endResetModel();
}

const ClientSearchRow &ClientSearchModel::client(int row) const
{
    const auto at = static_cast<std::size_t>(row);
    if (!m_rows.at(at)) {
        const std::size_t first = at - at % PageSize;
        const std::size_t last = std::min(first + PageSize, m_ids.size());
        const std::vector<qint32> page(m_ids.begin() + static_cast<std::ptrdiff_t>(first),
                                       m_ids.begin() + static_cast<std::ptrdiff_t>(last));
        std::vector<ClientSearchRow> rows;
        try {
            rows = fetchClientRows(*m_db, page);
        } catch (const DatabaseError &) {
            // Drawing must go on; the rows stay blank and the next search tries again.
        }
        std::size_t next = 0;
        for (std::size_t i = first; i < last; ++i) {
            // A client deleted since the search keeps its key and shows no text.
            if (next < rows.size() && rows[next].BBClientID == m_ids[i]) {
                m_rows[i] = std::move(rows[next++]);
            } else {
                ClientSearchRow gone;
                gone.BBClientID = m_ids[i];
                m_rows[i] = gone;
            }
        }
    }
    return *m_rows[at];
}

int ClientSearchModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

int ClientSearchModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ClientSearchModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const ClientSearchRow &row = client(index.row());
    switch (index.column()) {
    case IdColumn:
        return row.BBClientID;
    case NameColumn:
        return row.text();
    case ShortNameColumn:
        return row.shortName();
    default:
        return {};
    }
}

QVariant ClientSearchModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case IdColumn:
        return getString(5630, QStringLiteral("ID"));
    case NameColumn:
        return getString(5631, QStringLiteral("Client Name"));
    case ShortNameColumn:
        return getString(5632, QStringLiteral("Short Name"));
    default:
        return {};
    }
}

} // namespace fenlark

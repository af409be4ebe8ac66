#include "clients/clientsearchmodel.h"

#include "shell/strings.h"

namespace fenlark {

ClientSearchModel::ClientSearchModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void ClientSearchModel::search(Database &db, const ClientSearchCriteria &criteria)
{
    std::vector<ClientSearchRow> rows = searchClients(db, criteria);
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

void ClientSearchModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

int ClientSearchModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
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

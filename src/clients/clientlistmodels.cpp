#include "clients/clientlistmodels.h"

#include "shell/strings.h"

namespace fenlark {

ClientHistoryModel::ClientHistoryModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void ClientHistoryModel::setRows(std::vector<ClientHistoryRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_cells.clear();
    for (const ClientHistoryRow &row : m_rows)
        m_cells.push_back(row.cells());
    endResetModel();
}

int ClientHistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ClientHistoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(clientHistoryHeadings().size());
}

QVariant ClientHistoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    // Numbers stand to the right: the key, the nights and the total.
    if (role == Qt::TextAlignmentRole && index.column() != 1 && index.column() != 2)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    return m_cells[std::size_t(index.row())].value(index.column());
}

QVariant ClientHistoryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return clientHistoryHeadings().value(section);
}

CompanyLookupModel::CompanyLookupModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void CompanyLookupModel::setRows(std::vector<CompanyRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int CompanyLookupModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int CompanyLookupModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 3;
}

QVariant CompanyLookupModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const CompanyRow &row = m_rows[std::size_t(index.row())];
    switch (index.column()) {
    case 0:
        return row.Company;
    case 1:
        return row.PhoneNo;
    case 2:
        return row.Add1;
    default:
        return {};
    }
}

QVariant CompanyLookupModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case 0:
        return getString(6980, QStringLiteral("Name"));
    case 1:
        return getString(6981, QStringLiteral("Phone No."));
    case 2:
        return getString(6982, QStringLiteral("Address"));
    default:
        return {};
    }
}

} // namespace fenlark

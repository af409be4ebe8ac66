#include "clients/clienteditormodels.h"

#include "accounts/accounts.h"
#include "clients/clientnames.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/textformat.h"

namespace fenlark {

ClientExtrasModel::ClientExtrasModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void ClientExtrasModel::setRows(std::vector<ClientExtraRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int ClientExtrasModel::addRow()
{
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_rows.push_back({0, clientExtraFieldTypes().constFirst(), QString()});
    endInsertRows();
    return row;
}

void ClientExtrasModel::removeRow(int row)
{
    if (row < 0 || row >= rowCount())
        return;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

int ClientExtrasModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ClientExtrasModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ClientExtrasModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    const ClientExtraRow &row = m_rows[std::size_t(index.row())];
    switch (index.column()) {
    case IdColumn:
        return row.BBClientExtraID > 0 ? QVariant(row.BBClientExtraID) : QVariant(QString());
    case TypeColumn:
        return role == Qt::EditRole ? row.FieldType : clientExtraFieldName(row.FieldType);
    case ValueColumn:
        return row.FieldValue;
    default:
        return {};
    }
}

bool ClientExtrasModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole || index.row() >= rowCount())
        return false;
    ClientExtraRow &row = m_rows[std::size_t(index.row())];
    if (index.column() == TypeColumn) {
        if (!clientExtraFieldTypes().contains(value.toString()))
            return false;
        row.FieldType = value.toString();
    } else if (index.column() == ValueColumn) {
        row.FieldValue = value.toString();
    } else {
        return false;
    }
    Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
    return true;
}

Qt::ItemFlags ClientExtrasModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() != IdColumn)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant ClientExtrasModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case IdColumn:
        return getString(5630, QStringLiteral("ID"));
    case TypeColumn:
        return getString(6923, QStringLiteral("Field Type"));
    case ValueColumn:
        return getString(6924, QStringLiteral("Value"));
    default:
        return {};
    }
}

ClientAccountsModel::ClientAccountsModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void ClientAccountsModel::setAccounts(std::vector<ClientAccount> accounts)
{
    beginResetModel();
    m_accounts = std::move(accounts);
    m_lines.clear();
    for (std::size_t a = 0; a < m_accounts.size(); ++a) {
        m_lines.push_back({a, -1});
        for (int item = 0; item < m_accounts[a].items.size(); ++item)
            m_lines.push_back({a, item});
    }
    endResetModel();
}

qint32 ClientAccountsModel::accountId(int row) const
{
    return m_accounts.at(m_lines.at(std::size_t(row)).account).account.BBAccountID;
}

int ClientAccountsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_lines.size());
}

int ClientAccountsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ClientAccountsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const Line &line = m_lines[std::size_t(index.row())];
    const ClientAccount &entry = m_accounts[line.account];
    if (line.item >= 0)
        return index.column() == ReferenceColumn ? QVariant(QStringLiteral("    ") + entry.items.at(line.item)) : QVariant();
    switch (index.column()) {
    case IdColumn:
        return entry.account.BBAccountID;
    case ReferenceColumn:
        return entry.account.Reference;
    case StatusColumn:
        return getAccountStatusName(entry.account.Status);
    default:
        return {};
    }
}

QVariant ClientAccountsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case IdColumn:
        return getString(6925, QStringLiteral("A/C ID"));
    case ReferenceColumn:
        return getString(5892, QStringLiteral("Reference"));
    case StatusColumn:
        return getString(5862, QStringLiteral("Status"));
    default:
        return {};
    }
}

ClientLedgerModel::ClientLedgerModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void ClientLedgerModel::setRows(std::vector<ClientTran> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int ClientLedgerModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ClientLedgerModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ClientLedgerModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const ClientTran &tran = m_rows[std::size_t(index.row())];
    if (role == Qt::TextAlignmentRole && index.column() == AmountColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case DateColumn:
        return ledgerDate(tran.TranDate);
    case TypeColumn:
        return tran.TranType;
    case NumberColumn:
        return tran.TranNo;
    case AmountColumn:
        return formatAmount(roundMoney(tran.Amount));
    case ReferenceColumn:
        return tran.Reference;
    default:
        return {};
    }
}

QVariant ClientLedgerModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case DateColumn:
        return getString(6926, QStringLiteral("Tran Date"));
    case TypeColumn:
        return getString(6927, QStringLiteral("Tran Type"));
    case NumberColumn:
        return getString(6928, QStringLiteral("Tran No."));
    case AmountColumn:
        return getString(6929, QStringLiteral("Amount"));
    case ReferenceColumn:
        return getString(5892, QStringLiteral("Reference"));
    default:
        return {};
    }
}

} // namespace fenlark

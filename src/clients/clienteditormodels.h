#pragma once

#include "clients/clientaccounts.h"
#include "clients/clienteditor.h"

#include <QAbstractTableModel>

#include <vector>

namespace fenlark {

// The editor's extras grid: the hidden "ID", "Field Type" and "Value". The type
// shows its label; Qt::EditRole gives and takes the type's code.
class ClientExtrasModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { IdColumn = 0, TypeColumn = 1, ValueColumn = 2, ColumnCount = 3 };

    explicit ClientExtrasModel(QObject *parent = nullptr);

    void setRows(std::vector<ClientExtraRow> rows);
    const std::vector<ClientExtraRow> &rows() const { return m_rows; }
    // A new row of the first field type with an empty value; its index.
    int addRow();
    void removeRow(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<ClientExtraRow> m_rows;
};

// The accounts billed to a client, each followed by one row per thing on it:
// "A/C ID", "Reference" (an item's text on its own rows) and "Status ".
class ClientAccountsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { IdColumn = 0, ReferenceColumn = 1, StatusColumn = 2, ColumnCount = 3 };

    explicit ClientAccountsModel(QObject *parent = nullptr);

    void setAccounts(std::vector<ClientAccount> accounts);
    // The account a row belongs to (its own row or one of its items).
    qint32 accountId(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct Line {
        std::size_t account;
        int item;   // -1 for the account's own row
    };
    std::vector<ClientAccount> m_accounts;
    std::vector<Line> m_lines;
};

// The client's ledger: "Tran Date", "Tran Type", "Tran No.", "Amount", "Reference".
class ClientLedgerModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { DateColumn = 0, TypeColumn, NumberColumn, AmountColumn, ReferenceColumn, ColumnCount };

    explicit ClientLedgerModel(QObject *parent = nullptr);

    void setRows(std::vector<ClientTran> rows);
    const ClientTran &tran(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<ClientTran> m_rows;
};

} // namespace fenlark

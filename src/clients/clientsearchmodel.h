#pragma once

#include "clients/clientsearch.h"

#include <QAbstractTableModel>

#include <optional>

namespace fenlark {

// The rows of the client search: "ID", "Client Name" and the hidden "Short Name".
// A search reads only the keys it finds; the rows themselves are read a page
// at a time as the view asks for them, so a one-letter search stays quick.
class ClientSearchModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { IdColumn = 0, NameColumn = 1, ShortNameColumn = 2, ColumnCount = 3 };

    explicit ClientSearchModel(QObject *parent = nullptr);

    // Runs the search and replaces the rows; all-empty criteria clear the list
    // without asking the database. The database must outlive the rows shown.
    void search(Database &db, const ClientSearchCriteria &criteria);
    void clear();

    qint32 clientId(int row) const { return m_ids.at(static_cast<std::size_t>(row)); }
    const ClientSearchRow &client(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    static constexpr int PageSize = 64;

    Database *m_db = nullptr;
    std::vector<qint32> m_ids;
    mutable std::vector<std::optional<ClientSearchRow>> m_rows;
};

} // namespace fenlark

#pragma once

#include "clients/clientsearch.h"

#include <QAbstractTableModel>

namespace fenlark {

// The rows of the client search: "ID", "Client Name" and the hidden "Short Name".
class ClientSearchModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { IdColumn = 0, NameColumn = 1, ShortNameColumn = 2, ColumnCount = 3 };

    explicit ClientSearchModel(QObject *parent = nullptr);

    // Runs the search and replaces the rows; all-empty criteria clear the list
    // without asking the database.
    void search(Database &db, const ClientSearchCriteria &criteria);
    void clear();

    const ClientSearchRow &client(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<ClientSearchRow> m_rows;
};

} // namespace fenlark

#pragma once

#include "clients/clienthistory.h"
#include "clients/companylookup.h"

#include <QAbstractTableModel>

#include <vector>

namespace fenlark {

// A client's bookings: "Booking ID", "Arrival", "Leaving", "No. Nights", "Total".
class ClientHistoryModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit ClientHistoryModel(QObject *parent = nullptr);

    void setRows(std::vector<ClientHistoryRow> rows);
    const std::vector<ClientHistoryRow> &rows() const { return m_rows; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<ClientHistoryRow> m_rows;
    std::vector<QStringList> m_cells;   // the rows as shown, made once per filling
};

// The companies found: "Name", "Phone No.", "Address".
class CompanyLookupModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit CompanyLookupModel(QObject *parent = nullptr);

    void setRows(std::vector<CompanyRow> rows);
    const CompanyRow &company(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<CompanyRow> m_rows;
};

} // namespace fenlark

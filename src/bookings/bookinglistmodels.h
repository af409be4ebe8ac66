#pragma once

#include "bookings/bookingsearch.h"
#include "bookings/cancellation.h"

#include <QAbstractTableModel>

#include <vector>

namespace fenlark {

// The booking search's results: one row per room of each booking found.
class BookingSearchModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { RoomIdColumn, MadeByColumn, GuestColumn, ArrivalColumn, RoomColumn, BookingColumn, ColumnCount };

    explicit BookingSearchModel(QObject *parent = nullptr);

    void setRows(std::vector<BookingSearchRow> rows);
    const BookingSearchRow &row(int row) const { return m_rows.at(static_cast<size_t>(row)); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<BookingSearchRow> m_rows;
};

// The cancelled rooms, newest first.
class CancellationsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column {
        GuestIdColumn, RoomIdColumn, BookingIdColumn, RoomColumn, ArrivalColumn, LeavingColumn, ClientColumn,
        DeletedColumn, UserColumn, ColumnCount
    };

    explicit CancellationsModel(QObject *parent = nullptr);

    void setRows(std::vector<CancelledLeg> rows);
    const CancelledLeg &row(int row) const { return m_rows.at(static_cast<size_t>(row)); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    std::vector<CancelledLeg> m_rows;
};

} // namespace fenlark

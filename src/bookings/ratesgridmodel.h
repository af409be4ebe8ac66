#pragma once

#include "bookings/bookingrates.h"

#include <QAbstractTableModel>

#include <functional>

namespace fenlark {

// gdRates: one row per room of a booking, a hidden room key, the room with its
// head count, then one editable column per night headed by its weekday, day and
// month. Edits go into the BookingRates it shows; nothing is saved here.
class RatesGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { RoomIdColumn, RoomColumn, FirstNightColumn };

    RatesGridModel(BookingRates &rates, QObject *parent = nullptr);

    // Told why a typed amount was not taken (letters, two decimal points...).
    std::function<void(const Refusal &)> onRefused;

    // The night of a column; -1 for the room columns.
    int nightOf(int column) const { return column >= FirstNightColumn ? column - FirstNightColumn : -1; }
    // Shows the amounts again after they changed under the model (a refresh, a copy).
    void ratesChanged();

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    // An amount was typed in: the total changed.
    void amountEdited();

private:
    BookingRates &m_rates;
    QList<QDate> m_nights;
};

} // namespace fenlark

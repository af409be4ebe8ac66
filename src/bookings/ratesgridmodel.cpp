#include "bookings/ratesgridmodel.h"

#include "shell/strings.h"
#include "shell/textformat.h"

namespace fenlark {

RatesGridModel::RatesGridModel(BookingRates &rates, QObject *parent)
    : QAbstractTableModel(parent), m_rates(rates), m_nights(rates.nights())
{
}

void RatesGridModel::ratesChanged()
{
    if (rowCount() > 0 && m_nights.size() > 0)
        Q_EMIT dataChanged(index(0, FirstNightColumn), index(rowCount() - 1, columnCount() - 1));
}

int RatesGridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rates.legs().size());
}

int RatesGridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : FirstNightColumn + static_cast<int>(m_nights.size());
}

QVariant RatesGridModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return {};
    const RatesLeg &leg = m_rates.legs()[static_cast<size_t>(index.row())];
    const int night = nightOf(index.column());
    if (role == Qt::TextAlignmentRole && night >= 0)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    if (index.column() == RoomIdColumn)
        return leg.BBRoomID;
    if (index.column() == RoomColumn)
        return leg.roomName + QLatin1Char('\n') + leg.headCount();
    return formatAmount(leg.rates[static_cast<size_t>(night)]);
}

bool RatesGridModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const int night = nightOf(index.column());
    if (!index.isValid() || role != Qt::EditRole || night < 0 || index.row() >= rowCount())
        return false;
    const Result<double> amount = parseRate(value.toString());
    if (!amount) {
        if (onRefused)
            onRefused(amount.refusal());
        return false;
    }
    m_rates.setRate(index.row(), night, *amount);
    Q_EMIT dataChanged(index, index);
    Q_EMIT amountEdited();
    return true;
}

Qt::ItemFlags RatesGridModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return nightOf(index.column()) >= 0 ? flags | Qt::ItemIsEditable : flags;
}

QVariant RatesGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount())
        return QAbstractTableModel::headerData(section, orientation, role);
    if (section == RoomIdColumn)
        return getString(6444, QStringLiteral("RoomID"));
    if (section == RoomColumn)
        return getString(6572, QStringLiteral("Rooms"));
    const QDate night = m_nights.at(nightOf(section));
    return deskLocale().toString(night, QStringLiteral("ddd")) + QLatin1Char('\n')
           + deskLocale().toString(night, QStringLiteral("dd MMM"));
}

} // namespace fenlark

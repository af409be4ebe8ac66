#include "bookings/bookinglistmodels.h"

#include "shell/strings.h"

namespace fenlark {

BookingSearchModel::BookingSearchModel(QObject *parent) : QAbstractTableModel(parent) {}

void BookingSearchModel::setRows(std::vector<BookingSearchRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int BookingSearchModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int BookingSearchModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant BookingSearchModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const BookingSearchRow &r = m_rows[static_cast<size_t>(index.row())];
    switch (index.column()) {
    case RoomIdColumn:
        return r.BBRoomID;
    case MadeByColumn:
        return r.madeBy;
    case GuestColumn:
        return r.guest;
    case ArrivalColumn:
        return deskLocale().toString(r.arrival, QStringLiteral("ddd dd MMM yy"));
    case RoomColumn:
        return r.roomName;
    case BookingColumn:
        return r.BBBookingID;
    default:
        return {};
    }
}

QVariant BookingSearchModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case RoomIdColumn:
        return getString(6444, QStringLiteral("RoomID"));
    case MadeByColumn:
        return getString(6445, QStringLiteral("MadeBy"));
    case GuestColumn:
        return getString(5887, QStringLiteral("Guest"));
    case ArrivalColumn:
        return getString(6446, QStringLiteral("Arrival"));
    case RoomColumn:
        return getString(5873, QStringLiteral("Room"));
    case BookingColumn:
        return getString(5965, QStringLiteral("Booking ID"));
    default:
        return {};
    }
}

CancellationsModel::CancellationsModel(QObject *parent) : QAbstractTableModel(parent) {}

void CancellationsModel::setRows(std::vector<CancelledLeg> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int CancellationsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CancellationsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CancellationsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || role != Qt::DisplayRole)
        return {};
    const CancelledLeg &r = m_rows[static_cast<size_t>(index.row())];
    const QString unknown = getString(5947, QStringLiteral("Unknown"));
    const auto dayText = [&unknown](const QDate &date) {
        return date.isValid() ? date.toString(QStringLiteral("yyyy-MM-dd")) : unknown;
    };
    switch (index.column()) {
    case GuestIdColumn:
        return r.BBGuestID;
    case RoomIdColumn:
        return r.BBRoomID;
    case BookingIdColumn:
        return r.BBBookingID;
    case RoomColumn:
        return r.roomName;
    case ArrivalColumn:
        return dayText(r.fromDate);
    case LeavingColumn:
        return dayText(r.toDate);
    case ClientColumn:
        return r.client.isEmpty() ? unknown : r.client;
    case DeletedColumn:
        return r.deleted.toString(QStringLiteral("yyyy-MM-dd hh:mm"));
    case UserColumn:
        return r.user;
    default:
        return {};
    }
}

QVariant CancellationsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case GuestIdColumn:
        return getString(6416, QStringLiteral("BBGuest ID"));
    case RoomIdColumn:
        return getString(6417, QStringLiteral("Room ID"));
    case BookingIdColumn:
        return getString(5965, QStringLiteral("Booking ID"));
    case RoomColumn:
        return getString(5873, QStringLiteral("Room"));
    case ArrivalColumn:
        return getString(6446, QStringLiteral("Arrival"));
    case LeavingColumn:
        return getString(6418, QStringLiteral("Leaving"));
    case ClientColumn:
        return getString(5967, QStringLiteral("Client"));
    case DeletedColumn:
        return getString(6419, QStringLiteral("Deleted"));
    case UserColumn:
        return getString(6420, QStringLiteral("User"));
    default:
        return {};
    }
}

} // namespace fenlark

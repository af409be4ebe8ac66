#include "bookings/doublebookings.h"

#include "bookings/bookingcodes.h"
#include "shell/database.h"
#include "shell/strings.h"

#include <QHash>
#include <QSet>

namespace fenlark {

QString doubleBookingTypeName(const QString &code)
{
    if (code == bookingtype::Online)
        return getString(5944, QStringLiteral("veldmoor"));
    if (code == bookingtype::Desk)
        return getString(5945, QStringLiteral("PC"));
    if (code == bookingtype::CellPhone)
        return getString(5946, QStringLiteral("Cell"));
    return getString(5947, QStringLiteral("Unknown"));
}

bool DoubleBookingScan::scan()
{
    m_clashes.clear();
    m_unreadable.clear();

    // Night (as a day number) and room -> the booking that holds it.
    QHash<std::pair<qint64, qint32>, qint32> occupied;
    QSet<qint32> reported;
    // SQLite turns the ISO dates into day numbers: parsing them here, row by row,
    // was most of the time of a scan over ten years of bookings.
    QSqlQuery q = m_db.query(QStringLiteral("select booking.BBBookingID, cast(julianday(FromDate) + 0.5 as integer), "
                                            "cast(julianday(ToDate) + 0.5 as integer), guest.BBRoomID from booking, guest "
                                            "where booking.BBBookingID = guest.BBBookingID"));
    while (q.next()) {
        const qint32 booking = q.value(0).toInt();
        if (reported.contains(booking))
            continue;
        const QVariant from = q.value(1);
        const QVariant to = q.value(2);
        const qint32 room = q.value(3).toInt();
        if (from.isNull() || to.isNull())
            continue;
        for (qint64 night = from.toLongLong(), last = to.toLongLong(); night < last; ++night) {
            const std::pair<qint64, qint32> key{night, room};
            const auto held = occupied.constFind(key);
            if (held == occupied.constEnd()) {
                occupied.insert(key, booking);
                continue;
            }
            for (const qint32 clashing : {held.value(), booking}) {
                if (!reported.contains(clashing)) {
                    reported.insert(clashing);
                    report(clashing, room);
                }
            }
        }
    }
    return !m_clashes.empty();
}

void DoubleBookingScan::report(qint32 bookingId, qint32 roomId)
{
    DoubleBookingRow row;
    row.BBBookingID = bookingId;
    row.BBRoomID = roomId;
    QSqlQuery q = m_db.query(QStringLiteral("select BookingType, Surname, Company, FromDate, ToDate from booking, client "
                                            "where booking.MadeBy = client.BBClientID and BBBookingID = ?"),
                             {bookingId});
    if (q.next()) {
        row.type = doubleBookingTypeName(q.value(0).toString());
        row.name = q.value(1).toString().isEmpty() ? q.value(2).toString() : q.value(1).toString();
        row.fromDate = dateFromSql(q.value(3));
        row.toDate = dateFromSql(q.value(4));
    } else {
        m_unreadable.push_back(bookingId);
    }
    m_clashes.push_back(row);
}

} // namespace fenlark

#include "bookings/doublebookings.h"

#include "bookings/bookingcodes.h"
#include "shell/database.h"
#include "shell/strings.h"

#include <QSet>

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <vector>

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

namespace {

// Which booking holds each night of one room: a run of day numbers, grown at
// either end as stays further out come. A scan visits every night of every leg,
// and looking them up in one hash of all rooms' nights cost more than the
// reading of the legs on a property of many rooms and years. A night so far
// from the others that the run would grow past MaxSpan (a date typed wrong)
// is kept aside in a hash.
class RoomNights {
public:
    static constexpr qint32 Free = std::numeric_limits<qint32>::min();

    // The holder of the night, Free when none; the slot is made when missing.
    qint32 &holder(qint64 night)
    {
        if (m_nights.empty()) {
            m_first = night;
            m_nights.assign(1, Free);
        }
        const qint64 last = m_first + static_cast<qint64>(m_nights.size()) - 1;
        if (night < m_first) {
            if (last - night >= MaxSpan)
                return strayHolder(night);
            const qint64 grow = std::max<qint64>(m_first - night, static_cast<qint64>(m_nights.size()));
            m_nights.insert(m_nights.begin(), static_cast<std::size_t>(grow), Free);
            m_first -= grow;
        } else if (night > last) {
            if (night - m_first >= MaxSpan)
                return strayHolder(night);
            const qint64 grow = std::max<qint64>(night - last, static_cast<qint64>(m_nights.size()));
            m_nights.resize(m_nights.size() + static_cast<std::size_t>(grow), Free);
        }
        return m_nights[static_cast<std::size_t>(night - m_first)];
    }

private:
    static constexpr qint64 MaxSpan = 200 * 366;

    qint32 &strayHolder(qint64 night) { return m_stray.try_emplace(night, Free).first->second; }

    qint64 m_first = 0;
    std::vector<qint32> m_nights;
    std::unordered_map<qint64, qint32> m_stray;
};

} // namespace

bool DoubleBookingScan::scan()
{
    m_clashes.clear();
    m_unreadable.clear();

    // Room -> night (as a day number) -> the booking that holds it.
    std::unordered_map<qint32, RoomNights> occupied;
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
        RoomNights &nights = occupied[room];
        for (qint64 night = from.toLongLong(), last = to.toLongLong(); night < last; ++night) {
            qint32 &held = nights.holder(night);
            if (held == RoomNights::Free) {
                held = booking;
                continue;
            }
            for (const qint32 clashing : {held, booking}) {
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

#include "bookings/staydates.h"

#include "shell/database.h"

#include <QSqlQuery>

namespace fenlark {

int nightCount(const QDate &fromDate, const QDate &toDate)
{
    if (!fromDate.isValid() || !toDate.isValid())
        return 0;
    const qint64 days = fromDate.daysTo(toDate);
    return days > 0 ? static_cast<int>(days) : 0;
}

QList<QDate> nightsOf(const QDate &fromDate, const QDate &toDate)
{
    QList<QDate> nights;
    const int count = nightCount(fromDate, toDate);
    nights.reserve(count);
    for (int i = 0; i < count; ++i)
        nights << fromDate.addDays(i);
    return nights;
}

std::vector<qint32> clashingBookings(Database &db, qint32 roomId, const QDate &fromDate, const QDate &toDate,
                                     qint32 exceptBookingId)
{
    std::vector<qint32> found;
    QSqlQuery q = db.query(QStringLiteral("select distinct booking.bbbookingid from booking, guest "
                                          "where booking.bbbookingid = guest.bbbookingid and guest.bbroomid = ? "
                                          "and booking.fromdate < ? and booking.todate > ? and booking.bbbookingid <> ? "
                                          "order by booking.bbbookingid desc"),
                           {roomId, sqlDate(toDate), sqlDate(fromDate), exceptBookingId});
    while (q.next())
        found.push_back(q.value(0).toInt());
    return found;
}

} // namespace fenlark

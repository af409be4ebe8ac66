#include "bookings/staydates.h"

#include "shell/database.h"
#include "shell/stayoverlap.h"

#include <QSqlQuery>

#include <algorithm>
#include <functional>

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
    if (nightCount(fromDate, toDate) == 0)
        return found;
    // The room is compared row by row and the keys ordered here, so that SQLite
    // keeps to the dates (see stayOverlapSql).
    QSqlQuery q = db.query(QStringLiteral("select booking.bbbookingid from booking join guest "
                                          "on booking.bbbookingid = guest.bbbookingid where ")
                               + stayOverlapSql(QStringLiteral("booking"))
                               + QStringLiteral(" and +guest.bbroomid = ? and booking.bbbookingid <> ?"),
                           stayOverlapValues(fromDate, toDate.addDays(-1)) << roomId << exceptBookingId);
    while (q.next())
        found.push_back(q.value(0).toInt());
    std::sort(found.begin(), found.end(), std::greater<>());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

} // namespace fenlark

#include "bookings/checkinout.h"

#include "clients/clientnames.h"
#include "shell/database.h"

namespace fenlark {

std::vector<DayLeg> legsOfTheDay(Database &db, StayEnd end, const QDate &day)
{
    const QString dateColumn = end == StayEnd::Arrivals ? QStringLiteral("b.FromDate") : QStringLiteral("b.ToDate");
    QSqlQuery q = db.query(QStringLiteral("select g.BBRoomID, b.BBBookingID, c.Title, c.FirstName, c.Surname, "
                                          "c.Company, r.RoomName from booking b, guest g, client c, room r "
                                          "where b.BBBookingID = g.BBBookingID and g.BBClientID = c.BBClientID "
                                          "and g.BBRoomID = r.BBRoomID and %1 = ? order by r.OrderBy")
                               .arg(dateColumn),
                           {sqlDate(day)});
    std::vector<DayLeg> legs;
    while (q.next()) {
        DayLeg leg;
        leg.BBRoomID = q.value(0).toInt();
        leg.BBBookingID = q.value(1).toInt();
        leg.client = clientName(q.value(2).toString(), q.value(3).toString(), q.value(4).toString(), q.value(5).toString());
        leg.roomName = q.value(6).toString();
        legs.push_back(leg);
    }
    return legs;
}

} // namespace fenlark

#include "bookings/checkinout.h"

#include "bookings/bookingrecords.h"
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

QString checkInOutCode(CheckState state)
{
    switch (state) {
    case CheckState::CheckedIn:
        return QStringLiteral("I");
    case CheckState::CheckedOut:
        return QStringLiteral("K");
    case CheckState::None:
        break;
    }
    return QString();
}

Result<Changes> setCheckInOut(Database &db, qint32 bookingId, qint32 roomId, CheckState state, const QDateTime &now)
{
    Booking head;
    Guest leg;
    if (!head.fetch(db, bookingId) || !leg.fetchLeg(db, bookingId, roomId))
        return Refusal(5825, QStringLiteral("Error: Could not find guest data. Call veldmoor (021 555 0108)."), 5824,
                       QStringLiteral("Data Error"));
    if (state != CheckState::None && head.FromDate.startOfDay() > now)
        return Refusal(5819, QStringLiteral("You cannot set the Checked In/Out as the guest hasn't arrived yet."), 5820,
                       QStringLiteral("Cannot Check In/Out before Arrival"));
    leg.CheckInOut = checkInOutCode(state);
    leg.update(db);
    Changes changes;
    changes.booking(bookingId);
    return changes;
}

} // namespace fenlark

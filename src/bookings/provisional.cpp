#include "bookings/provisional.h"

#include "bookings/bookingcodes.h"
#include "bookings/bookingrecords.h"
#include "shell/database.h"
#include "shell/displaynames.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QSqlQuery>

namespace fenlark {

QString ProvisionalReminder::text() const
{
    return guest + getString(2300, QStringLiteral(" arriving "))
           + deskLocale().toString(arrival, QStringLiteral("ddd dd MMM yyyy"));
}

std::vector<ProvisionalReminder> ProvisionalReminders::due(Database &db, const QDateTime &now) const
{
    std::vector<ProvisionalReminder> due;
    QSqlQuery q = db.query(QStringLiteral(
        "select booking.BBBookingID, client.FirstName, client.Surname, client.Company, booking.FromDate, "
        "(select BBRoomID from guest where guest.BBBookingID = booking.BBBookingID order by BBGuestID limit 1) "
        "from booking join client on booking.MadeBy = client.BBClientID "
        "where booking.Status = ? and booking.ReservedUntil < ? order by booking.BBBookingID"),
        {bookingstatus::Provisional, sqlDateTime(now)});
    while (q.next()) {
        ProvisionalReminder reminder;
        reminder.BBBookingID = q.value(0).toInt();
        reminder.guest = clientName(QString(), fieldText(q.value(1)), fieldText(q.value(2)), QString());
        reminder.arrival = dateFromSql(q.value(4));
        reminder.firstRoomId = q.value(5).toInt();
        due.push_back(reminder);
    }
    // Only an answered booking needs a second look: has it changed since?
    std::erase_if(due, [&](const ProvisionalReminder &reminder) {
        const auto answered = m_answered.constFind(reminder.BBBookingID);
        return answered != m_answered.constEnd() && *answered == stateOf(db, reminder.BBBookingID);
    });
    return due;
}

void ProvisionalReminders::answered(Database &db, qint32 bbBookingId)
{
    m_answered.insert(bbBookingId, stateOf(db, bbBookingId));
}

Changes ProvisionalReminders::postpone(Database &db, qint32 bbBookingId, const QDateTime &now)
{
    Changes changes;
    Booking booking;
    if (booking.fetch(db, bbBookingId) && booking.Status == bookingstatus::Provisional) {
        booking.ReservedUntil = now.addSecs(4 * 3600);
        booking.update(db);
        changes.booking(bbBookingId);
    }
    answered(db, bbBookingId);
    return changes;
}

QString ProvisionalReminders::stateOf(Database &db, qint32 bbBookingId)
{
    QString state;
    QSqlQuery head = db.query(QStringLiteral(
        "select Status, FromDate, ToDate, MadeBy, ReservedUntil, Notes, Source, Deposit, AgentComm, BookingType "
        "from booking where BBBookingID = ?"),
        {bbBookingId});
    if (!head.next())
        return state;
    for (int c = 0; c < 10; ++c)
        state += head.value(c).toString() + QLatin1Char('|');
    QSqlQuery legs = db.query(QStringLiteral("select BBRoomID, BBClientID, NoAdults, Child1, Child2, BBRateID "
                                             "from guest where BBBookingID = ? order by BBGuestID"),
                              {bbBookingId});
    while (legs.next()) {
        state += QLatin1Char(';');
        for (int c = 0; c < 6; ++c)
            state += legs.value(c).toString() + QLatin1Char('|');
    }
    return state;
}

} // namespace fenlark

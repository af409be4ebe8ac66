#include "bookings/cancellation.h"

#include "accounts/extraqueries.h"
#include "bookings/bookingcodes.h"
#include "bookings/bookingrecords.h"
#include "bookings/cancellog.h"
#include "bookings/staydates.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/displaynames.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/textcompare.h"

#include <QSet>

namespace fenlark {

namespace {

// The audit line of a cancellation or a restore, with the reason given for it.
void auditCancel(Database &db, const UserStruct &user, const QString &what, const QString &reason = {})
{
    SecurityAudit audit;
    audit.User(user);
    if (!reason.isEmpty())
        audit.setReason(reason);
    audit.addAudit(db, what);
}

QString roomNameOf(Database &db, qint32 roomId)
{
    const QVariant name = db.scalar(QStringLiteral("select RoomName from room where BBRoomID = ?"), {roomId});
    return name.isValid() ? name.toString() : QString::number(roomId);
}

Refusal permissionDenied()
{
    return Refusal(5100, QStringLiteral("Your user group permission doesn't allow this action."), 5101,
                   QStringLiteral("Permission denied."));
}

bool legHasExtras(Database &db, qint32 guestId)
{
    return !getExtrasByRoom(db, guestId).empty();
}

} // namespace

bool MessageCancelQuestions::cancelBooking(bool multipleRooms)
{
    if (multipleRooms)
        return messages::ask(6402, QStringLiteral("This booking has multiple rooms. Do you mean to cancel the whole booking?"),
                             6403, QStringLiteral("Cancel whole booking?"), true);
    return messages::ask(6404, QStringLiteral("Cancel this booking and free the room/date(s) ?"), 6405,
                         QStringLiteral("Cancel Booking?"), true);
}

bool MessageCancelQuestions::cancelRoom()
{
    return messages::ask(6408, QStringLiteral("Cancel this leg of the booking?"), 6409, QStringLiteral("Cancel room?"), true);
}

std::optional<QString> MessageCancelQuestions::reason()
{
    SecurityAudit audit;
    if (!audit.enterReason())
        return std::nullopt;
    return audit.reason();
}

BookingCancel::BookingCancel(Database &db, const UserStruct &user) : m_db(db), m_user(user) {}

Outcome BookingCancel::checkReason(const std::optional<QString> &reason) const
{
    if (reason && reason->trimmed().isEmpty())
        return Refusal(6412, QStringLiteral("A cancellation needs a reason: nothing was cancelled."), 6413,
                       QStringLiteral("Reason needed"));
    return Done{};
}

Result<CancelOutcome> BookingCancel::cancelBooking(qint32 bookingId, CancelQuestions &questions)
{
    Booking head;
    if (!head.fetch(m_db, bookingId))
        return Refusal(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)"), 5828,
                       QStringLiteral("Could not find booking details"));
    if (!isAllowed(m_user, SecurityAction::CancelBooking))
        return permissionDenied();
    const std::vector<Guest> legs = Guest::legsOf(m_db, bookingId);
    for (const Guest &leg : legs)
        if (legHasExtras(m_db, leg.BBGuestID))
            return Refusal(6400, QStringLiteral("Cannot cancel booking while a room has extras. Delete these first."), 6401,
                           QStringLiteral("Extras exist for booking"));

    CancelOutcome outcome;
    if (!questions.cancelBooking(legs.size() > 1))
        return outcome;
    const std::optional<QString> reason = questions.reason();
    if (Outcome given = checkReason(reason); !given)
        return given.refusal();
    if (!reason)
        return outcome;

    Transaction transaction(m_db);
    auditCancel(m_db, m_user, QStringLiteral("Booking (ID %1) cancelled.").arg(bookingId), *reason);
    CancelLog::deleteRecord(m_db, CancelledTable::Booking, bookingId, m_user.UserName);
    Booking::remove(m_db, bookingId);
    for (const Guest &leg : legs) {
        CancelLog::deleteRecord(m_db, CancelledTable::Guest, leg.BBGuestID, m_user.UserName);
        Guest::remove(m_db, leg.BBGuestID);
    }
    transaction.commit();
    outcome.cancelled = true;
    outcome.changes.booking(bookingId);
    return outcome;
}

Result<CancelOutcome> BookingCancel::cancelRoom(qint32 bookingId, qint32 roomId, CancelQuestions &questions)
{
    Guest leg;
    if (!leg.fetchLeg(m_db, bookingId, roomId))
        return Refusal(6410, QStringLiteral("Error: Could not fetch guest record. Please call veldmoor (021 555 0100)."), 6411,
                       QStringLiteral("Error fetching guest record"));
    if (!isAllowed(m_user, SecurityAction::CancelRoom))
        return permissionDenied();
    if (legHasExtras(m_db, leg.BBGuestID))
        return Refusal(6406, QStringLiteral("Cannot cancel room while it has extras. Delete these first."), 6407,
                       QStringLiteral("Extras exist for this room"));

    CancelOutcome outcome;
    if (!questions.cancelRoom())
        return outcome;
    const std::optional<QString> reason = questions.reason();
    if (Outcome given = checkReason(reason); !given)
        return given.refusal();
    if (!reason)
        return outcome;

    Transaction transaction(m_db);
    auditCancel(m_db, m_user, QStringLiteral("Booking ID %1, %2 (%3) cancelled.").arg(bookingId).arg(roomNameOf(m_db, roomId)).arg(roomId),
                *reason);
    CancelLog::deleteRecord(m_db, CancelledTable::Guest, leg.BBGuestID, m_user.UserName);
    Guest::remove(m_db, leg.BBGuestID);
    transaction.commit();
    outcome.cancelled = true;
    outcome.changes.booking(bookingId);
    return outcome;
}

std::vector<CancelledLeg> cancelledLegs(Database &db, const QString &surname, int limit)
{
    // One statement: the dates of each room from its cancelled head, else from the
    // live head of a room cancelled alone; the deletion date's index gives the
    // newest rows first without sorting the whole table.
    QString sql = QStringLiteral(
        "select g.BBGuestID, g.BBRoomID, g.BBBookingID, r.RoomName, g.deldate, g.deluser, "
        "coalesce((select FromDate from bookingdel d where d.BBBookingID = g.BBBookingID order by d.deldate desc limit 1), "
        "b.FromDate), "
        "coalesce((select ToDate from bookingdel d where d.BBBookingID = g.BBBookingID order by d.deldate desc limit 1), "
        "b.ToDate), "
        "c.BBClientID, c.Title, c.FirstName, c.Surname, c.Company "
        "from guestdel g left join room r on r.BBRoomID = g.BBRoomID left join booking b on b.BBBookingID = g.BBBookingID "
        "left join client c on c.BBClientID = g.BBClientID ");
    QVariantList values;
    if (!surname.isEmpty()) {
        sql += QStringLiteral("where g.BBClientID in (select BBClientID from clientfold where Surname like ?) ");
        values << QVariant(foldCase(surname) + QLatin1Char('%'));
    }
    sql += QStringLiteral("order by g.deldate desc limit ?");
    values << std::max(0, limit);

    std::vector<CancelledLeg> legs;
    QSqlQuery q = db.query(sql, values);
    while (q.next()) {
        CancelledLeg leg;
        leg.BBGuestID = q.value(0).toInt();
        leg.BBRoomID = q.value(1).toInt();
        leg.BBBookingID = q.value(2).toInt();
        leg.roomName = q.value(3).isNull() ? QString::number(leg.BBRoomID) : q.value(3).toString();
        leg.deleted = dateTimeFromSql(q.value(4));
        leg.user = q.value(5).toString();
        leg.fromDate = dateFromSql(q.value(6));
        leg.toDate = dateFromSql(q.value(7));
        if (!q.value(8).isNull())
            leg.client = clientName(q.value(9).toString(), q.value(10).toString(), q.value(11).toString(), q.value(12).toString());
        legs.push_back(std::move(leg));
    }
    return legs;
}

namespace {

// The restored room's nights: rows outside its booking's stay go, nights of the
// stay without a row are priced (none for a room out of service).
void fillRestoredNights(Database &db, const RateData &rates, const Booking &head, const Guest &leg)
{
    db.execute(QStringLiteral("delete from dailyrate where BBBookingID = ? and BBRoomID = ? and (CalDate < ? or CalDate >= ?)"),
               {head.BBBookingID, leg.BBRoomID, sqlDate(head.FromDate), sqlDate(head.ToDate)});
    if (head.Status == bookingstatus::Unavailable)
        return;
    QSet<QDate> held;
    for (const DailyRate &night : DailyRate::forLeg(db, head.BBBookingID, leg.BBRoomID))
        held.insert(night.CalDate);
    const QList<QDate> nights = nightsOf(head.FromDate, head.ToDate);
    if (held.size() == nights.size())
        return;
    const StayPrice price = priceStay(rates, {leg.BBRoomID, leg.BBRateID, head.BBRateSheetID, head.FromDate, head.ToDate,
                                              leg.NoAdults, leg.Child1, leg.Child2});
    for (const QDate &night : nights) {
        if (held.contains(night))
            continue;
        DailyRate rate;
        rate.CalDate = night;
        rate.BBBookingID = head.BBBookingID;
        rate.BBRoomID = leg.BBRoomID;
        rate.RoomRate = roundMoney(price.nights.value(night));
        rate.update(db);
    }
    ChangeLog::logUpdate(db, QStringLiteral("booking"), head.BBBookingID);
}

} // namespace

Result<RestoreOutcome> restoreLeg(Database &db, const RateData &rates, const UserStruct &user, qint32 guestId)
{
    if (db.scalar(QStringLiteral("select 1 from guest where BBGuestID = ?"), {guestId}).isValid())
        return Refusal(6414, QStringLiteral("This booking is still live."), 6415, QStringLiteral("Booking already live"));
    QSqlQuery q = db.query(QStringLiteral("select BBBookingID, BBRoomID from guestdel where BBGuestID = ? order by deldate desc"),
                           {guestId});
    if (!q.next())
        return Refusal(6423, QStringLiteral("There is no cancelled room %1."), 6424, QStringLiteral("Cannot restore")).arg(guestId);
    RestoreOutcome outcome;
    outcome.BBBookingID = q.value(0).toInt();
    outcome.BBRoomID = q.value(1).toInt();
    q.finish();

    const bool headLive = db.scalar(QStringLiteral("select 1 from booking where BBBookingID = ?"), {outcome.BBBookingID}).isValid();
    if (!headLive && !CancelLog::isCancelled(db, CancelledTable::Booking, outcome.BBBookingID))
        return Refusal(6425, QStringLiteral("Booking %1 is neither live nor among the cancellations: there is nothing to restore "
                                            "this room into."),
                       6424, QStringLiteral("Cannot restore"))
            .arg(outcome.BBBookingID);
    if (Guest::legExists(db, outcome.BBBookingID, outcome.BBRoomID))
        return Refusal(6426, QStringLiteral("Booking %1 has %2 again. Cancel that room first to restore this one."), 6424,
                       QStringLiteral("Cannot restore"))
            .arg(outcome.BBBookingID)
            .arg(roomNameOf(db, outcome.BBRoomID));

    Transaction transaction(db);
    CancelLog::restoreGuest(db, guestId);
    if (!headLive)
        outcome.headRestored = CancelLog::restoreBooking(db, outcome.BBBookingID);
    Booking head;
    Guest leg;
    head.fetch(db, outcome.BBBookingID);
    leg.fetch(db, guestId);
    fillRestoredNights(db, rates, head, leg);
    auditCancel(db, user,
                QStringLiteral("Booking ID %1, %2 (%3) restored.").arg(outcome.BBBookingID).arg(roomNameOf(db, outcome.BBRoomID)).arg(outcome.BBRoomID));
    transaction.commit();

    QSqlQuery others = db.query(QStringLiteral("select coalesce(r.RoomName, g.BBRoomID) from guestdel g left join room r "
                                               "on g.BBRoomID = r.BBRoomID where g.BBBookingID = ? order by r.OrderBy"),
                                {outcome.BBBookingID});
    while (others.next())
        outcome.stillCancelled << others.value(0).toString();
    outcome.doubleBooked = !clashingBookings(db, outcome.BBRoomID, head.FromDate, head.ToDate, outcome.BBBookingID).empty();
    outcome.changes.booking(outcome.BBBookingID);
    return outcome;
}

} // namespace fenlark

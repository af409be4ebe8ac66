#include "bookings/bookingsave.h"

#include "accounts/accounts.h"
#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "rates/raterecords.h"
#include "rates/ratescalculator.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/strings.h"

#include <QSet>

namespace fenlark {

namespace {

QString incorrectDatesTitle()
{
    return getString(5813, QStringLiteral("Incorrect dates."));
}

QString roomName(Database &db, qint32 roomId)
{
    Room room;
    return room.fetch(db, roomId) ? room.RoomName : QString::number(roomId);
}

QString dayText(const QDate &date)
{
    return date.toString(QStringLiteral("dd/MM/yyyy"));
}

bool isHold(const QString &status)
{
    return status == QLatin1String("R") || status == QLatin1String("P");
}

} // namespace

std::optional<BookingEdit> loadBookingEdit(Database &db, qint32 bookingId, qint32 roomId)
{
    Booking head;
    Guest guest;
    if (!head.fetch(db, bookingId) || !guest.fetchLeg(db, bookingId, roomId))
        return std::nullopt;
    BookingEdit edit;
    edit.BBBookingID = bookingId;
    edit.loadedRoomId = edit.roomId = roomId;
    edit.storedFrom = edit.fromDate = head.FromDate;
    edit.storedTo = edit.toDate = head.ToDate;
    edit.storedStatus = edit.status = head.Status;
    edit.reservedUntil = head.ReservedUntil;
    edit.MadeBy = head.MadeBy;
    edit.notes = head.Notes;
    edit.source = head.Source;
    edit.agentComm = head.AgentComm;
    edit.deposit = head.Deposit;
    edit.BBClientID = guest.BBClientID;
    edit.BBClient2ID = guest.BBClient2ID;
    edit.storedRateID = edit.BBRateID = guest.BBRateID;
    edit.storedAdults = edit.adults = guest.NoAdults;
    edit.storedChild1 = edit.child1 = guest.Child1;
    edit.storedChild2 = edit.child2 = guest.Child2;
    edit.checkedIn = guest.CheckInOut == QLatin1String("I");
    edit.checkedOut = !guest.CheckInOut.isEmpty() && !edit.checkedIn;
    edit.reference = guest.Reference;
    edit.bookingAccountId = head.BBAccountID;
    edit.legAccountId = guest.BBAccountID == 0 ? head.BBAccountID : guest.BBAccountID;
    return edit;
}

qint32 ensureBookingAccount(Database &db, qint32 bookingId)
{
    Booking head;
    if (!head.fetch(db, bookingId))
        return 0;
    if (head.BBAccountID != 0)
        return head.BBAccountID;
    Transaction transaction(db);
    head.BBAccountID = getOpenAccount(db, head.MadeBy);
    head.update(db);
    transaction.commit();
    return head.BBAccountID;
}

bool MessageSaveQuestions::changeAllLegs()
{
    return messages::question(getString(5830, QStringLiteral("Warning: You have changed the dates on a multi-room "
                                                             "booking.\n\nDid you mean to change all the rooms?")),
                              getString(5831, QStringLiteral("Multi-room booking. Change dates for all legs?")));
}

bool MessageSaveQuestions::changeLinkedBookings()
{
    return messages::question(getString(5832, QStringLiteral("Would you like to change the status of all bookings "
                                                             "linked to this booking?")),
                              getString(5833, QStringLiteral("Change status of linked bookings?")));
}

bool MessageSaveQuestions::checkRates()
{
    return messages::question(getString(5834, QStringLiteral("Important booking data relating to rates was changed. "
                                                             "Would you like to check the rates?")),
                              getString(5835, QStringLiteral("Make changes to rates?")));
}

BookingSave::BookingSave(Database &db, const RateData &rates, const UserStruct &user, SaveQuestions &questions)
    : m_db(db), m_rates(rates), m_user(user), m_questions(questions)
{
}

bool BookingSave::checkDates(const BookingEdit &edit) const
{
    if (edit.toDate <= edit.fromDate) {
        const QString how = edit.toDate == edit.fromDate ? getString(5811, QStringLiteral("the same as"))
                                                         : getString(5812, QStringLiteral("before"));
        messages::critical(getString(5810, QStringLiteral("Leaving date is ")) + how
                               + getString(5814, QStringLiteral(" the Arrival date.")),
                           incorrectDatesTitle());
        return false;
    }
    for (const Guest &leg : Guest::legsOf(m_db, edit.BBBookingID)) {
        const qint32 room = leg.BBRoomID == edit.loadedRoomId ? edit.roomId : leg.BBRoomID;
        if (!clashingBookings(m_db, room, edit.fromDate, edit.toDate, edit.BBBookingID).empty()) {
            messages::critical(getString(5815, QStringLiteral("No availability for these dates")), incorrectDatesTitle());
            return false;
        }
    }
    return true;
}

bool BookingSave::checkRoom(const BookingEdit &edit) const
{
    if (!clashingBookings(m_db, edit.roomId, edit.fromDate, edit.toDate, edit.BBBookingID).empty()
        || Guest::legExists(m_db, edit.BBBookingID, edit.roomId)) {
        messages::critical(getString(5816, QStringLiteral("No availability for this room on those dates")),
                           incorrectDatesTitle());
        return false;
    }
    return true;
}

std::vector<qint32> BookingSave::linkedBookings(const BookingEdit &edit) const
{
    std::vector<qint32> linked;
    if (edit.status == edit.storedStatus)
        return linked;
    const qint32 account =
        m_db.scalar(QStringLiteral("select bbaccountid from booking where bbbookingid = ?"), {edit.BBBookingID}).toInt();
    if (account == 0)
        return linked;
    QSqlQuery q = m_db.query(QStringLiteral("select bbbookingid from booking where bbaccountid = ? and bbbookingid <> ?"),
                             {account, edit.BBBookingID});
    while (q.next())
        linked.push_back(q.value(0).toInt());
    if (!linked.empty() && !m_questions.changeLinkedBookings())
        linked.clear();
    return linked;
}

std::optional<SaveOutcome> BookingSave::save(BookingEdit &edit)
{
    const bool datesChanged = edit.datesChanged();
    const bool roomChanged = edit.roomChanged();
    if (datesChanged && !checkDates(edit))
        return std::nullopt;
    if (roomChanged && !checkRoom(edit))
        return std::nullopt;
    if (datesChanged && Guest::legsOf(m_db, edit.BBBookingID).size() > 1 && !m_questions.changeAllLegs()) {
        edit.fromDate = edit.storedFrom;
        edit.toDate = edit.storedTo;
        messages::information(getString(5817, QStringLiteral("Use 'Split Booking' to break off this room from the "
                                                             "booking. Then change the dates.")),
                              getString(5818, QStringLiteral("Split booking?")));
        return std::nullopt;
    }
    if ((edit.checkedIn || edit.checkedOut) && edit.fromDate.startOfDay() > QDateTime::currentDateTime()) {
        messages::critical(getString(5819, QStringLiteral("You cannot set the Checked In/Out as the guest hasn't "
                                                          "arrived yet.")),
                           getString(5820, QStringLiteral("Cannot Check In/Out before Arrival")));
        edit.checkedIn = false;
        edit.checkedOut = false;
        return std::nullopt;
    }
    if (isHold(edit.status) && edit.reservedUntil < QDateTime::currentDateTime()) {
        messages::critical(getString(5821, QStringLiteral("The %1 date is less than now. Must be a time in the future."))
                               .arg(edit.status == QLatin1String("R") ? getString(2313, QStringLiteral("Reserved with Auto Expire"))
                                                                      : getString(2312, QStringLiteral("Provisional"))),
                           getString(5822, QStringLiteral("Reserve date cannot be less than now.")));
        return std::nullopt;
    }
    const std::vector<qint32> linked = linkedBookings(edit);

    {
        Transaction transaction(m_db);
        if (!saveBooking(edit, linked))
            return std::nullopt;
        SecurityAudit audit;
        audit.User(m_user);
        const QString id = QString::number(edit.BBBookingID);
        if (datesChanged)
            audit.addAudit(m_db, QStringLiteral("Date Change: %1-%2 to %3-%4 Booking ID %5")
                                     .arg(dayText(edit.storedFrom), dayText(edit.storedTo), dayText(edit.fromDate),
                                          dayText(edit.toDate), id));
        if (roomChanged)
            audit.addAudit(m_db, QStringLiteral("Room Change: %1 to %2 Booking ID %3 Room IDs: %4/%5")
                                     .arg(roomName(m_db, edit.loadedRoomId), roomName(m_db, edit.roomId), id)
                                     .arg(edit.loadedRoomId)
                                     .arg(edit.roomId));
        transaction.commit();
    }

    SaveOutcome outcome;
    const bool ratesTouched = datesChanged || edit.headCountChanged() || edit.BBRateID != edit.storedRateID;
    if (ratesTouched && !edit.repriceAll && edit.status != QLatin1String("U"))
        outcome.reviewRates = m_questions.checkRates();

    edit.storedFrom = edit.fromDate;
    edit.storedTo = edit.toDate;
    edit.storedStatus = edit.status;
    edit.loadedRoomId = edit.roomId;
    edit.storedRateID = edit.BBRateID;
    edit.storedAdults = edit.adults;
    edit.storedChild1 = edit.child1;
    edit.storedChild2 = edit.child2;
    edit.repriceAll = false;
    return outcome;
}

bool BookingSave::saveBooking(BookingEdit &edit, const std::vector<qint32> &linked)
{
    Booking head;
    if (!head.fetch(m_db, edit.BBBookingID)) {
        messages::critical(getString(5823, QStringLiteral("Error: Could not find booking data. Call veldmoor (021 555 0108).")),
                           getString(5824, QStringLiteral("Data Error")));
        return false;
    }
    head.Status = edit.status;
    head.ReservedUntil = reservedUntilForSave(edit.status, edit.reservedUntil);
    head.FromDate = edit.fromDate;
    head.ToDate = edit.toDate;
    head.MadeBy = edit.MadeBy;
    head.Notes = edit.notes.trimmed();
    head.Source = edit.source.trimmed();
    head.AgentComm = edit.agentComm;
    head.Deposit = edit.deposit;
    head.update(m_db);

    for (qint32 other : linked) {
        Booking linkedHead;
        if (!linkedHead.fetch(m_db, other))
            continue;
        linkedHead.Status = head.Status;
        linkedHead.ReservedUntil = head.ReservedUntil;
        linkedHead.update(m_db);
    }

    Guest guest;
    if (!guest.fetchLeg(m_db, edit.BBBookingID, edit.loadedRoomId)) {
        messages::critical(getString(5825, QStringLiteral("Error: Could not find guest data. Call veldmoor (021 555 0108).")),
                           getString(5824, QStringLiteral("Data Error")));
        return false;
    }
    if (edit.roomChanged())
        DailyRate::changeRoom(m_db, edit.BBBookingID, edit.loadedRoomId, edit.roomId);
    guest.BBRoomID = edit.roomId;
    guest.BBClientID = edit.BBClientID;
    guest.NoAdults = edit.adults;
    guest.Child1 = edit.child1;
    guest.Child2 = edit.child2;
    guest.BBClient2ID = edit.BBClient2ID;
    guest.BBRateID = edit.BBRateID;
    guest.Reference = edit.reference;
    guest.CheckInOut = !edit.checkedIn && !edit.checkedOut ? QString()
                       : edit.checkedIn                    ? QStringLiteral("I")
                                                           : QStringLiteral("K");
    guest.BBAccountID = edit.legAccountId == edit.bookingAccountId ? 0 : edit.legAccountId;
    guest.update(m_db);

    adjustDailyRates(edit);
    if (edit.status == QLatin1String("U"))
        DailyRate::deleteBooking(m_db, edit.BBBookingID);
    return true;
}

void BookingSave::adjustDailyRates(const BookingEdit &edit)
{
    if (!edit.datesChanged() && !edit.repriceAll)
        return;
    QSet<QDate> kept;
    if (edit.repriceAll) {
        DailyRate::deleteBooking(m_db, edit.BBBookingID);
    } else {
        if (edit.fromDate > edit.storedFrom)
            DailyRate::deleteBeforeDate(m_db, edit.BBBookingID, edit.fromDate);
        if (edit.toDate < edit.storedTo)
            DailyRate::deleteAfterDate(m_db, edit.BBBookingID, edit.toDate);
        for (const QDate &night : nightsOf(edit.storedFrom, edit.storedTo))
            kept.insert(night);
    }
    Booking head;
    head.fetch(m_db, edit.BBBookingID);
    for (const Guest &leg : Guest::legsOf(m_db, edit.BBBookingID)) {
        const StayPrice price = priceStay(m_rates, {leg.BBRoomID, leg.BBRateID, head.BBRateSheetID, edit.fromDate,
                                                    edit.toDate, leg.NoAdults, leg.Child1, leg.Child2});
        for (const QDate &night : nightsOf(edit.fromDate, edit.toDate)) {
            if (kept.contains(night))
                continue;
            DailyRate rate;
            rate.CalDate = night;
            rate.BBBookingID = edit.BBBookingID;
            rate.BBRoomID = leg.BBRoomID;
            rate.RoomRate = roundMoney(price.nights.value(night));
            rate.update(m_db);
        }
    }
}

std::optional<qint32> BookingSave::split(qint32 bookingId, qint32 roomId)
{
    const QString title = getString(5826, QStringLiteral("Split Booking?"));
    Booking head;
    Guest guest;
    if (!head.fetch(m_db, bookingId) || !guest.fetchLeg(m_db, bookingId, roomId)) {
        messages::critical(getString(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)")),
                           getString(5828, QStringLiteral("Could not find booking details")));
        return std::nullopt;
    }
    if (Guest::legsOf(m_db, bookingId).size() < 2) {
        messages::critical(getString(5829, QStringLiteral("This booking has only one room: there is nothing to split off.")),
                           title);
        return std::nullopt;
    }
    Transaction transaction(m_db);
    head.BBBookingID = 0;
    head.BookingID = 0;
    head.BookingType = QStringLiteral("P");
    head.BookingDate = QDateTime::currentDateTime();
    head.update(m_db);
    guest.BBBookingID = head.BBBookingID;
    guest.update(m_db);
    DailyRate::changeBookingID(m_db, bookingId, head.BBBookingID, roomId);
    // The old head lost rows: it is logged as changed as well.
    Booking oldHead;
    oldHead.fetch(m_db, bookingId);
    oldHead.update(m_db);
    transaction.commit();
    return head.BBBookingID;
}

} // namespace fenlark

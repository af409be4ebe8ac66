#include "bookings/bookingsave.h"

#include "accounts/accounts.h"
#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "bookings/newbooking.h"
#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/strings.h"

#include <QSet>

namespace fenlark {

namespace {

Refusal incorrectDates(int id, const QString &english)
{
    return Refusal(id, english, 5813, QStringLiteral("Incorrect dates."));
}

QString roomName(const RateData &rates, qint32 roomId)
{
    const Room *room = rates.room(roomId);
    return room ? room->RoomName : QString::number(roomId);
}

qint32 roomTypeOf(const RateData &rates, qint32 roomId)
{
    const Room *room = rates.room(roomId);
    return room ? room->BBRTID : 0;
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
    if (head.BBAccountID != 0
        && db.scalar(QStringLiteral("select count(*) from account where BBAccountID = ?"), {head.BBAccountID}).toInt() > 0)
        return head.BBAccountID;
    Transaction transaction(db);
    head.BBAccountID = getOpenAccount(db, head.MadeBy);
    head.update(db);
    transaction.commit();
    return head.BBAccountID;
}

bool MessageSaveQuestions::acceptOverLimit(const QString &roomName, int adults, int people, int maxAdults, int maxOccupancy)
{
    return askOverLimit(roomName, adults, people, maxAdults, maxOccupancy);
}

bool MessageSaveQuestions::acceptPastStart(const QDate &fromDate)
{
    return askPastStart(fromDate);
}

bool MessageSaveQuestions::changeAllLegs()
{
    return messages::ask(5830, QStringLiteral("Warning: You have changed the dates on a multi-room booking.\n\n"
                                              "Did you mean to change all the rooms?"),
                         5831, QStringLiteral("Multi-room booking. Change dates for all legs?"));
}

bool MessageSaveQuestions::changeLinkedBookings()
{
    return messages::ask(5832, QStringLiteral("Would you like to change the status of all bookings linked to this booking?"),
                         5833, QStringLiteral("Change status of linked bookings?"));
}

bool MessageSaveQuestions::checkRates()
{
    return messages::ask(5834, QStringLiteral("Important booking data relating to rates was changed. "
                                              "Would you like to check the rates?"),
                         5835, QStringLiteral("Make changes to rates?"));
}

bool MessageSaveQuestions::repriceAtNewRoom(const QString &roomName)
{
    return messages::ask(5983, QStringLiteral("%1 is a room of another type. Price the nights at its rates?"), 5984,
                         QStringLiteral("Room of another type"), false, {roomName});
}

BookingSave::BookingSave(Database &db, const RateData &rates, const BBSetup &setup, const UserStruct &user,
                         SaveQuestions &questions)
    : m_db(db), m_rates(rates), m_setup(setup), m_user(user), m_questions(questions)
{
}

Outcome BookingSave::checkDates(const BookingEdit &edit) const
{
    if (edit.toDate <= edit.fromDate) {
        // The message is put together from three texts, as the desk always has.
        const bool same = edit.toDate == edit.fromDate;
        return incorrectDates(5810, QStringLiteral("Leaving date is "))
            .then(same ? 5811 : 5812, same ? QStringLiteral("the same as") : QStringLiteral("before"))
            .then(5814, QStringLiteral(" the Arrival date."));
    }
    for (const Guest &leg : Guest::legsOf(m_db, edit.BBBookingID)) {
        const qint32 room = leg.BBRoomID == edit.loadedRoomId ? edit.roomId : leg.BBRoomID;
        if (!clashingBookings(m_db, room, edit.fromDate, edit.toDate, edit.BBBookingID).empty())
            return incorrectDates(5815, QStringLiteral("No availability for these dates"));
    }
    return Done{};
}

Outcome BookingSave::checkRoom(const BookingEdit &edit) const
{
    if (!m_rates.room(edit.roomId))
        return Refusal(5975, QStringLiteral("There is no room %1."), 5976, QStringLiteral("Unknown room")).arg(edit.roomId);
    if (!clashingBookings(m_db, edit.roomId, edit.fromDate, edit.toDate, edit.BBBookingID).empty()
        || Guest::legExists(m_db, edit.BBBookingID, edit.roomId))
        return incorrectDates(5816, QStringLiteral("No availability for this room on those dates"));
    return Done{};
}

Outcome BookingSave::checkValues(const BookingEdit &edit) const
{
    if (!(edit.agentComm >= 0 && edit.agentComm <= 100))
        return Refusal(5985, QStringLiteral("The agent's commission must be between 0 and 100 percent."), 5986,
                       QStringLiteral("Incorrect commission"));
    if (edit.adults < 0 || edit.child1 < 0 || edit.child2 < 0)
        return Refusal(5979, QStringLiteral("The number of people in %1 cannot be negative."), 5980,
                       QStringLiteral("Incorrect number of people"))
            .arg(roomName(m_rates, edit.roomId));
    return Done{};
}

Outcome BookingSave::askAboutLimits(const BookingEdit &edit) const
{
    if ((edit.headCountChanged() || edit.roomChanged()) && edit.status != QLatin1String("U"))
        if (Outcome asked = checkRoomLimits(m_rates, edit.roomId, edit.adults, edit.child1, edit.child2, m_questions); !asked)
            return asked;
    if (edit.fromDate != edit.storedFrom)
        return checkStartDate(edit.fromDate, m_questions);
    return Done{};
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

Outcome BookingSave::checkStay(const BookingEdit &edit, bool datesChanged, bool roomChanged) const
{
    if (datesChanged)
        if (Outcome dates = checkDates(edit); !dates)
            return dates;
    if (roomChanged)
        return checkRoom(edit);
    return Done{};
}

Result<SaveOutcome> BookingSave::save(BookingEdit &edit)
{
    const bool datesChanged = edit.datesChanged();
    const bool roomChanged = edit.roomChanged();
    if (Outcome values = checkValues(edit); !values)
        return values.refusal();
    if (Outcome stay = checkStay(edit, datesChanged, roomChanged); !stay)
        return stay.refusal();
    if (datesChanged && Guest::legsOf(m_db, edit.BBBookingID).size() > 1 && !m_questions.changeAllLegs()) {
        edit.fromDate = edit.storedFrom;
        edit.toDate = edit.storedTo;
        return Refusal(5817, QStringLiteral("Use 'Split Booking' to break off this room from the booking. Then change the dates."),
                       5818, QStringLiteral("Split booking?"))
            .asInformation();
    }
    if ((edit.checkedIn || edit.checkedOut) && edit.fromDate.startOfDay() > QDateTime::currentDateTime()) {
        edit.checkedIn = false;
        edit.checkedOut = false;
        return Refusal(5819, QStringLiteral("You cannot set the Checked In/Out as the guest hasn't arrived yet."), 5820,
                       QStringLiteral("Cannot Check In/Out before Arrival"));
    }
    if (isHold(edit.status) && edit.reservedUntil < QDateTime::currentDateTime())
        return Refusal(5821, QStringLiteral("The %1 date is less than now. Must be a time in the future."), 5822,
                       QStringLiteral("Reserve date cannot be less than now."))
            .arg(edit.status == QLatin1String("R") ? getString(2313, QStringLiteral("Reserved with Auto Expire"))
                                                   : getString(2312, QStringLiteral("Provisional")));
    if (Outcome asked = askAboutLimits(edit); !asked)
        return asked.refusal();
    const bool newRoomType = roomChanged && roomTypeOf(m_rates, edit.roomId) != roomTypeOf(m_rates, edit.loadedRoomId);
    const bool reprice = newRoomType && edit.status != QLatin1String("U") && !edit.repriceAll
                         && m_questions.repriceAtNewRoom(roomName(m_rates, edit.roomId));
    const std::vector<qint32> linked = linkedBookings(edit);

    SaveOutcome outcome;
    {
        Transaction transaction(m_db);
        // Checked again under the write lock: another desk may have booked the
        // rooms while the questions waited.
        if (Outcome stay = checkStay(edit, datesChanged, roomChanged); !stay)
            return stay.refusal();
        if (Outcome saved = saveBooking(edit, linked, reprice); !saved)
            return saved.refusal();
        SecurityAudit audit;
        audit.User(m_user);
        const QString id = QString::number(edit.BBBookingID);
        if (datesChanged)
            audit.addAudit(m_db, QStringLiteral("Date Change: %1-%2 to %3-%4 Booking ID %5")
                                     .arg(dayText(edit.storedFrom), dayText(edit.storedTo), dayText(edit.fromDate),
                                          dayText(edit.toDate), id));
        if (roomChanged)
            audit.addAudit(m_db, QStringLiteral("Room Change: %1 to %2 Booking ID %3 Room IDs: %4/%5")
                                     .arg(roomName(m_rates, edit.loadedRoomId), roomName(m_rates, edit.roomId), id)
                                     .arg(edit.loadedRoomId)
                                     .arg(edit.roomId));
        transaction.commit();
    }
    outcome.changes.booking(edit.BBBookingID).client(edit.BBClientID);
    for (qint32 other : linked)
        outcome.changes.booking(other);

    const bool ratesTouched = datesChanged || edit.headCountChanged() || edit.BBRateID != edit.storedRateID;
    if (ratesTouched && !edit.repriceAll && !reprice && edit.status != QLatin1String("U"))
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

Outcome BookingSave::saveBooking(BookingEdit &edit, const std::vector<qint32> &linked, bool repriceLegAtNewRoom)
{
    Booking head;
    if (!head.fetch(m_db, edit.BBBookingID))
        return Refusal(5823, QStringLiteral("Error: Could not find booking data. Call veldmoor (021 555 0108)."), 5824,
                       QStringLiteral("Data Error"));
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
    if (!guest.fetchLeg(m_db, edit.BBBookingID, edit.loadedRoomId))
        return Refusal(5825, QStringLiteral("Error: Could not find guest data. Call veldmoor (021 555 0108)."), 5824,
                       QStringLiteral("Data Error"));
    if (edit.roomChanged()) {
        // Nights left in the new room by a cancelled leg of this booking belong to
        // no live leg; they go first so that a night never has two rates.
        DailyRate::remove(m_db, edit.BBBookingID, edit.roomId);
        DailyRate::changeRoom(m_db, edit.BBBookingID, edit.loadedRoomId, edit.roomId);
    }
    if (repriceLegAtNewRoom) {
        const std::vector<qint32> offered = getRoomRates(m_rates, edit.fromDate, edit.toDate, edit.roomId);
        if (std::find(offered.begin(), offered.end(), edit.BBRateID) == offered.end())
            edit.BBRateID = offered.empty() ? 0 : offered.front();
    }
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
    if (repriceLegAtNewRoom && !edit.repriceAll)
        repriceLeg(edit);
    if (edit.status == QLatin1String("U"))
        DailyRate::deleteBooking(m_db, edit.BBBookingID);
    return Done{};
}

void BookingSave::repriceLeg(const BookingEdit &edit)
{
    Booking head;
    head.fetch(m_db, edit.BBBookingID);
    DailyRate::remove(m_db, edit.BBBookingID, edit.roomId);
    const StayPrice price = priceStay(m_rates, {edit.roomId, edit.BBRateID, head.BBRateSheetID, edit.fromDate, edit.toDate,
                                                edit.adults, edit.child1, edit.child2});
    for (const QDate &night : nightsOf(edit.fromDate, edit.toDate)) {
        DailyRate rate;
        rate.CalDate = night;
        rate.BBBookingID = edit.BBBookingID;
        rate.BBRoomID = edit.roomId;
        rate.RoomRate = roundMoney(price.nights.value(night));
        rate.update(m_db);
    }
}

double BookingSave::bookingTotal(qint32 bookingId) const
{
    // Summed in C++: money is never left to SQLite's arithmetic.
    double total = 0;
    QSqlQuery q = m_db.query(QStringLiteral("select RoomRate from dailyrate where BBBookingID = ?"), {bookingId});
    while (q.next())
        total += q.value(0).toDouble();
    return roundMoney(total);
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

Result<SplitOutcome> BookingSave::split(qint32 bookingId, qint32 roomId)
{
    Booking head;
    Guest guest;
    if (!head.fetch(m_db, bookingId) || !guest.fetchLeg(m_db, bookingId, roomId))
        return Refusal(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)"), 5828,
                       QStringLiteral("Could not find booking details"));
    if (Guest::legsOf(m_db, bookingId).size() < 2)
        return Refusal(5829, QStringLiteral("This booking has only one room: there is nothing to split off."), 5826,
                       QStringLiteral("Split Booking?"));
    const int nights = nightCount(head.FromDate, head.ToDate);
    Transaction transaction(m_db);
    head.BBBookingID = 0;
    head.BookingID = 0;
    head.BookingType = QStringLiteral("P");
    head.BookingDate = QDateTime::currentDateTime();
    head.update(m_db);
    guest.BBBookingID = head.BBBookingID;
    guest.update(m_db);
    DailyRate::changeBookingID(m_db, bookingId, head.BBBookingID, roomId);
    head.Deposit = calcDeposit(m_setup, bookingTotal(head.BBBookingID), nights);
    head.update(m_db);
    // The old head lost rows and part of its total: it is logged as changed as well.
    Booking oldHead;
    oldHead.fetch(m_db, bookingId);
    oldHead.Deposit = calcDeposit(m_setup, bookingTotal(bookingId), nights);
    oldHead.update(m_db);
    transaction.commit();

    SplitOutcome outcome;
    outcome.newBookingId = head.BBBookingID;
    outcome.newDeposit = head.Deposit;
    outcome.oldDeposit = oldHead.Deposit;
    outcome.changes.booking(bookingId).booking(head.BBBookingID);
    return outcome;
}

} // namespace fenlark

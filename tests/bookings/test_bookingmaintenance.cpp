// Moving, cancelling and restoring rooms of bookings: what each write leaves in
// the tables, and what it refuses without writing anything.
#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "bookings/cancellation.h"
#include "bookings/cancellog.h"
#include "bookings/checkinout.h"
#include "bookings/doublebookings.h"
#include "bookings/newbooking.h"
#include "bookings/roommoves.h"
#include "rates/ratedata.h"
#include "rates/ratelists.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
#include "shell/changelog.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "support/databasedump.h"
#include "support/demodatabase.h"
#include "synch/json.h"
#include "synch/serverupdates.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace fenlark;

namespace {

const QDate Arrival(2031, 5, 10);

// Yes to every question, a reason when one is asked.
class Answers : public SaveQuestions, public CancelQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return acceptLimits; }
    bool acceptPastStart(const QDate &) override { return true; }
    bool changeAllLegs() override { return true; }
    bool changeLinkedBookings() override { return true; }
    bool checkRates() override { return false; }
    bool repriceAtNewRoom(const QString &) override { return false; }
    bool cancelBooking(bool multipleRooms) override
    {
        askedMultiple = multipleRooms;
        return yes;
    }
    bool cancelRoom() override { return yes; }
    std::optional<QString> reason() override { return given; }

    bool yes = true;
    bool acceptLimits = true;
    bool askedMultiple = false;
    std::optional<QString> given = QStringLiteral("Guest ill");
};

// Everything a write could touch, to show that a refused one left it all as it was.
QString snapshot(Database &db)
{
    return dumpDatabase(db.connection());
}

QStringList logRows(Database &db)
{
    QStringList rows;
    for (const LogEntry &e : ChangeLog::entries(db))
        rows << e.logtype + QLatin1Char(':') + e.TableName + QLatin1Char(':') + QString::number(e.bbtableId);
    return rows;
}

QString lastAudit(Database &db)
{
    return db.scalar("select Notes from audit order by rowid desc limit 1").toString();
}

QMap<QDate, double> nightsOf(Database &db, qint32 booking, qint32 room)
{
    QMap<QDate, double> nights;
    for (const DailyRate &rate : DailyRate::forLeg(db, booking, room))
        nights.insert(rate.CalDate, rate.RoomRate);
    return nights;
}

// (booking, room, night) held by more than one rate.
int nightsWithTwoRates(Database &db)
{
    return db.scalar("select count(*) from (select 1 from dailyrate group by BBBookingID, BBRoomID, CalDate "
                     "having count(*) > 1)")
        .toInt();
}

// Live rooms of bookings in service whose nights are not exactly one rate each.
int roomsWithoutOneRatePerNight(Database &db)
{
    return db.scalar("select count(*) from guest g join booking b on b.BBBookingID = g.BBBookingID "
                     "where b.Status <> 'U' and (select count(*) from dailyrate d where d.BBBookingID = g.BBBookingID "
                     "and d.BBRoomID = g.BBRoomID and d.CalDate >= b.FromDate and d.CalDate < b.ToDate) "
                     "<> julianday(b.ToDate) - julianday(b.FromDate)")
        .toInt();
}

} // namespace

class TestBookingMaintenance : public QObject {
    Q_OBJECT

    std::unique_ptr<DemoDatabase> m_test;
    RateData m_rates;
    BBSetup m_setup;
    UserStruct m_user = UserStruct::autoAdmin();
    Answers m_answers;

    Database &db() { return m_test->db(); }

    qint32 book(std::vector<qint32> rooms, QDate from = Arrival, int nights = 3, const QString &surname = QStringLiteral("Marsh"))
    {
        NewBookingRequest r;
        r.FromDate = from;
        r.ToDate = from.addDays(nights);
        r.surname = surname;
        for (qint32 room : rooms) {
            const std::vector<qint32> offered = getRoomRates(m_rates, r.FromDate, r.ToDate, room);
            r.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
        }
        const auto result = BookingWriter(db(), m_rates, m_setup, m_user).save(r, m_answers);
        return result ? result->BBBookingID : 0;
    }

    qint32 guestOf(qint32 booking, qint32 room)
    {
        Guest leg;
        return leg.fetchLeg(db(), booking, room) ? leg.BBGuestID : 0;
    }

    Result<CancelOutcome> cancelBooking(qint32 booking, const UserStruct &user)
    {
        return BookingCancel(db(), user).cancelBooking(booking, m_answers);
    }

    Result<CancelOutcome> cancelRoom(qint32 booking, qint32 room)
    {
        return BookingCancel(db(), m_user).cancelRoom(booking, room, m_answers);
    }

    Result<RestoreOutcome> restore(qint32 guest) { return restoreLeg(db(), m_rates, m_user, guest); }

    Result<AddRoomOutcome> addRoom(qint32 booking, qint32 room, qint16 adults = 2)
    {
        Booking head;
        head.fetch(db(), booking);
        const std::vector<qint32> offered = getRoomRates(m_rates, head.FromDate, head.ToDate, room);
        AddRoomRequest request{booking, room, offered.empty() ? 0 : offered.front(), 0, adults, 0, 0};
        return RoomAdder(db(), m_rates, m_user).add(request, m_answers);
    }

private Q_SLOTS:
    void init()
    {
        m_test = std::make_unique<DemoDatabase>();
        m_answers = Answers();
        m_user = UserStruct::autoAdmin();
        m_rates = RateData::load(db());
        m_setup.fetch(db());
    }

    void cancellingABookingMovesHeadAndRoomsToTheCancelledTablesAndKeepsTheRates()
    {
        const qint32 booking = book({1, 2});
        const qint32 first = guestOf(booking, 1), second = guestOf(booking, 2);
        db().execute("delete from dblog");
        const auto cancelled = cancelBooking(booking, m_user);
        QVERIFY(cancelled);
        QVERIFY(cancelled->cancelled);
        QVERIFY(m_answers.askedMultiple);
        QCOMPARE(cancelled->changes.bookings(), QSet<qint32>{booking});

        QCOMPARE(db().scalar("select count(*) from booking where BBBookingID = ?", {booking}).toInt(), 0);
        QCOMPARE(db().scalar("select count(*) from guest where BBBookingID = ?", {booking}).toInt(), 0);
        QCOMPARE(db().scalar("select count(*) from bookingdel where BBBookingID = ?", {booking}).toInt(), 1);
        QCOMPARE(db().scalar("select deluser from bookingdel where BBBookingID = ?", {booking}).toString(), QString("admin"));
        QCOMPARE(db().scalar("select Status from bookingdel where BBBookingID = ?", {booking}).toString(), QString("W"));
        QCOMPARE(db().scalar("select count(*) from guestdel where BBBookingID = ?", {booking}).toInt(), 2);
        QCOMPARE(db().scalar("select count(*) from dailyrate where BBBookingID = ?", {booking}).toInt(), 6);
        QCOMPARE(logRows(db()), (QStringList{QString("D:booking:%1").arg(booking), QString("D:guest:%1").arg(first),
                                             QString("D:guest:%1").arg(second)}));
        QCOMPARE(lastAudit(db()), QString("Booking (ID %1) cancelled. (Guest ill)").arg(booking));

        // A single room booking asks the other question.
        const qint32 single = book({3});
        QVERIFY(cancelBooking(single, m_user)->cancelled);
        QVERIFY(!m_answers.askedMultiple);
    }

    void cancellingOneRoomKeepsTheHeadAndTheOtherRooms()
    {
        const qint32 booking = book({1, 2});
        const qint32 second = guestOf(booking, 2);
        const auto cancelled = cancelRoom(booking, 2);
        QVERIFY(cancelled && cancelled->cancelled);
        QCOMPARE(Guest::legsOf(db(), booking).size(), size_t(1));
        QCOMPARE(db().scalar("select count(*) from guestdel where BBGuestID = ?", {second}).toInt(), 1);
        QCOMPARE(db().scalar("select count(*) from bookingdel").toInt(), 0);
        QCOMPARE(lastAudit(db()), QString("Booking ID %1, Room 2 (2) cancelled. (Guest ill)").arg(booking));
        QCOMPARE(logRows(db()).last(), QString("D:guest:%1").arg(second));

        // The booking's only room may go too; its head stays.
        QVERIFY(cancelRoom(booking, 1)->cancelled);
        QCOMPARE(db().scalar("select count(*) from booking where BBBookingID = ?", {booking}).toInt(), 1);
    }

    void refusedOrDeclinedCancellationsWriteNothing()
    {
        const qint32 booking = book({1, 2});
        Extra extra;
        extra.BBGuestID = guestOf(booking, 2);
        extra.Qty = 1;
        extra.Price = 50;
        const QString untouched = snapshot(db());

        UserStruct clerk;
        clerk.UserID = 4;
        clerk.UserName = QStringLiteral("sam");
        clerk.CancelRoom = true;
        QCOMPARE(cancelBooking(booking, clerk).refusal().id(), 5100);
        QCOMPARE(cancelBooking(9999, m_user).refusal().id(), 5827);
        QCOMPARE(cancelRoom(booking, 7).refusal().id(), 6410);
        m_answers.given = QStringLiteral("   ");
        QCOMPARE(cancelBooking(booking, m_user).refusal().id(), 6412);
        QCOMPARE(cancelRoom(booking, 1).refusal().id(), 6412);
        m_answers.given = std::nullopt;
        QVERIFY(!cancelBooking(booking, m_user)->cancelled);
        m_answers.given = QStringLiteral("Guest ill");
        m_answers.yes = false;
        QVERIFY(!cancelBooking(booking, m_user)->cancelled);
        QVERIFY(!cancelRoom(booking, 1)->cancelled);
        QCOMPARE(snapshot(db()), untouched);

        m_answers.yes = true;
        extra.update(db());
        const QString withExtra = snapshot(db());
        QCOMPARE(cancelBooking(booking, m_user).refusal().id(), 6400);
        QCOMPARE(cancelRoom(booking, 2).refusal().id(), 6406);
        clerk.CancelRoom = false;
        QCOMPARE(BookingCancel(db(), clerk).cancelRoom(booking, 1, m_answers).refusal().id(), 5100);
        QCOMPARE(snapshot(db()), withExtra);
        // The room without extras may go.
        QVERIFY(cancelRoom(booking, 1)->cancelled);
    }

    void aCancelledAndRestoredBookingComesBackWithTheSameKeysAndRates()
    {
        const qint32 booking = book({1, 2});
        const qint32 first = guestOf(booking, 1), second = guestOf(booking, 2);
        db().execute("update dailyrate set RoomRate = 123.45 where BBBookingID = ? and BBRoomID = 1 and CalDate = ?",
                     {booking, sqlDate(Arrival.addDays(1))});
        Booking before;
        before.fetch(db(), booking);
        const QMap<QDate, double> rates1 = nightsOf(db(), booking, 1), rates2 = nightsOf(db(), booking, 2);
        QVERIFY(cancelBooking(booking, m_user)->cancelled);

        const auto restored = restore(first);
        QVERIFY(restored);
        QVERIFY(restored->headRestored);
        QCOMPARE(restored->BBBookingID, booking);
        QCOMPARE(restored->stillCancelled, QStringList{"Room 2"});
        QVERIFY(!restored->doubleBooked);
        Booking after;
        QVERIFY(after.fetch(db(), booking));
        QCOMPARE(after.Deposit, before.Deposit);
        QCOMPARE(after.BookingDate, before.BookingDate);
        QCOMPARE(guestOf(booking, 1), first);
        QCOMPARE(nightsOf(db(), booking, 1), rates1);
        QCOMPARE(nightsOf(db(), booking, 1).value(Arrival.addDays(1)), 123.45);
        QCOMPARE(db().scalar("select count(*) from bookingdel").toInt(), 0);
        QCOMPARE(logRows(db()).mid(logRows(db()).size() - 2),
                 (QStringList{QString("U:guest:%1").arg(first), QString("U:booking:%1").arg(booking)}));

        // The second room finds its head live and leaves the cancelled heads alone.
        db().execute("insert into bookingdel (BBBookingID, deldate) values (?, '2030-01-01 00:00:00')", {booking});
        const auto again = restore(second);
        QVERIFY(again);
        QVERIFY(!again->headRestored);
        QVERIFY(again->stillCancelled.isEmpty());
        QCOMPARE(db().scalar("select count(*) from bookingdel").toInt(), 1);
        QCOMPARE(guestOf(booking, 2), second);
        QCOMPARE(nightsOf(db(), booking, 2), rates2);
    }

    void aSecondCancelOfARestoredRoomLeavesOneCancelledCopy()
    {
        const qint32 booking = book({1, 2});
        const qint32 second = guestOf(booking, 2);
        QVERIFY(cancelRoom(booking, 2)->cancelled);
        QVERIFY(restore(second));
        QVERIFY(cancelRoom(booking, 2)->cancelled);
        QCOMPARE(db().scalar("select count(*) from guestdel where BBGuestID = ?", {second}).toInt(), 1);

        // The same routine replaces an older copy of a head as well.
        QVERIFY(CancelLog::deleteRecord(db(), CancelledTable::Booking, booking, "synch"));
        QVERIFY(CancelLog::deleteRecord(db(), CancelledTable::Booking, booking, "synch"));
        QCOMPARE(db().scalar("select count(*) from bookingdel where BBBookingID = ?", {booking}).toInt(), 1);
        QVERIFY(!CancelLog::deleteRecord(db(), CancelledTable::Guest, 99999, "synch"));
    }

    void aDeletionFromTheServerCopiesTheRoomAsTheDeskDoes()
    {
        const qint32 booking = book({1, 2});
        const qint32 second = guestOf(booking, 2);
        db().execute("update guest set GuestID = 9002, NoAdults = 3 where BBGuestID = ?", {second});
        QVERIFY(cancelRoom(booking, 2)->cancelled);
        QVERIFY(restore(second));
        ServerUpdateApplier applier(db());
        Transaction transaction(db());
        applier.applyServerUpdates(*json::parse(QStringLiteral(
            R"({"logupdates":[{"tablename":"guest","logtype":"D","dblogid":7,"tableid":9002}]})"))[QStringLiteral("logupdates")]
                                        .array());
        transaction.commit();
        QCOMPARE(db().scalar("select count(*) from guestdel where BBGuestID = ?", {second}).toInt(), 1);
        QCOMPARE(db().scalar("select deluser || ':' || NoAdults || ':' || BBRoomID from guestdel where BBGuestID = ?", {second})
                     .toString(),
                 QString("synch:3:2"));
        QCOMPARE(guestOf(booking, 2), 0);
    }

    void restoresThatCannotBeDoneAreRefusedBeforeAnythingIsWritten()
    {
        const qint32 booking = book({1, 2});
        const qint32 second = guestOf(booking, 2);
        QCOMPARE(restore(second).refusal().id(), 6414);
        QCOMPARE(restore(99999).refusal().id(), 6423);

        // The room taken again by its own booking.
        QVERIFY(cancelRoom(booking, 2)->cancelled);
        QVERIFY(addRoom(booking, 2));
        QString untouched = snapshot(db());
        QCOMPARE(restore(second).refusal().id(), 6426);
        QCOMPARE(snapshot(db()), untouched);

        // A booking gone from both tables has nothing to take the room back.
        const qint32 other = book({5});
        const qint32 leg = guestOf(other, 5);
        QVERIFY(cancelBooking(other, m_user)->cancelled);
        db().execute("delete from bookingdel where BBBookingID = ?", {other});
        untouched = snapshot(db());
        QCOMPARE(restore(leg).refusal().id(), 6425);
        QCOMPARE(snapshot(db()), untouched);
    }

    void aRestoreIntoARoomSoldMeanwhileGoesAheadAndIsReportedAsADoubleBooking()
    {
        const qint32 first = book({5});
        const qint32 leg = guestOf(first, 5);
        QVERIFY(cancelBooking(first, m_user)->cancelled);
        QVERIFY(!DoubleBookingScan(db()).scan());
        const qint32 second = book({5}, Arrival.addDays(1), 1, "Late");
        QVERIFY(second > 0);
        const auto restored = restore(leg);
        QVERIFY(restored);
        QVERIFY(restored->doubleBooked);
        DoubleBookingScan scan(db());
        QVERIFY(scan.scan());
        QCOMPARE(scan.clashes().size(), size_t(2));
    }

    void aRestoredRoomWhoseBookingMovedIsPricedForItsNewNights()
    {
        const qint32 booking = book({1, 2});
        const qint32 second = guestOf(booking, 2);
        QVERIFY(cancelRoom(booking, 2)->cancelled);
        auto edit = loadBookingEdit(db(), booking, 1);
        edit->fromDate = Arrival.addDays(2);
        edit->toDate = Arrival.addDays(6);
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, m_answers).save(*edit));
        QVERIFY(restore(second));
        const QMap<QDate, double> nights = nightsOf(db(), booking, 2);
        QCOMPARE(nights.firstKey(), Arrival.addDays(2));
        QCOMPARE(nights.size(), 4);
        QVERIFY(nights.value(Arrival.addDays(5)) > 0);
        QCOMPARE(roomsWithoutOneRatePerNight(db()), 0);
    }

    void cancelledRoomsAreListedNewestFirstAndFilteredBySurname()
    {
        const qint32 a = book({1}, Arrival, 3, "Ñúñez");
        const qint32 b = book({2, 3}, Arrival.addDays(5), 2, "Smith");
        QVERIFY(cancelBooking(a, m_user)->cancelled);
        db().execute("update guestdel set deldate = '2020-01-01 10:00:00'");
        QVERIFY(cancelRoom(b, 3)->cancelled);

        const std::vector<CancelledLeg> all = cancelledLegs(db());
        QCOMPARE(all.size(), size_t(2));
        QCOMPARE(all[0].BBBookingID, b);
        QCOMPARE(all[0].roomName, QString("Room 3"));
        QCOMPARE(all[0].fromDate, Arrival.addDays(5));   // from the live head
        QCOMPARE(all[0].user, QString("admin"));
        QCOMPARE(all[1].BBBookingID, a);
        QCOMPARE(all[1].toDate, Arrival.addDays(3));      // from the cancelled head
        QCOMPARE(all[1].deleted, QDateTime(QDate(2020, 1, 1), QTime(10, 0)));
        QVERIFY(all[1].client.contains("Ñúñez"));

        QCOMPARE(cancelledLegs(db(), "ñú").size(), size_t(1));
        QCOMPARE(cancelledLegs(db(), "sm%").front().BBBookingID, b);
        QCOMPARE(cancelledLegs(db(), "O'").size(), size_t(0));
        QCOMPARE(cancelledLegs(db(), {}, 1).size(), size_t(1));

        // A room whose booking is in neither table shows no dates.
        db().execute("delete from booking where BBBookingID = ?", {b});
        QVERIFY(!cancelledLegs(db()).front().fromDate.isValid());
    }

    void addingARoomWritesTheLegItsPricedNightsAndTheHeadLast()
    {
        const qint32 booking = book({1});
        db().execute("delete from dblog");
        const auto added = addRoom(booking, 6);
        QVERIFY(added);
        QCOMPARE(added->changes.bookings(), QSet<qint32>{booking});
        Guest leg;
        QVERIFY(leg.fetchLeg(db(), booking, 6));
        QCOMPARE(leg.BBGuestID, added->BBGuestID);
        QCOMPARE(leg.NoAdults, qint16(2));
        Booking head;
        head.fetch(db(), booking);
        QCOMPARE(leg.BBClientID, head.MadeBy);
        const StayPrice price = priceStay(m_rates, {6, leg.BBRateID, 0, Arrival, Arrival.addDays(3), 2, 0, 0});
        QCOMPARE(nightsOf(db(), booking, 6), price.nights);
        QCOMPARE(added->total, price.total);
        QCOMPARE(logRows(db()), (QStringList{QString("U:guest:%1").arg(leg.BBGuestID), QString("U:booking:%1").arg(booking)}));
        QCOMPARE(lastAudit(db()), QString("Booking ID %1 New Room ID 6 ()").arg(booking));
    }

    void addingARoomWhereACancelledRoomLeftRatesReplacesThem()
    {
        const qint32 booking = book({1, 2});
        QVERIFY(cancelRoom(booking, 2)->cancelled);
        db().execute("update dailyrate set RoomRate = 999 where BBBookingID = ? and BBRoomID = 2", {booking});
        QVERIFY(addRoom(booking, 2, 1));
        QCOMPARE(nightsWithTwoRates(db()), 0);
        QCOMPARE(nightsOf(db(), booking, 2).size(), 3);
        QVERIFY(nightsOf(db(), booking, 2).first() != 999);
    }

    void aRoomAddedToAnOutOfServiceBookingHasNoGuestsAndNoRates()
    {
        const qint32 booking = book({1});
        db().execute("update booking set Status = 'U' where BBBookingID = ?", {booking});
        QVERIFY(addRoom(booking, 6, 3));
        Guest leg;
        leg.fetchLeg(db(), booking, 6);
        QCOMPARE(leg.NoAdults, qint16(0));
        QVERIFY(nightsOf(db(), booking, 6).isEmpty());
    }

    void roomsThatCannotBeAddedAreRefusedBeforeAnythingIsWritten()
    {
        const qint32 booking = book({1});
        const qint32 other = book({6}, Arrival.addDays(2), 2);
        QVERIFY(other > 0);
        const QString untouched = snapshot(db());
        QCOMPARE(addRoom(booking, 6).refusal().id(), 5836);   // another desk's booking took it
        QCOMPARE(addRoom(booking, 1).refusal().id(), 5836);   // the booking holds it already
        QCOMPARE(addRoom(booking, 77).refusal().id(), 5975);
        QCOMPARE(addRoom(4242, 7).refusal().id(), 5827);
        AddRoomRequest unoffered{booking, 7, 987654, 0, 2, 0, 0};
        QCOMPARE(RoomAdder(db(), m_rates, m_user).add(unoffered, m_answers).refusal().id(), 5977);
        AddRoomRequest stranger{booking, 7, 0, 555555, 2, 0, 0};
        QCOMPARE(RoomAdder(db(), m_rates, m_user).add(stranger, m_answers).refusal().id(), 5808);
        AddRoomRequest negative{booking, 7, 0, 0, -1, 0, 0};
        QCOMPARE(RoomAdder(db(), m_rates, m_user).add(negative, m_answers).refusal().id(), 5979);
        m_answers.acceptLimits = false;
        QCOMPARE(addRoom(booking, 7, 9).refusal().id(), 5981);
        QCOMPARE(snapshot(db()), untouched);
    }

    void freeRoomsComeFromTheCalendarWithoutTheExcludedRoomOrTheDayOfLeaving()
    {
        const qint32 booking = book({1, 2});
        QVERIFY(book({3}, Arrival.addDays(3), 2) > 0);   // arrives the day the first leaves
        QVERIFY(book({4}, Arrival.addDays(2), 2) > 0);
        Calendar calendar;
        const std::vector<Room> rooms = getRooms(db());
        const std::vector<qint32> free = fillFreeRooms(db(), calendar, rooms, 5, Arrival, Arrival.addDays(2));
        QCOMPARE(free, (std::vector<qint32>{3, 6, 7, 8, 9, 10, 11, 12}));
        QVERIFY(calendar.isLoaded(Arrival.addDays(2)));

        // Changing a room offers neither its own nor the booking's other rooms.
        const auto change = roomsForChange(db(), calendar, rooms, booking, 1, Arrival.addDays(5), Arrival.addDays(7));
        QVERIFY(change);
        QVERIFY(std::find(change->begin(), change->end(), 1) == change->end());
        QVERIFY(std::find(change->begin(), change->end(), 2) == change->end());
        QVERIFY(std::find(change->begin(), change->end(), 3) != change->end());
        QVERIFY(std::find(change->begin(), change->end(), 4) != change->end());

        for (qint32 room = 3; room <= 12; ++room)
            db().execute("insert into guest (BBBookingID, BBRoomID) values (?, ?)", {booking, room});
        Calendar fresh;
        QCOMPARE(roomsForChange(db(), fresh, rooms, booking, 1, Arrival, Arrival.addDays(3)).refusal().id(), 6430);
    }

    void aSwapExchangesTheRoomsAndMovesTheRatesWithThem()
    {
        const qint32 a = book({5}, Arrival, 4, "Ash");
        const qint32 b = book({6}, Arrival.addDays(1), 2, "Birch");
        const qint32 legA = guestOf(a, 5), legB = guestOf(b, 6);
        const QMap<QDate, double> ratesA = nightsOf(db(), a, 5), ratesB = nightsOf(db(), b, 6);
        db().execute("delete from dblog");
        RoomSwap swap(db(), m_user);
        QVERIFY(swap.check(legA, legB));
        const auto swapped = swap.swap(legA, legB);
        QVERIFY(swapped);
        QCOMPARE(swapped->bookings(), (QSet<qint32>{a, b}));
        QCOMPARE(guestOf(a, 6), legA);
        QCOMPARE(guestOf(b, 5), legB);
        QCOMPARE(nightsOf(db(), a, 6), ratesA);
        QCOMPARE(nightsOf(db(), b, 5), ratesB);
        QCOMPARE(logRows(db()), (QStringList{QString("U:booking:%1").arg(a), QString("U:booking:%1").arg(b),
                                             QString("U:guest:%1").arg(legA), QString("U:guest:%1").arg(legB)}));
        QCOMPARE(lastAudit(db()), QString("Guest IDs %1/%2 (Rooms swapped)").arg(legA).arg(legB));
    }

    void aSwapInsideOneBookingMovesTypedRatesWithTheirRooms()
    {
        const qint32 booking = book({5, 6});
        db().execute("update dailyrate set RoomRate = 111 where BBBookingID = ? and BBRoomID = 5", {booking});
        db().execute("update dailyrate set RoomRate = 222 where BBBookingID = ? and BBRoomID = 6", {booking});
        const qint32 leg5 = guestOf(booking, 5), leg6 = guestOf(booking, 6);
        QVERIFY(RoomSwap(db(), m_user).swap(leg5, leg6));
        QCOMPARE(guestOf(booking, 6), leg5);
        QCOMPARE(nightsOf(db(), booking, 6).values(), (QList<double>{111, 111, 111}));
        QCOMPARE(nightsOf(db(), booking, 5).values(), (QList<double>{222, 222, 222}));
        QCOMPARE(db().scalar("select count(*) from dailyrate where BBRoomID = -1").toInt(), 0);
    }

    void swapsThatCannotBeDoneAreRefusedBeforeAnythingIsWritten()
    {
        const qint32 longStay = book({5}, Arrival, 6, "Long");
        const qint32 shortOne = book({6}, Arrival, 2, "Short");
        const qint32 shortTwo = book({6}, Arrival.addDays(3), 2, "Later");
        QVERIFY(shortTwo > 0);
        const qint32 legLong = guestOf(longStay, 5), legShort = guestOf(shortOne, 6);
        RoomSwap swap(db(), m_user);
        const QString untouched = snapshot(db());
        QCOMPARE(swap.swap(legLong, legShort).refusal().id(), 6434);
        QCOMPARE(swap.check(legShort, legLong).refusal().id(), 6434);
        QCOMPARE(swap.swap(legLong, legLong).refusal().id(), 6433);
        QCOMPARE(swap.check(legLong, 0).refusal().id(), 6432);
        QCOMPARE(swap.swap(legLong, 88888).refusal().id(), 5825);
        QCOMPARE(snapshot(db()), untouched);

        // The second short stay moves out of the way: now the long one fits.
        QVERIFY(cancelBooking(shortTwo, m_user)->cancelled);
        QVERIFY(swap.swap(legLong, legShort));
    }

    void aRoomDeletedInTheMiddleOfASwapUndoesTheWholeSwap()
    {
        const qint32 a = book({5});
        const qint32 b = book({6}, Arrival, 3, "Birch");
        const qint32 legA = guestOf(a, 5), legB = guestOf(b, 6);
        const QString untouched = snapshot(db());
        // Another desk (or the server) takes the second room away as the first moves.
        db().execute(QString("create trigger gone after update on guest when new.BBGuestID = %1 begin "
                             "delete from guest where BBGuestID = %2; end").arg(legA).arg(legB));
        QCOMPARE(RoomSwap(db(), m_user).swap(legA, legB).refusal().id(), 5825);
        db().execute("drop trigger gone");
        QCOMPARE(snapshot(db()), untouched);
    }

    void legsStayingOnADateLeaveOutThoseLeavingThatDay()
    {
        const qint32 a = book({5}, Arrival, 2, "Ash");
        const qint32 b = book({3}, Arrival.addDays(1), 2, "Birch");
        QVERIFY(a > 0 && b > 0);
        QStringList lines;
        for (const StayingLeg &leg : legsStaying(db(), Arrival.addDays(1)))
            lines << leg.text();
        QCOMPARE(lines, (QStringList{"Room 3 (Birch)", "Room 5 (Ash)"}));
        QCOMPARE(legsStaying(db(), Arrival.addDays(2)).size(), size_t(1));
    }

    void checkingInIsRefusedBeforeArrivalAndTheMarksExcludeEachOther()
    {
        const qint32 booking = book({5});
        const QDateTime dayBefore(Arrival.addDays(-1), QTime(20, 0));
        QCOMPARE(setCheckInOut(db(), booking, 5, CheckState::CheckedIn, dayBefore).refusal().id(), 5819);
        QCOMPARE(setCheckInOut(db(), booking, 7, CheckState::CheckedIn).refusal().id(), 5825);
        QVERIFY(setCheckInOut(db(), booking, 5, CheckState::None, dayBefore));
        const QDateTime arrivalDay(Arrival, QTime(14, 0));
        QVERIFY(setCheckInOut(db(), booking, 5, CheckState::CheckedIn, arrivalDay));
        QCOMPARE(db().scalar("select CheckInOut from guest where BBBookingID = ?", {booking}).toString(), QString("I"));
        QVERIFY(setCheckInOut(db(), booking, 5, CheckState::CheckedOut, arrivalDay.addDays(3)));
        QCOMPARE(db().scalar("select CheckInOut from guest where BBBookingID = ?", {booking}).toString(), QString("K"));
        QVERIFY(setCheckInOut(db(), booking, 5, CheckState::None, arrivalDay));
        QCOMPARE(db().scalar("select CheckInOut from guest where BBBookingID = ?", {booking}).toString(), QString());
    }

    void noNightEverHasTwoRatesWhateverTheSequence_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed : {1u, 2u, 3u, 5u})
            QTest::addRow("seed %u", seed) << seed;
    }

    void noNightEverHasTwoRatesWhateverTheSequence()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        const int roomCount = 12;
        std::vector<qint32> bookings;
        for (int i = 0; i < 8; ++i) {
            const qint32 room = static_cast<qint32>(1 + i % 6 * 2);
            std::vector<qint32> rooms{room};
            if (random.bounded(2u) == 0)
                rooms.push_back(room + 1);
            const qint32 booking = book(rooms, Arrival.addDays(static_cast<int>(i / 6 * 10 + random.bounded(6u))),
                                        1 + static_cast<int>(random.bounded(4u)));
            if (booking > 0)
                bookings.push_back(booking);
        }
        auto anyOf = [&random](const auto &list) { return list[random.bounded(static_cast<quint32>(list.size()))]; };
        auto room = [&random] { return static_cast<qint32>(1 + random.bounded(static_cast<quint32>(roomCount))); };
        auto legs = [this] {
            std::vector<std::pair<qint32, qint32>> found;   // booking, room
            QSqlQuery q = db().query("select BBBookingID, BBRoomID from guest");
            while (q.next())
                found.emplace_back(q.value(0).toInt(), q.value(1).toInt());
            return found;
        };
        for (int step = 0; step < 60; ++step) {
            const auto live = legs();
            const quint32 operation = random.bounded(6u);
            if (operation == 0) {
                (void)addRoom(anyOf(bookings), room());
            } else if (operation == 1 && !live.empty()) {
                (void)cancelBooking(anyOf(live).first, m_user);
            } else if (operation == 2 && !live.empty()) {
                const auto leg = anyOf(live);
                (void)cancelRoom(leg.first, leg.second);
            } else if (operation == 3) {
                const QVariant cancelled = db().scalar("select BBGuestID from guestdel order by random() limit 1");
                if (cancelled.isValid())
                    (void)restore(cancelled.toInt());
            } else if (operation == 4) {
                const std::vector<StayingLeg> staying = legsStaying(db(), Arrival.addDays(static_cast<int>(random.bounded(12u))));
                if (staying.size() > 1)
                    (void)RoomSwap(db(), m_user).swap(anyOf(staying).BBGuestID, anyOf(staying).BBGuestID);
            } else if (operation == 5 && !live.empty()) {
                const auto leg = anyOf(live);
                if (auto edit = loadBookingEdit(db(), leg.first, leg.second)) {
                    edit->roomId = room();
                    (void)BookingSave(db(), m_rates, m_setup, m_user, m_answers).save(*edit);
                }
            }
            QVERIFY2(nightsWithTwoRates(db()) == 0, qPrintable(QString("step %1, operation %2").arg(step).arg(operation)));
            QVERIFY2(roomsWithoutOneRatePerNight(db()) == 0, qPrintable(QString("step %1, operation %2").arg(step).arg(operation)));
        }
    }
};

QTEST_GUILESS_MAIN(TestBookingMaintenance)
#include "test_bookingmaintenance.moc"

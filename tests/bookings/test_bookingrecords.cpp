#include "accounts/accountrecords.h"
#include "bookings/bookingcodes.h"
#include "bookings/bookingdetails.h"
#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "clients/clientrecords.h"
#include "shell/changelog.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

QString logOf(Database &db, const QString &table, qint32 id)
{
    return db.scalar("select logtype from dblog where TableName = ? and bbtableId = ?", {table, id}).toString();
}

int rateRows(Database &db, const QString &where = QString(), const QVariantList &values = {})
{
    return db.scalar("select count(*) from dailyrate" + (where.isEmpty() ? QString() : " where " + where), values).toInt();
}

// A booking of two rooms (3 and 4) over four nights, 10 to 14 March, with its
// rates, and an empty log.
struct TwoRoomStay {
    explicit TwoRoomStay(Database &db)
    {
        booking.FromDate = QDate(2026, 3, 10);
        booking.ToDate = QDate(2026, 3, 14);
        booking.Status = "C";
        booking.update(db);
        for (qint32 room : {3, 4}) {
            Guest leg;
            leg.BBBookingID = booking.BBBookingID;
            leg.BBRoomID = room;
            leg.NoAdults = 2;
            leg.update(db);
            legs.push_back(leg);
            for (const QDate &night : nightsOf(booking.FromDate, booking.ToDate)) {
                DailyRate rate;
                rate.CalDate = night;
                rate.BBBookingID = booking.BBBookingID;
                rate.BBRoomID = room;
                rate.RoomRate = 100 + room;
                rate.update(db);
            }
        }
        db.execute("delete from dblog");
    }
    Booking booking;
    std::vector<Guest> legs;
};

} // namespace

class TestBookingRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bookingRoundTripsEveryColumn()
    {
        TestDatabase t;
        Booking b;
        b.BookingID = 44;
        b.BookingType = "N";
        b.BookingDate = QDateTime(QDate(2026, 2, 1), QTime(9, 8, 7));
        b.FromDate = QDate(2026, 5, 1);
        b.ToDate = QDate(2026, 5, 2);
        b.Status = "P";
        b.MadeBy = 17;
        b.Deposit = 250.5;
        b.BBRateSheetID = 3;
        b.BBAccountID = 8;
        b.AgentComm = 12.5;
        b.ExtBookingID = "EXT-'\"%_";
        b.Source = QString(5000, QChar('s'));
        b.Notes = QString::fromUtf8("Мария 王 \"quoted\" 100%");
        b.ReservedUntil = QDateTime(QDate(2026, 4, 30), QTime(18, 0));
        b.CurrencyCode = "EUR";
        b.ExchangeRate = 0.0525;
        b.update(t.db());
        Booking back;
        QVERIFY(back.fetch(t.db(), b.BBBookingID));
        for (const auto &c : Booking::columns())
            QVERIFY2(recorddetail::toSql(back, c) == recorddetail::toSql(b, c), c.name);
    }

    void guestRoundTripsEveryColumnAndReadsNullsAsZero()
    {
        TestDatabase t;
        Guest g;
        g.GuestID = 5;
        g.BBBookingID = 6;
        g.BBRoomID = 7;
        g.BBClientID = 8;
        g.NoAdults = 2;
        g.Child1 = 1;
        g.Child2 = 3;
        g.BBRateID = 9;
        g.BBClient2ID = 10;
        g.BBAccountID = 11;
        g.Reference = QString::fromUtf8("Ref 'x' ñ");
        g.CheckInOut = "I";
        g.update(t.db());
        Guest back;
        QVERIFY(back.fetch(t.db(), g.BBGuestID));
        for (const auto &c : Guest::columns())
            QVERIFY2(recorddetail::toSql(back, c) == recorddetail::toSql(g, c), c.name);

        // A row from elsewhere may hold nulls where a number belongs.
        QSqlQuery q = t.db().query("select 70 as BBGuestID, null as BBRateID, null as BBClient2ID");
        QVERIFY(q.next());
        Guest nulls;
        nulls.BBRateID = 99;
        nulls.BBClient2ID = 99;
        nulls.fillFields(q.record());
        QCOMPARE(nulls.BBRateID, 0);
        QCOMPARE(nulls.BBClient2ID, 0);
    }

    void nullExternalIdStaysNullAndReadsEmpty()
    {
        TestDatabase t;
        Booking b;
        b.update(t.db());
        QVERIFY(t.db().scalar("select extbookingid is null from booking").toBool());
        Booking back;
        QVERIFY(back.fetch(t.db(), b.BBBookingID));
        QVERIFY(back.ExtBookingID.isEmpty());
    }

    void reservedUntilPlaceholdersStayDistinct()
    {
        TestDatabase t;
        Booking fresh;
        QCOMPARE(fresh.ReservedUntil, reservedUntilNewHead());
        fresh.update(t.db());
        QCOMPARE(t.db().scalar("select reserveduntil from booking").toString(), QString("1899-12-30 00:00:00"));

        Booking edited = fresh;
        edited.ReservedUntil = reservedUntilForSave("C", QDateTime(QDate(2026, 1, 1), QTime(12, 0)));
        edited.update(t.db());
        QCOMPARE(t.db().scalar("select reserveduntil from booking").toString(), QString("1899-12-31 00:00:00"));
        Booking back;
        QVERIFY(back.fetch(t.db(), edited.BBBookingID));
        QCOMPARE(back.ReservedUntil, reservedUntilEditorSave());
        QVERIFY(back.ReservedUntil != reservedUntilNewHead());

        const QDateTime hold(QDate(2026, 6, 1), QTime(14, 30));
        QCOMPARE(reservedUntilForSave("P", hold), hold);
        QCOMPARE(reservedUntilForSave("R", hold), hold);
        QCOMPARE(reservedUntilForSave("U", hold), reservedUntilEditorSave());
    }

    void dailyRateLogging_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<bool>("logsBooking");
        QTest::addColumn<int>("rowsLeft");
        QTest::newRow("deleteBooking") << "deleteBooking" << true << 0;
        QTest::newRow("delete one room") << "delete" << true << 4;
        QTest::newRow("add a night") << "update" << false << 9;
        QTest::newRow("changeRoom") << "changeRoom" << false << 8;
        QTest::newRow("deleteBeforeDate") << "deleteBeforeDate" << false << 4;
        QTest::newRow("deleteAfterDate") << "deleteAfterDate" << false << 4;
        QTest::newRow("changeBookingID") << "changeBookingID" << false << 8;
    }

    void dailyRateLogging()
    {
        QFETCH(QString, operation);
        QFETCH(bool, logsBooking);
        QFETCH(int, rowsLeft);
        TestDatabase t;
        TwoRoomStay stay(t.db());
        const qint32 id = stay.booking.BBBookingID;
        const QDate middle(2026, 3, 12);
        if (operation == "deleteBooking") {
            DailyRate::deleteBooking(t.db(), id);
        } else if (operation == "delete") {
            DailyRate::remove(t.db(), id, 3);
            QCOMPARE(rateRows(t.db(), "bbroomid = 3"), 0);
        } else if (operation == "update") {
            DailyRate extra;
            extra.CalDate = QDate(2026, 3, 14);
            extra.BBBookingID = id;
            extra.BBRoomID = 3;
            extra.update(t.db());
        } else if (operation == "changeRoom") {
            DailyRate::changeRoom(t.db(), id, 3, 9);
            QCOMPARE(rateRows(t.db(), "bbroomid = 9"), 4);
            QCOMPARE(rateRows(t.db(), "bbroomid = 3"), 0);
        } else if (operation == "deleteBeforeDate") {
            DailyRate::deleteBeforeDate(t.db(), id, middle);
            // The night of the date itself stays.
            QCOMPARE(t.db().scalar("select min(caldate) from dailyrate").toString(), QString("2026-03-12"));
        } else if (operation == "deleteAfterDate") {
            DailyRate::deleteAfterDate(t.db(), id, middle);
            // The night of the date itself goes.
            QCOMPARE(t.db().scalar("select max(caldate) from dailyrate").toString(), QString("2026-03-11"));
        } else if (operation == "changeBookingID") {
            DailyRate::changeBookingID(t.db(), id, 77, 4);
            QCOMPARE(rateRows(t.db(), "bbbookingid = 77 and bbroomid = 4"), 4);
            QCOMPARE(rateRows(t.db(), "bbbookingid = ? and bbroomid = 4", {id}), 0);
        }
        QCOMPARE(rateRows(t.db(), "bbbookingid = ?", {id}) + rateRows(t.db(), "bbbookingid = 77"), rowsLeft);
        QCOMPARE(ChangeLog::count(t.db()), logsBooking ? 1 : 0);
        if (logsBooking)
            QCOMPARE(logOf(t.db(), "booking", id), QString("U"));
    }

    void dailyRateTouchesOnlyItsBooking()
    {
        TestDatabase t;
        TwoRoomStay first(t.db());
        TwoRoomStay second(t.db());
        DailyRate::deleteBooking(t.db(), first.booking.BBBookingID);
        DailyRate::deleteAfterDate(t.db(), first.booking.BBBookingID, QDate(2000, 1, 1));
        QCOMPARE(rateRows(t.db(), "bbbookingid = ?", {second.booking.BBBookingID}), 8);
        QCOMPARE(logOf(t.db(), "booking", second.booking.BBBookingID), QString());
    }

    void nightlyRateIsStoredRoundedAndAveraged()
    {
        TestDatabase t;
        TwoRoomStay stay(t.db());
        DailyRate odd;
        odd.CalDate = QDate(2026, 3, 14);
        odd.BBBookingID = stay.booking.BBBookingID;
        odd.BBRoomID = 3;
        odd.RoomRate = 2.675;   // the binary value is below the tie
        odd.update(t.db());
        QCOMPARE(t.db().scalar("select roomrate from dailyrate where caldate = '2026-03-14'").toDouble(), 2.67);
        DailyRate::remove(t.db(), stay.booking.BBBookingID, 3);
        QCOMPARE(DailyRate::fetchAvgDailyRate(t.db(), stay.legs[0].BBGuestID, stay.booking.BBBookingID), 0.0);
        QCOMPARE(DailyRate::fetchAvgDailyRate(t.db(), stay.legs[1].BBGuestID, stay.booking.BBBookingID), 104.0);
    }

    void nightsRunFromArrivalToTheDayBeforeLeaving()
    {
        const QDate from(2026, 12, 31);
        QCOMPARE(nightsOf(from, from.addDays(1)), QList<QDate>{from});
        QCOMPARE(nightCount(from, from.addDays(1)), 1);
        QCOMPARE(nightsOf(from, QDate(2027, 1, 3)), (QList<QDate>{from, QDate(2027, 1, 1), QDate(2027, 1, 2)}));
        QVERIFY(nightsOf(from, from).isEmpty());
        QVERIFY(nightsOf(from, from.addDays(-2)).isEmpty());
        QCOMPARE(nightCount(QDate(), from), 0);
        Booking b;
        b.FromDate = QDate(2028, 2, 28);
        b.ToDate = QDate(2028, 3, 1);
        QCOMPARE(b.nights(), 2);
    }

    void clashRule_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<bool>("clash");
        // The other stay runs from day 10 to day 14 (nights 10..13).
        QTest::newRow("leaves on the day the other arrives") << 7 << 10 << false;
        QTest::newRow("arrives on the day the other leaves") << 14 << 16 << false;
        QTest::newRow("last night is the other's first") << 8 << 11 << true;
        QTest::newRow("first night is the other's last") << 13 << 15 << true;
        QTest::newRow("inside") << 11 << 12 << true;
        QTest::newRow("around") << 9 << 15 << true;
        QTest::newRow("same span") << 10 << 14 << true;
        QTest::newRow("well before") << 1 << 5 << false;
    }

    void clashRule()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(bool, clash);
        const QDate base(2026, 3, 1);
        const QDate f = base.addDays(from - 1), tt = base.addDays(to - 1);

        TestDatabase db;
        TwoRoomStay stay(db.db());
        const auto found = clashingBookings(db.db(), 3, f, tt);
        QCOMPARE(!found.empty(), clash);
        QVERIFY(clashingBookings(db.db(), 3, f, tt, stay.booking.BBBookingID).empty());
        QVERIFY(clashingBookings(db.db(), 5, f, tt).empty());
    }

    void clashingBookingsAreListedOnceEachNewestFirst()
    {
        TestDatabase db;
        TwoRoomStay older(db.db());
        TwoRoomStay newer(db.db());
        Guest second;   // a second leg of the newer booking in the same room
        second.BBBookingID = newer.booking.BBBookingID;
        second.BBRoomID = 3;
        second.update(db.db());
        QCOMPARE(clashingBookings(db.db(), 3, QDate(2026, 3, 12), QDate(2026, 3, 20)),
                 (std::vector<qint32>{newer.booking.BBBookingID, older.booking.BBBookingID}));
        QVERIFY(clashingBookings(db.db(), 3, QDate(2026, 3, 12), QDate(2026, 3, 12)).empty());
    }

    void unavailableHasNoAdultsAndNoRates()
    {
        TestDatabase t;
        TwoRoomStay stay(t.db());
        TwoRoomStay other(t.db());
        setUnavailable(t.db(), stay.booking);
        QCOMPARE(t.db().scalar("select status from booking where bbbookingid = ?", {stay.booking.BBBookingID}).toString(),
                 QString("U"));
        QCOMPARE(t.db().scalar("select sum(noadults) from guest where bbbookingid = ?", {stay.booking.BBBookingID}).toInt(), 0);
        QCOMPARE(rateRows(t.db(), "bbbookingid = ?", {stay.booking.BBBookingID}), 0);
        QCOMPARE(rateRows(t.db(), "bbbookingid = ?", {other.booking.BBBookingID}), 8);
        QCOMPARE(logOf(t.db(), "booking", stay.booking.BBBookingID), QString("U"));
        QCOMPARE(logOf(t.db(), "guest", stay.legs[0].BBGuestID), QString("U"));
        QCOMPARE(ChangeLog::count(t.db()), 3);
    }

    void detailsNameAMissingClientOrAccountAndChangeNothing()
    {
        TestDatabase t;
        TwoRoomStay stay(t.db());
        stay.booking.MadeBy = 404;
        stay.booking.BBAccountID = 505;
        stay.booking.update(t.db());
        t.db().execute("delete from dblog");
        const QString before = t.db().scalar("select group_concat(bbbookingid || status || madeby || bbaccountid) from booking").toString();

        const auto details = loadBookingDetails(t.db(), stay.booking.BBBookingID);
        QVERIFY(details);
        QCOMPARE(details->legs.size(), std::size_t(2));
        QCOMPARE(details->legs[0].nights.size(), std::size_t(4));
        QVERIFY(!details->madeBy);
        QVERIFY(!details->account);
        QCOMPARE(details->problems.size(), 2);
        QVERIFY(details->problems[0].contains("404"));
        QVERIFY(details->problems[1].contains("505"));
        QCOMPARE(ChangeLog::count(t.db()), 0);
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), 0);
        QCOMPARE(t.db().scalar("select group_concat(bbbookingid || status || madeby || bbaccountid) from booking").toString(), before);
        QVERIFY(!loadBookingDetails(t.db(), 999));
    }

    void detailsCarryClientAccountAndBalance()
    {
        TestDatabase t;
        TwoRoomStay stay(t.db());
        Client c;
        c.FirstName = "Sam";
        c.Surname = "Smith";
        c.update(t.db());
        Account a;
        a.InvoiceTo = c.BBClientID;
        a.Status = "O";
        a.update(t.db());
        stay.booking.MadeBy = c.BBClientID;
        stay.booking.BBAccountID = a.BBAccountID;
        stay.booking.update(t.db());
        const auto details = loadBookingDetails(t.db(), stay.booking.BBBookingID);
        QVERIFY(details && details->madeBy && details->account);
        QVERIFY(details->problems.isEmpty());
        QCOMPARE(details->madeBy->FullName(), QString("Sam Smith"));
        QCOMPARE(details->balance, 4 * 103.0 + 4 * 104.0);
    }
};

QTEST_GUILESS_MAIN(TestBookingRecords)
#include "test_bookingrecords.moc"

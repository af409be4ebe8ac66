#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "bookings/newbooking.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
#include "shell/changelog.h"
#include "shell/propertygenerator.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

const QDate Arrival(2031, 5, 10);

// Everything a write could touch, counted, to prove a refused or failed change
// left the database as it was.
QList<int> tableCounts(Database &db)
{
    QList<int> counts;
    for (const char *table : {"booking", "guest", "dailyrate", "client", "account", "dblog", "audit"})
        counts << db.scalar(QStringLiteral("select count(*) from %1").arg(QLatin1String(table))).toInt();
    return counts;
}

QMap<QDate, double> nightsOf(Database &db, qint32 bookingId, qint32 roomId)
{
    QMap<QDate, double> nights;
    for (const DailyRate &rate : DailyRate::forLeg(db, bookingId, roomId))
        nights.insert(rate.CalDate, rate.RoomRate);
    return nights;
}

class Answers : public SaveQuestions {
public:
    bool changeAllLegs() override { ++asked; return allLegs; }
    bool changeLinkedBookings() override { ++asked; return true; }
    bool checkRates() override { ++ratesAsked; return false; }
    bool allLegs = true;
    int asked = 0;
    int ratesAsked = 0;
};

} // namespace

class TestBookingWrites : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_test;
    RateData m_rates;
    BBSetup m_setup;
    UserStruct m_user = UserStruct::autoAdmin();

    Database &db() { return m_test->db(); }

    NewBookingRequest request(std::initializer_list<qint32> rooms, int nights = 3)
    {
        NewBookingRequest r;
        r.FromDate = Arrival;
        r.ToDate = Arrival.addDays(nights);
        r.surname = QStringLiteral("Marsh");
        r.firstName = QStringLiteral("Ada");
        for (qint32 room : rooms) {
            const std::vector<qint32> offered = getRoomRates(m_rates, r.FromDate, r.ToDate, room);
            r.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
        }
        return r;
    }

    qint32 book(std::initializer_list<qint32> rooms, int nights = 3)
    {
        const auto result = BookingWriter(db(), m_rates, m_setup, m_user).save(request(rooms, nights));
        return result ? result->BBBookingID : 0;
    }

private Q_SLOTS:
    void init()
    {
        m_test = std::make_unique<TestDatabase>();
        PropertyGenerator(PropertyGenerator::demo()).generate(db());
        m_rates = RateData::load(db());
        m_setup.fetch(db());
    }

    void newBookingWritesHeadLegsNightsAccountWithHeadLast()
    {
        RecordingSink sink;
        db().execute("delete from dblog");
        Calendar calendar;
        const auto result = BookingWriter(db(), m_rates, m_setup, m_user).save(request({1, 2, 3}), &calendar);
        QVERIFY(result);
        const qint32 id = result->BBBookingID;
        QCOMPARE(db().scalar("select count(*) from booking where bbbookingid = ?", {id}).toInt(), 1);
        QCOMPARE(Guest::legsOf(db(), id).size(), size_t(3));
        QCOMPARE(db().scalar("select count(*) from dailyrate where bbbookingid = ?", {id}).toInt(), 9);
        QVERIFY(db().scalar("select min(roomrate) from dailyrate where bbbookingid = ?", {id}).toDouble() > 0);

        Booking head;
        QVERIFY(head.fetch(db(), id));
        QCOMPARE(head.Status, QStringLiteral("W"));
        QCOMPARE(head.BookingType, QStringLiteral("P"));
        QVERIFY(head.BBAccountID > 0);
        QCOMPARE(head.BBAccountID, result->BBAccountID);
        QCOMPARE(head.MadeBy, result->BBClientID);
        const double sum = db().scalar("select sum(roomrate) from dailyrate where bbbookingid = ?", {id}).toDouble();
        QCOMPARE(result->total, sum);
        QCOMPARE(head.Deposit, m_setup.DepositPct / 100.0 * sum);

        Client client;
        QVERIFY(client.fetch(db(), head.MadeBy));
        QCOMPARE(client.CreatedOn, QStringLiteral("P"));
        QCOMPARE(client.Active, QStringLiteral("Y"));
        QCOMPARE(client.ClientType, QStringLiteral("I"));

        const std::vector<LogEntry> log = ChangeLog::entries(db());
        QStringList tables;
        for (const LogEntry &e : log)
            tables << e.TableName;
        QCOMPARE(tables, (QStringList{"client", "guest", "guest", "guest", "account", "booking"}));
        QCOMPARE(log.back().bbtableId, id);
        QCOMPARE(db().scalar("select Notes from audit order by rowid desc limit 1").toString(),
                 QStringLiteral("New Booking %1 ()").arg(id));

        QVERIFY(calendar.roomIsBooked(Arrival, 2));
        QVERIFY(calendar.roomIsBooked(Arrival.addDays(2), 3));
        QVERIFY(!calendar.roomIsBooked(Arrival.addDays(3), 3));
        QVERIFY(calendar.guestName(head.MadeBy).has_value());
        QVERIFY(sink.shown.isEmpty());
    }

    void noRateSelectedGivesZeroNightsAndTellsSo()
    {
        RecordingSink sink;
        NewBookingRequest r = request({4});
        r.rooms.front().BBRateID = 0;
        r.company = QStringLiteral("Acme");
        r.surname.clear();
        r.firstName.clear();
        const auto result = BookingWriter(db(), m_rates, m_setup, m_user).save(r);
        QVERIFY(result);
        QCOMPARE(nightsOf(db(), result->BBBookingID, 4).size(), 3);
        QCOMPARE(db().scalar("select max(roomrate) from dailyrate where bbbookingid = ?", {result->BBBookingID}).toDouble(), 0.0);
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown.first().title, QStringLiteral("Rates not yet entered."));
        Client client;
        QVERIFY(client.fetch(db(), result->BBClientID));
        QCOMPARE(client.ClientType, QStringLiteral("C"));
    }

    void oneNightWithFullDepositPaysAll()
    {
        m_setup.FullDeposit = QStringLiteral("Y");
        m_setup.DepositPct = 30;
        QCOMPARE(calcDeposit(m_setup, 500, 1), 500.0);
        QCOMPARE(calcDeposit(m_setup, 500, 2), 150.0);
        m_setup.FullDeposit = QStringLiteral("N");
        QCOMPARE(calcDeposit(m_setup, 500, 1), 150.0);
        QCOMPARE(defaultAdults(QString()), qint16(2));
        QCOMPARE(defaultAdults(QStringLiteral("3")), qint16(3));
        QCOMPARE(defaultAdults(QStringLiteral("x")), qint16(2));
    }

    void refusedNewBookingsWriteNothing()
    {
        RecordingSink sink;
        const QList<int> before = tableCounts(db());
        NewBookingRequest blank = request({1});
        blank.surname = QStringLiteral("  ");
        blank.firstName.clear();
        QVERIFY(!BookingWriter(db(), m_rates, m_setup, m_user).save(blank));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Name cannot be blank."));

        QVERIFY(book({5}) > 0);
        const QList<int> afterFirst = tableCounts(db());
        QVERIFY(!BookingWriter(db(), m_rates, m_setup, m_user).save(request({6, 5}, 1)));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Room no longer free"));
        QCOMPARE(tableCounts(db()), afterFirst);
        QVERIFY(!BookingWriter(db(), m_rates, m_setup, m_user).save(request({7, 7})));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Room listed twice"));
        NewBookingRequest reversed = request({7});
        reversed.ToDate = reversed.FromDate;
        QVERIFY(!BookingWriter(db(), m_rates, m_setup, m_user).save(reversed));
        QCOMPARE(tableCounts(db()), afterFirst);
        QVERIFY(before != afterFirst);
    }

    void failingWriteMidwayLeavesDatabaseAsBefore()
    {
        db().execute("create trigger fail_room2 before insert on dailyrate when new.BBRoomID = 2 "
                     "begin select raise(abort, 'disk full'); end");
        const QList<int> before = tableCounts(db());
        QVERIFY_THROWS_EXCEPTION(DatabaseError, BookingWriter(db(), m_rates, m_setup, m_user).save(request({1, 2})));
        QCOMPARE(tableCounts(db()), before);
        QCOMPARE(db().transactionDepth(), 0);

        const qint32 id = book({3});
        QVERIFY(id > 0);
        db().execute("create trigger fail_room7 before update on guest when new.BBRoomID = 7 "
                     "begin select raise(abort, 'disk full'); end");
        Answers answers;
        auto edit = loadBookingEdit(db(), id, 3);
        edit->roomId = 7;
        edit->fromDate = Arrival.addDays(1);
        edit->toDate = Arrival.addDays(5);
        const QList<int> beforeEdit = tableCounts(db());
        const QMap<QDate, double> nights = nightsOf(db(), id, 3);
        QVERIFY_THROWS_EXCEPTION(DatabaseError, BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(tableCounts(db()), beforeEdit);
        QCOMPARE(nightsOf(db(), id, 3), nights);
    }

    void dateChanges_data()
    {
        QTest::addColumn<int>("fromShift");
        QTest::addColumn<int>("toShift");
        QTest::addColumn<bool>("reprice");
        QTest::newRow("extend both ends") << -2 << 2 << false;
        QTest::newRow("shorten both ends") << 1 << -1 << false;
        QTest::newRow("later arrival, later leaving") << 1 << 3 << false;
        QTest::newRow("moved wholly") << 10 << 10 << false;
        QTest::newRow("extended and re-priced") << -1 << 1 << true;
    }

    void dateChanges()
    {
        QFETCH(int, fromShift);
        QFETCH(int, toShift);
        QFETCH(bool, reprice);
        RecordingSink sink;
        const qint32 id = book({1, 2}, 4);
        // A typed price on each night must survive a move that keeps the night.
        db().execute("update dailyrate set roomrate = roomrate + 0.37 where bbbookingid = ?", {id});
        const QMap<QDate, double> before = nightsOf(db(), id, 1);

        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        QVERIFY(edit);
        edit->fromDate = Arrival.addDays(fromShift);
        edit->toDate = Arrival.addDays(4 + toShift);
        edit->repriceAll = reprice;
        QVERIFY(BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(answers.asked, 1);   // the multi-room question
        QCOMPARE(answers.ratesAsked, reprice ? 0 : 1);

        for (qint32 room : {1, 2}) {
            const QMap<QDate, double> after = nightsOf(db(), id, room);
            QCOMPARE(after.size(), 4 - fromShift + toShift);
            QCOMPARE(after.firstKey(), edit->fromDate);
            QCOMPARE(after.lastKey(), edit->toDate.addDays(-1));
            if (room != 1)
                continue;
            const StayPrice fresh = priceStay(m_rates, {1, edit->BBRateID, 0, edit->fromDate, edit->toDate, 2, 0, 0});
            for (auto it = after.cbegin(); it != after.cend(); ++it) {
                const bool kept = before.contains(it.key());
                if (kept && !reprice)
                    QCOMPARE(it.value(), before.value(it.key()));
                else
                    QCOMPARE(it.value(), fresh.nights.value(it.key()));
            }
        }
        Booking head;
        QVERIFY(head.fetch(db(), id));
        QCOMPARE(head.FromDate, edit->fromDate);
        QCOMPARE(head.ToDate, edit->toDate);
        QCOMPARE(db().scalar("select Notes from audit order by rowid desc limit 1").toString().left(12),
                 QStringLiteral("Date Change:"));
    }

    void clashingDateChangeIsRefused()
    {
        RecordingSink sink;
        const qint32 id = book({1, 2}, 3);
        NewBookingRequest later = request({2}, 2);
        later.FromDate = Arrival.addDays(5);
        later.ToDate = Arrival.addDays(7);
        QVERIFY(BookingWriter(db(), m_rates, m_setup, m_user).save(later));
        const QList<int> before = tableCounts(db());

        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        edit->toDate = Arrival.addDays(6);
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(sink.shown.last().text, QStringLiteral("No availability for these dates"));
        QCOMPARE(tableCounts(db()), before);

        // Back to back is no clash; the booking's own rows never are.
        edit = loadBookingEdit(db(), id, 1);
        edit->toDate = Arrival.addDays(5);
        QVERIFY(BookingSave(db(), m_rates, m_user, answers).save(*edit));

        // Declining the multi-room question puts the dates back and writes nothing.
        answers.allLegs = false;
        edit = loadBookingEdit(db(), id, 1);
        edit->fromDate = Arrival.addDays(-1);
        const QList<int> beforeDecline = tableCounts(db());
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(edit->fromDate, Arrival);
        QCOMPARE(sink.shown.last().title, QStringLiteral("Split booking?"));
        QCOMPARE(tableCounts(db()), beforeDecline);

        edit = loadBookingEdit(db(), id, 1);
        edit->toDate = edit->fromDate;
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(sink.shown.last().text, QStringLiteral("Leaving date is the same as the Arrival date."));
    }

    // The server's synchronisation moved the booking to bookingdel while the editor
    // held it: saving says so and writes nothing, not even a half head.
    void savingABookingDeletedMeanwhileWritesNothing()
    {
        RecordingSink sink;
        const qint32 id = book({1}, 3);
        auto edit = loadBookingEdit(db(), id, 1);
        QVERIFY(edit);
        db().execute("delete from dailyrate where BBBookingID = ?", {id});
        db().execute("delete from guest where BBBookingID = ?", {id});
        const QList<int> before = tableCounts(db());
        edit->notes = QStringLiteral("late note");
        Answers answers;
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Data Error"));
        QCOMPARE(tableCounts(db()), before);
        QVERIFY(db().scalar("select Notes from booking where BBBookingID = ?", {id}).toString().isEmpty());

        db().execute("delete from booking where BBBookingID = ?", {id});
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Data Error"));
        QCOMPARE(db().scalar("select count(*) from booking where BBBookingID = ?", {id}).toInt(), 0);
    }

    void roomChange()
    {
        RecordingSink sink;
        const qint32 id = book({1, 2}, 3);
        const qint32 other = book({5}, 3);
        QVERIFY(other > 0);
        const QMap<QDate, double> nights = nightsOf(db(), id, 2);
        Answers answers;

        auto edit = loadBookingEdit(db(), id, 2);
        edit->roomId = 5;
        const QList<int> before = tableCounts(db());
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(sink.shown.last().text, QStringLiteral("No availability for this room on those dates"));
        QCOMPARE(tableCounts(db()), before);

        edit = loadBookingEdit(db(), id, 2);
        edit->roomId = 1;   // the booking's own other leg
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));

        edit = loadBookingEdit(db(), id, 2);
        edit->roomId = 6;
        QVERIFY(BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(nightsOf(db(), id, 6), nights);
        QVERIFY(nightsOf(db(), id, 2).isEmpty());
        Guest leg;
        QVERIFY(leg.fetchLeg(db(), id, 6));
        QVERIFY(db().scalar("select Notes from audit order by rowid desc limit 1").toString()
                    .contains(QStringLiteral("Room IDs: 2/6")));
    }

    void splitKeepsEveryNightOnExactlyOneBooking()
    {
        RecordingSink sink;
        const qint32 id = book({1, 2, 3}, 4);
        const double total = db().scalar("select sum(roomrate) from dailyrate").toDouble();
        const int rows = db().scalar("select count(*) from dailyrate").toInt();
        Answers answers;
        const auto newId = BookingSave(db(), m_rates, m_user, answers).split(id, 2);
        QVERIFY(newId);
        QVERIFY(*newId != id);
        QCOMPARE(db().scalar("select sum(roomrate) from dailyrate").toDouble(), total);
        QCOMPARE(db().scalar("select count(*) from dailyrate").toInt(), rows);
        QCOMPARE(nightsOf(db(), *newId, 2).size(), 4);
        QVERIFY(nightsOf(db(), id, 2).isEmpty());
        QCOMPARE(Guest::legsOf(db(), id).size(), size_t(2));
        QCOMPARE(Guest::legsOf(db(), *newId).size(), size_t(1));
        Booking a, b;
        QVERIFY(a.fetch(db(), id) && b.fetch(db(), *newId));
        QCOMPARE(b.BBAccountID, a.BBAccountID);
        QCOMPARE(b.FromDate, a.FromDate);
        QCOMPARE(b.BookingID, 0);

        const qint32 single = book({4}, 2);
        const QList<int> before = tableCounts(db());
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).split(single, 4));
        QCOMPARE(tableCounts(db()), before);
    }

    void changedClientsAreSavedOnTheirLegOnly()
    {
        RecordingSink sink;
        const qint32 id = book({1, 2});
        const qint32 otherGuest = loadBookingEdit(db(), id, 2)->BBClientID;
        QList<qint32> clients;
        for (const char *surname : {"Teal", "Wren", "Crane"}) {
            Client client;
            client.Surname = QString::fromLatin1(surname);
            client.update(db());
            clients << client.BBClientID;
        }
        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        edit->MadeBy = clients[0];
        edit->BBClientID = clients[1];
        edit->BBClient2ID = clients[2];
        QVERIFY(BookingSave(db(), m_rates, m_user, answers).save(*edit));
        edit = loadBookingEdit(db(), id, 1);
        QCOMPARE(QList<qint32>({edit->MadeBy, edit->BBClientID, edit->BBClient2ID}), clients);
        QCOMPARE(loadBookingEdit(db(), id, 2)->BBClientID, otherGuest);
        QCOMPARE(loadBookingEdit(db(), id, 2)->MadeBy, clients[0]);

        edit->BBClient2ID = 0;
        QVERIFY(BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(loadBookingEdit(db(), id, 1)->BBClient2ID, 0);
        QCOMPARE(answers.asked + answers.ratesAsked, 0);
    }

    void statusUnavailableClearsNightsAndLinkedBookingsFollow()
    {
        RecordingSink sink;
        const qint32 id = book({1}, 3);
        NewBookingRequest again = request({2});
        again.BBClientID = loadBookingEdit(db(), id, 1)->MadeBy;   // same client: same open account
        const qint32 linked = BookingWriter(db(), m_rates, m_setup, m_user).save(again)->BBBookingID;
        Booking a, b;
        QVERIFY(a.fetch(db(), id) && b.fetch(db(), linked));
        QCOMPARE(a.BBAccountID, b.BBAccountID);

        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        edit->status = QStringLiteral("U");
        edit->adults = 0;
        QVERIFY(BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(answers.ratesAsked, 0);
        QVERIFY(nightsOf(db(), id, 1).isEmpty());
        QVERIFY(b.fetch(db(), linked));
        QCOMPARE(b.Status, QStringLiteral("U"));
        QCOMPARE(nightsOf(db(), linked, 2).size(), 3);

        edit = loadBookingEdit(db(), id, 1);
        edit->status = QStringLiteral("P");
        edit->reservedUntil = QDateTime::currentDateTime().addDays(-1);
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Reserve date cannot be less than now."));

        edit = loadBookingEdit(db(), id, 1);
        edit->checkedIn = true;
        QVERIFY(!BookingSave(db(), m_rates, m_user, answers).save(*edit));
        QVERIFY(!edit->checkedIn);
    }
};

QTEST_GUILESS_MAIN(TestBookingWrites)
#include "test_bookingwrites.moc"

#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "bookings/newbooking.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/changelog.h"
#include "desk/propertygenerator.h"
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
    bool acceptOverLimit(const QString &, int, int, int, int) override { ++limitsAsked; return acceptLimits; }
    bool acceptPastStart(const QDate &) override { ++limitsAsked; return acceptLimits; }
    bool changeAllLegs() override { ++asked; return allLegs; }
    bool changeLinkedBookings() override { ++asked; return true; }
    bool checkRates() override { ++ratesAsked; return false; }
    bool repriceAtNewRoom(const QString &) override { ++repriceAsked; return reprice; }
    bool allLegs = true;
    bool acceptLimits = true;
    bool reprice = true;
    int asked = 0;
    int ratesAsked = 0;
    int limitsAsked = 0;
    int repriceAsked = 0;
};

} // namespace

class TestBookingWrites : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_test;
    RateData m_rates;
    BBSetup m_setup;
    UserStruct m_user = UserStruct::autoAdmin();

    Answers m_answers;

    Database &db() { return m_test->db(); }

    Result<NewBookingResult> write(const NewBookingRequest &r)
    {
        return BookingWriter(db(), m_rates, m_setup, m_user).save(r, m_answers);
    }

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
        const auto result = write(request(rooms, nights));
        return result ? result->BBBookingID : 0;
    }

private Q_SLOTS:
    void init()
    {
        m_test = std::make_unique<TestDatabase>();
        m_answers = Answers();
        PropertyGenerator(PropertyGenerator::demo()).generate(db());
        m_rates = RateData::load(db());
        m_setup.fetch(db());
    }

    void newBookingWritesHeadLegsNightsAccountWithHeadLast()
    {
        RecordingSink sink;
        db().execute("delete from dblog");
        const auto result = write(request({1, 2, 3}));
        QVERIFY(result);
        const qint32 id = result->BBBookingID;
        QCOMPARE(Guest::legsOf(db(), id).size(), size_t(3));
        QCOMPARE(db().scalar("select count(*) from dailyrate where bbbookingid = ?", {id}).toInt(), 9);
        QVERIFY(db().scalar("select min(roomrate) from dailyrate where bbbookingid = ?", {id}).toDouble() > 0);

        Booking head;
        QVERIFY(head.fetch(db(), id));
        QCOMPARE(head.Status, QStringLiteral("W"));
        QCOMPARE(head.BookingType, QStringLiteral("P"));
        QCOMPARE(head.BBAccountID, result->BBAccountID);
        QCOMPARE(head.MadeBy, result->BBClientID);
        const double sum = db().scalar("select sum(roomrate) from dailyrate where bbbookingid = ?", {id}).toDouble();
        QCOMPARE(result->total, sum);
        QCOMPARE(head.Deposit, m_setup.DepositPct / 100.0 * sum);

        Client client;
        QVERIFY(client.fetch(db(), head.MadeBy));
        QCOMPARE(client.CreatedOn, QStringLiteral("P"));

        const std::vector<LogEntry> log = ChangeLog::entries(db());
        QStringList tables;
        for (const LogEntry &e : log)
            tables << e.TableName;
        QCOMPARE(tables, (QStringList{"client", "guest", "guest", "guest", "account", "booking"}));
        QCOMPARE(log.back().bbtableId, id);
        QCOMPARE(db().scalar("select Notes from audit order by rowid desc limit 1").toString(),
                 QStringLiteral("New Booking %1 ()").arg(id));

        QCOMPARE(result->changes.bookings(), QSet<qint32>{id});
        QVERIFY(result->changes.clients().contains(head.MadeBy));
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
        const auto result = write(r);
        QVERIFY(result);
        QCOMPARE(nightsOf(db(), result->BBBookingID, 4).size(), 3);
        QCOMPARE(db().scalar("select max(roomrate) from dailyrate where bbbookingid = ?", {result->BBBookingID}).toDouble(), 0.0);
        QCOMPARE(result->total, 0.0);   // the screen tells the user the rates are still to be entered
        QVERIFY(sink.shown.isEmpty());
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
        QCOMPARE(write(blank).refusal().id(), 5802);

        QVERIFY(book({5}) > 0);
        const QList<int> afterFirst = tableCounts(db());
        QCOMPARE(write(request({6, 5}, 1)).refusal().id(), 5836);
        QCOMPARE(tableCounts(db()), afterFirst);
        QCOMPARE(write(request({7, 7})).refusal().id(), 5838);
        NewBookingRequest reversed = request({7});
        reversed.ToDate = reversed.FromDate;
        QCOMPARE(write(reversed).refusal().id(), 2278);

        // What does not exist, or is not offered for the room, is refused too.
        QCOMPARE(write(request({999})).refusal().id(), 5975);
        NewBookingRequest otherRate = request({7});
        otherRate.rooms.front().BBRateID = 987654;
        QCOMPARE(write(otherRate).refusal().id(), 5977);
        NewBookingRequest missingClient = request({7});
        missingClient.BBClientID = 424242;
        QCOMPARE(write(missingClient).refusal().id(), 5808);
        Client retired;
        retired.Surname = QStringLiteral("Gone");
        retired.Active = QStringLiteral("N");
        retired.update(db());
        NewBookingRequest forRetired = request({7});
        forRetired.BBClientID = retired.BBClientID;
        const QList<int> beforeRetired = tableCounts(db());
        QCOMPARE(write(forRetired).refusal().id(), 5974);
        QCOMPARE(tableCounts(db()), beforeRetired);
        QVERIFY(before != afterFirst);
        QVERIFY(sink.shown.isEmpty());   // refusals are the caller's to show
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
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
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
        QVERIFY(write(later));
        const QList<int> before = tableCounts(db());

        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        edit->toDate = Arrival.addDays(6);
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5815);
        QCOMPARE(tableCounts(db()), before);

        // Back to back is no clash; the booking's own rows never are.
        edit = loadBookingEdit(db(), id, 1);
        edit->toDate = Arrival.addDays(5);
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));

        // Declining the multi-room question puts the dates back and writes nothing.
        answers.allLegs = false;
        edit = loadBookingEdit(db(), id, 1);
        edit->fromDate = Arrival.addDays(-1);
        const QList<int> beforeDecline = tableCounts(db());
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5817);
        QCOMPARE(edit->fromDate, Arrival);
        QCOMPARE(tableCounts(db()), beforeDecline);

        edit = loadBookingEdit(db(), id, 1);
        edit->toDate = edit->fromDate;
        const auto same = BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit);
        QCOMPARE(same.refusal().id(), 5810);
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
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5825);
        QCOMPARE(tableCounts(db()), before);
        QVERIFY(db().scalar("select Notes from booking where BBBookingID = ?", {id}).toString().isEmpty());

        db().execute("delete from booking where BBBookingID = ?", {id});
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5823);
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
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5816);
        QCOMPARE(tableCounts(db()), before);

        edit = loadBookingEdit(db(), id, 2);
        edit->roomId = 1;   // the booking's own other leg
        QVERIFY(!BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));

        edit = loadBookingEdit(db(), id, 2);
        edit->roomId = 6;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
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
        const auto split = BookingSave(db(), m_rates, m_setup, m_user, answers).split(id, 2);
        QVERIFY(split);
        const qint32 *newId = &split->newBookingId;
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

        const qint32 single = book({4}, 2);
        const QList<int> before = tableCounts(db());
        QVERIFY(!BookingSave(db(), m_rates, m_setup, m_user, answers).split(single, 4));
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
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
        edit = loadBookingEdit(db(), id, 1);
        QCOMPARE(QList<qint32>({edit->MadeBy, edit->BBClientID, edit->BBClient2ID}), clients);
        QCOMPARE(loadBookingEdit(db(), id, 2)->BBClientID, otherGuest);
        QCOMPARE(loadBookingEdit(db(), id, 2)->MadeBy, clients[0]);

        edit->BBClient2ID = 0;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
        QCOMPARE(loadBookingEdit(db(), id, 1)->BBClient2ID, 0);
        QCOMPARE(answers.asked + answers.ratesAsked, 0);
    }

    void statusUnavailableClearsNightsAndLinkedBookingsFollow()
    {
        RecordingSink sink;
        const qint32 id = book({1}, 3);
        NewBookingRequest again = request({2});
        again.BBClientID = loadBookingEdit(db(), id, 1)->MadeBy;   // same client: same open account
        const qint32 linked = write(again)->BBBookingID;
        Booking a, b;
        QVERIFY(a.fetch(db(), id) && b.fetch(db(), linked));
        QCOMPARE(a.BBAccountID, b.BBAccountID);

        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        edit->status = QStringLiteral("U");
        edit->adults = 0;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
        QCOMPARE(answers.ratesAsked, 0);
        QVERIFY(nightsOf(db(), id, 1).isEmpty());
        QVERIFY(b.fetch(db(), linked));
        QCOMPARE(b.Status, QStringLiteral("U"));
        QCOMPARE(nightsOf(db(), linked, 2).size(), 3);

        edit = loadBookingEdit(db(), id, 1);
        edit->status = QStringLiteral("P");
        edit->reservedUntil = QDateTime::currentDateTime().addDays(-1);
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5821);

        edit = loadBookingEdit(db(), id, 1);
        edit->checkedIn = true;
        QVERIFY(!BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
        QVERIFY(!edit->checkedIn);
    }

    void theQuoteIsWhatTheBookingStores()
    {
        NewBookingRequest r = request({1, 2, 3}, 14);
        r.rooms[0].NoAdults = 1;
        r.rooms[1].Child1 = 1;
        r.rooms[2].BBRateID = 0;
        const NewBookingQuote quote = quoteNewBooking(db(), m_rates, r);
        const auto saved = write(r);
        QVERIFY(saved);
        QCOMPARE(quote.total, saved->total);
        for (int i = 0; i < 3; ++i) {
            double stored = 0;
            for (const DailyRate &night : DailyRate::forLeg(db(), saved->BBBookingID, r.rooms[size_t(i)].BBRoomID))
                stored += night.RoomRate;
            QCOMPARE(quote.roomTotals[size_t(i)], stored);
        }
        QCOMPARE(quote.roomTotals[2], 0.0);
    }

    void limitsAreAskedBeforeAnythingIsWritten()
    {
        NewBookingRequest crowded = request({1});
        crowded.rooms.front().NoAdults = 99;
        const QList<int> before = tableCounts(db());
        m_answers.acceptLimits = false;
        QCOMPARE(write(crowded).refusal().id(), 5981);
        QCOMPARE(m_answers.limitsAsked, 1);
        NewBookingRequest past = request({1});
        past.FromDate = QDate(2020, 1, 10);
        past.ToDate = past.FromDate.addDays(2);
        QCOMPARE(write(past).refusal().id(), 5982);
        QCOMPARE(tableCounts(db()), before);
        m_answers.acceptLimits = true;
        QVERIFY(write(crowded));
        QVERIFY(write(past));

        // The editor asks the same when heads rise above the room's limits, and
        // only then: a save that leaves them alone asks nothing.
        const qint32 id = book({4});
        Answers answers;
        answers.acceptLimits = false;
        auto edit = loadBookingEdit(db(), id, 4);
        edit->notes = QStringLiteral("quiet room");
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
        QCOMPARE(answers.limitsAsked, 0);
        edit->adults = 40;
        const QList<int> beforeEdit = tableCounts(db());
        QCOMPARE(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit).refusal().id(), 5981);
        QCOMPARE(answers.limitsAsked, 1);
        QCOMPARE(tableCounts(db()), beforeEdit);
    }

    void commissionMustBeAPercentage_data()
    {
        QTest::addColumn<double>("commission");
        QTest::addColumn<bool>("saved");
        QTest::newRow("none") << 0.0 << true;
        QTest::newRow("all") << 100.0 << true;
        QTest::newRow("over") << 250.0 << false;
        QTest::newRow("negative") << -1.0 << false;
        QTest::newRow("not a number") << std::nan("") << false;
    }

    void commissionMustBeAPercentage()
    {
        QFETCH(double, commission);
        QFETCH(bool, saved);
        const qint32 id = book({1});
        Answers answers;
        auto edit = loadBookingEdit(db(), id, 1);
        edit->agentComm = commission;
        const auto result = BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit);
        QCOMPARE(bool(result), saved);
        if (!saved)
            QCOMPARE(result.refusal().id(), 5985);
    }

    void aRoomOfAnotherTypeIsPricedAtItsRatesWhenWanted()
    {
        // The demo property deals its rooms over the types in turn: 2, 3 and 4
        // are of three types, 2 and 6 of one.
        QVERIFY(m_rates.room(2)->BBRTID != m_rates.room(3)->BBRTID);
        QVERIFY(m_rates.room(2)->BBRTID != m_rates.room(4)->BBRTID);
        QCOMPARE(m_rates.room(2)->BBRTID, m_rates.room(6)->BBRTID);

        const qint32 kept = book({2}, 3);
        const QMap<QDate, double> nights = nightsOf(db(), kept, 2);
        Answers no;
        no.reprice = false;
        auto edit = loadBookingEdit(db(), kept, 2);
        edit->roomId = 3;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, no).save(*edit));
        QCOMPARE(no.repriceAsked, 1);
        QCOMPARE(nightsOf(db(), kept, 3), nights);

        const qint32 repriced = book({2}, 3);
        Answers yes;
        edit = loadBookingEdit(db(), repriced, 2);
        edit->roomId = 4;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, yes).save(*edit));
        QCOMPARE(yes.repriceAsked, 1);
        QCOMPARE(yes.ratesAsked, 0);   // priced already: the rates question is not asked too
        Guest leg;
        QVERIFY(leg.fetchLeg(db(), repriced, 4));
        QCOMPARE(leg.BBRateID, getRoomRates(m_rates, Arrival, Arrival.addDays(3), 4).front());
        const StayPrice fresh = priceStay(m_rates, {4, leg.BBRateID, 0, Arrival, Arrival.addDays(3), 2, 0, 0});
        QCOMPARE(nightsOf(db(), repriced, 4), fresh.nights);

        // Within one type nothing is asked.
        Answers same;
        const qint32 third = book({2}, 3);
        edit = loadBookingEdit(db(), third, 2);
        edit->roomId = 6;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, same).save(*edit));
        QCOMPARE(same.repriceAsked, 0);
    }

    void nightsLeftInARoomByAnotherLegGoBeforeALegMovesIn()
    {
        const qint32 id = book({1, 2}, 3);
        // As a cancelled leg leaves them: nights of this booking in room 9 with no leg there.
        for (int n = 0; n < 3; ++n)
            db().execute("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values (?, ?, 9, 1)",
                         {sqlDate(Arrival.addDays(n)), id});
        Answers answers;
        answers.reprice = false;
        auto edit = loadBookingEdit(db(), id, 2);
        edit->roomId = 9;
        QVERIFY(BookingSave(db(), m_rates, m_setup, m_user, answers).save(*edit));
        QCOMPARE(db().scalar("select count(*) from dailyrate where BBBookingID = ? and BBRoomID = 9", {id}).toInt(), 3);
        QCOMPARE(db().scalar("select count(*) from dailyrate where BBBookingID = ? and BBRoomID = 9 and RoomRate = 1", {id})
                     .toInt(),
                 0);
    }

    void aSplitAsksEachPartTheDepositOfItsOwnTotal()
    {
        m_setup.DepositPct = 25;
        const qint32 id = book({1, 2}, 4);
        Answers answers;
        const auto split = BookingSave(db(), m_rates, m_setup, m_user, answers).split(id, 2);
        QVERIFY(split);
        const auto total = [this](qint32 booking) {
            double sum = 0;
            QSqlQuery q = db().query("select RoomRate from dailyrate where BBBookingID = ?", {booking});
            while (q.next())
                sum += q.value(0).toDouble();
            return sum;
        };
        Booking a, b;
        QVERIFY(a.fetch(db(), id) && b.fetch(db(), split->newBookingId));
        QCOMPARE(a.Deposit, 0.25 * total(id));
        QCOMPARE(b.Deposit, 0.25 * total(split->newBookingId));
        QVERIFY(split->changes.bookings().contains(id) && split->changes.bookings().contains(split->newBookingId));
    }

    void aBookingWhoseAccountIsGoneGetsOneOnOpening()
    {
        const qint32 id = book({1});
        Booking head;
        QVERIFY(head.fetch(db(), id));
        db().execute("delete from account where BBAccountID = ?", {head.BBAccountID});
        const qint32 account = ensureBookingAccount(db(), id);
        QVERIFY(account > 0);
        QCOMPARE(db().scalar("select count(*) from account where BBAccountID = ?", {account}).toInt(), 1);
        QVERIFY(head.fetch(db(), id));
        QCOMPARE(head.BBAccountID, account);
        QCOMPARE(ensureBookingAccount(db(), id), account);   // an account that exists stays
    }
};

QTEST_GUILESS_MAIN(TestBookingWrites)
#include "test_bookingwrites.moc"

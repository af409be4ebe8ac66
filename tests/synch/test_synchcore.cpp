#include "clients/clientsearch.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "synch/pcupdates.h"
#include "synch/serverupdates.h"
#include "synch/setupdownload.h"
#include "synch/synch.h"
#include "synch/synchlock.h"
#include "synch/synchrun.h"

#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

using namespace fenlark;

namespace {

// Answers every post with the next queued reply (the last one repeats).
class ScriptedTransport : public ServerTransport {
public:
    QStringList replies;
    QStringList urls;
    QList<QByteArray> messages;
    PostResult post(const QString &url, const QByteArray &message) override
    {
        urls << url;
        messages << message;
        PostResult r;
        r.ok = true;
        r.reply = replies.size() > 1 ? replies.takeFirst() : replies.value(0);
        return r;
    }
};

// Breaks the exchange the way the wire or the heap can.
class ThrowingTransport : public ServerTransport {
public:
    explicit ThrowingTransport(bool outOfMemory) : m_outOfMemory(outOfMemory) {}
    PostResult post(const QString &, const QByteArray &) override
    {
        if (m_outOfMemory)
            throw std::bad_alloc();
        throw std::runtime_error("the wire snapped");
    }

private:
    bool m_outOfMemory;
};

// Starts a second run on the same database while the first waits on the wire.
class ReentrantTransport : public ServerTransport {
public:
    explicit ReentrantTransport(Database &db) : m_db(db) {}
    PostResult post(const QString &, const QByteArray &) override
    {
        ScriptedTransport inner;
        Synch second(m_db, inner);
        secondResult = second.synchronise();
        secondSummary = second.summary();
        lockDuringSecond = m_db.scalar(QStringLiteral("select count(*) from synchlock")).toInt();
        PostResult r;
        r.ok = true;
        r.reply = QStringLiteral("{\"success\":true,\"data\":{}}");
        return r;
    }
    bool secondResult = true;
    SynchSummary secondSummary;
    int lockDuringSecond = 0;

private:
    Database &m_db;
};

qint32 addClient(Database &db, const QString &surname)
{
    db.execute(QStringLiteral("insert into client (Surname) values (?)"), {surname});
    const qint32 id = static_cast<qint32>(db.lastInsertId());
    ChangeLog::logUpdate(db, QStringLiteral("client"), id);
    return id;
}

// Every row of the tables a reply can touch, as text, to compare two states.
QString dump(Database &db)
{
    QString out;
    for (const QString table : {"client", "account", "booking", "guest", "dailyrate", "newbooking", "bookingdel", "guestdel"}) {
        QSqlQuery q = db.query(QStringLiteral("select * from %1 order by 1").arg(table));
        while (q.next()) {
            out += table + QLatin1Char(':');
            for (int i = 0; i < q.record().count(); ++i)
                out += q.value(i).toString() + QLatin1Char('|');
            out += QLatin1Char('\n');
        }
    }
    return out;
}

const char *OnlineReply = R"({"logupdates":[
  {"tablename":"guest","logtype":"U","dblogid":4,"tableid":504,"values":{"GuestID":504,
     "BBBookingID":{"table":"booking","tableid":503},"BBRoomID":2,"BBClientID":{"table":"client","tableid":501},
     "NoAdults":2,"Child1":0,"Child2":0,"BBAccountID":{"table":"account","tableid":502},
     "dailyrates":[{"caldate":"2027-01-10","roomrate":"80.556"},{"caldate":"2027-01-11","roomrate":81}]}},
  {"tablename":"booking","logtype":"U","dblogid":3,"tableid":503,"values":{"BookingID":503,"BookingType":"N",
     "FromDate":"2027-01-10","ToDate":"2027-01-13","Status":"C","MadeBy":{"table":"client","tableid":501},
     "BBAccountID":{"table":"account","tableid":502},"ExtBookingID":null}},
  {"tablename":"account","logtype":"U","dblogid":2,"tableid":502,"values":{"AccountID":502,"InvoiceTo":{"table":"client","tableid":501},"Status":"O"}},
  {"tablename":"client","logtype":"U","dblogid":1,"tableid":501,"values":{"ClientID":501,"Surname":"Ngata","Active":"Y"}}
]})";

JsonArray updatesOf(const char *text)
{
    return *json::parse(QString::fromUtf8(text))[QStringLiteral("logupdates")].array();
}

} // namespace

class TestSynchCore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void collectRespectsLogLimitAndCountsRequests()
    {
        TestDatabase t;
        for (int i = 0; i < 10; ++i)
            addClient(t.db(), QStringLiteral("C%1").arg(i));
        JsonArray requested;
        requested << json::parse(QStringLiteral("{\"logtype\":\"U\"}")) << json::parse(QStringLiteral("{\"logtype\":\"U\"}"));
        const JsonValue entries = PcUpdates::collectPCUpdates(t.db(), requested, 6);
        QCOMPARE(entries.array()->size(), 6); // 2 requested + 4 log rows
        const JsonValue first = entries.array()->at(2);
        QCOMPARE(first.object()->keys(), (QStringList{"logtype", "dblogid", "tablename", "bbtableid", "values"}));
        QCOMPARE(first[QStringLiteral("values")][QStringLiteral("Surname")].toText(), QStringLiteral("C0"));
    }

    void collectSendsDeletesBareAndDropsOrphans()
    {
        TestDatabase t;
        const qint32 a = addClient(t.db(), QStringLiteral("A"));
        const qint32 b = addClient(t.db(), QStringLiteral("B"));
        ChangeLog::logUpdate(t.db(), QStringLiteral("client"), a);
        ChangeLog::logDelete(t.db(), QStringLiteral("client"), a);
        t.db().execute(QStringLiteral("delete from client where BBClientID = ?"), {b}); // removed by other code, log left
        const JsonValue entries = PcUpdates::collectPCUpdates(t.db(), {}, 300);
        QCOMPARE(entries.array()->size(), 1);
        QCOMPARE(entries.array()->at(0)[QStringLiteral("logtype")].toText(), QStringLiteral("D"));
        QVERIFY(!entries.array()->at(0).object()->contains(QStringLiteral("values")));
        QCOMPARE(ChangeLog::count(t.db()), 1); // the orphan went
    }

    // Every kind of value a column can hold goes out as Qt's own reading of the row would send it.
    void aRecordGoesOutAsQtReadsIt()
    {
        TestDatabase t;
        const qint32 id = addClient(t.db(), QStringLiteral("Ñúñez"));
        t.db().execute(QStringLiteral("update client set DateCreated = null, ClientID = 3000000000, BBRateSheetID = 12.5, "
                                      "Notes = cast('bytes' as blob), Title = '' where BBClientID = ?"),
                       {id});
        QSqlQuery q = t.db().query(QStringLiteral("select * from client where BBClientID = ?"), {id});
        QVERIFY(q.next());
        QCOMPARE(json::toString(PcUpdates::readRecord(t.db(), QStringLiteral("client"), id)), json::toString(json::recordToValue(q.record())));
        QVERIFY(PcUpdates::readRecord(t.db(), QStringLiteral("client"), id + 1).isNothing());
    }

    void guestCarriesItsAverageRate()
    {
        TestDatabase t;
        t.db().execute(QStringLiteral("insert into guest (BBBookingID, BBRoomID) values (7, 3)"));
        ChangeLog::logUpdate(t.db(), QStringLiteral("guest"), 1);
        t.db().execute(QStringLiteral("insert into dailyrate values ('2026-01-01', 7, 3, 100), ('2026-01-02', 7, 3, 50), ('2026-01-01', 7, 4, 999)"));
        const JsonValue entries = PcUpdates::collectPCUpdates(t.db(), {}, 300);
        QCOMPARE(entries.array()->at(0)[QStringLiteral("values")][QStringLiteral("avgrate")].toDouble(), 75.0);
    }

    void onlineBookingResolvesInPassesAndTwiceIsOnce()
    {
        TestDatabase t;
        ServerUpdateApplier applier(t.db());
        {
            Transaction tx(t.db());
            applier.applyServerUpdates(updatesOf(OnlineReply));
            tx.commit();
        }
        QCOMPARE(applier.acknowledgements().size(), 4);
        QCOMPARE(applier.requests().size(), 2); // asked once each for what was missing in the first pass
        const QString once = dump(t.db());
        QVERIFY(once.contains(QLatin1String("dailyrate:2027-01-10|1|2|80.56|")));
        QVERIFY(once.contains(QLatin1String("dailyrate:2027-01-12|1|2|0|"))); // a night the server left out
        {
            Transaction tx(t.db());
            applier.applyServerUpdates(updatesOf(OnlineReply));
            tx.commit();
        }
        QCOMPARE(dump(t.db()), once);
        QCOMPARE(applier.requests().size(), 0);
        const qint32 localBooking = t.db().scalar(QStringLiteral("select BBBookingID from booking where BookingID = 503")).toInt();
        QCOMPARE(t.db().scalar(QStringLiteral("select BBBookingID from guest")).toInt(), localBooking);
    }

    void missingReferenceIsRequestedAndNotAcknowledged()
    {
        TestDatabase t;
        ServerUpdateApplier applier(t.db());
        applier.applyServerUpdates(updatesOf(R"({"logupdates":[{"tablename":"account","logtype":"U","dblogid":9,"tableid":77,
            "values":{"AccountID":77,"InvoiceTo":{"table":"client","tableid":999}}}]})"));
        QCOMPARE(applier.acknowledgements().size(), 0);
        QCOMPARE(applier.requests().size(), 1);
        QCOMPARE(json::toString(applier.requests().first()), QStringLiteral("{\"tablename\":\"client\",\"tableid\":999}"));
    }

    void serverRowNamingALocalRowWithoutServerIdUpdatesIt()
    {
        TestDatabase t;
        const qint32 local = addClient(t.db(), QStringLiteral("Mine"));
        ServerUpdateApplier applier(t.db());
        applier.applyServerUpdates(updatesOf(QStringLiteral(R"({"logupdates":[{"tablename":"client","logtype":"U","dblogid":1,"tableid":40,
            "values":{"ClientID":40,"BBClientID":%1,"Surname":"Theirs"}}]})").arg(local).toUtf8().constData()));
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from client")).toInt(), 1);
        QCOMPARE(t.db().scalar(QStringLiteral("select ClientID from client")).toInt(), 40);
        QCOMPARE(ChangeLog::count(t.db()), 1); // the local change still goes up
    }

    // Clients written by the synchronisation are found by the client search in
    // any case, renamed and deleted there as well.
    void clientsFromTheServerAreFoundWhateverTheCaseTyped()
    {
        TestDatabase t;
        ServerUpdateApplier applier(t.db());
        const auto surnameSearch = [&](const char *typed) {
            return searchClientIds(t.db(), {QString(), QString::fromUtf8(typed), QString(), QString()});
        };
        applier.applyServerUpdates(updatesOf(R"({"logupdates":[{"tablename":"client","logtype":"U","dblogid":1,"tableid":61,
            "values":{"ClientID":61,"Surname":"Ñúñez","Active":"Y"}}]})"));
        const std::vector<qint32> found = surnameSearch("ñú");
        QCOMPARE(found.size(), std::size_t(1));
        applier.applyServerUpdates(updatesOf(R"({"logupdates":[{"tablename":"client","logtype":"U","dblogid":2,"tableid":61,
            "values":{"ClientID":61,"Surname":"Émile","Active":"Y"}}]})"));
        QVERIFY(surnameSearch("ñú").empty());
        QCOMPARE(surnameSearch("ÉMI"), found);
        applier.applyServerUpdates(updatesOf(R"({"logupdates":[{"tablename":"client","logtype":"D","dblogid":3,"tableid":61}]})"));
        QVERIFY(surnameSearch("émi").empty());
    }

    void shortenedStayKeepsLocalRatesAndDropsTheRest()
    {
        TestDatabase t;
        ServerUpdateApplier applier(t.db());
        applier.applyServerUpdates(updatesOf(OnlineReply));
        t.db().execute(QStringLiteral("update dailyrate set RoomRate = 5 where CalDate = '2027-01-10'"));
        JsonArray shorter = updatesOf(OnlineReply);
        shorter[1][QStringLiteral("values")].object()->set(QStringLiteral("ToDate"), JsonValue(QStringLiteral("2027-01-12")));
        applier.applyServerUpdates(shorter);
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from dailyrate")).toInt(), 2);
        QCOMPARE(t.db().scalar(QStringLiteral("select RoomRate from dailyrate where CalDate = '2027-01-10'")).toDouble(), 5.0);
    }

    void serverDeleteMovesBookingAside()
    {
        TestDatabase t;
        ServerUpdateApplier applier(t.db());
        applier.applyServerUpdates(updatesOf(OnlineReply));
        applier.applyServerUpdates(updatesOf(R"({"logupdates":[{"tablename":"guest","logtype":"D","dblogid":8,"tableid":504},
            {"tablename":"booking","logtype":"D","dblogid":9,"tableid":503},{"tablename":"booking","logtype":"D","dblogid":10,"tableid":12345}]})"));
        QCOMPARE(applier.acknowledgements().size(), 3);
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from booking")).toInt(), 0);
        QCOMPARE(t.db().scalar(QStringLiteral("select deluser from bookingdel")).toString(), QStringLiteral("synch"));
        QCOMPARE(t.db().scalar(QStringLiteral("select GuestID from guestdel")).toInt(), 504);
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from dailyrate")).toInt(), 0);
    }

    // Each reply the HTTP tests do not send fails the run and leaves the database as it was.
    void hostileRepliesAreRejectedWhole_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::newRow("unknown table") << R"({"success":true,"data":{"logupdates":[{"tablename":"vmuser","logtype":"U","tableid":1,"values":{}}]}})";
        QTest::newRow("sql in a table name") << R"({"success":true,"data":{"logupdates":[{"tablename":"client; drop table client","logtype":"U","tableid":1,"values":{}}]}})";
        QTest::newRow("object in a text column") << R"({"success":true,"data":{"logupdates":[{"tablename":"client","logtype":"U","tableid":1,"values":{"ClientID":1,"Surname":{"a":1}}}]}})";
        QTest::newRow("bad reference table") << R"({"success":true,"data":{"logupdates":[{"tablename":"account","logtype":"U","tableid":1,"values":{"InvoiceTo":{"table":"room","tableid":1}}}]}})";
        QTest::newRow("unknown kind") << R"({"success":true,"data":{"logupdates":[{"tablename":"client","logtype":"X","tableid":3}]}})";
        QTest::newRow("ack for unknown table") << R"({"success":true,"data":{"acknowledgements":[{"tablename":"room","dblogid":1,"tableid":1,"bbtableid":1}]}})";
        QTest::newRow("second of two fails") << R"({"success":true,"data":{"acknowledgements":[{"tablename":"client","dblogid":99,"tableid":5,"bbtableid":1}],
            "logupdates":[{"tablename":"client","logtype":"U","tableid":8,"values":{"ClientID":8,"Surname":"ok"}},{"tablename":"client","logtype":"U","tableid":9,"values":{"ClientID":9,"Notes":[1]}}]}})";
        QTest::newRow("huge text") << (QStringLiteral(R"({"success":true,"data":{"logupdates":[{"tablename":"client","logtype":"U","tableid":1,"values":{"ClientID":1,"Surname":")")
                                       + QString((1 << 20) + 1, QLatin1Char('x')) + QStringLiteral(R"("}}]}})"));
    }

    void hostileRepliesAreRejectedWhole()
    {
        QFETCH(QString, reply);
        TestDatabase t;
        addClient(t.db(), QStringLiteral("Keep"));
        const QString before = dump(t.db());
        ScriptedTransport transport;
        transport.replies << reply;
        Synch synch(t.db(), transport);
        synch.setSkipSetup(true);
        QVERIFY(!synch.synchronise());
        QCOMPARE(dump(t.db()), before);
        QCOMPARE(ChangeLog::count(t.db()), 1);
        QVERIFY(QFile::exists(t.file(QStringLiteral("synch.err"))));
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from synchlock")).toInt(), 0);
    }

    void aServerThatNeverAcknowledgesStopsAfterThreeIdleExchanges()
    {
        TestDatabase t;
        addClient(t.db(), QStringLiteral("Waiting"));
        ScriptedTransport transport;
        transport.replies << QStringLiteral("{\"success\":true,\"data\":{}}");
        Synch synch(t.db(), transport);
        synch.setSkipSetup(true);
        QVERIFY(!synch.synchronise());
        QCOMPARE(synch.summary().exchanges, Synch::MaxIdleExchanges);
        QCOMPARE(ChangeLog::count(t.db()), 1);
        QVERIFY(synch.summary().errors.last().contains(QLatin1String("three exchanges")));
    }

    void acknowledgementOfAnOlderChangeLeavesTheNewerOne()
    {
        TestDatabase t;
        const qint32 id = addClient(t.db(), QStringLiteral("Racing"));
        const int sentLog = t.db().scalar(QStringLiteral("select logid from dblog")).toInt();
        ChangeLog::logUpdate(t.db(), QStringLiteral("client"), id); // changed again while the message travels
        ScriptedTransport transport;
        transport.replies << QStringLiteral("{\"success\":true,\"data\":{\"acknowledgements\":[{\"tablename\":\"client\",\"dblogid\":%1,"
                                            "\"tableid\":55,\"bbtableid\":%2}]}}").arg(sentLog).arg(id)
                          << QStringLiteral("{\"success\":true,\"data\":{}}");
        Synch synch(t.db(), transport);
        synch.setSkipSetup(true);
        synch.synchronise();
        QCOMPARE(t.db().scalar(QStringLiteral("select ClientID from client")).toInt(), 55);
        QVERIFY(transport.messages.size() >= 2);
        QVERIFY(transport.messages[1].contains("\"Surname\":\"Racing\""));
    }

    void serverRequestIsAnsweredFirstOrReported()
    {
        TestDatabase t;
        const qint32 id = addClient(t.db(), QStringLiteral("Asked"));
        ChangeLog::clearLog(t.db(), QStringLiteral("client"), id);
        ScriptedTransport transport;
        transport.replies << QStringLiteral("{\"success\":true,\"data\":{\"requests\":[{\"tablename\":\"client\",\"bbtableid\":%1},"
                                            "{\"tablename\":\"client\",\"bbtableid\":%1}]}}").arg(id)
                          << QStringLiteral("{\"success\":true,\"data\":{\"requests\":[{\"tablename\":\"client\",\"bbtableid\":4242}]}}");
        Synch synch(t.db(), transport);
        synch.setSkipSetup(true);
        QVERIFY(!synch.synchronise());
        const JsonValue second = json::parse(QString::fromLatin1(transport.messages[1]));
        const JsonArray &updates = *second[QStringLiteral("data")][QStringLiteral("logupdates")].array();
        QCOMPARE(updates.size(), 1);
        QCOMPARE(updates[0][QStringLiteral("dblogid")].toText(), QStringLiteral("0"));
        QVERIFY(!updates[0].object()->contains(QStringLiteral("bbtableid")));
        QVERIFY(synch.summary().errors.last().endsWith(QLatin1String("client / ID: 4242")));
    }

    void automaticRunsPauseAfterAFailure()
    {
        const QDateTime now = QDateTime::currentDateTime();
        QVERIFY(AutoSynch::mayRun(now));
        AutoSynch::noteResult(false, now);
        QVERIFY(!AutoSynch::mayRun(now.addSecs(299)));
        QVERIFY(AutoSynch::mayRun(now.addSecs(300)));
        AutoSynch::noteResult(true, now);
        QVERIFY(AutoSynch::mayRun(now));
    }

    void newBookingNoticeNamesClientArrivalAndRooms()
    {
        TestDatabase t;
        QCOMPARE(newBookingText(t.db()), QString());
        ServerUpdateApplier applier(t.db());
        applier.applyServerUpdates(updatesOf(OnlineReply));
        t.db().execute(QStringLiteral("insert into room (BBRoomID, RoomName) values (2, 'Otter')"));
        QCOMPARE(newBookingText(t.db()), QStringLiteral("Client Name: Ngata\r\nArriving: 10/01/2027\r\nAllocated to: Otter\r\n\r\n"));
        for (int i = 0; i < 20; ++i)
            t.db().execute(QStringLiteral("insert into newbooking values (?)"), {100 + i});
        QVERIFY(newBookingText(t.db()).endsWith(QLatin1String("Only first 20 bookings are shown.")));
        clearNewBookings(t.db());
        QCOMPARE(newBookingText(t.db()), QString());
    }

    void anExceptionInTheExchangeReleasesTheLock_data()
    {
        QTest::addColumn<bool>("outOfMemory");
        QTest::addColumn<QString>("reason");
        QTest::newRow("a failure of any kind") << false << "the wire snapped";
        QTest::newRow("out of memory") << true << "ran out of memory";
    }

    void anExceptionInTheExchangeReleasesTheLock()
    {
        QFETCH(bool, outOfMemory);
        QFETCH(QString, reason);
        TestDatabase t;
        addClient(t.db(), QStringLiteral("Waiting"));
        ThrowingTransport transport(outOfMemory);
        Synch synch(t.db(), transport);
        synch.setSkipSetup(true);
        QVERIFY(!synch.synchronise());
        QVERIFY(synch.summary().errors.join(QString()).contains(reason));
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from synchlock")).toInt(), 0);
        QCOMPARE(ChangeLog::count(t.db()), 1);
    }

    void aSecondRunWhileOneWaitsSaysSoAndLeavesTheFirstsLock()
    {
        TestDatabase t;
        ReentrantTransport transport(t.db());
        Synch first(t.db(), transport);
        first.setSkipSetup(true);
        QVERIFY(first.synchronise());
        QVERIFY(!transport.secondResult);
        QVERIFY(transport.secondSummary.locked);
        QCOMPARE(transport.lockDuringSecond, 1);
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from synchlock")).toInt(), 0);
    }

    // Another PC's run is no failure of this one: no message, no pause.
    void aLockedAutomaticRunShowsNothingAndDoesNotPause()
    {
        TestDatabase t;
        RecordingSink sink;
        AutoSynch::noteResult(true);
        QVERIFY(SynchLock::acquireLock(t.db()));
        QVERIFY(!automaticSynch(t.db()));
        QVERIFY(sink.shown.isEmpty());
        QVERIFY(AutoSynch::mayRun());
        QFile err(t.file(QStringLiteral("synch.err")));
        QVERIFY(err.open(QIODevice::ReadOnly));
        QVERIFY(err.readAll().contains("another synchronisation holds the lock"));
    }

    void lockExpiresAfterFiveMinutes()
    {
        TestDatabase t;
        const QDateTime now(QDate(2026, 5, 1), QTime(12, 0, 0));
        QVERIFY(SynchLock::acquireLock(t.db(), now));
        QVERIFY(!SynchLock::acquireLock(t.db(), now.addSecs(300)));
        QVERIFY(SynchLock::acquireLock(t.db(), now.addSecs(301)));
        SynchLock::clearLock(t.db());
        QVERIFY(SynchLock::acquireLock(t.db(), now));
    }

    void lockHeldElsewhereIsNoSuccessAndLeavesTheLock()
    {
        TestDatabase t;
        QVERIFY(SynchLock::acquireLock(t.db()));
        ScriptedTransport transport;
        Synch synch(t.db(), transport);
        QVERIFY(!synch.synchronise());
        QVERIFY(synch.summary().locked);
        QVERIFY(synch.summary().errors.value(0).contains(QLatin1String("another synchronisation holds the lock")));
        QVERIFY(transport.urls.isEmpty());
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from synchlock")).toInt(), 1);
    }

    void setupReplacesOnlyKnownTablesAndColumns()
    {
        TestDatabase t;
        t.db().execute(QStringLiteral("insert into room (BBRoomID, RoomName) values (9, 'Old')"));
        t.db().execute(QStringLiteral("insert into client (Surname) values ('Stays')"));
        ScriptedTransport transport;
        transport.replies << QStringLiteral(R"({"success":true,"data":{
            "room":[{"bbroomid":1,"roomname":"Heron","colour":"blue"},{"bbroomid":2,"roomname":"Otter"}],
            "client":[],"secrets":[{"a":1}],
            "bbsetup":[{"bbid":12345,"bbname":"Fen Lodge","synchcounter":8}]}})");
        SetupDownload setup(t.db(), transport);
        setup.setShowMessages(false);
        QVERIFY(setup.initialise());
        QCOMPARE(setup.replacedTables(), (QStringList{"room", "bbsetup"}));
        QCOMPARE(setup.ignored(), (QStringList{"room.colour", "client", "secrets"}));
        QCOMPARE(t.db().scalar(QStringLiteral("select group_concat(RoomName) from room")).toString(), QStringLiteral("Heron,Otter"));
        QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from client")).toInt(), 1);
        QCOMPARE(t.db().scalar(QStringLiteral("select SynchCounter from bbsetup")).toInt(), 8);
    }

    void setupSyncOnlyAndLoginRetry()
    {
        TestDatabase t;
        ScriptedTransport transport;
        transport.replies << QStringLiteral("{\"success\":true,\"loginfail\":1}") << QStringLiteral("{\"success\":true,\"synconly\":0}");
        SetupDownload setup(t.db(), transport);
        setup.setShowMessages(false);
        int asked = 0;
        setup.setLoginRetry([&](qint32 &bbid, QString &password) {
            ++asked;
            bbid = 23456;
            password = QStringLiteral("again");
            return true;
        });
        QVERIFY(setup.initialise());
        QCOMPARE(asked, 1);
        QVERIFY(transport.urls.last().contains(QLatin1String("bbid=23456&p=again")));
        QCOMPARE(t.db().scalar(QStringLiteral("select SynchCounter from bbsetup")).toInt(), 0);

        transport.replies = QStringList{QStringLiteral("{\"success\":true,\"loginfail\":1}")};
        SetupDownload refused(t.db(), transport);
        refused.setShowMessages(false);
        QVERIFY(!refused.initialise());
        QVERIFY(refused.loginRefused());
    }

    void deletedRoomWithFutureBookingIsWarned()
    {
        TestDatabase t;
        t.db().execute(QStringLiteral("insert into booking (FromDate, ToDate) values (?, ?)"),
                       {sqlDate(QDate::currentDate()), sqlDate(QDate::currentDate().addDays(3))});
        t.db().execute(QStringLiteral("insert into guest (BBBookingID, BBRoomID) values (1, 5)"));
        ScriptedTransport transport;
        transport.replies << QStringLiteral(R"({"success":true,"data":{"room":[{"bbroomid":1,"roomname":"Only"}]}})");
        SetupDownload setup(t.db(), transport);
        setup.setShowMessages(false);
        QVERIFY(setup.initialise());
        QVERIFY(setup.roomsWarning());
    }
};

QTEST_GUILESS_MAIN(TestSynchCore)
#include "test_synchcore.moc"

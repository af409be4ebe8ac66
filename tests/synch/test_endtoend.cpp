#include "server/httpfront.h"
#include "server/referenceserver.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/config.h"
#include "synch/demoserver.h"
#include "synch/synch.h"
#include "synch/synchrun.h"
#include "synch/transport.h"

#include "support/testdatabase.h"

#include <QHostAddress>
#include <QProcess>
#include <QSqlQuery>
#include <QtTest>

using namespace fenlark;
using namespace fenlark::server;

namespace {

constexpr qint32 Bbid = 12345;
const QString Password = QStringLiteral("s3cret");

// A desk database and a reference server on loopback, talking real HTTP.
class Rig {
public:
    Rig()
    {
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (?,?,?)"),
                       {Bbid, QStringLiteral("Fen Lodge"), Password});
        t.db().execute(QStringLiteral("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values (1, 1, 'Heron', 1), (2, 1, 'Otter', 2)"));
        static int serial = 0;
        store = std::make_unique<ReferenceServer>(serverDir.filePath(QStringLiteral("server.db")),
                                                  QStringLiteral("e2e-%1").arg(++serial));
        store->seedFromDesk(t.db().path());
        front = std::make_unique<HttpFront>(serverDir.filePath(QStringLiteral("server.db")));
        front->setStallMs(4000);
        port = front->listen(QHostAddress::LocalHost, 0);
    }

    bool run(int logLimit = 300, SynchSummary *summary = nullptr)
    {
        HttpTransport transport(1500);
        Synch synch(t.db(), transport);
        ServerLogin login;
        login.server = QStringLiteral("127.0.0.1:%1").arg(port);
        login.bbid = Bbid;
        login.password = Password;
        synch.setLogin(login);
        synch.setSynchCounter(t.db().scalar(QStringLiteral("select SynchCounter from bbsetup")).toString());
        synch.setLogLimit(logLimit);
        const bool ok = synch.synchronise();
        if (summary)
            *summary = synch.summary();
        if (!ok)
            qInfo() << "run failed:" << synch.summary().errors;
        return ok;
    }

    Database &db() { return t.db(); }
    int count(const QString &table) { return t.db().scalar(QStringLiteral("select count(*) from ") + table).toInt(); }

    qint32 insertClient(const QString &surname)
    {
        t.db().execute(QStringLiteral("insert into client (Surname, Active) values (?, 'Y')"), {surname});
        const qint32 id = static_cast<qint32>(t.db().lastInsertId());
        ChangeLog::logUpdate(t.db(), QStringLiteral("client"), id);
        return id;
    }

    // A booking made at the desk: client, account, head, one leg and its nightly rates.
    qint32 insertBooking(const QDate &from, int nights, double rate)
    {
        Transaction tx(t.db());
        const qint32 client = insertClient(QStringLiteral("Walker"));
        t.db().execute(QStringLiteral("insert into account (InvoiceTo, Status) values (?, 'O')"), {client});
        const qint32 account = static_cast<qint32>(t.db().lastInsertId());
        ChangeLog::logUpdate(t.db(), QStringLiteral("account"), account);
        t.db().execute(QStringLiteral("insert into booking (BookingType, FromDate, ToDate, Status, MadeBy, BBAccountID) "
                                      "values ('N', ?, ?, 'C', ?, ?)"),
                       {sqlDate(from), sqlDate(from.addDays(nights)), client, account});
        const qint32 booking = static_cast<qint32>(t.db().lastInsertId());
        ChangeLog::logUpdate(t.db(), QStringLiteral("booking"), booking);
        t.db().execute(QStringLiteral("insert into guest (BBBookingID, BBRoomID, BBClientID, NoAdults, BBAccountID) values (?, 1, ?, 2, ?)"),
                       {booking, client, account});
        ChangeLog::logUpdate(t.db(), QStringLiteral("guest"), static_cast<qint32>(t.db().lastInsertId()));
        for (int i = 0; i < nights; ++i)
            t.db().execute(QStringLiteral("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values (?, ?, 1, ?)"),
                           {sqlDate(from.addDays(i)), booking, rate + i});
        tx.commit();
        return booking;
    }

    // Both sides hold the same rows of each shared table, every PC row has its
    // server id, and nothing waits on either side.
    void verifyInStep()
    {
        QCOMPARE(ChangeLog::count(t.db()), 0);
        QCOMPARE(store->outboxCount(Bbid), 0);
        for (const QString table : {"client", "account", "booking", "guest"}) {
            QCOMPARE(store->rowCount(Bbid, table), count(table));
            const QString serverKey = table + QStringLiteral("id");
            QCOMPARE(t.db().scalar(QStringLiteral("select count(*) from %1 where %2 = 0").arg(table, serverKey)).toInt(), 0);
            QSqlQuery q = t.db().query(QStringLiteral("select bb%1id, %1id from %1").arg(table));
            while (q.next())
                QCOMPARE(store->localIdOf(Bbid, table, q.value(1).toInt()), q.value(0).toInt());
        }
    }

    TestDatabase t;
    QTemporaryDir serverDir;
    std::unique_ptr<ReferenceServer> store;
    std::unique_ptr<HttpFront> front;
    quint16 port = 0;
};

} // namespace

class TestEndToEnd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newBookingTravelsUpAndGetsServerIds()
    {
        Rig rig;
        QVERIFY(rig.port > 0);
        const qint32 booking = rig.insertBooking(QDate(2026, 12, 1), 3, 100.0);
        SynchSummary summary;
        QVERIFY(rig.run(300, &summary));
        QCOMPARE(summary.sent, 4);
        QCOMPARE(summary.acknowledged, 4);
        rig.verifyInStep();

        const qint32 serverBooking = rig.db().scalar(QStringLiteral("select BookingID from booking where BBBookingID = ?"), {booking}).toInt();
        const qint32 serverGuest = rig.db().scalar(QStringLiteral("select GuestID from guest")).toInt();
        const JsonValue guest = rig.store->row(Bbid, QStringLiteral("guest"), serverGuest);
        QCOMPARE(guest[QStringLiteral("BBBookingID")][QStringLiteral("table")].toText(), QStringLiteral("booking"));
        QCOMPARE(guest[QStringLiteral("BBBookingID")][QStringLiteral("tableid")].toInt(), serverBooking);
        QCOMPARE(guest[QStringLiteral("avgrate")].toDouble(), 101.0);
        // Setup came down and the counter is now current.
        QVERIFY(rig.db().scalar(QStringLiteral("select SynchCounter from bbsetup")).toInt() > 0);
    }

    void onlineBookingArrivesWithReferencesAndRates()
    {
        Rig rig;
        OnlineBooking b;
        b.roomId = 2;
        b.fromDate = QDate(2027, 1, 10);
        b.nights = 3;
        b.rate = 123.456;
        b.surname = QStringLiteral("Ngata");
        rig.store->addOnlineBooking(Bbid, b);
        rig.store->setFault(QStringLiteral("shuffle"), 1); // the guest arrives before its booking
        QVERIFY(rig.run());
        rig.verifyInStep();

        QSqlQuery q = rig.db().query(QStringLiteral("select g.BBRoomID, c.Surname, b.FromDate, b.BBAccountID, g.BBAccountID "
                                                    "from guest g join booking b on b.BBBookingID = g.BBBookingID "
                                                    "join client c on c.BBClientID = b.MadeBy"));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 2);
        QCOMPARE(q.value(1).toString(), QStringLiteral("Ngata"));
        QCOMPARE(q.value(2).toString(), QStringLiteral("2027-01-10"));
        QCOMPARE(q.value(3).toInt(), q.value(4).toInt());
        QCOMPARE(rig.count(QStringLiteral("dailyrate")), 3);
        QCOMPARE(rig.db().scalar(QStringLiteral("select sum(RoomRate) from dailyrate")).toDouble(), 3 * 123.46);
        QCOMPARE(rig.count(QStringLiteral("newbooking")), 1);
    }

    void seedingKeepsNewServerIdsClearOfTheDesks()
    {
        TestDatabase t;
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, Password) values (?, ?)"), {Bbid, Password});
        t.db().execute(QStringLiteral("insert into booking (BookingID, FromDate, ToDate) values (500, '2026-01-01', '2026-01-02')"));
        QTemporaryDir dir;
        ReferenceServer store(dir.filePath(QStringLiteral("s.db")), QStringLiteral("seed-ids"));
        store.seedFromDesk(t.db().path());
        OnlineBooking b;
        b.fromDate = QDate(2027, 1, 1);
        QVERIFY(store.addOnlineBooking(Bbid, b).client > 500);
    }

    void moreRowsThanLogLimitTakeSeveralExchanges()
    {
        Rig rig;
        for (int i = 0; i < 25; ++i)
            rig.insertClient(QStringLiteral("Client %1").arg(i));
        SynchSummary summary;
        QVERIFY(rig.run(10, &summary));
        QVERIFY2(summary.exchanges >= 4, qPrintable(QString::number(summary.exchanges)));
        QCOMPARE(summary.acknowledged, 25);
        rig.verifyInStep();
    }

    void editsAndDeletionsTravelBothWays()
    {
        Rig rig;
        rig.insertBooking(QDate(2026, 12, 1), 2, 90.0);
        OnlineBooking b;
        b.roomId = 2;
        b.fromDate = QDate(2027, 2, 1);
        const OnlineBookingIds online = rig.store->addOnlineBooking(Bbid, b);
        QVERIFY(rig.run());
        rig.verifyInStep();

        // The server edits its client and deletes its leg; the desk edits and deletes its own.
        JsonObject change;
        change.set(QStringLiteral("Surname"), JsonValue(QStringLiteral("Renamed")));
        rig.store->editRow(Bbid, QStringLiteral("client"), online.client, change);
        rig.store->deleteRow(Bbid, QStringLiteral("guest"), online.guest);
        const qint32 deskClient = rig.db().scalar(QStringLiteral("select BBClientID from client where Surname = 'Walker'")).toInt();
        rig.db().execute(QStringLiteral("update client set Notes = 'VIP' where BBClientID = ?"), {deskClient});
        ChangeLog::logUpdate(rig.db(), QStringLiteral("client"), deskClient);
        const qint32 extraClient = rig.insertClient(QStringLiteral("Gone"));
        QVERIFY(rig.run());
        rig.db().execute(QStringLiteral("delete from client where BBClientID = ?"), {extraClient});
        ChangeLog::logDelete(rig.db(), QStringLiteral("client"), extraClient);
        QVERIFY(rig.run());
        rig.verifyInStep();

        QCOMPARE(rig.db().scalar(QStringLiteral("select count(*) from client where Surname = 'Renamed'")).toInt(), 1);
        QCOMPARE(rig.db().scalar(QStringLiteral("select deluser from guestdel")).toString(), QStringLiteral("synch"));
        QCOMPARE(rig.db().scalar(QStringLiteral("select count(*) from dailyrate where BBRoomID = 2")).toInt(), 0);
        const qint32 serverClient = rig.db().scalar(QStringLiteral("select ClientID from client where BBClientID = ?"), {deskClient}).toInt();
        QCOMPARE(rig.store->row(Bbid, QStringLiteral("client"), serverClient)[QStringLiteral("Notes")].toText(), QStringLiteral("VIP"));
    }

    void injectedFaultsEndInStepAfterACleanRun_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<bool>("firstRunSucceeds");
        QTest::newRow("drop") << "drop" << false;
        QTest::newRow("stall") << "stall" << false;
        QTest::newRow("garbled") << "garbled" << false;
        QTest::newRow("truncated") << "truncated" << false;
        QTest::newRow("fail") << "fail" << false;
        QTest::newRow("duplicate-acks") << "duplicate-acks" << true;
        QTest::newRow("shuffle") << "shuffle" << true;
    }

    void injectedFaultsEndInStepAfterACleanRun()
    {
        QFETCH(QString, fault);
        QFETCH(bool, firstRunSucceeds);
        Rig rig;
        rig.insertBooking(QDate(2026, 12, 1), 2, 90.0);
        OnlineBooking b;
        b.roomId = 2;
        b.fromDate = QDate(2027, 3, 1);
        b.nights = 2;
        rig.store->addOnlineBooking(Bbid, b);
        // Qt Network resends a request whose connection closed before any reply, twice.
        rig.store->setFault(fault, fault == QLatin1String("drop") ? 3 : 1);
        QCOMPARE(rig.run(), firstRunSucceeds);
        QVERIFY(rig.run());
        rig.verifyInStep();
        QCOMPARE(rig.count(QStringLiteral("booking")), 2);
        QCOMPARE(rig.count(QStringLiteral("guest")), 2);
        QCOMPARE(rig.count(QStringLiteral("dailyrate")), 4);
        if (!firstRunSucceeds)
            QVERIFY(QFile::exists(rig.t.file(QStringLiteral("synch.err"))));
    }

    void killedMidSynchronisationLosesNothing()
    {
        const QString ctl = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlarkctl"));
        if (!QFileInfo(ctl).isExecutable())
            QSKIP("fenlarkctl is not built beside the tests");
        Rig rig;
        rig.insertBooking(QDate(2026, 12, 1), 2, 90.0);
        QFile ini(rig.t.file(QStringLiteral("vmconfig.ini")));
        QVERIFY(ini.open(QIODevice::WriteOnly));
        ini.write(QStringLiteral("[Param]\nServer=127.0.0.1:%1\n").arg(rig.port).toUtf8());
        ini.close();
        rig.store->setFault(QStringLiteral("stall"), 1); // the server takes the message and never answers

        QProcess child;
        child.start(ctl, {QStringLiteral("synch"), QStringLiteral("--home"), rig.t.home(), QStringLiteral("--db"), rig.db().path()});
        QVERIFY(child.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(rig.store->rowCount(Bbid, QStringLiteral("guest")) == 1, 10000);
        child.kill();
        child.waitForFinished();

        QCOMPARE(ChangeLog::count(rig.db()), 4); // nothing was cleared without a receipt
        QCOMPARE(rig.count(QStringLiteral("synchlock")), 1);
        // The dead PC's lock runs out after five minutes.
        rig.db().execute(QStringLiteral("update synchlock set locktime = ?"), {sqlDateTime(QDateTime::currentDateTime().addSecs(-301))});
        QVERIFY(rig.run());
        rig.verifyInStep();
    }

    void demoServerStartsSeededAndAnswers()
    {
        const QString dir = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral(".."));
        if (!QFileInfo(QDir(dir).filePath(QStringLiteral("fenlark-server"))).isExecutable())
            QSKIP("fenlark-server is not built beside the tests");
        TestDatabase t;
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (?,?,?)"), {Bbid, QStringLiteral("Demo"), Password});
        t.db().execute(QStringLiteral("insert into room (BBRoomID, RoomName) values (1, 'Heron')"));
        QObject owner;
        QString error;
        const QString address = startDemoServer(t.db().path(), &owner, &error, dir);
        QVERIFY2(!address.isEmpty(), qPrintable(error));
        QCOMPARE(readConfig(QStringLiteral("Server"), QString()), address);
        QVERIFY(QFile::exists(demoServerDatabase()));
        QVERIFY(runSynch(t.db(), false));
        QCOMPARE(t.db().scalar(QStringLiteral("select RoomName from room")).toString(), QStringLiteral("Heron"));
        QVERIFY(t.db().scalar(QStringLiteral("select SynchCounter from bbsetup")).toInt() > 0);
    }

    void wrongPasswordFailsTheRunAndChangesNothing()
    {
        Rig rig;
        rig.insertClient(QStringLiteral("Kept"));
        rig.store->createProperty(Bbid, QStringLiteral("changed"), QStringLiteral("Fen Lodge"));
        SynchSummary summary;
        QVERIFY(!rig.run(300, &summary));
        QCOMPARE(ChangeLog::count(rig.db()), 1);
        QCOMPARE(rig.store->rowCount(Bbid, QStringLiteral("client")), 0);
        QVERIFY(!summary.errors.join(QString()).contains(QStringLiteral("changed")));
    }
};

QTEST_GUILESS_MAIN(TestEndToEnd)
#include "test_endtoend.moc"

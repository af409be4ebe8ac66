// fenlarkctl's booking verbs, run as a script runs them: a separate process on
// a database file, JSON on stdout, a refusal on stderr with a non-zero exit.
#include "desk/propertygenerator.h"
#include "shell/database.h"
#include "support/databasedump.h"
#include "support/ctlrun.h"
#include "support/testdatabase.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace fenlark;

class TestBookingVerbs : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;

    CtlRun ctl(const QStringList &arguments) { return runCtl(m_t->home(), m_t->db().path(), arguments); }

    qint32 book(const QString &from, const QString &to, const QStringList &rooms)
    {
        QStringList arguments{QStringLiteral("book"), QStringLiteral("--from"), from, QStringLiteral("--to"), to,
                              QStringLiteral("--surname"), QStringLiteral("Script")};
        for (const QString &room : rooms)
            arguments << QStringLiteral("--room") << room;
        const CtlRun run = ctl(arguments);
        if (run.exitCode != 0)
            qWarning() << run.errors;
        return run.exitCode == 0 ? run.json.value("booking").toInt() : 0;
    }

    // Everything a refused change must leave as it was.
    QString snapshot() { return dumpDatabaseFile(m_t->db().path()); }

    int nights(qint32 booking) { return m_t->db().scalar("select count(*) from dailyrate where BBBookingID = ?", {booking}).toInt(); }

private Q_SLOTS:
    void initTestCase()
    {
        FENLARK_REQUIRE_CTL();
    }

    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        PropertyGenerator(PropertyGenerator::demo()).generate(m_t->db());
    }

    void bookWritesLegsNightsAndAccountWithTheHeadLast()
    {
        const QString before = snapshot();
        const QStringList crowded = {"book", "--from", "2031-05-01", "--to", "2031-05-04", "--room", "1", "--room", "2::9",
                                     "--surname", "Script", "--first", "Ann"};
        const CtlRun refused = ctl(crowded);   // nine adults in a double: a script must say --yes
        QVERIFY(refused.exitCode != 0);
        QVERIFY(refused.errors.contains("change the number of people"));
        QCOMPARE(snapshot(), before);
        const CtlRun run = ctl(crowded + QStringList{"--yes"});
        QCOMPARE(run.exitCode, 0);
        const qint32 booking = run.json.value("booking").toInt();
        QCOMPARE(nights(booking), 6);
        QCOMPARE(m_t->db().scalar("select NoAdults from guest where BBBookingID = ? and BBRoomID = 2", {booking}).toInt(), 9);
        QCOMPARE(m_t->db().scalar("select TableName || ':' || bbtableId from dblog order by logid desc limit 1").toString(),
                 QStringLiteral("booking:%1").arg(booking));

    }

    void refusedChangesWriteNothing()
    {
        const qint32 first = book("2031-05-01", "2031-05-04", {"1", "2"});
        const qint32 second = book("2031-05-10", "2031-05-12", {"1", "3"});
        QVERIFY(first > 0 && second > 0);
        const QString before = snapshot();

        const CtlRun clash = ctl({"booking", "dates", QString::number(second), "--from", "2031-05-03", "--to", "2031-05-06"});
        QVERIFY(clash.exitCode != 0);
        QVERIFY(!clash.errors.isEmpty());

        const CtlRun takenRoom = ctl({"booking", "room", QString::number(second), "--leg", "3", "--to-room", "1"});
        QVERIFY(takenRoom.exitCode != 0);

        // What does not exist is refused with a message, not booked.
        const CtlRun noSuchRoom = ctl({"book", "--from", "2031-06-01", "--to", "2031-06-02", "--room", "77", "--surname", "X"});
        QVERIFY(noSuchRoom.exitCode != 0);
        QVERIFY(noSuchRoom.errors.contains("There is no room 77."));
        const CtlRun noSuchRate = ctl({"book", "--from", "2031-06-01", "--to", "2031-06-02", "--room", "1:9999", "--surname", "X"});
        QVERIFY(noSuchRate.exitCode != 0);
        QVERIFY(noSuchRate.errors.contains("not offered"));
        const CtlRun toNoRoom = ctl({"booking", "room", QString::number(second), "--leg", "3", "--to-room", "77"});
        QVERIFY(toNoRoom.exitCode != 0);
        QVERIFY(toNoRoom.errors.contains("There is no room 77."));
        QCOMPARE(snapshot(), before);

        m_t->db().execute("insert into client (Surname, Active) values ('Retired', 'N')");
        const QString retired = QString::number(m_t->db().lastInsertId());
        const QString withRetired = snapshot();
        const CtlRun forRetired = ctl({"book", "--from", "2031-06-01", "--to", "2031-06-02", "--room", "1", "--client", retired});
        QVERIFY(forRetired.exitCode != 0);
        QVERIFY(forRetired.errors.contains("retired"));
        QCOMPARE(snapshot(), withRetired);
    }

    void datesRoomsAndSplitSaveThroughTheEditorsPath()
    {
        const qint32 booking = book("2031-05-01", "2031-05-04", {"1", "2"});
        QVERIFY(booking > 0);
        const double total = m_t->db().scalar("select total(RoomRate) from dailyrate").toDouble();

        const CtlRun moved = ctl({"booking", "dates", QString::number(booking), "--from", "2031-05-01", "--to", "2031-05-06"});
        QCOMPARE(moved.exitCode, 0);
        QCOMPARE(moved.json.value("to").toString(), QStringLiteral("2031-05-06"));
        QCOMPARE(nights(booking), 10);

        const CtlRun room = ctl({"booking", "room", QString::number(booking), "--leg", "2", "--to-room", "5"});
        QCOMPARE(room.exitCode, 0);
        QCOMPARE(m_t->db().scalar("select count(*) from dailyrate where BBBookingID = ? and BBRoomID = 5", {booking}).toInt(), 5);

        const double beforeSplit = m_t->db().scalar("select total(RoomRate) from dailyrate").toDouble();
        QVERIFY(beforeSplit > total);
        const CtlRun split = ctl({"booking", "split", QString::number(booking), "--leg", "5"});
        QCOMPARE(split.exitCode, 0);
        const qint32 other = split.json.value("booking").toInt();
        QVERIFY(other > 0 && other != booking);
        QCOMPARE(nights(booking), 5);
        QCOMPARE(nights(other), 5);
        QCOMPARE(m_t->db().scalar("select total(RoomRate) from dailyrate").toDouble(), beforeSplit);
    }

    void arrivalsListTheDaysLegsInRoomOrderWhateverTheirStatus()
    {
        const qint32 booking = book("2031-07-01", "2031-07-03", {"3", "1"});
        book("2031-07-02", "2031-07-03", {"2"});
        m_t->db().execute("update booking set Status = 'U' where BBBookingID = ?", {booking});
        m_t->db().execute("update room set OrderBy = 0 where BBRoomID = 3");

        const CtlRun in = ctl({"arrivals", "--date", "2031-07-01"});
        QCOMPARE(in.exitCode, 0);
        const QJsonArray arriving = in.json.value("legs").toArray();
        QCOMPARE(arriving.size(), 2);
        QCOMPARE(arriving.at(0).toObject().value("room").toInt(), 3);
        QCOMPARE(arriving.at(1).toObject().value("room").toInt(), 1);

        QCOMPARE(ctl({"arrivals", "--date", "2031-07-03", "--departures"}).json.value("legs").toArray().size(), 3);
        const CtlRun none = ctl({"arrivals", "--date", "2031-08-01"});
        QCOMPARE(none.exitCode, 0);
        QVERIFY(none.json.value("legs").toArray().isEmpty());
    }

    void remindersListProvisionalBookingsPastTheirHoldAndPostponeOne()
    {
        Database &db = m_t->db();
        db.execute("update booking set Status = 'C' where Status = 'P'");
        const qint32 held = book("2031-07-04", "2031-07-06", {"2"});
        const qint32 confirmed = book("2031-07-04", "2031-07-06", {"3"});
        db.execute("update booking set Status = 'P', ReservedUntil = '2020-01-01 10:00:00' where BBBookingID = ?", {held});
        db.execute("update booking set ReservedUntil = '2020-01-01 10:00:00' where BBBookingID = ?", {confirmed});

        const CtlRun due = ctl({"reminders"});
        QCOMPARE(due.exitCode, 0);
        const QJsonArray reminders = due.json.value("reminders").toArray();
        QCOMPARE(reminders.size(), 1);
        const QJsonObject reminder = reminders.at(0).toObject();
        QCOMPARE(reminder.value("booking").toInt(), held);
        QCOMPARE(reminder.value("text").toString(), QString("Script arriving Fri 04 Jul 2031"));

        const QString before = snapshot();
        const CtlRun refused = ctl({"reminders", "--postpone", QString::number(confirmed)});
        QVERIFY(refused.exitCode != 0);
        QVERIFY(refused.errors.contains("not a provisional booking"));
        QCOMPARE(snapshot(), before);

        const CtlRun postponed = ctl({"reminders", "--postpone", QString::number(held)});
        QCOMPARE(postponed.exitCode, 0);
        const QDateTime until = QDateTime::fromString(postponed.json.value("reservedUntil").toString(), Qt::ISODate);
        QVERIFY(qAbs(until.secsTo(QDateTime::currentDateTime().addSecs(4 * 3600))) < 120);
        QCOMPARE(db.scalar("select ReservedUntil from booking where BBBookingID = ?", {held}).toString(),
                 until.toString("yyyy-MM-dd hh:mm:ss"));
        QVERIFY(ctl({"reminders"}).json.value("reminders").toArray().isEmpty());
    }

    void doubleBookingsAreListedWithExitThree()
    {
        const CtlRun clear = ctl({"double-bookings"});
        QCOMPARE(clear.exitCode, 0);
        QVERIFY(clear.json.value("clashes").toArray().isEmpty());
        const qint32 first = book("2031-05-01", "2031-05-04", {"1"});
        const qint32 second = book("2031-05-01", "2031-05-04", {"2"});
        m_t->db().execute("update guest set BBRoomID = 1 where BBBookingID = ?", {second});
        const CtlRun found = ctl({"double-bookings"});
        QCOMPARE(found.exitCode, 3);
        const QJsonArray clashes = found.json.value("clashes").toArray();
        QCOMPARE(clashes.size(), 2);
        QCOMPARE(clashes.at(0).toObject().value("booking").toInt() + clashes.at(1).toObject().value("booking").toInt(),
                 first + second);
    }
};

QTEST_GUILESS_MAIN(TestBookingVerbs)
#include "test_bookingverbs.moc"

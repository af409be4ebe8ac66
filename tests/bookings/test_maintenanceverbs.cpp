// fenlarkctl's verbs for keeping bookings, run as a script runs them: a separate
// process on a database file, JSON on stdout, a refusal on stderr with a
// non-zero exit and nothing written.
#include "shell/database.h"
#include "support/databasedump.h"
#include "support/ctlrun.h"
#include "support/demodatabase.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace fenlark;

class TestMaintenanceVerbs : public QObject {
    Q_OBJECT
    std::unique_ptr<DemoDatabase> m_t;

    Database &db() { return m_t->db(); }

    CtlRun ctl(const QStringList &arguments) { return runCtl(m_t->home(), db().path(), arguments); }

    qint32 book(const QString &from, const QString &to, const QStringList &rooms, const QString &surname = "Script")
    {
        QStringList arguments{"book", "--from", from, "--to", to, "--surname", surname};
        for (const QString &room : rooms)
            arguments << "--room" << room;
        const CtlRun run = ctl(arguments);
        return run.exitCode == 0 ? run.json.value("booking").toInt() : 0;
    }

    // Everything a refused verb must leave as it was.
    QString snapshot() { return dumpDatabaseFile(m_t->db().path()); }

    qint32 guestOf(qint32 booking, int room)
    {
        return db().scalar("select BBGuestID from guest where BBBookingID = ? and BBRoomID = ?", {booking, room}).toInt();
    }

private Q_SLOTS:
    void initTestCase()
    {
        FENLARK_REQUIRE_CTL();
    }

    void init() { m_t = std::make_unique<DemoDatabase>(); }

    void addRoomAndTheRoomsALegMayMoveTo()
    {
        const qint32 booking = book("2031-05-01", "2031-05-04", {"1"});
        QVERIFY(booking > 0);
        const CtlRun added = ctl({"booking", "add-room", QString::number(booking), "--room", "3", "--adults", "3"});
        QCOMPARE(added.exitCode, 0);
        QCOMPARE(added.json.value("room").toInt(), 3);
        QVERIFY(added.json.value("total").toDouble() > 0);
        QCOMPARE(db().scalar("select count(*) from dailyrate where BBBookingID = ? and BBRoomID = 3", {booking}).toInt(), 3);

        const QString before = snapshot();
        const CtlRun taken = ctl({"booking", "add-room", QString::number(booking), "--room", "3"});
        QVERIFY(taken.exitCode != 0);
        QVERIFY(taken.errors.contains("has been taken"));
        const CtlRun crowded = ctl({"booking", "add-room", QString::number(booking), "--room", "5", "--adults", "9"});
        QVERIFY(crowded.exitCode != 0);
        QCOMPARE(snapshot(), before);

        const CtlRun free = ctl({"booking", "free-rooms", QString::number(booking), "--leg", "1"});
        QCOMPARE(free.exitCode, 0);
        QStringList rooms;
        for (const QJsonValue &room : free.json.value("rooms").toArray())
            rooms << QString::number(room.toObject().value("room").toInt());
        QVERIFY(!rooms.contains("1") && !rooms.contains("3"));
        QVERIFY(rooms.contains("2"));
        QVERIFY(ctl({"booking", "free-rooms", QString::number(booking), "--leg", "1", "--from", "2031-05-04", "--to", "2031-05-01"})
                    .exitCode
                != 0);
    }

    void cancelListAndRestoreRooms()
    {
        const qint32 booking = book("2031-05-01", "2031-05-04", {"1", "2"});
        const qint32 second = guestOf(booking, 2);
        const QString before = snapshot();
        const CtlRun blank = ctl({"booking", "cancel", QString::number(booking), "--reason", "  "});
        QVERIFY(blank.exitCode != 0);
        QVERIFY(blank.errors.contains("needs a reason"));
        QVERIFY(ctl({"booking", "cancel", QString::number(booking)}).exitCode != 0);
        QCOMPARE(snapshot(), before);

        const CtlRun room = ctl({"booking", "cancel-room", QString::number(booking), "--leg", "2", "--reason", "smaller party"});
        QCOMPARE(room.exitCode, 0);
        QVERIFY(room.json.value("cancelled").toBool());
        const CtlRun whole = ctl({"booking", "cancel", QString::number(booking), "--reason", "storm"});
        QCOMPARE(whole.exitCode, 0);
        const CtlRun list = ctl({"cancellations", "--surname", "scr"});
        QCOMPARE(list.exitCode, 0);
        QCOMPARE(list.json.value("legs").toArray().size(), 2);
        QCOMPARE(list.json.value("legs").toArray().at(0).toObject().value("from").toString(), QString("2031-05-01"));

        const CtlRun restored = ctl({"restore", QString::number(second)});
        QCOMPARE(restored.exitCode, 0);
        QVERIFY(restored.json.value("headRestored").toBool());
        QCOMPARE(restored.json.value("stillCancelled").toArray().at(0).toString(), QString("Room 1"));
        QVERIFY(ctl({"restore", QString::number(second)}).exitCode != 0);

        // Room 1 is sold meanwhile: the restore goes ahead and says so with exit 3.
        QVERIFY(book("2031-05-02", "2031-05-03", {"1"}, "Late") > 0);
        const qint32 first = db().scalar("select BBGuestID from guestdel where BBBookingID = ?", {booking}).toInt();
        const CtlRun doubled = ctl({"restore", QString::number(first)});
        QCOMPARE(doubled.exitCode, 3);
        QCOMPARE(ctl({"double-bookings"}).exitCode, 3);
    }

    void swapTheRoomsOfTwoLegsStayingThatNight()
    {
        const qint32 a = book("2031-05-01", "2031-05-05", {"5"}, "Ash");
        const qint32 b = book("2031-05-02", "2031-05-04", {"6"}, "Birch");
        const CtlRun staying = ctl({"staying", "--date", "2031-05-02"});
        QCOMPARE(staying.exitCode, 0);
        QCOMPARE(staying.json.value("legs").toArray().size(), 2);
        const CtlRun trailing = ctl({"staying", "--date", "2031-05-02x"});
        QVERIFY(trailing.exitCode != 0);
        QVERIFY(trailing.errors.contains("--date must be a date YYYY-MM-DD"));
        const QString legA = QString::number(guestOf(a, 5)), legB = QString::number(guestOf(b, 6));
        const QString before = snapshot();
        const CtlRun same = ctl({"swap", legA, legA});
        QVERIFY(same.exitCode != 0);
        QVERIFY(same.errors.contains("Same room selected"));
        QVERIFY(ctl({"swap", legA}).exitCode != 0);
        QCOMPARE(snapshot(), before);
        const CtlRun swapped = ctl({"swap", legA, legB});
        QCOMPARE(swapped.exitCode, 0);
        QCOMPARE(guestOf(a, 6), legA.toInt());
        QCOMPARE(guestOf(b, 5), legB.toInt());
    }

    void checkInOutAndClear()
    {
        const qint32 future = book("2031-05-01", "2031-05-04", {"5"});
        const QString before = snapshot();
        const CtlRun early = ctl({"booking", "checkin", QString::number(future), "--leg", "5"});
        QVERIFY(early.exitCode != 0);
        QVERIFY(early.errors.contains("hasn't arrived yet"));
        QVERIFY(ctl({"booking", "checkin", QString::number(future), "--leg", "5", "--out", "--clear"}).exitCode != 0);
        QCOMPARE(snapshot(), before);
        QCOMPARE(ctl({"booking", "checkin", QString::number(future), "--leg", "5", "--clear"}).exitCode, 0);

        const QString today = QDate::currentDate().toString(Qt::ISODate);
        const qint32 booking = db().scalar("select booking.BBBookingID from booking join guest on guest.BBBookingID = "
                                           "booking.BBBookingID where FromDate <= ? and ToDate > ? limit 1",
                                           {today, today})
                                   .toInt();
        const int room = db().scalar("select BBRoomID from guest where BBBookingID = ?", {booking}).toInt();
        const CtlRun out = ctl({"booking", "checkin", QString::number(booking), "--leg", QString::number(room), "--out"});
        QCOMPARE(out.exitCode, 0);
        QCOMPARE(out.json.value("checkInOut").toString(), QString("K"));
    }

    void searchOccupancyQuoteAndRates()
    {
        const qint32 booking = book("2031-05-01", "2031-05-04", {"1", "2"}, "Quillfeather");
        const CtlRun found = ctl({"search", "--surname", "quill"});
        QCOMPARE(found.exitCode, 0);
        QCOMPARE(found.json.value("rows").toArray().size(), 2);
        QCOMPARE(found.json.value("rows").toArray().at(0).toObject().value("booking").toInt(), booking);
        QVERIFY(ctl({"search"}).exitCode != 0);

        const CtlRun full = ctl({"occupancy", "--from", "2031-05-01", "--to", "2031-05-03", "--rooms", "1,2"});
        QCOMPARE(full.exitCode, 0);
        QCOMPARE(full.json.value("percent").toString(), QString("100.0%"));
        QCOMPARE(full.json.value("nights").toArray().size(), 3);
        QVERIFY(ctl({"occupancy", "--from", "2031-05-03", "--to", "2031-05-01"}).exitCode != 0);

        const CtlRun quote = ctl({"quick-quote", "--from", "2031-05-01", "--to", "2031-05-04", "--adults", "2"});
        QCOMPARE(quote.exitCode, 0);
        // Types come in the order of their first free room: rooms 1 and 2 are taken.
        const QJsonArray types = quote.json.value("types").toArray();
        QCOMPARE(types.at(0).toObject().value("name").toString(), QString("Family Suite"));
        QCOMPARE(types.at(2).toObject().value("name").toString(), QString("Standard Double"));
        const CtlRun text = ctl({"quick-quote", "--from", "2031-05-01", "--to", "2031-05-04", "--text"});
        QVERIFY(text.output.startsWith("Arrival: "));
        QVERIFY(ctl({"quick-quote", "--from", "2031-05-04", "--to", "2031-05-01"}).exitCode != 0);

        const QString before = snapshot();
        QCOMPARE(ctl({"booking", "rates", QString::number(booking)}).exitCode, 0);
        QVERIFY(ctl({"booking", "rates", QString::number(booking), "--set", "1:2031-05-02=12abc"}).exitCode != 0);
        QCOMPARE(snapshot(), before);
        const CtlRun set = ctl({"booking", "rates", QString::number(booking), "--set", "1:2031-05-02=123.456", "--sheet", "1"});
        QCOMPARE(set.exitCode, 0);
        QCOMPARE(set.json.value("sheet").toInt(), 1);
        QCOMPARE(db().scalar("select RoomRate from dailyrate where BBBookingID = ? and BBRoomID = 1 and CalDate = '2031-05-02'",
                             {booking})
                     .toDouble(),
                 123.46);
        const CtlRun refreshed = ctl({"booking", "rates", QString::number(booking), "--refresh"});
        QCOMPARE(refreshed.exitCode, 0);
        QVERIFY(db().scalar("select RoomRate from dailyrate where BBBookingID = ? and BBRoomID = 1 and CalDate = '2031-05-02'",
                            {booking})
                    .toDouble()
                != 123.46);
    }
};

QTEST_GUILESS_MAIN(TestMaintenanceVerbs)
#include "test_maintenanceverbs.moc"

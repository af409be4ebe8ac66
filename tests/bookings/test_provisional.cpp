#include "bookings/bookingrecords.h"
#include "bookings/provisional.h"
#include "shell/deskfixture.h"
#include "shell/strings.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;
using namespace deskfixture;

namespace {

const QDate D0(2026, 12, 4);   // a Friday
const QDateTime Now(QDate(2026, 12, 1), QTime(12, 0));

void hold(Database &db, qint32 id, const QDateTime &until)
{
    db.execute("update booking set ReservedUntil = ? where BBBookingID = ?", {sqlDateTime(until), id});
}

QList<qint32> keys(const std::vector<ProvisionalReminder> &due)
{
    QList<qint32> ids;
    for (const ProvisionalReminder &r : due)
        ids << r.BBBookingID;
    return ids;
}

int logRows(Database &db, qint32 booking)
{
    return db.scalar("select count(*) from dblog where TableName = 'booking' and bbtableId = ?", {booking}).toInt();
}

} // namespace

class TestProvisional : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { StringTable::instance().setLanguage(EnglishLanguage); }

    void remindersAreDueForProvisionalBookingsPastTheirHoldNamingGuestAndArrival()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Hugo", "Ramos");
        const qint32 expired = addBooking(t.db(), 4, c, D0, 2, "P");
        hold(t.db(), expired, Now.addSecs(-60));
        const qint32 later = addBooking(t.db(), 5, c, D0, 2, "P");
        hold(t.db(), later, Now.addSecs(3600));
        const qint32 reserved = addBooking(t.db(), 6, c, D0, 2, "R");
        hold(t.db(), reserved, Now.addSecs(-60));
        const qint32 second = addBooking(t.db(), 7, c, D0.addDays(1), 2, "P");
        hold(t.db(), second, Now.addSecs(-3600));

        const std::vector<ProvisionalReminder> due = ProvisionalReminders().due(t.db(), Now);
        QCOMPARE(keys(due), (QList<qint32>{expired, second}));
        QCOMPARE(due[0].firstRoomId, 4);
        QCOMPARE(due[1].arrival, D0.addDays(1));
        QCOMPARE(due[0].text(), QString("Hugo Ramos arriving Fri 04 Dec 2026"));
        StringTable::instance().setLanguage(SpanishLanguage);
        QCOMPARE(due[0].text(), QString("Hugo Ramos llega el vie 04 dic 2026"));
    }

    void anAnsweredReminderRestsUntilTheBookingChanges_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<bool>("dueAgain");
        QTest::newRow("nothing") << "" << false;
        QTest::newRow("the server's number arrives") << "update booking set BookingID = 151 where BBBookingID = :id" << false;
        QTest::newRow("dates moved") << "update booking set FromDate = '2026-12-05', ToDate = '2026-12-07' where BBBookingID = :id" << true;
        QTest::newRow("hold changed elsewhere") << "update booking set ReservedUntil = '2026-12-01 09:00:00' where BBBookingID = :id" << true;
        QTest::newRow("notes written") << "update booking set Notes = 'late arrival' where BBBookingID = :id" << true;
        QTest::newRow("source written") << "update booking set Source = 'phone' where BBBookingID = :id" << true;
        QTest::newRow("heads changed") << "update guest set NoAdults = 3 where BBBookingID = :id" << true;
        QTest::newRow("moved to another room") << "update guest set BBRoomID = 9 where BBBookingID = :id" << true;
        QTest::newRow("confirmed") << "update booking set Status = 'C' where BBBookingID = :id" << false;
    }

    void anAnsweredReminderRestsUntilTheBookingChanges()
    {
        QFETCH(QString, change);
        QFETCH(bool, dueAgain);
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Hugo", "Ramos");
        const qint32 id = addBooking(t.db(), 4, c, D0, 2, "P");
        hold(t.db(), id, Now.addSecs(-60));
        const qint32 other = addBooking(t.db(), 5, c, D0, 2, "P");
        hold(t.db(), other, Now.addSecs(-60));

        ProvisionalReminders reminders;
        reminders.answered(t.db(), id);
        QCOMPARE(keys(reminders.due(t.db(), Now)), QList<qint32>{other});
        QCOMPARE(keys(reminders.due(t.db(), Now.addDays(1))), QList<qint32>{other});
        if (!change.isEmpty())
            t.db().execute(change.replace(":id", QString::number(id)));
        QCOMPARE(keys(reminders.due(t.db(), Now)).contains(id), dueAgain);
        // Another session has answered nothing yet.
        QCOMPARE(keys(ProvisionalReminders().due(t.db(), Now)).contains(id), QTest::currentDataTag() != QLatin1String("confirmed"));
    }

    void notNowPutsTheHoldFourHoursOnLoggedAndRestsForTheSession()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Hugo", "Ramos");
        const qint32 id = addBooking(t.db(), 4, c, D0, 2, "P");
        hold(t.db(), id, Now.addSecs(-60));
        t.db().execute("delete from dblog");

        ProvisionalReminders reminders;
        const Changes changes = reminders.postpone(t.db(), id, Now);
        QCOMPARE(changes.bookings(), QSet<qint32>{id});
        Booking b;
        QVERIFY(b.fetch(t.db(), id));
        QCOMPARE(b.ReservedUntil, Now.addSecs(4 * 3600));
        QCOMPARE(logRows(t.db(), id), 1);

        // Past the new hold this session stays quiet; the next one is reminded.
        QVERIFY(reminders.due(t.db(), Now.addSecs(5 * 3600)).empty());
        QCOMPARE(keys(ProvisionalReminders().due(t.db(), Now.addSecs(5 * 3600))), QList<qint32>{id});
        QVERIFY(ProvisionalReminders().due(t.db(), Now.addSecs(3 * 3600)).empty());
    }

    void notNowOnABookingNoLongerProvisionalWritesNothing()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Hugo", "Ramos");
        const qint32 id = addBooking(t.db(), 4, c, D0, 2, "C");
        hold(t.db(), id, Now.addSecs(-60));
        t.db().execute("delete from dblog");
        ProvisionalReminders reminders;
        QVERIFY(reminders.postpone(t.db(), id, Now).isEmpty());
        QVERIFY(reminders.postpone(t.db(), 999, Now).isEmpty());
        QCOMPARE(logRows(t.db(), id), 0);
        Booking b;
        QVERIFY(b.fetch(t.db(), id));
        QCOMPARE(b.ReservedUntil, Now.addSecs(-60));
    }
};

QTEST_GUILESS_MAIN(TestProvisional)
#include "test_provisional.moc"

#include "bookings/bookingrecords.h"
#include "bookings/provisional.h"
#include "shell/deskfixture.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;
using namespace deskfixture;

namespace {

const QDate D0(2026, 3, 2);   // a Monday

class FakeHost : public ProvisionalHost {
public:
    int restored = 0;
    std::vector<std::pair<qint32, qint32>> opened;
    void restoreWindow() override { ++restored; }
    void openBooking(qint32 b, qint32 r) override { opened.emplace_back(b, r); }
};

} // namespace

class TestProvisional : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void provisionalBookingsPastTheirHoldAreRemindedOnce()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Hugo", "Ramos");
        const QDateTime now(QDate(2026, 3, 1), QTime(12, 0));
        auto hold = [&](qint32 id, const QDateTime &until) {
            t.db().execute("update booking set ReservedUntil = ? where BBBookingID = ?", {sqlDateTime(until), id});
        };
        const qint32 expired = addBooking(t.db(), 4, c, D0, 2, "P");
        hold(expired, now.addSecs(-60));
        const qint32 later = addBooking(t.db(), 5, c, D0, 2, "P");
        hold(later, now.addSecs(3600));
        const qint32 reserved = addBooking(t.db(), 6, c, D0, 2, "R");
        hold(reserved, now.addSecs(-60));
        const qint32 second = addBooking(t.db(), 7, c, D0, 2, "P");
        hold(second, now.addSecs(-3600));
        t.db().execute("delete from dblog");

        RecordingSink sink;
        sink.answers = {true, false};
        FakeHost host;
        QCOMPARE(Provisional::checkExpired(t.db(), host, now), 2);
        QCOMPARE(sink.asked.size(), 2);
        QVERIFY(sink.asked[0].title.startsWith("Booking Reminder - Hugo Ramos arriving "));
        QCOMPARE(host.opened, (std::vector<std::pair<qint32, qint32>>{{expired, 4}}));
        QCOMPARE(host.restored, 2);

        Booking b;
        QVERIFY(b.fetch(t.db(), second));
        QCOMPARE(b.ReservedUntil, now.addSecs(4 * 3600));
        QCOMPARE(t.db().scalar("select count(*) from dblog where TableName = 'booking' and bbtableId = ?", {second}).toInt(), 1);

        // The one opened is left as it was, so it comes back; the postponed one waits.
        sink.answers = {false};
        QCOMPARE(Provisional::checkExpired(t.db(), host, now.addSecs(60)), 1);
        QCOMPARE(Provisional::checkExpired(t.db(), host, now.addSecs(5 * 3600)), 3);
    }
};

QTEST_GUILESS_MAIN(TestProvisional)
#include "test_provisional.moc"

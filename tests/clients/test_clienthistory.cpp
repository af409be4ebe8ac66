#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clienthistory.h"
#include "clients/clientrecords.h"
#include "support/clientfixture.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

qint32 addBooking(Database &db, qint32 madeBy, const QDate &from, int nights, qint32 invoiceTo = 0)
{
    Booking b;
    b.MadeBy = madeBy;
    b.FromDate = from;
    b.ToDate = from.addDays(nights);
    if (invoiceTo > 0) {
        Account a;
        a.InvoiceTo = invoiceTo;
        a.Status = "O";
        a.update(db);
        b.BBAccountID = a.BBAccountID;
    }
    b.update(db);
    return b.BBBookingID;
}

void addLeg(Database &db, qint32 booking, qint32 room, qint32 client, qint32 client2 = 0, const QList<double> &rates = {})
{
    Guest g;
    g.BBBookingID = booking;
    g.BBRoomID = room;
    g.BBClientID = client;
    g.BBClient2ID = client2;
    g.update(db);
    const QDate from = db.scalar("select fromdate from booking where bbbookingid = ?", {booking}).toDate();
    for (int night = 0; night < rates.size(); ++night) {
        DailyRate r;
        r.CalDate = from.addDays(night);
        r.BBBookingID = booking;
        r.BBRoomID = room;
        r.RoomRate = rates[night];
        r.update(db);
    }
}

// Cara's part in six bookings, by arrival:
//   made by her (10 Jan, two rooms with rates);
//   billed to her, no rates (5 Feb);
//   her only as second guest in one room and first guest in another (1 Mar);
//   made by, billed to and stayed in by her, both guests (20 Mar);
// and, not listed: someone else's booking, and one of hers without rooms.
struct History {
    explicit History(Database &db)
    {
        cara = addPerson(db, "Cara", "Naidoo");
        other = addPerson(db, "Olu", "Okafor");
        made = addBooking(db, cara, QDate(2026, 1, 10), 2);
        addLeg(db, made, 1, other, 0, {100, 120});
        addLeg(db, made, 2, other, 0, {25, 25});
        billed = addBooking(db, other, QDate(2026, 2, 5), 3, cara);
        addLeg(db, billed, 1, other);
        secondGuest = addBooking(db, other, QDate(2026, 3, 1), 1);
        addLeg(db, secondGuest, 3, other, cara, {80});
        addLeg(db, secondGuest, 4, cara, 0, {90});
        everything = addBooking(db, cara, QDate(2026, 3, 20), 4, cara);
        addLeg(db, everything, 2, cara, cara, {10.25, 10.25, 10, 10});
        const qint32 unrelated = addBooking(db, other, QDate(2026, 1, 1), 1);
        addLeg(db, unrelated, 5, other, 0, {70});
        addBooking(db, cara, QDate(2026, 4, 1), 1);
    }
    qint32 cara, other, made, billed, secondGuest, everything;
};

} // namespace

class TestClientHistory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listsEveryBookingTheClientHadAPartInOnceByArrival()
    {
        TestDatabase t;
        History h(t.db());
        const std::vector<ClientHistoryRow> rows = clientHistory(t.db(), h.cara);
        QList<qint32> keys;
        for (const ClientHistoryRow &row : rows)
            keys << row.BBBookingID;
        QCOMPARE(keys, (QList<qint32>{h.made, h.billed, h.secondGuest, h.everything}));
        QCOMPARE(rows[0].cells(), (QStringList{QString::number(h.made), "10 Jan 2026", "12 Jan 2026", "2", "270.00"}));
        // No nightly rates: the total stays empty rather than reading 0.00.
        QVERIFY(!rows[1].total);
        QCOMPARE(rows[1].cells().last(), QString());
        QCOMPARE(rows[1].nights(), 3);
        QCOMPARE(rows[2].cells().last(), QString("170.00"));
        QCOMPARE(rows[3].cells().last(), QString("40.50"));
    }

    void clientWithoutAPartOrKeyHasNoHistory()
    {
        TestDatabase t;
        History h(t.db());
        QVERIFY(clientHistory(t.db(), addPerson(t.db(), "New", "Comer")).empty());
        // Legs without a second guest hold 0 there: no key below 1 finds them.
        QVERIFY(clientHistory(t.db(), 0).empty());
    }

    void clipboardTextCarriesItsOwnHeading()
    {
        TestDatabase t;
        History h(t.db());
        const auto rows = clientHistory(t.db(), h.cara);
        const QString text = clientHistoryText(t.db(), h.cara, {rows[0], rows[1]});
        QCOMPARE(text, QString("Client History for (%1) Cara Naidoo\n"
                               "\n"
                               "Booking ID\tArrival\tLeaving\tNo.Nights\tTotal\n"
                               "%2\t10 Jan 2026\t12 Jan 2026\t2\t270.00\n"
                               "%3\t05 Feb 2026\t08 Feb 2026\t3\t\n")
                           .arg(h.cara)
                           .arg(h.made)
                           .arg(h.billed));
        QCOMPARE(clientHistoryHeadings().at(3), QString("No. Nights"));
        QVERIFY(clientHistoryText(t.db(), 0, {}).startsWith("Unknown client\n\nBooking ID\t"));
    }

    void opensTheFirstRoomOfABooking()
    {
        TestDatabase t;
        History h(t.db());
        QCOMPARE(firstRoomOfBooking(t.db(), h.secondGuest), 3);
        QCOMPARE(firstRoomOfBooking(t.db(), 999), 0);
    }
};

QTEST_GUILESS_MAIN(TestClientHistory)
#include "test_clienthistory.moc"

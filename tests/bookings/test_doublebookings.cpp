#include "bookings/doublebookings.h"
#include "shell/database.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

qint32 addBooking(Database &db, const QString &maker, QDate from, QDate to, std::initializer_list<qint32> rooms,
                  const QString &type = QStringLiteral("P"))
{
    db.execute("insert into client (Surname, Company) values (?, 'Heron Travel')", {maker});
    const qint64 client = db.lastInsertId();
    db.execute("insert into booking (BookingType, FromDate, ToDate, Status, MadeBy) values (?,?,?,'C',?)",
               {type, sqlDate(from), sqlDate(to), client});
    const qint64 booking = db.lastInsertId();
    for (qint32 room : rooms)
        db.execute("insert into guest (BBBookingID, BBRoomID, BBClientID) values (?,?,?)", {booking, room, client});
    return static_cast<qint32>(booking);
}

QList<qint32> listed(const DoubleBookingScan &scan)
{
    QList<qint32> ids;
    for (const DoubleBookingRow &row : scan.clashes())
        ids << row.BBBookingID;
    std::sort(ids.begin(), ids.end());
    return ids;
}

} // namespace

class TestDoubleBookings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void departureDayIsNoNightAndOtherRoomsNoClash()
    {
        TestDatabase t;
        addBooking(t.db(), "Ash", QDate(2026, 3, 1), QDate(2026, 3, 4), {1});
        addBooking(t.db(), "Birch", QDate(2026, 3, 4), QDate(2026, 3, 6), {1});
        addBooking(t.db(), "Cedar", QDate(2026, 3, 1), QDate(2026, 3, 6), {2});
        DoubleBookingScan scan(t.db());
        QVERIFY(!scan.scan());
        QVERIFY(scan.clashes().empty());
    }

    void oneNightSharedListsBothWithTheirDetails()
    {
        TestDatabase t;
        const qint32 first = addBooking(t.db(), "Ash", QDate(2026, 3, 1), QDate(2026, 3, 4), {1, 2}, "N");
        const qint32 second = addBooking(t.db(), "", QDate(2026, 3, 3), QDate(2026, 3, 5), {3, 2});
        DoubleBookingScan scan(t.db());
        QVERIFY(scan.scan());
        QCOMPARE(listed(scan), (QList<qint32>{first, second}));
        for (const DoubleBookingRow &row : scan.clashes()) {
            QCOMPARE(row.BBRoomID, 2);
            if (row.BBBookingID == first) {
                QCOMPARE(row.type, QStringLiteral("veldmoor"));
                QCOMPARE(row.name, QStringLiteral("Ash"));
                QCOMPARE(row.toDate, QDate(2026, 3, 4));
            } else {
                QCOMPARE(row.type, QStringLiteral("PC"));
                QCOMPARE(row.name, QStringLiteral("Heron Travel")); // no surname: the company
            }
        }
        QVERIFY(scan.unreadable().empty());
    }

    void twoLegsOfOneBookingInOneRoomGiveOneRow()
    {
        TestDatabase t;
        const qint32 booking = addBooking(t.db(), "Ash", QDate(2026, 3, 1), QDate(2026, 3, 3), {4, 4});
        DoubleBookingScan scan(t.db());
        QVERIFY(scan.scan());
        QCOMPARE(listed(scan), QList<qint32>{booking});
    }

    void threeBookingsMeetingTheFirstAreListedInOneScan()
    {
        TestDatabase t;
        const qint32 a = addBooking(t.db(), "Ash", QDate(2026, 3, 1), QDate(2026, 3, 2), {1});
        const qint32 b = addBooking(t.db(), "Birch", QDate(2026, 3, 1), QDate(2026, 3, 4), {1});
        const qint32 c = addBooking(t.db(), "Cedar", QDate(2026, 3, 3), QDate(2026, 3, 4), {1});
        DoubleBookingScan scan(t.db());
        QVERIFY(scan.scan());
        // Birch's later nights are held by it, so Cedar meets Birch there.
        QCOMPARE(listed(scan), (QList<qint32>{a, b, c}));
    }

    void aBookingWithoutItsMakerIsListedByItsKeys()
    {
        TestDatabase t;
        addBooking(t.db(), "Ash", QDate(2026, 3, 1), QDate(2026, 3, 3), {1});
        const qint32 orphan = addBooking(t.db(), "Birch", QDate(2026, 3, 2), QDate(2026, 3, 3), {1});
        t.db().execute("update booking set MadeBy = 9999 where BBBookingID = ?", {orphan});
        DoubleBookingScan scan(t.db());
        QVERIFY(scan.scan());
        QCOMPARE(scan.unreadable(), std::vector<qint32>{orphan});
        const auto row = std::find_if(scan.clashes().begin(), scan.clashes().end(),
                                      [orphan](const DoubleBookingRow &r) { return r.BBBookingID == orphan; });
        QVERIFY(row != scan.clashes().end());
        QCOMPARE(row->BBRoomID, 1);
        QVERIFY(row->name.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDoubleBookings)
#include "test_doublebookings.moc"

#include "shell/calendar.h"
#include "shell/calendargrid.h"
#include "shell/session.h"
#include "support/testdatabase.h"
#include "deskfixture.h"

#include <QtTest>

using namespace fenlark;
using namespace deskfixture;

namespace {

const QDate D0(2026, 3, 2);   // a Monday


} // namespace

class TestCalendar : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fillCacheReadsOnlyDaysNotLoaded()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Anna", "Smith");
        const qint32 b = addBooking(t.db(), 1, c, D0.addDays(2), 3);
        Calendar cal;
        QVERIFY(cal.fillCache(t.db(), D0, D0.addDays(9)));
        QCOMPARE(cal.queriesRun(), 1);
        QVERIFY(!cal.fillCache(t.db(), D0.addDays(3), D0.addDays(9)));
        QCOMPARE(cal.queriesRun(), 1);
        QVERIFY(cal.roomIsBooked(D0.addDays(2), 1));
        QVERIFY(cal.roomIsBooked(D0.addDays(4), 1));
        QVERIFY(!cal.roomIsBooked(D0.addDays(5), 1));   // the day of leaving is free
        QVERIFY(!cal.roomIsBooked(D0.addDays(2), 2));
        QCOMPARE(cal.find(D0.addDays(3), 1)->BBBookingID, b);
        QCOMPARE(cal.find(D0.addDays(2), 1), cal.find(D0.addDays(4), 1));   // one object per stay
        QCOMPARE(cal.guestName(c).value_or(""), QString("Smi"));

        // Only the new days are queried; the rows found are clipped by the
        // arguments, so free cells of loaded days are filled as well.
        addBooking(t.db(), 2, c, D0.addDays(8), 5);
        addBooking(t.db(), 3, c, D0.addDays(6), 2);   // ends inside the loaded days: not read
        QVERIFY(cal.fillCache(t.db(), D0.addDays(5), D0.addDays(14)));
        QCOMPARE(cal.queriesRun(), 2);
        QVERIFY(!cal.roomIsBooked(D0.addDays(6), 3));
        QVERIFY(cal.roomIsBooked(D0.addDays(9), 2));
        QVERIFY(cal.roomIsBooked(D0.addDays(10), 2));
        QVERIFY(cal.roomIsBooked(D0.addDays(12), 2));

        cal.initCalendar();
        QVERIFY(cal.fillCache(t.db(), D0, D0.addDays(14)));
        QVERIFY(cal.roomIsBooked(D0.addDays(9), 2));
        QVERIFY(!cal.guestName(9999));
    }

    void anEarlierWindowAndAMovedStayKeepEveryRoomsDaysRight()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Anna", "Smith");
        const qint32 across = addBooking(t.db(), 1, c, D0.addDays(18), 4);
        const qint32 early = addBooking(t.db(), 1, c, D0.addDays(2), 3);
        Calendar cal;
        cal.fillCache(t.db(), D0.addDays(20), D0.addDays(29));
        cal.fillCache(t.db(), D0, D0.addDays(19));   // the room's days grow backwards
        QCOMPARE(cal.find(D0.addDays(18), 1)->BBBookingID, across);
        QCOMPARE(cal.find(D0.addDays(21), 1)->BBBookingID, across);
        QCOMPARE(cal.find(D0.addDays(2), 1)->BBBookingID, early);
        QVERIFY(!cal.roomIsBooked(D0.addDays(22), 1));
        QVERIFY(!cal.roomIsBooked(D0.addDays(100), 1));
        QVERIFY(!cal.roomIsBooked(D0.addDays(-100), 1));

        // Moved to another room and later: the old nights are free, the new ones taken.
        t.db().execute("update booking set FromDate = ?, ToDate = ? where BBBookingID = ?",
                       {sqlDate(D0.addDays(24)), sqlDate(D0.addDays(27)), across});
        t.db().execute("update guest set BBRoomID = 2 where BBBookingID = ?", {across});
        cal.refresh(t.db(), Changes().booking(across));
        QVERIFY(!cal.roomIsBooked(D0.addDays(18), 1));
        QVERIFY(!cal.roomIsBooked(D0.addDays(21), 1));
        QCOMPARE(cal.find(D0.addDays(24), 2)->BBBookingID, across);
        QVERIFY(!cal.roomIsBooked(D0.addDays(27), 2));
        QCOMPARE(cal.find(D0.addDays(2), 1)->BBBookingID, early);
        QCOMPARE(cal.entryCount(), 6);
    }

    // The window's query bounds the stays it reads by the longest one on file.
    void staysHoldingANightOfTheWindowAreFoundWhateverTheirLength_data()
    {
        QTest::addColumn<int>("startOffset");   // days from the window's first day
        QTest::addColumn<int>("nights");
        QTest::addColumn<bool>("shown");
        QTest::newRow("a year's stay begun months before") << -300 << 400 << true;
        QTest::newRow("leaving on the first day") << -3 << 3 << false;
        QTest::newRow("arriving on the last day") << 9 << 2 << true;
        QTest::newRow("the longest stay arriving on the last day") << 9 << 30 << true;
        QTest::newRow("arriving the day after") << 10 << 1 << false;
    }

    void staysHoldingANightOfTheWindowAreFoundWhateverTheirLength()
    {
        QFETCH(int, startOffset);
        QFETCH(int, nights);
        QFETCH(bool, shown);
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Anna", "Smith");
        addBooking(t.db(), 2, c, D0.addDays(-40), 30);
        for (int i = 0; i < 50; ++i)
            addBooking(t.db(), 3, c, D0.addDays(-200 + 4 * i), 3);
        addBooking(t.db(), 1, c, D0.addDays(startOffset), nights);
        Calendar cal;
        cal.fillCache(t.db(), D0, D0.addDays(9));
        const QDate inWindow = std::clamp(D0.addDays(startOffset), D0, D0.addDays(9));
        QCOMPARE(cal.roomIsBooked(inWindow, 1), shown);
    }

    void rangesAreClippedByTheWindow()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Ben", "Jones");
        addBooking(t.db(), 1, c, D0.addDays(-10), 30);
        Calendar cal;
        cal.fillCache(t.db(), D0, D0.addDays(4));
        QCOMPARE(cal.entryCount(), qsizetype(5));
        QVERIFY(!cal.roomIsBooked(D0.addDays(-1), 1));
        QVERIFY(!cal.roomIsBooked(D0.addDays(5), 1));
        QCOMPARE(cal.find(D0, 1)->Arrival, D0.addDays(-10));
    }

    void firstRowWinsOnAClash()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Carla", "Botha");
        const qint32 first = addBooking(t.db(), 1, c, D0, 3);
        const qint32 second = addBooking(t.db(), 1, c, D0.addDays(1), 3);
        Calendar cal;
        cal.fillCache(t.db(), D0, D0.addDays(5));
        QCOMPARE(cal.find(D0.addDays(1), 1)->BBBookingID, first);
        QCOMPARE(cal.find(D0.addDays(2), 1)->BBBookingID, first);
        QCOMPARE(cal.find(D0.addDays(3), 1)->BBBookingID, second);
    }

    void cellStatusShowsCheckInStateOfConfirmedOnly_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("checkInOut");
        QTest::addColumn<QString>("shown");
        QTest::newRow("plain") << "P" << "" << "P";
        QTest::newRow("checked in") << "C" << "I" << "I";
        QTest::newRow("checked out") << "C" << "K" << "K";
        QTest::newRow("paid, in") << "S" << "I" << "S";
    }

    void cellStatusShowsCheckInStateOfConfirmedOnly()
    {
        QFETCH(QString, status);
        QFETCH(QString, checkInOut);
        QFETCH(QString, shown);
        TestDatabase t;
        const qint32 c = addClient(t.db(), "D", "E");
        addBooking(t.db(), 1, c, D0, 1, status, 2, 0, checkInOut);
        Calendar cal;
        cal.fillCache(t.db(), D0, D0);
        QCOMPARE(cal.find(D0, 1)->Status, shown);
    }

    void cellTextsAndColours()
    {
        CalendarCache e;
        e.Arrival = D0;
        e.NoAdults = 2;
        e.Children = 1;
        e.Status = "C";
        QCOMPARE(cellText(e, D0, "Smi"), QString("2+1\nSmi"));
        QCOMPARE(cellText(e, D0.addDays(1), "Smi"), QString("\nSmi"));
        e.Children = 0;
        QCOMPARE(cellText(e, D0, "Smi"), QString("2\nSmi"));
        e.Status = "U";
        QCOMPARE(cellText(e, D0, "Smi"), QString("\nSmi"));

        TestDatabase t;
        StatusColours colours;
        colours.load(t.db());
        bool unknown = true;
        QCOMPARE(cellColour("I", colours, &unknown), calendarcolours::CheckedIn);
        QVERIFY(!unknown);
        QCOMPARE(cellColour("K", colours), calendarcolours::CheckedOut);
        QCOMPARE(cellColour("S", colours), (Rgb{170, 220, 130}));
        QCOMPARE(cellColour("X", colours, &unknown), (Rgb{220, 220, 220}));
        QVERIFY(unknown);
    }

    void gridDrawsUnknownStatusAndMissingClientWithoutFailing()
    {
        TestDatabase t;
        addRoomType(t.db(), 1, "Double");
        addRoom(t.db(), 1, "Room 1");
        addRoom(t.db(), 2, "Room 2");
        const qint32 c = addClient(t.db(), "Eve", "Naidoo");
        addBooking(t.db(), 1, c, D0.addDays(1), 2, "X");
        const qint32 orphan = addBooking(t.db(), 2, 4242, D0, 2);
        t.db().execute("insert into event (EventIndex, FromDate, ToDate, EventNote) values(2, ?, ?, 'Fair')",
                       {sqlDate(D0.addDays(5)), sqlDate(D0.addDays(6))});
        Session session(Database::open(t.file("test.db")), 0);
        session.reloadSetup();
        CalendarGrid grid;
        grid.build(session, D0, 7, D0.addDays(2));
        QCOMPARE(grid.rooms(), 2);
        QCOMPARE(grid.days(), 7);
        QCOMPARE(grid.cell(0, 1).back, calendarcolours::UnknownStatus);
        QCOMPARE(grid.cell(0, 1).text, QString("X 2\nNai"));
        QCOMPARE(grid.cell(0, 0).back, calendarcolours::Free);
        QCOMPARE(grid.cell(1, 1).text, QString("\n???"));
        QCOMPARE(grid.missingClients(), std::vector<qint32>{orphan});
        QVERIFY(grid.header(2).today);
        QVERIFY(grid.header(5).weekend && grid.header(6).weekend && !grid.header(4).weekend);
        QCOMPARE(grid.header(5).band[0], calendarcolours::Weekend);
        QCOMPARE(grid.header(5).band[1], calendarcolours::EventRow[1]);
        QCOMPARE(grid.header(1).band[1], calendarcolours::Weekday);
        QVERIFY(grid.header(6).event[1] && !grid.header(4).event[1]);
    }

    // A grid moved about keeps the days both windows share; whatever happened in
    // between, it must show exactly what a grid laid out afresh shows.
    void aMovedGridShowsWhatAFreshGridShows()
    {
        TestDatabase t;
        addRoomType(t.db(), 1, "Double");
        for (int r = 1; r <= 5; ++r)
            addRoom(t.db(), r, QString("Room %1").arg(r));
        Session session(Database::open(t.file("test.db")), 0);
        session.reloadSetup();
        Database &db = session.db();
        QRandomGenerator random(20261124);
        std::vector<qint32> clients{addClient(db, "Anna", "Smith")};
        std::vector<qint32> bookings;
        auto book = [&](qint32 client) {
            const qint32 id = addBooking(db, 1 + int(random.bounded(5)), client, D0.addDays(random.bounded(-40, 80)),
                                         1 + int(random.bounded(10)), QStringList{"C", "W", "P", "I", "X"}[random.bounded(5)]);
            bookings.push_back(id);
            return id;
        };
        CalendarGrid moved;
        QDate first = D0;
        for (int step = 0; step < 600; ++step) {
            switch (random.bounded(8)) {
            case 0:   // another desk's booking: read only with days not loaded yet
                book(clients[random.bounded(int(clients.size()))]);
                break;
            case 1:
                session.calendar().refresh(db, Changes().booking(book(clients[random.bounded(int(clients.size()))])));
                break;
            case 2:   // a few clients, so that each has stays in most windows
                if (clients.size() < 3)
                    clients.push_back(addClient(db, "Guest", QString("Name%1").arg(step)));
                book(clients.back());
                break;
            case 3: {   // renamed here, or at another desk (read with the next new days)
                const qint32 c = clients[random.bounded(int(clients.size()))];
                db.execute("update client set Surname = ? where BBClientID = ?", {QString(QChar('A' + random.bounded(26))) + QChar('a' + random.bounded(26)) + "ren", c});
                if (random.bounded(2))
                    session.calendar().refresh(db, Changes().client(c));
                else
                    book(c);
                break;
            }
            case 4:
                db.execute("update status set Red = ? where Status = 'C'", {int(random.bounded(256))});
                session.loadStatusColours();
                break;
            case 5:
                book(9000 + step);   // a client that is not on file
                break;
            default:
                break;
            }
            first = first.addDays(random.bounded(-9, 10));
            if (first < D0.addDays(-40) || first > D0.addDays(70))
                first = D0.addDays(random.bounded(-40, 70));
            moved.build(session, first, 14, D0);
            CalendarGrid fresh;
            fresh.build(session, first, 14, D0);
            for (int r = 0; r < 5; ++r)
                for (int c = 0; c < 14; ++c) {
                    const CalendarCell &a = moved.cell(r, c), &b = fresh.cell(r, c);
                    if (a.text != b.text || !(a.back == b.back) || a.entry != b.entry)
                        QFAIL(qPrintable(QString("step %1, room %2, day %3: \"%4\" against \"%5\"")
                                             .arg(step).arg(r).arg(c).arg(a.text, b.text)));
                }
            QCOMPARE(moved.missingClients(), fresh.missingClients());
        }
    }

    void dayColumnsFollowTheWidth_data()
    {
        QTest::addColumn<int>("twips");
        QTest::addColumn<int>("columns");
        QTest::newRow("1000 twips") << 1000 << 3;
        QTest::newRow("zero") << 0 << 1;
        QTest::newRow("half rounds up") << 765 << 3;
        QTest::newRow("below half") << 764 << 2;
        QTest::newRow("wide") << 15300 << 31;
    }

    void dayColumnsFollowTheWidth()
    {
        QFETCH(int, twips);
        QFETCH(int, columns);
        QCOMPARE(dayColumnsForWidth(twips), columns);
    }

    void selectionGivesTheSameRequestInBothDirections()
    {
        const GridSelection forward = GridSelection::ordered(1, 3, 4, 6);
        const GridSelection backward = GridSelection::ordered(4, 6, 1, 3);
        const GridSelection crossed = GridSelection::ordered(4, 3, 1, 6);
        QCOMPARE(forward.top, backward.top);
        QCOMPARE(forward.right, backward.right);
        QCOMPARE(crossed.bottom, 4);
        QCOMPARE(crossed.left, 3);
        const BookingRequest r = bookingRequestFor(D0, backward);
        QCOMPARE(r.inDate, D0.addDays(3));
        QCOMPARE(r.nights, 4);
        QCOMPARE(r.firstRoom, 1);
        QCOMPARE(r.lastRoom, 4);
        QCOMPARE(bookingRequestFor(D0, GridSelection::ordered(2, 0, 2, 0)).nights, 1);
    }

    void freeRoomsLeaveOutRoomsTakenOnAnyNight()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "F", "G");
        addBooking(t.db(), 2, c, D0.addDays(3), 2);   // nights 3 and 4
        addBooking(t.db(), 3, c, D0.addDays(-2), 2);  // leaves on D0
        Calendar cal;
        QCOMPARE(freeRooms(t.db(), cal, {1, 2, 3}, D0, 3), (std::vector<qint32>{1, 2, 3}));
        QCOMPARE(freeRooms(t.db(), cal, {1, 2, 3}, D0, 4), (std::vector<qint32>{1, 3}));
        QCOMPARE(freeRooms(t.db(), cal, {3, 2, 1}, D0.addDays(4), 1), (std::vector<qint32>{3, 1}));
        QCOMPARE(freeRooms(t.db(), cal, {1}, D0, 0), std::vector<qint32>{});
    }

    void nightsEntryIsChecked_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("refusal");
        QTest::newRow("empty") << "" << 2280;
        QTest::newRow("zero") << "0" << 2278;
        QTest::newRow("letters") << "ab" << 2278;
        QTest::newRow("good") << "3" << 0;
    }

    void nightsEntryIsChecked()
    {
        QFETCH(QString, text);
        QFETCH(int, refusal);
        const Outcome checked = checkNights(text);
        QCOMPARE(bool(checked), refusal == 0);
        if (!checked)
            QCOMPARE(checked.refusal().id(), refusal);
    }

    void eventChecksRunInOrderAndLeaveTheEventItselfOut()
    {
        TestDatabase t;
        EventData e;
        e.EventIndex = 1;
        e.FromDate = D0;
        e.ToDate = D0.addDays(3);
        e.EventNote = "Holiday";
        e.update(t.db());
        RecordingSink sink;
        QCOMPARE(EventRules::validate(t.db(), " ", D0.addDays(5), D0, 1, 0).refusal().id(), 1702);
        QCOMPARE(EventRules::validate(t.db(), "x", D0.addDays(5), D0, 1, 0).refusal().id(), 1704);
        QCOMPARE(EventRules::validate(t.db(), "x", D0.addDays(3), D0.addDays(5), 1, 0).refusal().id(), 5110);
        QVERIFY(EventRules::validate(t.db(), "x", D0.addDays(4), D0.addDays(4), 1, 0));   // one day, just after
        QVERIFY(EventRules::validate(t.db(), "x", D0, D0.addDays(3), 2, 0));              // another header row
        QVERIFY(EventRules::validate(t.db(), "x", D0.addDays(-1), D0.addDays(2), 1, e.BBEventID));
        QVERIFY(sink.shown.isEmpty());

        CalendarEvents events;
        events.load(t.db(), D0.addDays(2), D0.addDays(10));
        QVERIFY(events.find(D0.addDays(3), 1));
        QVERIFY(!events.find(D0.addDays(4), 1));
        QVERIFY(!events.find(D0.addDays(3), 2));
        QVERIFY(!events.find(D0, 1));   // outside the window
    }

    void detailsDescribeTheParty()
    {
        TestDatabase t;
        const qint32 c = addClient(t.db(), "Anna", "Smith", "021 555");
        const qint32 b = addBooking(t.db(), 1, c, D0, 2, "C", 2, 1);
        t.db().execute("update booking set Notes = 'Late', Source = 'Web' where BBBookingID = ?", {b});
        QCOMPARE(bookingDetails(t.db(), b, 1).value_or(""), QString("Anna Smith / 021 555 (2 adults, 1 Child)\nLate\nSource: Web"));
        const qint32 b2 = addBooking(t.db(), 2, c, D0, 2, "C", 1, 3);
        QCOMPARE(bookingDetails(t.db(), b2, 2).value_or(""), QString("Anna Smith / 021 555 (1 adult, 3 children)"));
        QVERIFY(!bookingDetails(t.db(), b2, 9));
    }
};

QTEST_GUILESS_MAIN(TestCalendar)
#include "test_calendar.moc"

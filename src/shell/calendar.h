#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"
#include "shell/setuprecords.h"

#include <QDate>
#include <QHash>
#include <QSet>
#include <QString>

class QSqlQuery;

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace fenlark {

class Database;

// What one calendar cell shows: a booking's room. Every day of a stay loaded
// together refers to the same object.
class CalendarCache {
public:
    qint32 BBBookingID = 0;
    QString Status;
    QDate Arrival;
    qint32 BBClientID = 0;
    qint16 NoAdults = 0;
    qint16 Children = 0;
};

using CalendarEntry = std::shared_ptr<CalendarCache>;

// The status a cell shows: a confirmed booking shows its check-in state ("I"/"K").
QString cellStatus(const QString &status, const QString &checkInOut);

// The in-memory calendar: which room is taken on which day, the short names of
// the guests, and the days already read. Only days not yet loaded are read, in
// one range query; cells that this program changes are patched in place.
class Calendar {
public:
    // Empties the three dictionaries: the next fill reads everything again.
    void initCalendar();

    // Reads the bookings of the days from..to that are not loaded yet; false when
    // every day was loaded already (no query ran). The first row for a room and
    // day wins: in a double booking only one shows.
    bool fillCache(Database &db, QDate from, QDate to);

    // Brings the loaded days up to date with what a write changed: the cells of
    // each changed booking, before and after, are read again for their rooms
    // (so that a booking another one hid in a clash shows again), and changed
    // clients' labels are read again. Everything changed: the cache starts empty.
    void refresh(Database &db, const Changes &changes);

    // The entry of a day and room; null when the room is free.
    CalendarEntry find(QDate date, qint32 roomId) const;
    bool roomIsBooked(QDate date, qint32 roomId) const;

    void cacheGuest(qint32 clientId, const QString &shortName);
    void delGuestEntry(qint32 clientId);
    // The short name of a client; nullopt when it was never cached.
    std::optional<QString> guestName(qint32 clientId) const;

    bool isLoaded(QDate date) const { return m_loaded.contains(date.toJulianDay()); }
    // Changes whenever a day already loaded may show something else (a cell or a
    // guest's name changed); reading days not loaded before leaves it as it was.
    quint64 generation() const { return m_generation; }
    int queriesRun() const { return m_queries; }
    qsizetype entryCount() const;

private:
    // Fills empty cells of days first..last from the rows of a query of the
    // booking, guest and client columns that fillCache selects.
    void readRows(QSqlQuery &rows, QDate first, QDate last, bool loadedDaysOnly, qint64 newFirst = 0, qint64 newLast = -1);
    void refreshClient(Database &db, qint32 clientId);

    // One room's cells, a slot per day from its first day held: a window of
    // days is read with one lookup of the room however many years are loaded.
    class RoomDays {
    public:
        CalendarEntry find(qint64 day) const;
        CalendarEntry &slot(qint64 day);
        qint64 firstDay() const { return m_first; }
        std::deque<CalendarEntry> &days() { return m_days; }
        const std::deque<CalendarEntry> &days() const { return m_days; }

    private:
        qint64 m_first = 0;
        std::deque<CalendarEntry> m_days;
    };
    QHash<qint32, RoomDays> m_cells;
    QHash<qint32, QString> m_guests;
    QSet<qint64> m_loaded;
    int m_queries = 0;
    quint64 m_generation = 0;
};

// The number of day columns for a grid this wide (in twips): one per 510 twips,
// rounded, plus the first day.
int dayColumnsForWidth(int widthTwips);
// Twips of a width in pixels on a 96 dots-per-inch screen.
constexpr int twipsFromPixels(int pixels) { return pixels * 15; }

// A rectangle of the grid in either drag direction, put in order.
struct GridSelection {
    int top = 0, bottom = 0, left = 0, right = 0;
    static GridSelection ordered(int row, int col, int rowSel, int colSel);
};

// What a selection over rooms (rows) and days (columns from 0 = firstDay) asks for.
struct BookingRequest {
    QDate inDate;
    int nights = 0;
    int firstRoom = 0;   // row of the first room selected
    int lastRoom = 0;
};
BookingRequest bookingRequestFor(QDate firstDay, const GridSelection &selection);

// The rooms (of those given, in their order) free on every night of a stay.
std::vector<qint32> freeRooms(Database &db, Calendar &calendar, const std::vector<qint32> &roomIds, QDate from, int nights);

// Whether a typed number of nights can be used; refused with the reason when not.
Outcome checkNights(const QString &nightsText);

// The calendar events of a window, by day and header row (1 to 3).
class CalendarEvents {
public:
    void load(Database &db, QDate from, QDate to);
    const EventData *find(QDate date, int eventIndex) const;
    qsizetype size() const { return m_events.size(); }

private:
    std::vector<EventData> m_events;
    QHash<qint64, int> m_byDayAndRow;   // day * 4 + row -> position in m_events
};

// The event dialog's rules.
class EventRules {
public:
    // The three checks in order (text, dates, overlap on the same header row,
    // leaving out the event itself); refused with the first that fails.
    static Outcome validate(Database &db, const QString &text, QDate from, QDate to, int eventIndex, qint32 ownId);
    static bool overlaps(Database &db, QDate from, QDate to, int eventIndex, qint32 ownId);
};

} // namespace fenlark

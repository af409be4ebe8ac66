#pragma once

#include "shell/calendar.h"
#include "shell/statuscolours.h"

#include <QDate>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace fenlark {

class Session;

// A colour without the GUI library.
struct Rgb {
    int red = 255, green = 255, blue = 255;
    bool operator==(const Rgb &) const = default;
};

// Fixed colours of the calendar.
namespace calendarcolours {
constexpr Rgb Free{255, 255, 255};
constexpr Rgb CheckedIn{250, 250, 90};      // "I"
constexpr Rgb CheckedOut{255, 255, 215};    // "K"
constexpr Rgb UnknownStatus{220, 220, 220};
constexpr Rgb Weekend{192, 192, 192};
constexpr Rgb Weekday{230, 230, 230};
constexpr Rgb TodayText{205, 60, 100};
constexpr Rgb EventRow[3] = {{255, 210, 110}, {155, 210, 110}, {190, 190, 70}};
} // namespace calendarcolours

// One cell of the grid as it is drawn.
struct CalendarCell {
    QString text;
    Rgb back = calendarcolours::Free;
    CalendarEntry entry;   // null for a free room
};

// One day column's three header rows.
struct DayHeader {
    QDate date;
    bool weekend = false;
    bool today = false;
    Rgb band[3];
    const EventData *event[3] = {nullptr, nullptr, nullptr};
};

// The text of a booking cell: on the arrival day (not for "U") the adults,
// "+children", then the short name on the second line; otherwise a blank top line.
QString cellText(const CalendarCache &entry, QDate day, const QString &shortName);
// The colour of a booking cell by its status; unknownStatus is set for a code the
// status table lacks.
Rgb cellColour(const QString &status, const StatusColours &colours, bool *unknownStatus = nullptr);

// The calendar window as the grid draws it: rooms down, days across, from the
// cache (filled for the window first) and the events of the window.
class CalendarGrid {
public:
    // Reads what the window needs (only days not yet loaded) and lays it out.
    // When nothing the grid showed has changed since the last build (the cache's
    // generation, the rooms, the status colours) the days both windows share are
    // moved across and only the new ones laid out.
    void build(Session &session, QDate firstDay, int days, QDate today = QDate::currentDate());

    QDate firstDay() const { return m_firstDay; }
    int days() const { return m_days; }
    int rooms() const { return m_rooms; }
    QDate dateOf(int column) const { return m_firstDay.addDays(column); }
    const CalendarCell &cell(int room, int day) const { return m_cells[static_cast<std::size_t>(room * m_days + day)]; }
    const DayHeader &header(int day) const { return m_headers[static_cast<std::size_t>(day)]; }
    // Bookings drawn whose client has no short name (shown as "???").
    const std::vector<qint32> &missingClients() const { return m_missingClients; }

private:
    // What the cells were laid out from.
    struct Source {
        std::vector<qint32> rooms;
        int days = 0;
        quint64 calendar = 0;
        quint64 colours = 0;
        bool operator==(const Source &) const = default;
    };
    // Moves the cells of the days this window shares with the last one; returns
    // the columns still to lay out, or all of them when nothing can be kept.
    std::pair<int, int> keepSharedDays(const Source &source, QDate firstDay);
    void layOut(Session &session, int room, qint32 roomId, int fromColumn, int toColumn);

    QDate m_firstDay;
    int m_days = 0;
    int m_rooms = 0;
    Source m_source;
    std::vector<CalendarCell> m_cells;
    std::vector<DayHeader> m_headers;
    CalendarEvents m_events;
    std::vector<qint32> m_missingClients;
};

// "2 adults, 1 Child": the party of a room as the desk writes it.
QString partyText(int adults, int children);

// The hint over a booking's room on the calendar, one item a line: the guest, the
// Booking ID, the dates and nights, the room's party, the status by its name (the
// check-in state for a confirmed booking that has one) and the booking's total.
// nullopt when the booking or room is no longer there.
std::optional<QString> bookingHint(Database &db, const StatusColours &colours, qint32 bbBookingId, qint32 bbRoomId);

// The details box of a booking's room: name and phone, the party, notes, source.
// nullopt when the booking or room is no longer there (the cache is stale).
std::optional<QString> bookingDetails(Database &db, qint32 bbBookingId, qint32 bbRoomId);

} // namespace fenlark

#include "shell/calendar.h"

#include "shell/database.h"
#include "shell/displaynames.h"
#include "shell/messages.h"
#include "shell/record.h"
#include "shell/stayoverlap.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <cmath>

namespace fenlark {

namespace {

// The columns the calendar reads of a booking's room. A stay leaves on ToDate,
// so the day of leaving is not occupied. The client is joined loosely: a booking
// whose client is missing still takes its room.
const QString BookingCellsSql = QStringLiteral(
    "select booking.BBBookingID, client.BBClientID, booking.Status, guest.CheckInOut, booking.FromDate, "
    "booking.ToDate, guest.BBRoomID, client.FirstName, client.Surname, client.Company, guest.NoAdults, "
    "guest.Child1 + guest.Child2, guest.BBClientID "
    "from booking join guest on booking.BBBookingID = guest.BBBookingID "
    "left join client on guest.BBClientID = client.BBClientID ");

} // namespace

QString cellStatus(const QString &status, const QString &checkInOut)
{
    if (checkInOut.isEmpty() || status != QLatin1String("C"))
        return status;
    return checkInOut;
}

void Calendar::initCalendar()
{
    ++m_generation;
    m_cells.clear();
    m_guests.clear();
    m_loaded.clear();
}

bool Calendar::fillCache(Database &db, QDate from, QDate to)
{
    if (!from.isValid() || !to.isValid() || to < from)
        return false;
    QDate first, last;
    for (QDate d = from; d <= to; d = d.addDays(1)) {
        if (m_loaded.contains(d.toJulianDay()))
            continue;
        if (!first.isValid())
            first = d;
        last = d;
        m_loaded.insert(d.toJulianDay());
    }
    if (!first.isValid())
        return false;

    ++m_queries;
    QSqlQuery q = db.query(BookingCellsSql + QStringLiteral("where ") + stayOverlapSql(QStringLiteral("booking")),
                           stayOverlapValues(first, last));
    readRows(q, from, to, false, first.toJulianDay(), last.toJulianDay());
    return true;
}

// Days newFirst..newLast are read for the first time; a cell filled on any other
// day changes what a loaded day shows.
void Calendar::readRows(QSqlQuery &q, QDate from, QDate to, bool loadedDaysOnly, qint64 newFirst, qint64 newLast)
{
    while (q.next()) {
        const QDate fromDate = dateFromSql(q.value(4));
        const QDate toDate = dateFromSql(q.value(5));
        if (!fromDate.isValid() || !toDate.isValid())
            continue;
        const QDate start = fromDate > from ? fromDate : from;
        const QDate end = toDate.addDays(-1) < to ? toDate.addDays(-1) : to;
        const bool clientFound = !q.value(1).isNull();

        auto entry = std::make_shared<CalendarCache>();
        entry->BBBookingID = q.value(0).toInt();
        entry->BBClientID = clientFound ? q.value(1).toInt() : q.value(12).toInt();
        entry->Status = cellStatus(fieldText(q.value(2)), fieldText(q.value(3)));
        entry->Arrival = fromDate;
        entry->NoAdults = static_cast<qint16>(q.value(10).toInt());
        entry->Children = static_cast<qint16>(q.value(11).toInt());
        if (clientFound)
            cacheGuest(entry->BBClientID, getShortName(fieldText(q.value(7)), fieldText(q.value(8)), fieldText(q.value(9))));

        RoomDays &roomDays = m_cells[q.value(6).toInt()];
        for (QDate d = start; d <= end; d = d.addDays(1)) {
            if (loadedDaysOnly && !m_loaded.contains(d.toJulianDay()))
                continue;
            const qint64 day = d.toJulianDay();
            CalendarEntry &slot = roomDays.slot(day);
            if (!slot) {
                slot = entry;
                if (day < newFirst || day > newLast)
                    ++m_generation;
            }
        }
    }
}

void Calendar::refresh(Database &db, const Changes &changes)
{
    ++m_generation;
    if (changes.everythingChanged()) {
        initCalendar();
        return;
    }
    for (qint32 client : changes.clients())
        refreshClient(db, client);
    if (changes.bookings().isEmpty())
        return;

    // The days of each room the changed bookings held before and hold now.
    QHash<qint32, std::pair<qint64, qint64>> spans;
    const auto extend = [&spans](qint32 room, qint64 first, qint64 last) {
        auto it = spans.find(room);
        if (it == spans.end())
            spans.insert(room, {first, last});
        else
            *it = {std::min(it->first, first), std::max(it->second, last)};
    };
    for (auto room = m_cells.begin(); room != m_cells.end(); ++room) {
        qint64 day = room->firstDay();
        for (CalendarEntry &cell : room->days()) {
            if (cell && changes.bookings().contains(cell->BBBookingID)) {
                extend(room.key(), day, day);
                cell.reset();
            }
            ++day;
        }
    }
    QVariantList keys;
    for (qint32 booking : changes.bookings())
        keys << booking;
    QSqlQuery legs = db.query(QStringLiteral("select guest.BBRoomID, booking.FromDate, booking.ToDate from booking join guest "
                                             "on booking.BBBookingID = guest.BBBookingID where booking.BBBookingID in (")
                                  + recorddetail::placeholders(int(keys.size())) + QLatin1Char(')'),
                              keys);
    while (legs.next()) {
        const QDate fromDate = dateFromSql(legs.value(1));
        const QDate toDate = dateFromSql(legs.value(2));
        if (fromDate.isValid() && toDate > fromDate)
            extend(legs.value(0).toInt(), fromDate.toJulianDay(), toDate.toJulianDay() - 1);
    }

    for (auto it = spans.cbegin(); it != spans.cend(); ++it) {
        const qint32 room = it.key();
        const QDate first = QDate::fromJulianDay(it->first);
        const QDate last = QDate::fromJulianDay(it->second);
        RoomDays &roomDays = m_cells[room];
        for (QDate d = first; d <= last; d = d.addDays(1))
            roomDays.slot(d.toJulianDay()).reset();
        ++m_queries;
        QSqlQuery q = db.query(BookingCellsSql + QStringLiteral("where ") + stayOverlapSql(QStringLiteral("booking"))
                                   + QStringLiteral(" and +guest.BBRoomID = ?"),
                               stayOverlapValues(first, last) << room);
        readRows(q, first, last, true);
    }
}

void Calendar::refreshClient(Database &db, qint32 clientId)
{
    QSqlQuery q = db.query(QStringLiteral("select FirstName, Surname, Company from client where BBClientID = ?"), {clientId});
    if (q.next())
        cacheGuest(clientId, getShortName(fieldText(q.value(0)), fieldText(q.value(1)), fieldText(q.value(2))));
    else
        delGuestEntry(clientId);
}

CalendarEntry Calendar::RoomDays::find(qint64 day) const
{
    const qint64 at = day - m_first;
    return at >= 0 && at < qint64(m_days.size()) ? m_days[std::size_t(at)] : CalendarEntry();
}

CalendarEntry &Calendar::RoomDays::slot(qint64 day)
{
    if (m_days.empty())
        m_first = day;
    for (; day < m_first; --m_first)
        m_days.emplace_front();
    const auto at = std::size_t(day - m_first);
    if (at >= m_days.size())
        m_days.resize(at + 1);
    return m_days[at];
}

CalendarEntry Calendar::find(QDate date, qint32 roomId) const
{
    const auto room = m_cells.constFind(roomId);
    return room == m_cells.constEnd() ? CalendarEntry() : room->find(date.toJulianDay());
}

bool Calendar::roomIsBooked(QDate date, qint32 roomId) const
{
    return find(date, roomId) != nullptr;
}

qsizetype Calendar::entryCount() const
{
    qsizetype count = 0;
    for (const RoomDays &room : m_cells)
        count += std::count_if(room.days().cbegin(), room.days().cend(), [](const CalendarEntry &cell) { return cell != nullptr; });
    return count;
}

void Calendar::cacheGuest(qint32 clientId, const QString &shortName)
{
    const auto it = m_guests.find(clientId);
    if (it == m_guests.end()) {
        m_guests.insert(clientId, shortName);
    } else if (*it != shortName) {
        *it = shortName;
        ++m_generation;
    }
}

void Calendar::delGuestEntry(qint32 clientId)
{
    if (m_guests.remove(clientId))
        ++m_generation;
}

std::optional<QString> Calendar::guestName(qint32 clientId) const
{
    const auto it = m_guests.constFind(clientId);
    if (it == m_guests.constEnd())
        return std::nullopt;
    return *it;
}

int dayColumnsForWidth(int widthTwips)
{
    const int n = static_cast<int>(std::lround(std::max(0, widthTwips) / 510.0));
    return n + 1;
}

GridSelection GridSelection::ordered(int row, int col, int rowSel, int colSel)
{
    return {std::min(row, rowSel), std::max(row, rowSel), std::min(col, colSel), std::max(col, colSel)};
}

BookingRequest bookingRequestFor(QDate firstDay, const GridSelection &selection)
{
    BookingRequest request;
    request.inDate = firstDay.addDays(selection.left);
    request.nights = selection.right - selection.left + 1;
    request.firstRoom = selection.top;
    request.lastRoom = selection.bottom;
    return request;
}

std::vector<qint32> freeRooms(Database &db, Calendar &calendar, const std::vector<qint32> &roomIds, QDate from, int nights)
{
    std::vector<qint32> free;
    if (nights < 1 || !from.isValid())
        return free;
    const QDate to = from.addDays(nights - 1);
    calendar.fillCache(db, from, to);
    for (qint32 room : roomIds) {
        bool taken = false;
        for (QDate d = from; d <= to && !taken; d = d.addDays(1))
            taken = calendar.roomIsBooked(d, room);
        if (!taken)
            free.push_back(room);
    }
    return free;
}

Outcome checkNights(const QString &nightsText)
{
    if (nightsText.trimmed().isEmpty())
        return Refusal(2280, QStringLiteral("How many nights is the booking for?"), 2281,
                       QStringLiteral("Incomplete number of nights"));
    if (safeDouble(nightsText) <= 0)
        return Refusal(2278, QStringLiteral("The number of nights must be greater than zero."), 2279,
                       QStringLiteral("Type in a positive number of nights"));
    return Done{};
}

void CalendarEvents::load(Database &db, QDate from, QDate to)
{
    m_events.clear();
    QSqlQuery q = db.query(QStringLiteral("select * from event where FromDate <= ? and ToDate >= ? order by BBEventID"),
                           {sqlDate(to), sqlDate(from)});
    while (q.next()) {
        EventData e;
        e.fillFields(q.record());
        m_events.push_back(std::move(e));
    }
    m_byDayAndRow.clear();
    for (int i = 0; i < static_cast<int>(m_events.size()); ++i) {
        const EventData &e = m_events[static_cast<std::size_t>(i)];
        if (!e.FromDate.isValid() || !e.ToDate.isValid())
            continue;
        const QDate start = std::max(e.FromDate, from);
        const QDate end = std::min(e.ToDate, to);
        for (QDate d = start; d <= end; d = d.addDays(1))
            m_byDayAndRow.insert(d.toJulianDay() * 4 + e.EventIndex, i);
    }
}

const EventData *CalendarEvents::find(QDate date, int eventIndex) const
{
    const auto it = m_byDayAndRow.constFind(date.toJulianDay() * 4 + eventIndex);
    return it == m_byDayAndRow.constEnd() ? nullptr : &m_events[static_cast<std::size_t>(*it)];
}

bool EventRules::overlaps(Database &db, QDate from, QDate to, int eventIndex, qint32 ownId)
{
    return db.scalar(QStringLiteral("select count(*) from event where FromDate <= ? and ToDate >= ? and EventIndex = ? "
                                    "and BBEventID <> ?"),
                     {sqlDate(to), sqlDate(from), eventIndex, ownId})
               .toInt()
        > 0;
}

Outcome EventRules::validate(Database &db, const QString &text, QDate from, QDate to, int eventIndex, qint32 ownId)
{
    if (text.trimmed().isEmpty())
        return Refusal(1702, QStringLiteral("You haven't entered any text."), 1703, QStringLiteral("No event text entered"));
    if (from > to)
        return Refusal(1704, QStringLiteral("From date cannot be bigger than the To date."), 1705, QStringLiteral("Incorrect dates"));
    if (overlaps(db, from, to, eventIndex, ownId))
        return Refusal(5110, QStringLiteral("The changes you have made overlap an event that already exists. Please adjust."),
                       5111, QStringLiteral("Overlapping event dates"));
    return Done{};
}

} // namespace fenlark

#include "shell/calendargrid.h"

#include "shell/database.h"
#include "shell/displaynames.h"
#include "shell/money.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QSqlQuery>
#include <QStringList>

#include <algorithm>
#include <cstdlib>

namespace fenlark {

QString cellText(const CalendarCache &entry, QDate day, const QString &shortName)
{
    if (day == entry.Arrival && entry.Status != QLatin1String("U")) {
        QString top = QString::number(entry.NoAdults);
        if (entry.Children > 0)
            top += QLatin1Char('+') + QString::number(entry.Children);
        return top + QLatin1Char('\n') + shortName;
    }
    return QLatin1Char('\n') + shortName;
}

Rgb cellColour(const QString &status, const StatusColours &colours, bool *unknownStatus)
{
    if (unknownStatus)
        *unknownStatus = false;
    if (status == QLatin1String("I"))
        return calendarcolours::CheckedIn;
    if (status == QLatin1String("K"))
        return calendarcolours::CheckedOut;
    if (const Status *s = colours.find(status))
        return {s->Red, s->Green, s->Blue};
    if (unknownStatus)
        *unknownStatus = true;
    return calendarcolours::UnknownStatus;
}

void CalendarGrid::build(Session &session, QDate firstDay, int days, QDate today)
{
    const auto &rooms = session.property().rooms();
    const int dayCount = std::max(0, days);
    const QDate lastDay = firstDay.addDays(dayCount - 1);

    m_events.load(session.db(), firstDay, lastDay);
    m_headers.assign(static_cast<std::size_t>(dayCount), DayHeader());
    for (int c = 0; c < dayCount; ++c) {
        DayHeader &h = m_headers[static_cast<std::size_t>(c)];
        h.date = firstDay.addDays(c);
        h.weekend = h.date.dayOfWeek() >= 6;
        h.today = h.date == today;
        for (int band = 0; band < 3; ++band) {
            h.event[band] = m_events.find(h.date, band + 1);
            h.band[band] = h.event[band] ? calendarcolours::EventRow[band]
                                         : (h.weekend ? calendarcolours::Weekend : calendarcolours::Weekday);
        }
    }

    Calendar &calendar = session.calendar();
    calendar.fillCache(session.db(), firstDay, lastDay);
    Source source{{}, dayCount, calendar.generation(), session.statusColours().version()};
    source.rooms.reserve(rooms.size());
    for (const Room &room : rooms)
        source.rooms.push_back(room.BBRoomID);

    const auto [fromColumn, toColumn] = keepSharedDays(source, firstDay);
    m_firstDay = firstDay;
    m_days = dayCount;
    m_rooms = static_cast<int>(rooms.size());
    m_source = std::move(source);
    for (int r = 0; r < m_rooms; ++r)
        layOut(session, r, m_source.rooms[static_cast<std::size_t>(r)], fromColumn, toColumn);
}

std::pair<int, int> CalendarGrid::keepSharedDays(const Source &source, QDate firstDay)
{
    const qint64 shift = m_firstDay.isValid() ? m_firstDay.daysTo(firstDay) : 0;
    const int days = source.days;
    // A cell showing "???" may have its name by now: such a grid is laid out whole.
    if (source != m_source || !m_missingClients.empty() || shift == 0 || std::abs(shift) >= days) {
        m_missingClients.clear();
        m_cells.assign(source.rooms.size() * static_cast<std::size_t>(days), CalendarCell());
        return {0, days};
    }
    const int moved = static_cast<int>(std::abs(shift));
    for (std::size_t r = 0; r < source.rooms.size(); ++r) {
        const auto row = m_cells.begin() + static_cast<std::ptrdiff_t>(r * static_cast<std::size_t>(days));
        if (shift > 0)
            std::rotate(row, row + moved, row + days);
        else
            std::rotate(row, row + (days - moved), row + days);
    }
    // The columns that came round from the other end are laid out afresh.
    return shift > 0 ? std::pair{days - moved, days} : std::pair{0, moved};
}

void CalendarGrid::layOut(Session &session, int r, qint32 roomId, int fromColumn, int toColumn)
{
    const Calendar &calendar = session.calendar();
    const StatusColours &colours = session.statusColours();
    // The cache holds one entry for all the nights of a stay in a room: its
    // colour, name and the text of the nights after the arrival are made once.
    const CalendarCache *stay = nullptr;
    Rgb stayBack;
    bool unknown = false;
    QString name, nightText;
    for (int c = fromColumn; c < toColumn; ++c) {
        const QDate day = m_firstDay.addDays(c);
        CalendarCell &cell = m_cells[static_cast<std::size_t>(r * m_days + c)];
        CalendarEntry entry = calendar.find(day, roomId);
        if (!entry) {
            cell = CalendarCell();
            continue;
        }
        if (entry.get() != stay) {
            stay = entry.get();
            stayBack = cellColour(entry->Status, colours, &unknown);
            const auto found = calendar.guestName(entry->BBClientID);
            if (!found && (m_missingClients.empty() || m_missingClients.back() != entry->BBBookingID))
                m_missingClients.push_back(entry->BBBookingID);
            name = found.value_or(QStringLiteral("???"));
            nightText.clear();
        }
        cell.back = stayBack;
        const bool arrival = day == entry->Arrival;
        if (arrival || nightText.isNull()) {
            cell.text = cellText(*entry, day, name);
            if (unknown)
                cell.text = entry->Status + QLatin1Char(' ') + cell.text;
            if (!arrival)
                nightText = cell.text;
        } else {
            cell.text = nightText;
        }
        cell.entry = std::move(entry);
    }
}

QString partyText(int adults, int children)
{
    QString text = QString::number(adults) + getString(5112, QStringLiteral(" adult"));
    if (adults >= 2)
        text += QLatin1Char('s');
    if (children == 1)
        text += QStringLiteral(", ") + getString(5113, QStringLiteral("1 Child"));
    else if (children > 1)
        text += QStringLiteral(", ") + QString::number(children) + getString(5114, QStringLiteral(" children"));
    return text;
}

std::optional<QString> bookingDetails(Database &db, qint32 bbBookingId, qint32 bbRoomId)
{
    QSqlQuery q = db.query(QStringLiteral(
        "select client.Title, client.FirstName, client.Surname, client.Company, client.PhoneNo, guest.NoAdults, "
        "guest.Child1 + guest.Child2, booking.Notes, booking.Source "
        "from booking join guest on booking.BBBookingID = guest.BBBookingID "
        "join client on guest.BBClientID = client.BBClientID "
        "where booking.BBBookingID = ? and guest.BBRoomID = ?"),
        {bbBookingId, bbRoomId});
    if (!q.next())
        return std::nullopt;
    QString text = clientName(fieldText(q.value(0)), fieldText(q.value(1)), fieldText(q.value(2)), fieldText(q.value(3)));
    const QString phone = fieldText(q.value(4));
    if (!phone.isEmpty())
        text += QStringLiteral(" / ") + phone;
    text += QStringLiteral(" (") + partyText(q.value(5).toInt(), q.value(6).toInt()) + QLatin1Char(')');
    const QString notes = fieldText(q.value(7));
    if (!notes.isEmpty())
        text += QLatin1Char('\n') + notes;
    const QString source = fieldText(q.value(8));
    if (!source.isEmpty())
        text += QLatin1Char('\n') + getString(5115, QStringLiteral("Source: ")) + source;
    return text;
}

std::optional<QString> bookingHint(Database &db, const StatusColours &colours, qint32 bbBookingId, qint32 bbRoomId)
{
    // The total counts the nights of the stay in the booking's live rooms: a
    // cancelled room keeps its nightly rates, but they are no longer charged.
    QSqlQuery q = db.query(QStringLiteral(
        "select client.Title, client.FirstName, client.Surname, client.Company, guest.NoAdults, "
        "guest.Child1 + guest.Child2, booking.FromDate, booking.ToDate, booking.Status, guest.CheckInOut, "
        "(select sum(dailyrate.RoomRate) from dailyrate join guest as live "
        "   on live.BBBookingID = dailyrate.BBBookingID and live.BBRoomID = dailyrate.BBRoomID "
        " where dailyrate.BBBookingID = booking.BBBookingID "
        "   and dailyrate.CalDate >= booking.FromDate and dailyrate.CalDate < booking.ToDate) "
        "from booking join guest on booking.BBBookingID = guest.BBBookingID "
        "join client on guest.BBClientID = client.BBClientID "
        "where booking.BBBookingID = ? and guest.BBRoomID = ?"),
        {bbBookingId, bbRoomId});
    if (!q.next())
        return std::nullopt;
    const QLocale locale = deskLocale();
    const QString dateFormat = QStringLiteral("ddd dd MMM yyyy");
    const QDate from = dateFromSql(q.value(6));
    const QDate to = dateFromSql(q.value(7));
    const qint64 nights = from.daysTo(to);

    QString status = fieldText(q.value(8));
    const QString checkState = fieldText(q.value(9));
    if (status == QLatin1String("C") && !checkState.isEmpty())
        status = checkState;
    QString statusText;
    if (status == QLatin1String("I"))
        statusText = getString(5890, QStringLiteral("Checked in"));
    else if (status == QLatin1String("K"))
        statusText = getString(5891, QStringLiteral("Checked out"));
    else if (const Status *known = colours.find(status))
        statusText = known->Description;
    else
        statusText = status;

    QStringList lines;
    lines << clientName(fieldText(q.value(0)), fieldText(q.value(1)), fieldText(q.value(2)), fieldText(q.value(3)));
    lines << getString(5188, QStringLiteral("Booking ID: %1")).arg(bbBookingId);
    const QString fromText = locale.toString(from, dateFormat);
    const QString toText = locale.toString(to, dateFormat);
    lines << (nights == 1 ? getString(5189, QStringLiteral("%1 to %2, 1 night")).arg(fromText, toText)
                          : getString(5190, QStringLiteral("%1 to %2, %3 nights")).arg(fromText, toText, QString::number(nights)));
    lines << partyText(q.value(4).toInt(), q.value(5).toInt());
    lines << statusText;
    lines << getString(5191, QStringLiteral("Total: %1")).arg(formatAmount(roundMoney(q.value(10).toDouble())));
    return lines.join(QLatin1Char('\n'));
}

} // namespace fenlark

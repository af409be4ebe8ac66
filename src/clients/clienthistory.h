#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace fenlark {

class Database;

// One booking in a client's history.
struct ClientHistoryRow {
    qint32 BBBookingID = 0;
    QDate FromDate;
    QDate ToDate;
    std::optional<double> total;   // the rates of all its rooms; none when it has no nightly rates

    int nights() const { return int(FromDate.daysTo(ToDate)); }
    // "Booking ID", "Arrival", "Leaving", "No. Nights", "Total" as the list shows them.
    QStringList cells() const;
};

// Every booking the client had a part in, each once, by arrival: as the one who
// made it, as the client its account is billed to, or as a room's first or
// second guest. A booking without rooms is not listed. Empty for a key below 1.
std::vector<ClientHistoryRow> clientHistory(Database &db, qint32 clientId);

// The list headings; the copied text spells the nights "No.Nights", the list "No. Nights".
QStringList clientHistoryHeadings();

// The history as text for the clipboard: "Client History for (id) name" (or
// "Unknown client" when no client is chosen or it no longer exists), an empty
// line, the tab-separated headings, then one tab-separated line per booking.
QString clientHistoryText(Database &db, qint32 clientId, const std::vector<ClientHistoryRow> &rows);

// The room of the booking's first leg, which the history opens; 0 when it has none.
qint32 firstRoomOfBooking(Database &db, qint32 bookingId);

} // namespace fenlark

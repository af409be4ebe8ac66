#pragma once

#include <QDate>
#include <QList>

#include <vector>

namespace fenlark {

class Database;

// A stay runs from its first night (FromDate) to the day of leaving (ToDate),
// which is not a night: a one-night stay has ToDate = FromDate + 1.

// ToDate - FromDate; 0 for an empty, reversed or undated span.
int nightCount(const QDate &fromDate, const QDate &toDate);
// FromDate through ToDate - 1.
QList<QDate> nightsOf(const QDate &fromDate, const QDate &toDate);

// The bookings with a leg in that room whose stay clashes with the span, other
// than the booking given (0 for none), newest first.
std::vector<qint32> clashingBookings(Database &db, qint32 roomId, const QDate &fromDate, const QDate &toDate,
                                     qint32 exceptBookingId = 0);

} // namespace fenlark

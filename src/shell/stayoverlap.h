#pragma once

#include <QDate>
#include <QString>
#include <QVariantList>

namespace fenlark {

// The condition that a booking's stay holds a night from first to last, for the
// booking table under the given name, with its values. A plain
// "ToDate > first and FromDate <= last" walks the booking_dates index over every
// stay that ends after first: years of stays for a day in the past. Bounding
// ToDate as well, by the longest stay on file (read from the booking_nights index),
// keeps the walk to the stays around the days asked for.
// Two things turn SQLite away from that walk to the room's index, which looks up
// every stay a room ever had: a plain condition on the room (write it
// "+guest.BBRoomID = ?") and asking for distinct or ordered rows of booking keys
// (sort them after reading).
QString stayOverlapSql(const QString &booking);
QVariantList stayOverlapValues(const QDate &first, const QDate &last);

} // namespace fenlark

#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// Which end of the stay a list of the day shows.
enum class StayEnd { Arrivals, Departures };

// One leg arriving or leaving on the day.
struct DayLeg {
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    QString roomName;
    QString client;   // as clientName writes it
};

// The legs of bookings that arrive (or leave) on the day, whatever their status,
// in the rooms' order.
std::vector<DayLeg> legsOfTheDay(Database &db, StayEnd end, const QDate &day);

// Where a leg stands at the desk: not arrived, checked in, checked out.
enum class CheckState { None, CheckedIn, CheckedOut };
// "", "I" or "K", as guest.CheckInOut keeps it.
QString checkInOutCode(CheckState state);

// Marks the leg in that room of a booking as checked in or out, or clears the
// mark. Refused when the leg is missing, or when a mark is set before the
// guest's arrival day.
Result<Changes> setCheckInOut(Database &db, qint32 bookingId, qint32 roomId, CheckState state,
                              const QDateTime &now = QDateTime::currentDateTime());

} // namespace fenlark

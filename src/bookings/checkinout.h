#pragma once

#include <QDate>
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

} // namespace fenlark

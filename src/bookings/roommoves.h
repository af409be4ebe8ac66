#pragma once

#include "bookings/stayquestions.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Calendar;
class Database;
class RateData;
class Room;
struct UserStruct;

// The rooms free on every night from `from` through `lastNight` (both included),
// in the order of `rooms`, leaving out `excludeRoomId`. Read from the calendar
// cache, which is filled for the span first; a write checks again in SQL.
std::vector<qint32> fillFreeRooms(Database &db, Calendar &calendar, const std::vector<Room> &rooms, qint32 excludeRoomId,
                                  const QDate &from, const QDate &lastNight);

// The rooms a leg of a booking may change to for the stay from..to: free on the
// calendar, not its own room, and not a room of another leg of its booking.
// Refused with the desk's "no available rooms" message when there is none.
Result<std::vector<qint32>> roomsForChange(Database &db, Calendar &calendar, const std::vector<Room> &rooms, qint32 bookingId,
                                           qint32 roomId, const QDate &from, const QDate &to);

// A room to add to a booking that exists. BBClientID 0 puts the booking's maker
// in it.
struct AddRoomRequest {
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    qint32 BBRateID = 0;      // 0: manual rates
    qint32 BBClientID = 0;
    qint16 adults = 0;
    qint16 child1 = 0;
    qint16 child2 = 0;
};

struct AddRoomOutcome {
    qint32 BBGuestID = 0;
    qint32 BBClientID = 0;
    qint16 adults = 0;
    double total = 0;   // of the new room's nights
    Changes changes;
};

// Adds a leg to a booking: the room checked free again in SQL, the rate offered
// for it, the limits asked about, then the leg, its nights priced and rounded,
// and the audit line in one transaction; nights a cancelled leg of the booking
// left in that room go first. A booking out of service ("U") gets a room with
// no adults and no nightly rates.
class RoomAdder {
public:
    RoomAdder(Database &db, const RateData &rates, const UserStruct &user);
    Result<AddRoomOutcome> add(const AddRoomRequest &request, StayQuestions &questions);

private:
    Database &m_db;
    const RateData &m_rates;
    const UserStruct &m_user;
};

// One leg staying on a date, as the room swap lists it.
struct StayingLeg {
    qint32 BBGuestID = 0;
    qint32 BBRoomID = 0;
    qint32 BBBookingID = 0;
    QDate fromDate;
    QDate toDate;
    QString roomName;
    QString client;

    // "Room 3 (Anna Smith)".
    QString text() const;
};

// The legs whose stay includes the night of that date, in the rooms' order.
std::vector<StayingLeg> legsStaying(Database &db, const QDate &date);

// Exchanges the rooms of two legs, which need not be free: each leg must fit in
// the other's room apart from the other leg. Their nightly rates go with them,
// typed ones included, even within one booking.
class RoomSwap {
public:
    RoomSwap(Database &db, const UserStruct &user);

    // Why two slots cannot be swapped, the first reason that holds: a slot empty
    // (0), the same room twice, or a leg that does not fit in the other's room.
    Outcome check(qint32 firstGuestId, qint32 secondGuestId) const;
    // The swap in one transaction. Refused when check() refuses or a leg is gone,
    // also when it goes in the middle of the swap: then nothing stays written.
    Result<Changes> swap(qint32 firstGuestId, qint32 secondGuestId);

private:
    Database &m_db;
    const UserStruct &m_user;
};

} // namespace fenlark

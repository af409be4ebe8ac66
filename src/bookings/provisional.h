#pragma once

#include <QDateTime>

namespace fenlark {

class Database;

// What the reminder needs from the desk.
class ProvisionalHost {
public:
    virtual ~ProvisionalHost() = default;
    // Brings a minimised main window back before asking.
    virtual void restoreWindow() = 0;
    // Opens the booking on one of its rooms.
    virtual void openBooking(qint32 bbBookingId, qint32 bbRoomId) = 0;
};

// Reminds the desk of provisional bookings whose hold has run out.
class Provisional {
public:
    // One question per expired "P" booking: Yes opens it (the reminder returns
    // unless it is changed), No puts the hold four hours on. Returns how many were asked.
    static int checkExpired(Database &db, ProvisionalHost &host, const QDateTime &now = QDateTime::currentDateTime());
};

} // namespace fenlark

#pragma once

#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"

#include <QStringList>

#include <optional>

namespace fenlark {

// One leg with its nights.
struct LegDetails {
    Guest leg;
    std::vector<DailyRate> nights;
};

// A booking read whole: head, legs with their nights, the client who made it and
// the account. A missing client or account row does not stop the reading: it is
// named in problems, and nothing is written.
struct BookingDetails {
    Booking head;
    std::vector<LegDetails> legs;
    std::optional<Client> madeBy;
    std::optional<Account> account;
    double balance = 0;   // of the account, when there is one
    QStringList problems;
};

// Empty when the booking does not exist.
std::optional<BookingDetails> loadBookingDetails(Database &db, qint32 bookingId);

// One leg as the list of a booking's rooms shows it.
struct LegLine {
    qint32 BBRoomID = 0;
    QString roomName;
    QString guestName;
    qint16 adults = 0, child1 = 0, child2 = 0;
};

// The legs of a booking in the rooms' order. A leg whose room or guest is
// missing is left out: there is nothing to show or open for it.
std::vector<LegLine> legLines(Database &db, qint32 bookingId);
// Whether the leg in that room is there with its guest's client.
bool legHasGuest(Database &db, qint32 bookingId, qint32 roomId);

// A rate sheet as messages name it: "DEFAULT" for sheet 0, its code when it is
// found, else the id with " Ratesheet not found!".
QString rateSheetName(Database &db, qint32 rateSheetId);

} // namespace fenlark

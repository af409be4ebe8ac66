#pragma once

#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// What was typed into the booking search. The first filled box in this order
// decides and the others are ignored: invoice number, pro forma number, booking
// ID, server number, reference; otherwise the name boxes and the status together.
struct BookingSearchCriteria {
    QString invoiceNo;
    QString proformaNo;
    QString bookingId;    // the local key ("Booking ID")
    QString serverId;     // the server's number
    QString reference;
    QString firstName;
    QString surname;
    QString phone;
    QString email;
    QString company;
    QString status;       // a status letter; empty for any
};

// One leg of a booking found.
struct BookingSearchRow {
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    QString madeBy;
    QString guest;
    QDate arrival;
    QString roomName;
};

// The legs of the bookings found, newest booking first and each booking's legs
// in the rooms' order; a booking found by several routes shows once. Names are
// prefixes in any alphabet ("%" and "_" stay wildcards) and find a client who
// made the booking, is a room's guest or its second guest. Refused when nothing
// was typed, or a number box holds anything but a whole number the desk keeps.
Result<std::vector<BookingSearchRow>> searchBookings(Database &db, const BookingSearchCriteria &criteria);

} // namespace fenlark

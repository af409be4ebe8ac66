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

} // namespace fenlark

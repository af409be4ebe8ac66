#include "bookings/bookingdetails.h"

#include "shell/strings.h"

namespace fenlark {

std::optional<BookingDetails> loadBookingDetails(Database &db, qint32 bookingId)
{
    BookingDetails details;
    if (!details.head.fetch(db, bookingId))
        return std::nullopt;
    for (Guest &leg : Guest::legsOf(db, bookingId)) {
        LegDetails legDetails;
        legDetails.nights = DailyRate::forLeg(db, bookingId, leg.BBRoomID);
        legDetails.leg = std::move(leg);
        details.legs.push_back(std::move(legDetails));
    }
    Client client;
    if (client.fetch(db, details.head.MadeBy))
        details.madeBy = client;
    else
        details.problems << getString(5606, QStringLiteral("The client (%1) who made booking %2 could not be found."))
                                .arg(details.head.MadeBy)
                                .arg(bookingId);
    if (details.head.BBAccountID >= 1) {
        Account account;
        if (account.fetch(db, details.head.BBAccountID)) {
            details.account = account;
            details.balance = Account::getBalanceOnAccount(db, account.BBAccountID);
        } else {
            details.problems << getString(5607, QStringLiteral("The account (%1) of booking %2 could not be found."))
                                    .arg(details.head.BBAccountID)
                                    .arg(bookingId);
        }
    }
    return details;
}

} // namespace fenlark

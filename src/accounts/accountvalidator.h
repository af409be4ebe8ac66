#pragma once

#include <QtGlobal>

namespace fenlark {

class Booking;
class Guest;
class Database;

// Keeps accounts tidy after an item moved between them: an open account that
// lost its last booking or extra is closed and hands its payments on, and a
// room's own account follows the extras on that room. It shows no messages and
// holds no state; each operation runs in one transaction. A row it needs and
// cannot find (guest, booking, account) ends the step with nothing written.
class AccountValidator {
public:
    // After the booking's account changed from oldAccountId: its extras on the
    // old account follow it, their rooms are checked, and the old account is
    // closed if that left it empty.
    void validateBooking(Database &db, const Booking &booking, qint32 oldAccountId);
    // Closes oldAccountId if no booking or extra stands on it any more, then
    // moves its payments to newAccountId (closing first, then moving).
    void validateAccount(Database &db, qint32 oldAccountId, qint32 newAccountId);
    // Makes the room's own account agree with the extras on the room.
    void validateGuestAccount(Database &db, qint32 guestId);
    // Closes every open account of the client that holds no item. Payments stay
    // where they are: there is no account known here to take them.
    void closeEmptyAccountsForClient(Database &db, qint32 clientId);
    void closeAllEmptyAccounts(Database &db);

private:
    void returnRoomToBooking(Database &db, Guest &guest, qint32 formerAccountId, qint32 bookingAccountId);
};

} // namespace fenlark

#pragma once

#include "accounts/accountrecords.h"

#include <vector>

namespace fenlark {

// The extras of an account.
std::vector<Extra> getExtras(Database &db, qint32 accountId);
// The extras of one room (leg), by date and then as entered: the first of them
// decides which account a room with several extras goes to.
std::vector<Extra> getExtrasByRoom(Database &db, qint32 guestId);
// The extras of a booking's rooms that stand on that account.
std::vector<Extra> getExtrasByBookingAndAccount(Database &db, qint32 bookingId, qint32 accountId);
// The extras of one room that stand on that account.
std::vector<Extra> getExtrasByRoomAndAccount(Database &db, qint32 guestId, qint32 accountId);

} // namespace fenlark

#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace fenlark {

class Database;

// A booking or an extra, as it stands on an account.
struct AccountItemRef {
    enum Kind { Booking, Extra };
    Kind kind = Booking;
    qint32 id = 0;
};

// What moves, in words: "BkID 12 arriving 01/07/2031 - Heron" or
// "Extra - 01/07/2031 (2 x Wine)"; an error text for a missing item.
QString describeItem(Database &db, const AccountItemRef &item);
// The account the item stands on; 0 when the item is missing.
qint32 accountOfItem(Database &db, const AccountItemRef &item);

// What is said when an item of a closed account is to move.
Refusal itemOnClosedAccount();

// An open account an item can move to, with what it already holds.
struct OpenAccountChoice {
    qint32 accountId = 0;
    QString text;          // "A/C ID 7 - reference"
    QStringList items;     // its bookings and extras
};
// The client's open accounts other than exceptAccountId, oldest first.
std::vector<OpenAccountChoice> otherOpenAccounts(Database &db, qint32 clientId, qint32 exceptAccountId);

// Moves the item to an open account in one transaction: an extra moves alone
// and its room's account is checked; a booking takes its extras on the old
// account with it; then the old account is closed if that emptied it, and its
// payments go along. Refused: a missing item or account, an item on a closed
// account, a closed target, the item's own account.
Result<Changes> moveItem(Database &db, const AccountItemRef &item, qint32 targetAccountId);

// The target an item moved to, and the changes.
struct ItemMoved {
    qint32 accountId = 0;
    Changes changes;
};
// Moves the item to a new account of the same client.
Result<ItemMoved> moveItemToNewAccount(Database &db, const AccountItemRef &item);

// Moving an item to another client: to a new account of that client when it has
// none open, to its open account when it has one. With several open accounts
// nothing moves and the choices come back for a person to pick from (then moveItem).
struct ClientMove {
    ItemMoved moved;                        // accountId 0 when nothing moved
    std::vector<OpenAccountChoice> choices; // filled when the client has several open accounts
};
Result<ClientMove> moveItemToClient(Database &db, const AccountItemRef &item, qint32 clientId);

} // namespace fenlark

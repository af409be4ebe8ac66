#pragma once

#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

struct UserStruct;

// The accounts an extra of one room can stand on, as the extra form offers them:
// the booking's (main) account and the room's own account, which is the main
// one unless the room bills elsewhere.
struct ExtraAccounts {
    Guest guest;
    Booking booking;
    Account main;
    Account room;
    // The main account is closed and the room has no open account of its own:
    // an extra for the room goes on a new account of the room's client, made
    // when the extra is saved (so a form left without saving makes nothing).
    bool newRoomAccount = false;
    qint32 roomClientId = 0;

    bool mainOpen() const;
    bool roomOpen() const;
};

// Reads the room, its booking and their accounts. Refused: a room or booking
// that does not exist, a booking without an account.
Result<ExtraAccounts> extraAccounts(Database &db, qint32 guestId);

// Refused when no stock item can be chosen: extras cannot be added then.
Outcome canAddExtras(Database &db);
// What is said when an extra to change cannot be read.
Refusal noExtraFound(qint32 extraId);

// One extra as the form leaves it. Quantity and price are as typed.
struct ExtraInput {
    qint32 extraId = 0;   // 0 for a new extra
    qint32 guestId = 0;
    QDate date;
    qint32 stockId = 0;
    QString qtyText;
    QString priceText;    // a negative price is a refund
    bool onRoomAccount = false;       // the "Guest Account" option rather than "Main Account"
    std::optional<qint32> accountId;  // a named account instead of either (fenlarkctl)
};

struct ExtraSaved {
    Extra extra;
    Changes changes;
};

// Saves an extra in one transaction: a new room account when one is needed,
// the extra, the audit line of a changed extra, and, when its account changed,
// the account checks that close an emptied account and keep the room's own
// account in step. An extra already on an account other than the room's two
// keeps it. Refused before anything is written: no stock item, an empty or
// unreadable quantity or price, a quantity of 0 or below, a closed account
// (also one another desk closed meanwhile), a missing extra, room or account.
Result<ExtraSaved> saveExtra(Database &db, const ExtraInput &input, const UserStruct &user);

// Deletes an extra with the user's reason: the audit line, the row, then the
// room's account check; one transaction. Refused: no right to delete extras, no
// reason, a missing extra, an extra on a closed account.
Result<Changes> deleteExtra(Database &db, qint32 extraId, const QString &reason, const UserStruct &user);

// An extra of a room as the extras list shows it.
struct ExtraRow {
    Extra extra;
    QString stockName;   // empty for an unknown item
    bool accountOpen = true;
    double total() const { return extra.Qty * extra.Price; }
};
std::vector<ExtraRow> extrasOfRoom(Database &db, qint32 guestId);

// The account a room's extras go on by default: the room's own, else its booking's.
qint32 defaultAccountOf(Database &db, qint32 guestId);
// The client an account is invoiced to; 0 for no such account.
qint32 invoiceToOf(Database &db, qint32 accountId);

} // namespace fenlark

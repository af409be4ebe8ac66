#pragma once

#include "accounts/accountrecords.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

// One line of the account screen: a booking (its accommodation) or an extra.
struct AccountItem {
    enum Kind { BookingItem, ExtraItem };
    Kind kind = BookingItem;
    qint32 id = 0;          // BBBookingID or BBExtraID
    QDate date;
    QString description;    // "* Surname" for a booking, "2 x Wine" for an extra
    double amount = 0;
    QString room;           // extras: the room's name
    QString kindCode() const { return kind == BookingItem ? QStringLiteral("B") : QStringLiteral("X"); }
};

// What the account screen shows: the account, who is invoiced, the items and
// the totals. Totals are sums of the unrounded amounts, rounded only to show.
struct AccountSummary {
    Account account;
    QString invoiceToName;
    bool invoiceToMissing = false;
    std::vector<AccountItem> items;   // bookings first, then extras
    double accommodation = 0;
    double extras = 0;
    double payments = 0;

    // Owed on the account: accommodation and extras less payments.
    double balance() const { return accommodation + extras - payments; }
};

// The account screen's content; nothing when the account does not exist.
std::optional<AccountSummary> loadAccountSummary(Database &db, qint32 accountId);

// Stores the account's reference (also on a closed account).
Result<Changes> saveAccountReference(Database &db, qint32 accountId, const QString &reference);

// The account is invoiced to another client: the account, and the ledger twins
// of its payments with it, whose ledgers are then matched again. One transaction.
// Refused: a missing account or client.
Result<Changes> changeInvoiceTo(Database &db, qint32 accountId, qint32 clientId);

// The link with which a client pays the account online by card:
// server + "/moorgate/paymoorgate?bbid=" + BBID + "&bookingid=" + the server's number
// of the account's first booking. Refused: the client lacks a surname or company,
// a phone number or an e-mail; the account holds no booking; the booking has not
// reached the server yet.
Result<QString> cardPaymentLink(Database &db, qint32 accountId, const QString &serverBase, qint32 bbid);

} // namespace fenlark

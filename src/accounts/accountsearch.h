#pragma once

#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// What the account search looks for; empty fields are not compared. Names and
// the reference match from their start, with % and _ acting as wildcards.
struct AccountSearchCriteria {
    QString accountId;
    QString surname;
    QString company;
    QString reference;
    QDate upTo;        // only accounts holding a booking that starts on or before it
    QString status;    // "O", "C" or empty for both
    qint32 clientId = 0;   // only this invoice-to client's accounts, 0 for any
};

// One account found.
struct AccountListRow {
    qint32 accountId = 0;
    qint32 clientId = 0;
    QString client;      // "(id) name"
    QString reference;
    QString status;
    QString statusName() const;
};

// The accounts found, newest first. Refused: an account number that is not a
// whole number.
Result<std::vector<AccountListRow>> searchAccounts(Database &db, const AccountSearchCriteria &criteria);
// The notice of a search that found nothing.
Refusal noAccountsFound();

} // namespace fenlark

#pragma once

#include "accounts/accountrecords.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace fenlark {

class Database;

// One account billed to a client, with one line for each thing on it.
struct ClientAccount {
    Account account;
    // Its bookings ("date  name  BkID n") or, when it has none, its extras
    // ("date (qty x item @price)"); "Error: could not find any data" when it holds neither.
    QStringList items;
};

// The accounts billed to the client: open ones first, newest first.
std::vector<ClientAccount> clientAccounts(Database &db, qint32 clientId);

// The client's ledger rows, newest first.
std::vector<ClientTran> clientLedger(Database &db, qint32 clientId);

// What the client owes by its ledger: the sum of its rows, rounded to cents.
double ledgerBalance(Database &db, qint32 clientId);

// A date of the accounts tab and the ledger, "dd/MM/yyyy".
QString ledgerDate(const QDate &date);

} // namespace fenlark

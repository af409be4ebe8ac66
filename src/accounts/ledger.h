#pragma once

#include "accounts/accountrecords.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

struct UserStruct;
class VatRules;

// Ledger transaction types and the document number series of table trantype.
namespace trantype {
inline const QString Invoice = QStringLiteral("INV");
inline const QString CreditNote = QStringLiteral("CRN");
inline const QString Payment = QStringLiteral("PMT");
inline const QString Journal = QStringLiteral("JNL");
inline const QString Proforma = QStringLiteral("PRO");   // numbered, never in the ledger
} // namespace trantype

// The highest number of that type in the ledger; 0 when there is none.
qint32 getMaxTranNo(Database &db, const QString &tranType);
// Spends the next number of the series and returns it. A series without a row
// starts after the highest number of that type in the ledger. Not logged: the
// numbers travel to the server in the ledger rows themselves.
qint32 getNextNumber(Database &db, const QString &tranType);
// Sets the last number of the series (the first document of a kind), adding its row if needed.
void setLastNumber(Database &db, const QString &tranType, qint32 number);
// The last number spent in the series; 0 when the series has no row.
qint32 lastNumber(Database &db, const QString &tranType);

// Marks the client's rows that cancel each other out. Walking the rows in the
// order they were made, leaving out the newest, each point at which the running
// balance comes back to zero to the cent closes a matched group; the rows after
// the last such point stay unmatched. Matched is local and derived: neither this
// nor anything it writes reaches the change log.
void matchTransactions(Database &db, qint32 clientId);

// What the client owes: the sum of the ledger, to the cent.
double clientBalance(Database &db, qint32 clientId);
// The client's rows in the order they were made.
std::vector<ClientTran> ledgerOf(Database &db, qint32 clientId);

// A ledger entry made by hand (ClientTranForm).
struct LedgerEntry {
    qint32 clientId = 0;
    QString tranType;      // CRN, PMT or JNL
    QString paymentType;   // PMT only: "0".."4"
    QDate date;
    QString reference;
    QString amountText;    // as typed
    QString vatText;       // as typed; empty means no VAT
};

// The manual entry as written: its ledger row, and the payment a PMT made.
struct LedgerEntryWritten {
    ClientTran row;
    qint32 paymentId = 0;
    Changes changes;
};

// Writes a manual entry: a payment (on no account) and its twin for PMT, or a
// numbered CRN or JNL. The amount is as typed, turned to a credit for CRN and
// PMT; VAT applies when the property is VAT-registered, a VAT was typed and the
// type is not PMT, and is then always computed from the amount at the default
// rate. The row and the matching run in one transaction. Refused before
// anything is written: an empty or unreadable amount, a VAT whose sign
// disagrees with the amount's, an unknown type, a client that does not exist.
Result<LedgerEntryWritten> addLedgerEntry(Database &db, const LedgerEntry &entry, const UserStruct &user,
                                          const VatRules &vat);

// What the ledger search looks for; empty fields are not compared.
struct LedgerSearch {
    QString tranType;   // empty for all
    QString tranNo;
    QDate start, end;
    QString reference;   // a prefix; % and _ act as wildcards
    QString amount;      // as typed; a payment of 100 is found by -100
};

// One row of the ledger list.
struct LedgerListRow {
    ClientTran tran;
    QString client;   // "(id) name"
};

// The rows found, newest first. Refused: a start after the end, a number or
// amount that cannot be read.
Result<std::vector<LedgerListRow>> searchLedger(Database &db, const LedgerSearch &search);
// The notice of a search that found nothing.
Refusal noTransactionsFound();

} // namespace fenlark

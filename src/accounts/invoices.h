#pragma once

#include "accounts/accountrecords.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

struct UserStruct;
class VatRules;

// Asks for the first number of a document series. The desk asks with an input
// box, fenlarkctl answers from its option, tests from a list.
class FirstNumberPrompter {
public:
    virtual ~FirstNumberPrompter() = default;
    // The answer as typed; nothing for Cancel.
    virtual std::optional<QString> askFirstNumber(const QString &prompt, const QString &title) = 0;
    // The answer was not a whole number of at least 1: says why, then the
    // question is asked again.
    virtual void refuseFirstNumber(const Refusal &why) = 0;
};

// The number of the next invoice ("INV") or pro forma ("PRO"). The first of a
// series is asked for ("What number would you like to start your invoices
// from?") until a whole number of at least 1 is given; that number is written
// as the series' last number and is the result. Nothing when the question was
// cancelled: the counter then stays spent at 1, so the next try takes 2
// without asking. Runs outside any transaction: the question waits for a person.
std::optional<qint32> getDocumentNumber(Database &db, const QString &tranType, FirstNumberPrompter &prompter);

// The accommodation of a booking: every night of every room.
double getBookingTotal(Database &db, qint32 bookingId);

// What an invoice of the account would hold now: one line per booking (its
// total at the default VAT code) and one per extra (at its stock item's code),
// the amount (the lines to the cent) and the VAT (rounded per line, 0 when the
// property is not VAT-registered).
struct InvoiceDraft {
    std::vector<InvoiceItem> items;
    double amount = 0;
    double vat = 0;
};
InvoiceDraft draftInvoice(Database &db, qint32 accountId, const VatRules &vat);

struct InvoiceMade {
    Invoice invoice;
    std::vector<InvoiceItem> items;
    ClientTran ledgerRow;
    Changes changes;
};

// Invoices an open account: the number (asked for when it is the first), then
// in one transaction the invoice, its items, the "INV" ledger row with the
// matching, and the account closed with the invoice's number. Printing is left
// to the caller. Nothing (and nothing written but the spent number) when the
// first-number question was cancelled. Refused before anything is written: a
// missing account or client, a closed account (also one another desk closed
// meanwhile), an account with nothing on it.
Result<std::optional<InvoiceMade>> makeInvoice(Database &db, qint32 accountId, const UserStruct &user,
                                               FirstNumberPrompter &prompter, const VatRules &vat);

struct ProformaMade {
    qint32 number = 0;
    bool existing = false;   // the account's pro forma number was already there
    InvoiceDraft draft;
};

// The account's pro forma number: the one it has, or the next of the "PRO"
// series stored on the account. A pro forma writes no money anywhere. Nothing
// when the first-number question was cancelled. Refused: a missing account, a
// closed account without a pro forma number.
Result<std::optional<ProformaMade>> makeProforma(Database &db, qint32 accountId, FirstNumberPrompter &prompter,
                                                 const VatRules &vat);

struct Reopened {
    qint32 creditNoteNo = 0;       // 0 when no credit note was made
    bool invoiceMissing = false;   // the account had an invoice number whose invoice is gone
    Changes changes;
};

// Re-opens a closed account in one transaction. An invoiced account gets a
// credit note and a "CRN" ledger row that reverses the invoice exactly, then the
// matching; its invoice number goes back to 0. The invoice itself stays as
// history. An invoice that cannot be found is reported and the account
// re-opens without a credit note. Refused: a missing or already open account.
Result<Reopened> reopenAccount(Database &db, qint32 accountId, const UserStruct &user);
// What the desk says when a re-opened account's invoice could not be found.
Refusal invoiceDataMissing();

// Closes an open account by hand: it will not be invoiced. No ledger entry.
Result<Changes> closeAccount(Database &db, qint32 accountId);

// After payments were taken: the account is open, not invoiced, has payments,
// and its balance is exactly 0 to the cent, so the desk offers to invoice it.
bool isSettledInFull(Database &db, qint32 accountId);

} // namespace fenlark

#pragma once

#include "accounts/accountrecords.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

struct UserStruct;

namespace paymenttype {
// The type a new payment starts on: "Credit Card".
inline const QString Default = QStringLiteral("2");
// "0" to "4" in the order of the list.
QStringList codes();
bool isKnown(const QString &code);
} // namespace paymenttype

// Money received on an account, as the payment form takes it.
struct NewPayment {
    qint32 accountId = 0;
    QDate paymentDate;
    QString paymentType = paymenttype::Default;
    QString reference;
    QString amountText;   // as typed; a negative amount is a refund
};

struct PaymentWritten {
    Payment payment;
    ClientTran twin;
    Changes changes;
};

// The payment's "PMT" row in the client's ledger: dated the day it was keyed
// in (not the day the money came in), numbered by the payment's key, with the
// amount negated and no VAT; then the client's rows are matched.
ClientTran addClientTran(Database &db, const Payment &payment, qint32 clientId);

// Takes a payment on an account, open or closed (payments may follow the
// invoice): the payment, its ledger twin for the account's invoice-to client,
// the matching and the audit line, in one transaction. Refused before anything
// is written: an empty, unreadable or zero amount, an unknown payment type, an
// account or client that does not exist.
Result<PaymentWritten> addPayment(Database &db, const NewPayment &request, const UserStruct &user);

// Changes only the reference of a payment, in the payment and its twin, with
// an audit line when it differs. Money is never edited: it is reversed by a
// new entry.
Result<Changes> changePaymentReference(Database &db, qint32 paymentId, const QString &reference, const UserStruct &user);

// One entry of the allocation list.
struct AllocationChoice {
    qint32 accountId = 0;   // 0: not allocated to a single account
    QString text;
};

// Where a payment of the client can be allocated: "not allocated" first, then
// the client's open accounts, newest first, each with its outstanding balance;
// the payment's own account is added when it is closed.
std::vector<AllocationChoice> allocationChoices(Database &db, qint32 clientId, const Payment &payment);

// Puts a payment on another account (or on none with 0) and sets its
// reference, in the payment and its twin, with an audit line; one transaction.
// True when anything changed. Refused: a missing payment or twin, an account
// that is not among the payment client's choices.
Result<bool> allocatePayment(Database &db, qint32 paymentId, qint32 accountId, const QString &reference,
                             const UserStruct &user);

// What is said when a payment to change cannot be read.
Refusal noPaymentFound(qint32 paymentId);

// The sum of the payments on an account.
double paymentsTotal(Database &db, qint32 accountId);

} // namespace fenlark

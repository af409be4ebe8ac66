#include "accounts/payments.h"

#include "accounts/accountrefusals.h"
#include "accounts/ledger.h"
#include "clients/clientrecords.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/strings.h"
#include "shell/textformat.h"

namespace fenlark {

namespace paymenttype {

QStringList codes()
{
    return {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")};
}

bool isKnown(const QString &code)
{
    return codes().contains(code);
}

} // namespace paymenttype

namespace {

Refusal noTwin(qint32 paymentId)
{
    return Refusal(6631, QStringLiteral("Invalid BBPaymentID offered in getClientTran: %1"), 6632,
                   QStringLiteral("Error reading database"))
        .arg(paymentId);
}

void audit(Database &db, const UserStruct &user, const QString &text, const QString &detail)
{
    SecurityAudit entry;
    entry.User(user);
    entry.setReason(detail);
    entry.addAudit(db, text);
}

} // namespace

ClientTran addClientTran(Database &db, const Payment &payment, qint32 clientId)
{
    Transaction transaction(db);
    ClientTran twin;
    twin.BBClientID = clientId;
    twin.TranDate = payment.CreateDate.date();
    twin.TranType = trantype::Payment;
    twin.TranNo = payment.BBPaymentID;
    twin.Reference = payment.Reference;
    twin.Amount = -payment.Amount;
    twin.VAT = 0;
    twin.Matched = false;
    twin.update(db);
    matchTransactions(db, clientId);
    transaction.commit();
    return twin;
}

Result<PaymentWritten> addPayment(Database &db, const NewPayment &request, const UserStruct &user)
{
    if (request.amountText.trimmed().isEmpty())
        return Refusal(6623, QStringLiteral("Please type in an amount."), 6624, QStringLiteral("No amount entered."));
    const auto amount = parseAmount(request.amountText, deskLocale());
    if (!amount)
        return refusals::notAnAmount(request.amountText);
    if (roundMoney(*amount) == 0.0)
        return Refusal(6623, QStringLiteral("Please type in an amount."), 6624, QStringLiteral("No amount entered."));
    if (!paymenttype::isKnown(request.paymentType))
        return Refusal(6625, QStringLiteral("Unknown payment type %1: use 0 Bank, 1 Cash, 2 Credit Card, 3 Other or 4 Commission."),
                       6626, QStringLiteral("Invalid payment type"))
            .arg(request.paymentType);
    Account account;
    if (!account.fetch(db, request.accountId))
        return refusals::missingAccount(request.accountId);
    Client client;
    if (!client.fetch(db, account.InvoiceTo))
        return refusals::missingClient(account.InvoiceTo);

    Transaction transaction(db);
    PaymentWritten written;
    Payment &payment = written.payment;
    payment.CreateDate = QDateTime::currentDateTime();
    payment.CreateUser = user.UserName;
    payment.PaymentDate = request.paymentDate.isValid() ? request.paymentDate : QDate::currentDate();
    payment.PaymentType = request.paymentType;
    payment.BBAccountID = account.BBAccountID;
    payment.Amount = roundMoney(*amount);
    payment.Reference = request.reference;
    payment.update(db);
    written.twin = addClientTran(db, payment, account.InvoiceTo);
    audit(db, user, getString(6642, QStringLiteral("New payment added")),
          getString(6633, QStringLiteral("A/C ID %1")).arg(account.BBAccountID));
    transaction.commit();
    return written;
}

Result<Changes> changePaymentReference(Database &db, qint32 paymentId, const QString &reference, const UserStruct &user)
{
    Payment payment;
    if (!payment.fetch(db, paymentId))
        return noPaymentFound(paymentId);
    const QString old = payment.Reference;
    Transaction transaction(db);
    payment.Reference = reference;
    payment.update(db);
    if (auto twin = payment.getClientTran(db)) {
        twin->Reference = reference;
        twin->update(db);
    }
    if (old != reference)
        audit(db, user, getString(6643, QStringLiteral("Payment change for A/C %1")).arg(payment.BBAccountID),
              getString(6644, QStringLiteral("Old Ref: '%1' changed to '%2'")).arg(old, reference));
    transaction.commit();
    return Changes();
}

std::vector<AllocationChoice> allocationChoices(Database &db, qint32 clientId, const Payment &payment)
{
    std::vector<AllocationChoice> choices;
    choices.push_back({0, getString(6635, QStringLiteral("Payment not allocated to a single account"))});
    auto describe = [&](const Account &account) {
        QString text = getString(6633, QStringLiteral("A/C ID %1")).arg(account.BBAccountID);
        if (!account.Reference.isEmpty())
            text += QStringLiteral(" (") + account.Reference + QLatin1Char(')');
        return text + getString(6634, QStringLiteral(" O/S = %1")).arg(formatAmount(Account::getBalanceOnAccount(db, account.BBAccountID)));
    };
    bool ownListed = payment.BBAccountID < 1;
    QSqlQuery q = db.query(QStringLiteral("select * from account where invoiceto = ? and status = 'O' order by bbaccountid desc"),
                           {clientId});
    while (q.next()) {
        Account account;
        account.fillFields(q.record());
        ownListed = ownListed || account.BBAccountID == payment.BBAccountID;
        choices.push_back({account.BBAccountID, describe(account)});
    }
    Account own;
    if (!ownListed && own.fetch(db, payment.BBAccountID))
        choices.push_back({own.BBAccountID, describe(own)});
    return choices;
}

Result<bool> allocatePayment(Database &db, qint32 paymentId, qint32 accountId, const QString &reference, const UserStruct &user)
{
    Payment payment;
    if (!payment.fetch(db, paymentId))
        return noPaymentFound(paymentId);
    auto twin = payment.getClientTran(db);
    if (!twin)
        return noTwin(paymentId);
    bool offered = false;
    for (const AllocationChoice &choice : allocationChoices(db, twin->BBClientID, payment))
        offered = offered || choice.accountId == accountId;
    if (!offered)
        return Refusal(6629, QStringLiteral("Account %1 is not an open account of this payment's client."), 6630,
                       QStringLiteral("Cannot allocate payment"))
            .arg(accountId);

    const QString newReference = reference.trimmed();
    const QString oldReference = payment.Reference;
    const qint32 oldAccount = payment.BBAccountID;
    if (newReference == oldReference && accountId == oldAccount)
        return false;

    Transaction transaction(db);
    payment.Reference = newReference;
    payment.BBAccountID = accountId;
    payment.update(db);
    QStringList detail;
    if (newReference != oldReference) {
        twin->Reference = newReference;
        twin->update(db);
        QString text = getString(6645, QStringLiteral("Ref changed"));
        if (!oldReference.isEmpty())
            text += getString(6646, QStringLiteral(" from '%1'")).arg(oldReference);
        detail << text + getString(6647, QStringLiteral(" to '%1'")).arg(newReference);
    }
    if (accountId != oldAccount) {
        QString text = getString(6648, QStringLiteral("Account ID changed"));
        if (oldAccount > 0)
            text += getString(6649, QStringLiteral(" from %1")).arg(oldAccount);
        detail << text + getString(6650, QStringLiteral(" to %1")).arg(accountId);
    }
    audit(db, user, getString(6651, QStringLiteral("Payment ID %1 changed.")).arg(paymentId), detail.join(QStringLiteral(", ")));
    transaction.commit();
    return true;
}

Refusal noPaymentFound(qint32 paymentId)
{
    return Refusal(6627, QStringLiteral("Internal error. No payment found for ID %1. Please call veldmoor on 021 555 0100."), 6628,
                   QStringLiteral("No Payment %1"))
        .arg(paymentId);
}

double paymentsTotal(Database &db, qint32 accountId)
{
    return db.scalar(QStringLiteral("select sum(amount) as totalamt from payment where bbaccountid = ?"), {accountId}).toDouble();
}

} // namespace fenlark

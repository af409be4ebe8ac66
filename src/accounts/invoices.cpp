#include "accounts/invoices.h"

#include "accounts/accountrefusals.h"
#include "accounts/accounts.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "accounts/vat.h"
#include "clients/clientrecords.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/strings.h"

namespace fenlark {

namespace {

Refusal cannotInvoice(int id, const QString &english)
{
    return Refusal(id, english, 6675, QStringLiteral("Cannot generate invoice"));
}

Refusal accountClosed()
{
    return cannotInvoice(6674, QStringLiteral("This account is closed. Re-open the account before generating an invoice."));
}

} // namespace

std::optional<qint32> getDocumentNumber(Database &db, const QString &tranType, FirstNumberPrompter &prompter)
{
    const qint32 next = getNextNumber(db, tranType);
    if (next >= 2)
        return next;
    for (;;) {
        const auto answer = prompter.askFirstNumber(
            getString(6681, QStringLiteral("What number would you like to start your invoices from?")),
            getString(6682, QStringLiteral("First invoice number?")));
        if (!answer || answer->trimmed().isEmpty())
            return std::nullopt;
        if (const auto number = parsePositiveWholeNumber(*answer)) {
            setLastNumber(db, tranType, *number);
            return *number;
        }
        prompter.refuseFirstNumber(Refusal(6683, QStringLiteral("This does not look like a valid number greater than 0"), 6684,
                                           QStringLiteral("Invalid invoice number")));
    }
}

double getBookingTotal(Database &db, qint32 bookingId)
{
    return db.scalar(QStringLiteral("select sum(roomrate) as amount from booking, guest, dailyrate "
                                    "where booking.bbbookingid = guest.bbbookingid and guest.bbbookingid = dailyrate.bbbookingid "
                                    "and guest.bbroomid = dailyrate.bbroomid and booking.bbbookingid = ?"),
                     {bookingId})
        .toDouble();
}

InvoiceDraft draftInvoice(Database &db, qint32 accountId, const VatRules &vat)
{
    InvoiceDraft draft;
    // A booking whose client is missing is still invoiced: its money must not vanish.
    QSqlQuery bookings = db.query(
        QStringLiteral("select booking.bbbookingid, booking.fromdate, client.surname, "
                       "(select sum(dailyrate.roomrate) from dailyrate where dailyrate.bbbookingid = booking.bbbookingid "
                       "and dailyrate.bbroomid in (select guest.bbroomid from guest where guest.bbbookingid = booking.bbbookingid)) as total "
                       "from booking left join client on booking.madeby = client.bbclientid "
                       "where booking.bbaccountid = ? order by booking.fromdate, booking.todate, booking.bbbookingid"),
        {accountId});
    while (bookings.next()) {
        InvoiceItem item;
        item.itemType = QStringLiteral("B");
        item.ItemID = bookings.value(0).toInt();
        item.ItemDate = bookings.value(1).toString();
        item.Description = getString(6677, QStringLiteral("(Bk ID %1) %2")).arg(QString::number(item.ItemID), bookings.value(2).toString());
        item.Qty = 1;
        item.Price = roundMoney(bookings.value(3).toDouble());
        item.VatCode = VatRules::getDefaultVATCode();
        draft.items.push_back(std::move(item));
    }
    QSqlQuery extras = db.query(QStringLiteral("select extra.bbextraid, extra.extradate, extra.qty, extra.price, stock.stockname, stock.vatcode "
                                               "from extra left join stock on extra.bbstockid = stock.bbstockid "
                                               "where extra.bbaccountid = ? order by extra.extradate, extra.bbextraid"),
                                {accountId});
    while (extras.next()) {
        InvoiceItem item;
        item.itemType = QStringLiteral("X");
        item.ItemID = extras.value(0).toInt();
        item.ItemDate = extras.value(1).toString();
        item.Qty = extras.value(2).toDouble();
        item.Price = extras.value(3).toDouble();
        item.Description = extras.value(4).toString();
        item.VatCode = extras.value(5).isNull() ? VatRules::getDefaultVATCode() : static_cast<qint16>(extras.value(5).toInt());
        draft.items.push_back(std::move(item));
    }
    double amount = 0;
    double vatTotal = 0;
    for (const InvoiceItem &item : draft.items) {
        amount += item.lineTotal();
        vatTotal += vat.lineVAT(item.VatCode, item.Qty * item.Price);
    }
    draft.amount = roundMoney(amount);
    draft.vat = roundMoney(vatTotal);
    return draft;
}

Result<std::optional<InvoiceMade>> makeInvoice(Database &db, qint32 accountId, const UserStruct &user,
                                               FirstNumberPrompter &prompter, const VatRules &vat)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    if (account.Status != accountstatus::Open)
        return accountClosed();
    if (!Client().fetch(db, account.InvoiceTo))
        return refusals::missingClient(account.InvoiceTo);
    if (Account::getItemCount(db, accountId) == 0)
        return cannotInvoice(6676, QStringLiteral("There is nothing on this account to invoice."));

    const auto number = getDocumentNumber(db, trantype::Invoice, prompter);
    if (!number)
        return std::optional<InvoiceMade>();

    Transaction transaction(db);
    // The question may have waited: read the account again.
    if (!account.fetch(db, accountId) || account.Status != accountstatus::Open)
        return accountClosed();
    InvoiceDraft draft = draftInvoice(db, accountId, vat);
    if (draft.items.empty())
        return cannotInvoice(6676, QStringLiteral("There is nothing on this account to invoice."));

    InvoiceMade made;
    Invoice &invoice = made.invoice;
    invoice.InvoiceNo = *number;
    invoice.BBClientID = account.InvoiceTo;
    invoice.CreateDate = QDateTime::currentDateTime();
    invoice.CreateUser = user.UserName;
    invoice.BBAccountID = accountId;
    invoice.Amount = draft.amount;
    invoice.VAT = draft.vat;
    invoice.update(db);
    for (InvoiceItem &item : draft.items) {
        item.BBInvoiceID = invoice.BBInvoiceID;
        item.update(db);
    }
    made.items = std::move(draft.items);

    ClientTran &row = made.ledgerRow;
    row.BBClientID = invoice.BBClientID;
    row.TranDate = invoice.CreateDate.date();
    row.TranType = trantype::Invoice;
    row.TranNo = invoice.InvoiceNo;
    row.Amount = invoice.Amount;
    row.VAT = invoice.VAT;
    row.update(db);
    matchTransactions(db, invoice.BBClientID);

    account.InvoiceNo = invoice.InvoiceNo;
    account.Status = accountstatus::Closed;
    account.update(db);
    transaction.commit();
    return std::optional<InvoiceMade>(std::move(made));
}

Result<std::optional<ProformaMade>> makeProforma(Database &db, qint32 accountId, FirstNumberPrompter &prompter,
                                                 const VatRules &vat)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    ProformaMade made;
    if (account.ProformaNo > 0) {
        made.number = account.ProformaNo;
        made.existing = true;
    } else {
        if (account.Status != accountstatus::Open)
            return Refusal(6685, QStringLiteral("This account is closed. Re-open the account before generating a pro forma."), 6675,
                           QStringLiteral("Cannot generate invoice"));
        const auto number = getDocumentNumber(db, trantype::Proforma, prompter);
        if (!number)
            return std::optional<ProformaMade>();
        Transaction transaction(db);
        if (!account.fetch(db, accountId))
            return refusals::missingAccount(accountId);
        account.ProformaNo = *number;
        account.update(db);
        transaction.commit();
        made.number = *number;
    }
    made.draft = draftInvoice(db, accountId, vat);
    return std::optional<ProformaMade>(std::move(made));
}

Refusal invoiceDataMissing()
{
    return Refusal(6679,
                   QStringLiteral("The original invoice data could not be found, so a credit note to this client could not be "
                                  "automatically generated.\n\nBy generating a new invoice you will be altering this client's "
                                  "outstanding balance to you. The system cannot automatically correct this.\n\nPlease check the "
                                  "client's outstanding balance after you have generated this invoice and manually enter a credit "
                                  "note to correct any imbalance."),
                   6680, QStringLiteral("Invoice data could not be found"));
}

Result<Reopened> reopenAccount(Database &db, qint32 accountId, const UserStruct &user)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    if (account.Status == accountstatus::Open)
        return Refusal(6671, QStringLiteral("Account %1 is already open."), 6672, QStringLiteral("Open/Close Account?")).arg(accountId);

    Transaction transaction(db);
    Reopened reopened;
    if (account.InvoiceNo > 0) {
        Invoice invoice;
        if (!invoice.fetchByNumber(db, account.InvoiceNo)) {
            reopened.invoiceMissing = true;
        } else {
            CreditNote note;
            note.CreditNoteNo = getNextNumber(db, trantype::CreditNote);
            note.CreateDate = QDateTime::currentDateTime();
            note.CreateUser = user.UserName;
            note.InvoiceNo = invoice.InvoiceNo;
            note.update(db);

            ClientTran row;
            row.TranType = trantype::CreditNote;
            row.TranNo = note.CreditNoteNo;
            row.TranDate = QDate::currentDate();
            row.BBClientID = invoice.BBClientID;
            row.Reference = getString(6678, QStringLiteral("Reverse Inv %1")).arg(invoice.InvoiceNo);
            row.Amount = -invoice.Amount;
            row.VAT = -invoice.VAT;
            row.update(db);
            matchTransactions(db, invoice.BBClientID);
            reopened.creditNoteNo = note.CreditNoteNo;
        }
    }
    account.Status = accountstatus::Open;
    account.InvoiceNo = 0;
    account.update(db);
    transaction.commit();
    return reopened;
}

Result<Changes> closeAccount(Database &db, qint32 accountId)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    if (account.Status != accountstatus::Open)
        return Refusal(6673, QStringLiteral("Account %1 is already closed."), 6672, QStringLiteral("Open/Close Account?")).arg(accountId);
    account.Status = accountstatus::Closed;
    account.update(db);
    return Changes();
}

bool isSettledInFull(Database &db, qint32 accountId)
{
    Account account;
    if (!account.fetch(db, accountId) || account.Status != accountstatus::Open || account.InvoiceNo != 0)
        return false;
    return paymentsTotal(db, accountId) > 0 && roundMoney(Account::getBalanceOnAccount(db, accountId)) == 0.0;
}

} // namespace fenlark

#pragma once

#include "shell/record.h"
#include "shell/setuprecords.h"

#include <optional>

namespace fenlark {

class ClientTran;
class Payment;

// What a client owes for one or more bookings.
class Account : public LocalRecord<Account> {
public:
    static constexpr const char *Table = "account";
    static constexpr const char *Key = "BBAccountID";
    static constexpr auto keyMember() { return &Account::BBAccountID; }
    static const std::vector<Column<Account>> &columns();

    qint32 BBAccountID = 0;
    qint32 InvoiceTo = 0;
    qint32 ProformaNo = 0;
    qint32 InvoiceNo = 0;
    qint32 AccountID = 0;
    QString Status;   // "O" open, "C" closed
    QString Reference;
    qint16 VatCode = 0;

    // Does the client have an open account other than this one?
    static bool fetchAccounts(Database &db, qint32 accountId, qint32 invoiceTo);
    // Accommodation of the account's bookings (every room, also one billed
    // elsewhere) plus its extras, less its payments: money owed is positive.
    static double getBalanceOnAccount(Database &db, qint32 accountId);
    static bool hasPayments(Database &db, qint32 accountId);
    // Bookings and extras on the account; a room billed here through its own
    // account column alone is not counted.
    static int getItemCount(Database &db, qint32 accountId);
    static int getExtrasCount(Database &db, qint32 accountId);
    // By payment date, then as entered.
    static std::vector<Payment> getPayments(Database &db, qint32 accountId);
};

class Extra : public LocalRecord<Extra> {
public:
    static constexpr const char *Table = "extra";
    static constexpr const char *Key = "BBExtraID";
    static constexpr auto keyMember() { return &Extra::BBExtraID; }
    static const std::vector<Column<Extra>> &columns();

    qint32 BBExtraID = 0;
    qint32 ExtraID = 0;
    qint32 BBGuestID = 0;
    QDate ExtraDate;
    double Qty = 0;
    double Price = 0;
    qint32 BBStockID = 0;
    qint32 BBAccountID = 0;

    // Extras that arrived with account 0 (from the server) get one: all such
    // extras of the booking go to its account when the room bills on it, else
    // only those of this room go to the room's account.
    static void updateExtraWithAccount(Database &db, qint32 bookingId, qint32 bookingAccountId, qint32 guestId,
                                       qint32 roomAccountId);
    // The booking's extras that stand on oldAccountId move to newAccountId.
    static void changeAccount(Database &db, qint32 oldAccountId, qint32 newAccountId, qint32 bookingId);
    // Whether an extra of this room stands on another account than the room's
    // effective one (its own account, or else its booking's).
    static bool hasDifferentExtras(Database &db, qint32 guestId);
};

class Payment : public LocalRecord<Payment> {
public:
    static constexpr const char *Table = "payment";
    static constexpr const char *Key = "BBPaymentID";
    static constexpr auto keyMember() { return &Payment::BBPaymentID; }
    static const std::vector<Column<Payment>> &columns();

    qint32 BBPaymentID = 0;
    qint32 PaymentID = 0;
    qint32 BBAccountID = 0;
    QDateTime CreateDate;
    QString CreateUser;
    QDate PaymentDate;
    QString PaymentType;
    QString Reference;
    double Amount = 0;

    // The payment's "PMT" row in the ledger, if it has one.
    std::optional<ClientTran> getClientTran(Database &db) const;
};

class ClientTran : public LocalRecord<ClientTran> {
public:
    static constexpr const char *Table = "clienttran";
    static constexpr const char *Key = "BBClientTranID";
    static constexpr auto keyMember() { return &ClientTran::BBClientTranID; }
    static const std::vector<Column<ClientTran>> &columns();

    qint32 BBClientTranID = 0;
    qint32 ClientTranID = 0;
    qint32 BBClientID = 0;
    QDate TranDate;
    QString TranType;
    qint32 TranNo = 0;
    QString Reference;
    double Amount = 0;   // positive is a debit
    double VAT = 0;
    bool Matched = false;

    // The row of that type and number (the first made, should there be several).
    bool fetchByTranNo(Database &db, const QString &tranType, qint32 tranNo);
};

class Invoice : public InsertOnlyRecord<Invoice> {
public:
    static constexpr const char *Table = "invoice";
    static constexpr const char *Key = "BBInvoiceID";
    static constexpr auto keyMember() { return &Invoice::BBInvoiceID; }
    static const std::vector<Column<Invoice>> &columns();

    qint32 BBInvoiceID = 0;
    qint32 InvoiceID = 0;
    qint32 InvoiceNo = 0;
    qint32 BBClientID = 0;
    QDateTime CreateDate;
    QString CreateUser;
    double Amount = 0;
    double VAT = 0;
    qint32 BBAccountID = 0;

    // The invoice of that number (the first made, should there be several).
    bool fetchByNumber(Database &db, qint32 invoiceNo);
};

class InvoiceItem : public LocalRecord<InvoiceItem> {
public:
    static constexpr const char *Table = "invoiceitem";
    static constexpr const char *Key = "BBInvoiceItemID";
    static constexpr auto keyMember() { return &InvoiceItem::BBInvoiceItemID; }
    static const std::vector<Column<InvoiceItem>> &columns();

    qint32 BBInvoiceItemID = 0;
    qint32 BBInvoiceID = 0;
    qint32 InvoiceItemID = 0;
    QString itemType;
    qint32 ItemID = 0;
    QString ItemDate;
    QString Description;
    double Qty = 0;
    double Price = 0;
    qint16 VatCode = 0;

    // What the line comes to: Qty x Price to the cent.
    double lineTotal() const;
    // The lines of an invoice, by date and then as written.
    static std::vector<InvoiceItem> forInvoice(Database &db, qint32 invoiceId);
};

class CreditNote : public InsertOnlyRecord<CreditNote> {
public:
    static constexpr const char *Table = "creditnote";
    static constexpr const char *Key = "BBCreditNoteID";
    static constexpr auto keyMember() { return &CreditNote::BBCreditNoteID; }
    static const std::vector<Column<CreditNote>> &columns();

    qint32 BBCreditNoteID = 0;
    qint32 CreditNoteID = 0;
    qint32 CreditNoteNo = 0;
    QDateTime CreateDate;
    QString CreateUser;
    qint32 InvoiceNo = 0;

    bool fetchByNumber(Database &db, qint32 creditNoteNo);
};

// An item the property sells (downloaded).
class Stock : public KeyedUnloggedRecord<Stock> {
public:
    static constexpr const char *Table = "stock";
    static constexpr const char *Key = "BBStockID";
    static const std::vector<Column<Stock>> &columns();

    qint32 BBStockID = 0;
    QString StockName;
    QString Active;
    double Price = 0;
    qint16 VatCode = 0;

    // The items that can be chosen, by name.
    static std::vector<Stock> fetchActive(Database &db);
    // Every item, by name.
    static std::vector<Stock> fetchAll(Database &db);
};

} // namespace fenlark

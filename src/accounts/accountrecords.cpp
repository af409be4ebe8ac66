#include "accounts/accountrecords.h"

#include "shell/money.h"

namespace fenlark {

const std::vector<Column<Account>> &Account::columns()
{
    static const std::vector<Column<Account>> c = {
        {"InvoiceTo", &Account::InvoiceTo},
        {"ProformaNo", &Account::ProformaNo},
        {"InvoiceNo", &Account::InvoiceNo},
        {"AccountID", &Account::AccountID},
        {"Status", &Account::Status},
        {"Reference", &Account::Reference},
        {"VatCode", &Account::VatCode},
    };
    return c;
}

const std::vector<Column<Extra>> &Extra::columns()
{
    static const std::vector<Column<Extra>> c = {
        {"ExtraID", &Extra::ExtraID},
        {"BBGuestID", &Extra::BBGuestID},
        {"ExtraDate", &Extra::ExtraDate},
        {"Qty", &Extra::Qty},
        {"Price", &Extra::Price},
        {"BBStockID", &Extra::BBStockID},
        {"BBAccountID", &Extra::BBAccountID},
    };
    return c;
}

const std::vector<Column<Payment>> &Payment::columns()
{
    static const std::vector<Column<Payment>> c = {
        {"PaymentID", &Payment::PaymentID},
        {"BBAccountID", &Payment::BBAccountID},
        {"CreateDate", &Payment::CreateDate},
        {"CreateUser", &Payment::CreateUser},
        {"PaymentDate", &Payment::PaymentDate},
        {"PaymentType", &Payment::PaymentType},
        {"Reference", &Payment::Reference},
        {"Amount", &Payment::Amount},
    };
    return c;
}

const std::vector<Column<ClientTran>> &ClientTran::columns()
{
    static const std::vector<Column<ClientTran>> c = {
        {"ClientTranID", &ClientTran::ClientTranID},
        {"BBClientID", &ClientTran::BBClientID},
        {"TranDate", &ClientTran::TranDate},
        {"TranType", &ClientTran::TranType},
        {"TranNo", &ClientTran::TranNo},
        {"Reference", &ClientTran::Reference},
        {"Amount", &ClientTran::Amount},
        {"VAT", &ClientTran::VAT},
        {"Matched", &ClientTran::Matched},
    };
    return c;
}

const std::vector<Column<Invoice>> &Invoice::columns()
{
    static const std::vector<Column<Invoice>> c = {
        {"InvoiceID", &Invoice::InvoiceID},
        {"InvoiceNo", &Invoice::InvoiceNo},
        {"BBClientID", &Invoice::BBClientID},
        {"CreateDate", &Invoice::CreateDate},
        {"CreateUser", &Invoice::CreateUser},
        {"Amount", &Invoice::Amount},
        {"VAT", &Invoice::VAT},
        {"BBAccountID", &Invoice::BBAccountID},
    };
    return c;
}

const std::vector<Column<InvoiceItem>> &InvoiceItem::columns()
{
    static const std::vector<Column<InvoiceItem>> c = {
        {"BBInvoiceID", &InvoiceItem::BBInvoiceID},
        {"InvoiceItemID", &InvoiceItem::InvoiceItemID},
        {"itemType", &InvoiceItem::itemType},
        {"ItemID", &InvoiceItem::ItemID},
        {"ItemDate", &InvoiceItem::ItemDate},
        {"Description", &InvoiceItem::Description},
        {"Qty", &InvoiceItem::Qty},
        {"Price", &InvoiceItem::Price},
        {"VatCode", &InvoiceItem::VatCode},
    };
    return c;
}

const std::vector<Column<CreditNote>> &CreditNote::columns()
{
    static const std::vector<Column<CreditNote>> c = {
        {"CreditNoteID", &CreditNote::CreditNoteID},
        {"CreditNoteNo", &CreditNote::CreditNoteNo},
        {"CreateDate", &CreditNote::CreateDate},
        {"CreateUser", &CreditNote::CreateUser},
        {"InvoiceNo", &CreditNote::InvoiceNo},
    };
    return c;
}

const std::vector<Column<Stock>> &Stock::columns()
{
    static const std::vector<Column<Stock>> c = {
        {"BBStockID", &Stock::BBStockID},
        {"StockName", &Stock::StockName},
        {"Active", &Stock::Active},
        {"Price", &Stock::Price},
        {"VatCode", &Stock::VatCode},
    };
    return c;
}


namespace {

template <class T>
std::vector<T> selectRows(Database &db, const QString &sql, const QVariantList &values)
{
    std::vector<T> rows;
    QSqlQuery q = db.query(sql, values);
    while (q.next()) {
        T row;
        row.fillFields(q.record());
        rows.push_back(std::move(row));
    }
    return rows;
}

} // namespace

void Extra::updateExtraWithAccount(Database &db, qint32 bookingId, qint32 bookingAccountId, qint32 guestId,
                                   qint32 roomAccountId)
{
    const bool onBooking = bookingAccountId == roomAccountId;
    const std::vector<Extra> waiting = onBooking
        ? selectRows<Extra>(db,
                            QStringLiteral("select extra.* from booking, guest, extra where booking.bbbookingid = guest.bbbookingid "
                                           "and guest.bbguestid = extra.bbguestid and booking.bbbookingid = ? "
                                           "and extra.bbaccountid = 0 order by extra.bbextraid"),
                            {bookingId})
        : selectRows<Extra>(db,
                            QStringLiteral("select extra.* from guest, extra where guest.bbguestid = extra.bbguestid "
                                           "and guest.bbguestid = ? and extra.bbaccountid = 0 order by extra.bbextraid"),
                            {guestId});
    if (waiting.empty())
        return;
    Transaction transaction(db);
    for (Extra extra : waiting) {
        extra.BBAccountID = onBooking ? bookingAccountId : roomAccountId;
        extra.update(db);
    }
    transaction.commit();
}

void Extra::changeAccount(Database &db, qint32 oldAccountId, qint32 newAccountId, qint32 bookingId)
{
    Transaction transaction(db);
    for (Extra extra : selectRows<Extra>(db,
                                         QStringLiteral("select extra.* from extra, guest where extra.bbguestid = guest.bbguestid "
                                                        "and extra.bbaccountid = ? and guest.bbbookingid = ? order by extra.bbextraid"),
                                         {oldAccountId, bookingId})) {
        extra.BBAccountID = newAccountId;
        extra.update(db);
    }
    transaction.commit();
}

bool Extra::hasDifferentExtras(Database &db, qint32 guestId)
{
    return db.scalar(QStringLiteral("select bbextraid from extra, guest, booking where guest.bbguestid = extra.bbguestid "
                                    "and guest.bbbookingid = booking.bbbookingid and guest.bbguestid = ? "
                                    "and extra.bbaccountid <> booking.bbaccountid and guest.bbaccountid = 0 "
                                    "union select bbextraid from extra, guest where guest.bbguestid = extra.bbguestid "
                                    "and guest.bbguestid = ? and guest.bbaccountid <> extra.bbaccountid and guest.bbaccountid > 0"),
                     {guestId, guestId})
        .isValid();
}

std::optional<ClientTran> Payment::getClientTran(Database &db) const
{
    ClientTran twin;
    if (!twin.fetchByTranNo(db, QStringLiteral("PMT"), BBPaymentID))
        return std::nullopt;
    return twin;
}

bool ClientTran::fetchByTranNo(Database &db, const QString &tranType, qint32 tranNo)
{
    QSqlQuery q = db.query(QStringLiteral("select * from clienttran where trantype = ? and tranno = ? order by bbclienttranid limit 1"),
                           {tranType, tranNo});
    if (!q.next())
        return false;
    fillFields(q.record());
    return true;
}

bool Invoice::fetchByNumber(Database &db, qint32 invoiceNo)
{
    QSqlQuery q = db.query(QStringLiteral("select * from invoice where invoiceno = ? order by bbinvoiceid limit 1"), {invoiceNo});
    if (!q.next())
        return false;
    fillFields(q.record());
    return true;
}

double InvoiceItem::lineTotal() const
{
    return roundMoney(Qty * Price);
}

std::vector<InvoiceItem> InvoiceItem::forInvoice(Database &db, qint32 invoiceId)
{
    return selectRows<InvoiceItem>(db, QStringLiteral("select * from invoiceitem where bbinvoiceid = ? order by itemdate, bbinvoiceitemid"),
                                   {invoiceId});
}

bool CreditNote::fetchByNumber(Database &db, qint32 creditNoteNo)
{
    QSqlQuery q = db.query(QStringLiteral("select * from creditnote where creditnoteno = ? order by bbcreditnoteid limit 1"),
                           {creditNoteNo});
    if (!q.next())
        return false;
    fillFields(q.record());
    return true;
}

std::vector<Stock> Stock::fetchActive(Database &db)
{
    return select(db, QStringLiteral("select * from stock where active = 'Y' order by stockname"), {});
}

std::vector<Stock> Stock::fetchAll(Database &db)
{
    return list(db, QStringLiteral("stockname"));
}

} // namespace fenlark

#include "reports/accountsdocument.h"

#include "accounts/accountrecords.h"
#include "accounts/extraqueries.h"
#include "bookings/bookingrecords.h"
#include "clients/clientnames.h"
#include "rates/ratedata.h"
#include "rates/roomrates.h"
#include "reports/documenttext.h"
#include "shell/database.h"
#include "shell/money.h"
#include "shell/preferences.h"
#include "shell/strings.h"

#include <QSqlRecord>

#include <cmath>

namespace fenlark {

std::optional<DocumentType> documentTypeFromCode(const QString &code)
{
    if (code == QLatin1String("P"))
        return DocumentType::ProForma;
    if (code == QLatin1String("I"))
        return DocumentType::Invoice;
    if (code == QLatin1String("C"))
        return DocumentType::CreditNote;
    return std::nullopt;
}

QString documentLabel(DocumentType type)
{
    switch (type) {
    case DocumentType::ProForma:
        return getString(1839, QStringLiteral("Pro forma"));
    case DocumentType::Invoice:
        return getString(1840, QStringLiteral("Invoice"));
    case DocumentType::CreditNote:
        break;
    }
    return getString(6823, QStringLiteral("Credit Note"));
}

QString templateStem(DocumentType type)
{
    switch (type) {
    case DocumentType::ProForma:
        return QStringLiteral("proforma");
    case DocumentType::Invoice:
        return QStringLiteral("invoice");
    case DocumentType::CreditNote:
        break;
    }
    return QStringLiteral("creditnote");
}

QString fileStem(DocumentType type)
{
    switch (type) {
    case DocumentType::ProForma:
        return QStringLiteral("Pro");
    case DocumentType::Invoice:
        return QStringLiteral("Inv");
    case DocumentType::CreditNote:
        break;
    }
    return QStringLiteral("Cre");
}

double AccountsDocument::total() const
{
    double sum = 0;
    for (const auto *lines : {&m_accommodation, &m_extras, &m_payments})
        for (const AccountLineItem &line : *lines)
            sum += line.amount;
    return roundMoney(sum);
}

// Reads the lines of one document.
class AccountsDocumentBuilder {
public:
    AccountsDocumentBuilder(Database &db, const RateData &rates, AccountsDocument &doc)
        : m_db(db)
        , m_rates(rates)
        , m_doc(doc)
        , m_currency(propertyCurrencySymbol(db))
    {
    }

    // The rooms of a booking, one line each, in the rooms' order.
    std::vector<AccountLineItem> bookingLines(qint32 bookingId)
    {
        std::vector<AccountLineItem> lines;
        m_adults.clear();
        m_children.clear();
        m_nights.clear();
        Booking booking;
        if (!booking.fetch(m_db, bookingId))
            return lines;
        const int nights = booking.nights();
        const QString stay = QStringLiteral(" / ") + documentDate(booking.FromDate, QStringLiteral("dd MMM yy"))
            + QStringLiteral(" - ") + documentDate(booking.ToDate, QStringLiteral("dd MMM yy")) + QStringLiteral(" (Bk ID ")
            + QString::number(bookingId) + QLatin1Char(')');
        QSqlQuery q = m_db.query(
            QStringLiteral("select guest.bbguestid, guest.bbrateid, guest.reference, room.roomname, client.title, "
                           "client.firstname, client.surname, guest.noadults, guest.child1 + guest.child2 as nochildren, "
                           "avg(dailyrate.roomrate) as avgroomrate "
                           "from guest left join room on guest.bbroomid = room.bbroomid "
                           "left join client on guest.bbclientid = client.bbclientid "
                           "left join dailyrate on guest.bbbookingid = dailyrate.bbbookingid and guest.bbroomid = dailyrate.bbroomid "
                           "where guest.bbbookingid = ? group by guest.bbguestid order by room.orderby, guest.bbguestid"),
            {bookingId});
        while (q.next()) {
            AccountLineItem line;
            line.id = q.value(0).toInt();
            line.heading = personName(q.value(4).toString(), q.value(5).toString(), q.value(6).toString()) + stay;
            const double average = q.value(9).toDouble();
            line.line1 = accommodationText(q.value(7).toInt(), q.value(8).toInt(), nights, average);
            line.line2 = getRateName(m_rates, q.value(1).toInt()) + QStringLiteral(": ") + q.value(3).toString();
            const QString reference = q.value(2).toString().trimmed();
            if (!reference.isEmpty())
                line.line3 = QStringLiteral("  ") + getString(6817, QStringLiteral("Ref: ")) + reference;
            line.amount = roundMoney(nights * average);
            m_adults.push_back(q.value(7).toInt());
            m_children.push_back(q.value(8).toInt());
            m_nights.push_back(nights);
            lines.push_back(line);
        }
        return lines;
    }

    // The rooms of a booking as invoiced: the stored amount shared over the rooms in
    // the proportion of their present totals, so that the lines add up to the item.
    std::vector<AccountLineItem> invoicedBookingLines(const InvoiceItem &item)
    {
        std::vector<AccountLineItem> lines = bookingLines(item.ItemID);
        const double stored = roundMoney(item.Qty * item.Price);
        if (lines.empty()) {
            AccountLineItem line;
            line.id = item.ItemID;
            line.heading = item.Description;
            line.amount = stored;
            return {line};
        }
        double live = 0;
        for (const AccountLineItem &line : lines)
            live += line.amount;
        if (std::fabs(roundMoney(live) - stored) < 0.005)
            return lines;
        double given = 0;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const bool last = i + 1 == lines.size();
            const double share = live != 0 ? lines[i].amount / live : 1.0 / static_cast<double>(lines.size());
            lines[i].amount = last ? roundMoney(stored - given) : roundMoney(stored * share);
            given += lines[i].amount;
            const double average = m_nights[i] > 0 ? lines[i].amount / m_nights[i] : lines[i].amount;
            lines[i].line1 = accommodationText(m_adults[i], m_children[i], m_nights[i], average);
        }
        return lines;
    }

    // The room an extra was taken in, as its heading; empty when the room is gone.
    QString extraHeading(qint32 extraId)
    {
        QSqlQuery q = m_db.query(QStringLiteral("select guest.bbbookingid, room.roomname from extra "
                                                "join guest on extra.bbguestid = guest.bbguestid "
                                                "left join room on guest.bbroomid = room.bbroomid where extra.bbextraid = ?"),
                                 {extraId});
        if (!q.next())
            return {};
        return q.value(1).toString() + QStringLiteral(" (Bk ID ") + q.value(0).toString() + QLatin1Char(')');
    }

    AccountLineItem extraLine(qint32 extraId, const QDate &date, double qty, double price, const QString &stockName)
    {
        AccountLineItem line;
        line.id = extraId;
        line.heading = extraHeading(extraId);
        line.line1 = QStringLiteral("  ") + documentDate(date, QStringLiteral("dd MMM")) + QStringLiteral(" - ")
            + QString::number(qty) + QStringLiteral(" x ") + moneyText(m_currency, price) + QLatin1Char(' ') + stockName;
        line.amount = roundMoney(qty * price);
        return line;
    }

    void liveLines(qint32 accountId)
    {
        QSqlQuery bookings =
            m_db.query(QStringLiteral("select bbbookingid from booking where bbaccountid = ? order by fromdate, bbbookingid"),
                       {accountId});
        std::vector<qint32> keys;
        while (bookings.next())
            keys.push_back(bookings.value(0).toInt());
        for (const qint32 key : keys)
            for (AccountLineItem &line : bookingLines(key))
                m_doc.m_accommodation.push_back(std::move(line));
        for (const Extra &extra : getExtras(m_db, accountId)) {
            const QString stockName =
                m_db.scalar(QStringLiteral("select stockname from stock where bbstockid = ?"), {extra.BBStockID}).toString();
            m_doc.m_extras.push_back(extraLine(extra.BBExtraID, extra.ExtraDate, extra.Qty, extra.Price, stockName));
        }
    }

    void invoicedLines(const Invoice &invoice)
    {
        QSqlQuery q = m_db.query(
            QStringLiteral("select * from invoiceitem where bbinvoiceid = ? order by bbinvoiceitemid"), {invoice.BBInvoiceID});
        std::vector<InvoiceItem> items;
        while (q.next()) {
            InvoiceItem item;
            item.fillFields(q.record());
            items.push_back(item);
        }
        for (const InvoiceItem &item : items) {
            if (item.itemType == QLatin1String("B")) {
                for (AccountLineItem &line : invoicedBookingLines(item))
                    m_doc.m_accommodation.push_back(std::move(line));
            } else {
                m_doc.m_extras.push_back(extraLine(item.ItemID, QDate::fromString(item.ItemDate, Qt::ISODate), item.Qty,
                                                   item.Price, item.Description));
            }
        }
    }

    void paymentLines(qint32 accountId)
    {
        const bool withReference = getPreference(m_db, QStringLiteral("PAYREF")) == QLatin1String("1");
        for (const Payment &payment : Account::getPayments(m_db, accountId)) {
            AccountLineItem line;
            line.id = payment.BBPaymentID;
            line.heading = documentDate(payment.PaymentDate, QStringLiteral("dd MMMM yyyy"));
            if (withReference)
                line.heading += QStringLiteral(" - ") + payment.Reference;
            line.amount = roundMoney(-payment.Amount);
            m_doc.m_payments.push_back(line);
        }
    }

private:
    QString accommodationText(int adults, int children, int nights, double average) const
    {
        return QStringLiteral("  ") + guestsText(adults, children) + QStringLiteral(" x ") + QString::number(nights)
            + (nights == 1 ? getString(1855, QStringLiteral(" night")) : getString(1856, QStringLiteral(" nights")))
            + QStringLiteral(" @ ") + moneyText(m_currency, average) + getString(6816, QStringLiteral(" per night."));
    }

    Database &m_db;
    const RateData &m_rates;
    AccountsDocument &m_doc;
    QString m_currency;
    // Heads and nights of the rooms of the last booking read, for re-sharing its amount.
    std::vector<int> m_adults, m_children, m_nights;
};

namespace {

std::optional<Invoice> fetchInvoice(Database &db, qint32 invoiceNo)
{
    QSqlQuery q = db.query(QStringLiteral("select * from invoice where invoiceno = ? order by bbinvoiceid desc"), {invoiceNo});
    if (!q.next())
        return std::nullopt;
    Invoice invoice;
    invoice.fillFields(q.record());
    return invoice;
}

} // namespace

Result<AccountsDocument> AccountsDocument::build(Database &db, const RateData &rates, DocumentType type, qint32 accountId,
                                                 qint32 number)
{
    AccountsDocument doc;
    doc.m_type = type;
    doc.m_number = number;
    doc.m_date = QDate::currentDate();
    AccountsDocumentBuilder builder(db, rates, doc);

    std::optional<Invoice> invoice;
    if (type == DocumentType::CreditNote) {
        QSqlQuery q = db.query(QStringLiteral("select * from creditnote where creditnoteno = ?"), {number});
        if (!q.next())
            return Refusal(6814, QStringLiteral("Error fetching details for credit note - %1"), 6824,
                           QStringLiteral("Credit note not found"))
                .arg(number);
        CreditNote note;
        note.fillFields(q.record());
        doc.m_date = note.CreateDate.date();
        invoice = fetchInvoice(db, note.InvoiceNo);
    } else if (type == DocumentType::Invoice) {
        invoice = fetchInvoice(db, number);
        if (invoice)
            doc.m_date = invoice->CreateDate.date();
    }
    if (invoice && invoice->BBAccountID > 0)
        accountId = invoice->BBAccountID;

    Account account;
    if (!account.fetch(db, accountId))
        return Refusal(6815, QStringLiteral("Account %1 could not be found."), 6824, QStringLiteral("Account not found"))
            .arg(accountId);
    doc.m_accountId = accountId;
    doc.m_reference = account.Reference;
    const qint32 clientId = invoice ? invoice->BBClientID : account.InvoiceTo;
    if (!doc.m_client.fetch(db, clientId))
        return Refusal(6813, QStringLiteral("Error fetching client ID - %1"), 6825, QStringLiteral("Client not found"))
            .arg(clientId);
    doc.m_fax = getClientExtra(db, clientId, QStringLiteral("F"));

    if (invoice) {
        builder.invoicedLines(*invoice);
    } else {
        doc.m_liveData = type != DocumentType::ProForma;
        builder.liveLines(accountId);
    }
    if (type == DocumentType::CreditNote) {
        for (auto *lines : {&doc.m_accommodation, &doc.m_extras})
            for (AccountLineItem &line : *lines)
                line.amount = -line.amount;
    }
    builder.paymentLines(accountId);
    return doc;
}

Result<qint32> accountDocumentNumber(Database &db, DocumentType type, qint32 accountId)
{
    Account account;
    if (!account.fetch(db, accountId))
        return Refusal(6815, QStringLiteral("Account %1 could not be found."), 6824, QStringLiteral("Document not found"))
            .arg(accountId);
    qint32 number = 0;
    switch (type) {
    case DocumentType::ProForma:
        if (account.ProformaNo > 0)
            return account.ProformaNo;
        return Refusal(6846, QStringLiteral("Account %1 has no pro forma number yet."), 6824, QStringLiteral("Document not found"))
            .arg(accountId);
    case DocumentType::Invoice:
        if (account.InvoiceNo > 0)
            return account.InvoiceNo;
        return Refusal(6847, QStringLiteral("Account %1 has no invoice."), 6824, QStringLiteral("Document not found")).arg(accountId);
    case DocumentType::CreditNote:
        number = db.scalar(QStringLiteral("select creditnote.creditnoteno from creditnote join invoice on "
                                          "creditnote.invoiceno = invoice.invoiceno where invoice.bbaccountid = ? "
                                          "order by creditnote.bbcreditnoteid desc limit 1"),
                           {accountId})
                     .toInt();
        break;
    }
    if (number > 0)
        return number;
    return Refusal(6848, QStringLiteral("Account %1 has no credit note."), 6824, QStringLiteral("Document not found")).arg(accountId);
}

std::vector<InvoiceItem> invoiceItems(Database &db, qint32 invoiceNo)
{
    std::vector<InvoiceItem> items;
    QSqlQuery q = db.query(QStringLiteral("select invoiceitem.* from invoice join invoiceitem on invoice.bbinvoiceid = "
                                          "invoiceitem.bbinvoiceid where invoice.invoiceno = ? "
                                          "order by invoiceitem.itemdate, invoiceitem.bbinvoiceitemid"),
                           {invoiceNo});
    while (q.next()) {
        InvoiceItem item;
        item.fillFields(q.record());
        items.push_back(item);
    }
    return items;
}

Outcome checkCreditNote(Database &db, qint32 creditNoteNo)
{
    if (!db.scalar(QStringLiteral("select bbclienttranid from clienttran where trantype = 'CRN' and tranno = ?"), {creditNoteNo})
             .isValid())
        return Refusal(6842, QStringLiteral("Invalid Credit Note No passed to CreditNoteView - %1"), 6843,
                       QStringLiteral("Invalid ID"))
            .arg(creditNoteNo);
    return Done{};
}

} // namespace fenlark

#pragma once

#include "accounts/accountrecords.h"
#include "clients/clientrecords.h"
#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

class Database;
class RateData;

// The documents of an account.
enum class DocumentType { ProForma, Invoice, CreditNote };

// "P", "I", "C" as the desk and fenlarkctl name them; none for anything else.
std::optional<DocumentType> documentTypeFromCode(const QString &code);
// "Pro forma", "Invoice", "Credit Note" in the current language.
QString documentLabel(DocumentType type);
// "proforma", "invoice", "creditnote": the template's name before the database number.
QString templateStem(DocumentType type);
// "Pro", "Inv", "Cre": the start of the document's file name, the same in every language.
QString fileStem(DocumentType type);

// One line of a document. Accommodation: heading (guest and stay), line1 (heads and
// rate), line2 (rate name and room), line3 (guest reference). Extra: heading (room),
// line1 (the extra). Payment: heading (date and reference).
struct AccountLineItem {
    qint32 id = 0;   // BBGuestID, BBExtraID or BBPaymentID
    QString heading;
    QString line1;
    QString line2;
    QString line3;
    double amount = 0;   // rounded to cents; payments are negative
};

// What a pro forma, an invoice or a credit note says, as plain data read from the
// database. An invoice takes its amounts from its stored items, so a re-print
// always totals to the invoice in the ledger, with the guests, nights and rate
// names read as they stand now; an invoice whose stored rows are lost is built
// from the live account like a pro forma and says so (fromLiveData). A credit
// note is its invoice with every accommodation and extra amount negated, and the
// payments of the invoice's account.
class AccountsDocument {
public:
    // number: the pro forma's, the invoice's or the credit note's number.
    static Result<AccountsDocument> build(Database &db, const RateData &rates, DocumentType type, qint32 accountId,
                                          qint32 number);

    DocumentType type() const { return m_type; }
    qint32 documentNo() const { return m_number; }
    // The pro forma's day of making; the invoice's or credit note's own date.
    QDate documentDate() const { return m_date; }
    const Client &client() const { return m_client; }
    qint32 accountId() const { return m_accountId; }
    QString accountReference() const { return m_reference; }
    // The client's fax, from the client's extras.
    QString faxNo() const { return m_fax; }
    bool fromLiveData() const { return m_liveData; }

    const std::vector<AccountLineItem> &accommodation() const { return m_accommodation; }
    const std::vector<AccountLineItem> &extras() const { return m_extras; }
    const std::vector<AccountLineItem> &payments() const { return m_payments; }
    // Everything on the document: what is owed less what was paid.
    double total() const;

private:
    DocumentType m_type = DocumentType::ProForma;
    qint32 m_number = 0;
    QDate m_date;
    Client m_client;
    qint32 m_accountId = 0;
    QString m_reference;
    QString m_fax;
    bool m_liveData = false;
    std::vector<AccountLineItem> m_accommodation;
    std::vector<AccountLineItem> m_extras;
    std::vector<AccountLineItem> m_payments;

    friend class AccountsDocumentBuilder;
};

// The number of an account's document: its pro forma number, its invoice number, or
// the number of the latest credit note of its invoices. Refused when the account is
// missing or has no such document yet.
Result<qint32> accountDocumentNumber(Database &db, DocumentType type, qint32 accountId);

// The items of an invoice by date, then as entered: what InvoiceView lists.
std::vector<InvoiceItem> invoiceItems(Database &db, qint32 invoiceNo);
// Refuses a credit note number that the ledger does not hold.
Outcome checkCreditNote(Database &db, qint32 creditNoteNo);

} // namespace fenlark

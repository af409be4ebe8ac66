#pragma once

#include "reports/accountsdocument.h"

namespace fenlark {

// Fills an accounts template (invoice, pro forma, credit note) with a document and
// saves the workbook at target. The template must name the cells VMInvLine (where
// the lines begin) and VMDeposit (where the payments go); every other named cell
// (VMInvoiceTo, VMName, VMDate, VMInvNo, ...) is filled when the template has it.
// Nothing is left at target when the work is refused; the template is only read.
Outcome writeAccountsWorkbook(const AccountsDocument &doc, const QString &templatePath, const QString &target);

// Where the documents of a database go and under which names, and the making of them
// from the property's templates.
class InvoicePrint {
public:
    // folder: where the documents go; empty for the database's invoice folder.
    explicit InvoicePrint(int dbNumber, QString folder = {});

    // The configured InvoiceDir (InvoiceDir<n> for database n; a relative path is
    // inside the home folder), else the home folder's invoices<n>, made on first use.
    // Refused when the configured folder does not exist.
    Result<QString> folder() const;
    // The document's file: "Inv000042.xlsx", "Pro000007.xlsx", "Cre000042.xlsx".
    Result<QString> documentPath(DocumentType type, qint32 number) const;
    bool docExists(DocumentType type, qint32 number) const;
    // The template the document is made from (see findTemplate).
    QString templatePath(DocumentType type) const;

    // Makes the document's workbook from its template; gives the path written.
    Result<QString> makeInvoice(const AccountsDocument &doc) const;

private:
    int m_dbNumber;
    QString m_folder;
};

} // namespace fenlark

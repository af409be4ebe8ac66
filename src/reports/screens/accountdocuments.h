#pragma once

#include "reports/accountsdocument.h"

#include <QAbstractTableModel>
#include <QDialog>

#include <functional>

class QLabel;
class QTableView;

namespace fenlark {

class Session;

// Opens a file with the desktop's application for it; false when none could.
using OpenFile = std::function<bool(const QString &path)>;
bool openWithDesktop(const QString &path);

// The account screen's printing of a pro forma, invoice or credit note: the document
// already made is opened again, unless remake asks for it to be made afresh from the
// template (a missing one is always made); with pdf a PDF copy is saved beside it.
// Says why when it cannot; true when a document was opened.
bool printAccountDocument(Session &session, DocumentType type, qint32 accountId, qint32 number, bool remake, bool pdf,
                          const OpenFile &open = openWithDesktop);

// The same for the account's own document of type "P", "I" or "C" (its pro forma,
// its invoice, the latest credit note of its invoices): what the account screen's
// print and open buttons call.
bool printAccountDocument(Session &session, const QString &typeCode, qint32 accountId, bool remake, bool pdf,
                          const OpenFile &open = openWithDesktop);

// CreditNoteView: opens the credit note of that number like the other documents;
// a number the ledger does not hold is refused.
bool openCreditNote(Session &session, qint32 creditNoteNo, const OpenFile &open = openWithDesktop);

// The items of an invoice: ID, Date, Description, QTY, Price, Total.
class InvoiceItemsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit InvoiceItemsModel(std::vector<InvoiceItem> items, QObject *parent = nullptr);
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // The sum of quantity times price, unrounded.
    double total() const;

private:
    std::vector<InvoiceItem> m_items;
};

// dlgInvoiceView: the stored items of an invoice and their total.
class InvoiceView : public QDialog {
    Q_OBJECT
public:
    InvoiceView(Session &session, qint32 invoiceNo, QWidget *parent = nullptr);

    QTableView *gdItems = nullptr;
    QLabel *lblTotal = nullptr;

private:
    InvoiceItemsModel *m_model = nullptr;
};

} // namespace fenlark

#include "reports/screens/accountdocuments.h"

#include "rates/ratedata.h"
#include "reports/documenttext.h"
#include "reports/invoiceprint.h"
#include "reports/pdfconverter.h"
#include "shell/money.h"
#include "shell/screens/guard.h"
#include "shell/screens/progressdialog.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QUrl>
#include <QVBoxLayout>

namespace fenlark {

bool openWithDesktop(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

namespace {

void sayCouldNotOpen(const QString &path)
{
    UserMessage message{UserMessage::Critical,
                        fillArguments(getString(6844, QStringLiteral("Could not open %1.")), {QDir::toNativeSeparators(path)}),
                        getString(6845, QStringLiteral("Could not open the document"))};
    message.id = 6844;
    messages::showMessage(message);
}

bool openDocument(const QString &path, bool pdf, const OpenFile &open)
{
    if (pdf) {
        Progress progress = progressDialog(getString(6851, QStringLiteral("Saving as PDF")), QApplication::activeWindow());
        if (Result<QString> copy = convertToPdf(path, progress); !copy)
            messages::show(copy.refusal());
    }
    if (!open(path)) {
        sayCouldNotOpen(path);
        return false;
    }
    return true;
}

} // namespace

bool printAccountDocument(Session &session, DocumentType type, qint32 accountId, qint32 number, bool remake, bool pdf,
                          const OpenFile &open)
{
    const InvoicePrint printer(session.dbNumber());
    if (!remake && printer.docExists(type, number))
        return openDocument(*printer.documentPath(type, number), pdf, open);
    const RateData rates = loadRateNames(session.db());
    const Result<AccountsDocument> document = AccountsDocument::build(session.db(), rates, type, accountId, number);
    if (!document) {
        messages::show(document.refusal());
        return false;
    }
    const Result<QString> path = printer.makeInvoice(*document);
    if (!path) {
        messages::show(path.refusal());
        return false;
    }
    return openDocument(*path, pdf, open);
}

bool printAccountDocument(Session &session, const QString &typeCode, qint32 accountId, bool remake, bool pdf,
                          const OpenFile &open)
{
    const std::optional<DocumentType> type = documentTypeFromCode(typeCode);
    if (!type) {
        messages::show(Refusal(6849, QStringLiteral("Unknown Invoice Type: %1"), 6850, QStringLiteral("Unknown invoice type"))
                           .arg(typeCode));
        return false;
    }
    const Result<qint32> number = accountDocumentNumber(session.db(), *type, accountId);
    if (!number) {
        messages::show(number.refusal());
        return false;
    }
    return printAccountDocument(session, *type, accountId, *number, remake, pdf, open);
}

bool openCreditNote(Session &session, qint32 creditNoteNo, const OpenFile &open)
{
    if (Outcome known = checkCreditNote(session.db(), creditNoteNo); !known) {
        messages::show(known.refusal());
        return false;
    }
    return printAccountDocument(session, DocumentType::CreditNote, 0, creditNoteNo, false, false, open);
}

InvoiceItemsModel::InvoiceItemsModel(std::vector<InvoiceItem> items, QObject *parent)
    : QAbstractTableModel(parent)
    , m_items(std::move(items))
{
}

int InvoiceItemsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

int InvoiceItemsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 6;
}

QVariant InvoiceItemsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const InvoiceItem &item = m_items[static_cast<std::size_t>(index.row())];
    if (role == Qt::TextAlignmentRole)
        return index.column() >= 3 ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case 0:
        return item.ItemID;
    case 1:
        return item.ItemDate;
    case 2:
        return item.Description;
    case 3:
        return QString::number(item.Qty, 'f', 1);
    case 4:
        return formatAmount(item.Price);
    default:
        return formatAmount(roundMoney(item.Qty * item.Price));
    }
}

QVariant InvoiceItemsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section > 5)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const std::pair<int, const char *> headings[] = {{6835, "ID"},  {6836, "Date"},  {6837, "Description"},
                                                            {6838, "QTY"}, {6839, "Price"}, {6840, "Total"}};
    return getString(headings[section].first, QString::fromLatin1(headings[section].second));
}

double InvoiceItemsModel::total() const
{
    double sum = 0;
    for (const InvoiceItem &item : m_items)
        sum += item.Qty * item.Price;
    return sum;
}

InvoiceView::InvoiceView(Session &session, qint32 invoiceNo, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgInvoiceView"));
    setWindowTitle(getString(1840, QStringLiteral("Invoice")) + QLatin1Char(' ') + QString::number(invoiceNo));
    m_model = new InvoiceItemsModel(invoiceItems(session.db(), invoiceNo), this);
    gdItems = new QTableView(this);
    gdItems->setObjectName(QStringLiteral("gdItems"));
    gdItems->setModel(m_model);
    gdItems->setSelectionBehavior(QAbstractItemView::SelectRows);
    gdItems->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdItems->verticalHeader()->hide();
    gdItems->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    gdItems->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    lblTotal = new QLabel(fillArguments(getString(6841, QStringLiteral("Total: %1")), {formatAmount(m_model->total())}), this);
    lblTotal->setObjectName(QStringLiteral("lblTotal"));
    lblTotal->setAlignment(Qt::AlignRight);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, guarded(this, &QDialog::reject));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(gdItems);
    layout->addWidget(lblTotal);
    layout->addWidget(buttons);
    resize(640, 360);
}

} // namespace fenlark

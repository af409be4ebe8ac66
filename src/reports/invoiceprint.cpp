#include "reports/invoiceprint.h"

#include "reports/documenttext.h"
#include "reports/templates.h"
#include "reports/xlsxtemplate.h"
#include "shell/config.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QDir>
#include <QFileInfo>

namespace fenlark {

namespace {

// The template's end of its line area: the row of "End", else row 30.
constexpr int DefaultEndRow = 30;

class WorkbookWriter {
public:
    WorkbookWriter(XlsxTemplate &book, const AccountsDocument &doc)
        : m_book(book)
        , m_doc(doc)
    {
    }

    Outcome write(const QString &templatePath)
    {
        const std::optional<CellRef> lineStart = m_book.namedCell(QStringLiteral("VMInvLine"));
        const std::optional<CellRef> deposit = m_book.namedCell(QStringLiteral("VMDeposit"));
        for (const auto &[cell, name] : {std::pair{lineStart, "VMInvLine"}, std::pair{deposit, "VMDeposit"}}) {
            if (!cell)
                return Refusal(6811, QStringLiteral("The template %1 has no cell named %2, so the document cannot be made."),
                               6812, QStringLiteral("Template incomplete"))
                    .arg(QDir::toNativeSeparators(templatePath))
                    .arg(QString::fromLatin1(name));
        }
        clientBlock();
        namedCells();
        const std::optional<CellRef> end = m_book.namedCell(QStringLiteral("End"));
        m_endRow = end ? end->row : DefaultEndRow;
        m_column = lineStart->column;
        m_lineColumn = m_column;
        m_row = lineStart->row;
        accommodation();
        extras();
        payments();
        totals();
        return Done{};
    }

private:
    void fill(const char *name, const QString &text)
    {
        if (const std::optional<CellRef> cell = m_book.namedCell(QString::fromLatin1(name)))
            m_book.setText(*cell, text);
    }

    void clientBlock()
    {
        const std::optional<CellRef> at = m_book.namedCell(QStringLiteral("VMInvoiceTo"));
        if (!at)
            return;
        const Client &c = m_doc.client();
        QStringList lines;
        const QString name = personNameOf(c);
        if (!name.isEmpty())
            lines << name;
        for (const QString *field : {&c.Company, &c.Add1, &c.Add2, &c.PhoneNo})
            if (!field->trimmed().isEmpty())
                lines << field->trimmed();
        for (int i = 0; i < lines.size(); ++i)
            m_book.setText({at->row + i, at->column}, lines.at(i));
    }

    static QString personNameOf(const Client &c)
    {
        QString name = c.Title.trimmed() + QLatin1Char(' ') + c.FirstName.trimmed();
        name = name.trimmed() + QLatin1Char(' ') + c.Surname.trimmed();
        return name.trimmed();
    }

    void namedCells()
    {
        const Client &c = m_doc.client();
        fill("VMName", c.FullName());
        fill("VMCompany", c.Company);
        fill("VMVATNo", c.VatNo);
        fill("VMAdd1", c.Add1);
        fill("VMAdd2", c.Add2);
        fill("VMDate", documentDate(m_doc.documentDate(), QStringLiteral("dd MMM yy")));
        fill("VMPhone", c.PhoneNo);
        if (const std::optional<CellRef> number = m_book.namedCell(QStringLiteral("VMInvNo")))
            m_book.setNumber(*number, m_doc.documentNo());
        fill("VMFaxNo", m_doc.faxNo());
        fill("VMAccRef", m_doc.accountReference());
        if (!c.Email.trimmed().isEmpty())
            fill("VMEmail", c.Email.trimmed());
        if (m_doc.fromLiveData())
            fill("VMNote", getString(6822, QStringLiteral("The invoice's stored items were not found: this copy shows the account as it stands now.")));
    }

    // Makes room when the next line would reach the template's end row.
    void ensureRows(int margin, int block)
    {
        if (m_row + margin >= m_endRow) {
            m_endRow += block;
            m_book.insertRows(m_row, block);
        }
    }

    void markFirstRow(int row)
    {
        if (m_firstRow == 0)
            m_firstRow = row;
    }

    int amountColumn() const { return m_column + 4; }

    void accommodation()
    {
        const auto &lines = m_doc.accommodation();
        if (lines.empty())
            return;
        m_book.setText({m_row, m_column}, getString(1853, QStringLiteral("Accommodation")), true);
        ++m_row;
        m_firstRow = m_row + 1;
        for (const AccountLineItem &line : lines) {
            ensureRows(4, 5);
            m_book.setText({m_row, m_column}, line.heading);
            m_book.setText({m_row + 1, m_column}, line.line1);
            m_book.setNumber({m_row + 1, amountColumn()}, line.amount);
            m_book.setText({m_row + 2, m_column}, line.line2);
            if (!line.line3.isEmpty()) {
                m_book.setText({m_row + 3, m_column}, line.line3);
                m_row += 5;
            } else {
                m_row += 4;
            }
        }
        m_book.defineName(QStringLiteral("AccomTotal"), {m_firstRow, amountColumn()}, {m_row - 3, amountColumn()});
    }

    void extras()
    {
        const auto &lines = m_doc.extras();
        if (lines.empty())
            return;
        ensureRows(2, 3);
        markFirstRow(m_row);
        m_book.setText({m_row, m_column}, getString(6826, QStringLiteral("Extras")), true);
        ++m_row;
        QString lastHeading;
        for (const AccountLineItem &line : lines) {
            if (line.heading != lastHeading && !line.heading.isEmpty()) {
                ensureRows(2, 3);
                m_book.setText({m_row, m_column}, line.heading, true);
                ++m_row;
            }
            lastHeading = line.heading;
            ensureRows(2, 3);
            m_book.setText({m_row, m_column}, line.line1);
            m_book.setNumber({m_row, amountColumn()}, line.amount);
            ++m_row;
        }
    }

    void payments()
    {
        const CellRef deposit = *m_book.namedCell(QStringLiteral("VMDeposit"));
        m_row = deposit.row - 1;
        const int column = deposit.column;
        const auto &lines = m_doc.payments();
        if (!lines.empty())
            m_book.setText({m_row, column}, getString(6827, QStringLiteral("Payments Made:")));
        for (const AccountLineItem &line : lines) {
            ++m_row;
            m_book.insertRows(m_row, 1);
            ++m_endRow;
            markFirstRow(m_row);
            m_book.setText({m_row, column + 1}, line.heading);
            m_book.setNumber({m_row, column + 4}, line.amount);
        }
        m_column = column;
    }

    // The template's sums below the lines are made to cover every row written.
    void totals()
    {
        const std::optional<CellRef> lineStart = m_book.namedCell(QStringLiteral("VMInvLine"));
        const int first = m_firstRow > 0 ? m_firstRow : lineStart->row;
        if (m_doc.accommodation().empty())
            m_book.defineName(QStringLiteral("AccomTotal"), {first, m_lineColumn + 4}, {first, m_lineColumn + 4});
        const QString letters = columnLetter(amountColumn());
        for (int row = m_row + 1; row <= m_endRow + 5; ++row) {
            const CellRef cell{row, amountColumn()};
            if (m_book.formula(cell).trimmed().toLower().startsWith(QLatin1String("sum")))
                m_book.setFormula(cell, QStringLiteral("SUM(%1%2:%1%3)").arg(letters).arg(first).arg(row - 1));
        }
    }

    XlsxTemplate &m_book;
    const AccountsDocument &m_doc;
    int m_row = 0;
    int m_column = 1;
    int m_lineColumn = 1;
    int m_endRow = DefaultEndRow;
    int m_firstRow = 0;
};

} // namespace

Outcome writeAccountsWorkbook(const AccountsDocument &doc, const QString &templatePath, const QString &target)
{
    if (Outcome open = checkNotOpen(target); !open)
        return open;
    Result<XlsxTemplate> book = XlsxTemplate::open(templatePath);
    if (!book)
        return book.refusal();
    WorkbookWriter writer(*book, doc);
    if (Outcome written = writer.write(templatePath); !written)
        return written;
    return book->save(target);
}

InvoicePrint::InvoicePrint(int dbNumber, QString folder)
    : m_dbNumber(dbNumber)
    , m_folder(std::move(folder))
{
}

Result<QString> InvoicePrint::folder() const
{
    if (!m_folder.isEmpty()) {
        if (!QFileInfo(m_folder).isDir())
            return Refusal(6828, QStringLiteral("The folder %1 does not exist."), 6821, QStringLiteral("Folder does not exist."))
                .arg(QDir::toNativeSeparators(m_folder));
        return QDir(m_folder).absolutePath() + QLatin1Char('/');
    }
    const QString key = m_dbNumber > 0 ? QStringLiteral("InvoiceDir%1").arg(m_dbNumber) : QStringLiteral("InvoiceDir");
    const QString configured = readConfig(key, QString()).trimmed();
    const QString dir = config::invoiceDir(m_dbNumber);
    if (!QFileInfo(dir).isDir())
        return Refusal(6820,
                       QStringLiteral("The %1 parameter is set to a folder that does not exist.\n\n%1=%2\n\n"
                                      "Click veldmoor Setup, then the menu option File / View Config and change %1.\n"
                                      "If you're not sure call veldmoor on 021 555 0100."),
                       6821, QStringLiteral("Folder does not exist."))
            .arg(key)
            .arg(configured);
    return dir.endsWith(QLatin1Char('/')) ? dir : dir + QLatin1Char('/');
}

Result<QString> InvoicePrint::documentPath(DocumentType type, qint32 number) const
{
    Result<QString> dir = folder();
    if (!dir)
        return dir;
    return *dir + fileStem(type) + QStringLiteral("%1.xlsx").arg(number, 6, 10, QLatin1Char('0'));
}

bool InvoicePrint::docExists(DocumentType type, qint32 number) const
{
    const Result<QString> path = documentPath(type, number);
    return path.ok() && QFileInfo::exists(*path);
}

QString InvoicePrint::templatePath(DocumentType type) const
{
    return findTemplate(templateStem(type), m_dbNumber, {QStringLiteral("xlsx")});
}

Result<QString> InvoicePrint::makeInvoice(const AccountsDocument &doc) const
{
    Result<QString> target = documentPath(doc.type(), doc.documentNo());
    if (!target)
        return target;
    const QString source = templatePath(doc.type());
    if (!QFileInfo::exists(source)) {
        const QString shown = QDir::toNativeSeparators(source);
        return Refusal(6818, QStringLiteral("Could not find %1 template.\n\n%2\n\nContact veldmoor to receive an example."), 6819,
                       QStringLiteral("Could not find %2"))
            .arg(documentLabel(doc.type()))
            .arg(shown);
    }
    if (Outcome written = writeAccountsWorkbook(doc, source, *target); !written)
        return written.refusal();
    return *target;
}

} // namespace fenlark

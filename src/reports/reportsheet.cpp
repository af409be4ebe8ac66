#include "reports/reportsheet.h"

#include "shell/textformat.h"

namespace fenlark {

namespace {

// dd/MM/yyyy, built directly: a report formats thousands of dates.
QString dayText(const QDate &date)
{
    return QStringLiteral("%1/%2/%3")
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(date.month(), 2, 10, QLatin1Char('0'))
        .arg(date.year(), 4, 10, QLatin1Char('0'));
}

} // namespace

QString SheetRange::address() const
{
    return columnLetter(firstColumn) + QString::number(firstRow) + QLatin1Char(':') + columnLetter(lastColumn) +
           QString::number(lastRow);
}

void ReportSheet::setTitle(const QString &title)
{
    m_title = title;
    setHeadline(1, title);
}

void ReportSheet::setHeadline(int row, const QString &text)
{
    setLine(row, text);
    setBold(row, 1);
    setFontSize(row, 1, 12);
}

void ReportSheet::setLine(int row, const QString &text)
{
    setText(row, 1, text);
    at(row, 1).overflow = true;
}

SheetCell &ReportSheet::at(int row, int column)
{
    Q_ASSERT(row >= 1 && column >= 1);
    if (static_cast<int>(m_rows.size()) < row)
        m_rows.resize(static_cast<size_t>(row));
    std::vector<SheetCell> &cells = m_rows[static_cast<size_t>(row - 1)];
    if (static_cast<int>(cells.size()) < column)
        cells.resize(static_cast<size_t>(column));
    m_columns = std::max(m_columns, column);
    return cells[static_cast<size_t>(column - 1)];
}

void ReportSheet::setText(int row, int column, const QString &text)
{
    SheetCell &c = at(row, column);
    c.kind = SheetCell::Text;
    c.text = text;
}

void ReportSheet::setNumber(int row, int column, double value, NumberStyle style)
{
    SheetCell &c = at(row, column);
    c.kind = SheetCell::Number;
    c.number = value;
    c.style = style;
}

void ReportSheet::setDate(int row, int column, const QDate &date)
{
    if (!date.isValid())
        return;
    SheetCell &c = at(row, column);
    c.kind = SheetCell::Date;
    c.date = date;
}

void ReportSheet::setDateTime(int row, int column, const QDate &date, const QTime &time)
{
    if (!date.isValid())
        return;
    SheetCell &c = at(row, column);
    c.kind = SheetCell::DateTime;
    c.date = date;
    c.time = time.isValid() ? time : QTime(0, 0);
}

void ReportSheet::setSum(int row, int column, SumKind kind, const SheetRange &range, NumberStyle style)
{
    Q_ASSERT(!range.contains(row, column));
    SheetCell &c = at(row, column);
    c.kind = SheetCell::Formula;
    c.sum = kind;
    c.range = range;
    c.style = style;
}

void ReportSheet::setBold(int row, int column, bool bold)
{
    at(row, column).bold = bold;
}

void ReportSheet::setFontSize(int row, int column, int points)
{
    at(row, column).fontSize = points;
}

void ReportSheet::setWrap(int row, int column, bool wrap)
{
    at(row, column).wrap = wrap;
}

const SheetCell *ReportSheet::cell(int row, int column) const
{
    if (row < 1 || row > static_cast<int>(m_rows.size()))
        return nullptr;
    const std::vector<SheetCell> &cells = m_rows[static_cast<size_t>(row - 1)];
    if (column < 1 || column > static_cast<int>(cells.size()))
        return nullptr;
    return &cells[static_cast<size_t>(column - 1)];
}

double ReportSheet::value(int row, int column) const
{
    const SheetCell *c = cell(row, column);
    if (!c)
        return 0;
    if (c->kind == SheetCell::Number)
        return c->number;
    if (c->kind != SheetCell::Formula)
        return 0;
    // A sum never covers its own cell (setSum refuses it), and sums only look up
    // or across at data, so the recursion ends.
    double total = 0;
    const int lastRow = std::min(c->range.lastRow, rowCount());
    for (int r = c->range.firstRow; r <= lastRow; ++r) {
        for (int col = c->range.firstColumn; col <= c->range.lastColumn; ++col)
            total += value(r, col);
    }
    return total;
}

QString ReportSheet::formula(const SheetCell &cell)
{
    const QString range = cell.range.address();
    return cell.sum == SumKind::Subtotal ? QStringLiteral("=SUBTOTAL(9,%1)").arg(range)
                                         : QStringLiteral("=SUM(%1)").arg(range);
}

QString ReportSheet::plainText(int row, int column) const
{
    const SheetCell *c = cell(row, column);
    if (!c)
        return {};
    switch (c->kind) {
    case SheetCell::Empty:
        return {};
    case SheetCell::Text: {
        QString text = c->text;
        text.replace(QLatin1String("\r\n"), QLatin1String(" "));
        for (QChar &ch : text) {
            if (ch == QLatin1Char('\t') || ch == QLatin1Char('\n') || ch == QLatin1Char('\r'))
                ch = QLatin1Char(' ');
        }
        return text;
    }
    case SheetCell::Date:
        return dayText(c->date);
    case SheetCell::DateTime:
        return dayText(c->date) + QLatin1Char(' ') + c->time.toString(Qt::ISODate);
    case SheetCell::Number:
    case SheetCell::Formula:
        break;
    }
    double number = value(row, column);
    if (number == 0)
        number = 0;   // no "-0.00" from a negative zero
    if (c->style == NumberStyle::Money)
        return QString::number(number, 'f', 2);
    return QString::number(number, 'g', 15);
}

int ReportSheet::lastColumn(int row) const
{
    if (row < 1 || row > static_cast<int>(m_rows.size()))
        return 0;
    const std::vector<SheetCell> &cells = m_rows[static_cast<size_t>(row - 1)];
    int last = static_cast<int>(cells.size());
    while (last > 0 && cells[static_cast<size_t>(last - 1)].kind == SheetCell::Empty)
        --last;
    return last;
}

void ReportSheet::setColumnWidth(int column, double width)
{
    if (static_cast<int>(m_widths.size()) < column)
        m_widths.resize(static_cast<size_t>(column), 0);
    m_widths[static_cast<size_t>(column - 1)] = width;
}

double ReportSheet::fixedWidth(int column) const
{
    if (column < 1 || column > static_cast<int>(m_widths.size()))
        return 0;
    return m_widths[static_cast<size_t>(column - 1)];
}

} // namespace fenlark

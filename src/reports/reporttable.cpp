#include "reports/reporttable.h"

#include "shell/money.h"
#include "shell/strings.h"

namespace fenlark {

namespace {
// Long text (notes) keeps a readable width and wraps instead of widening the page.
constexpr double NotesWidth = 40;
}

ReportColumn reportColumn(int id, const char *heading, ColumnKind kind, bool summed)
{
    return {getString(id, QString::fromUtf8(heading)), kind, summed};
}

QString titleDate(const QDate &date)
{
    return date.toString(QStringLiteral("dd/MM/yyyy"));
}

ReportTable::ReportTable(ReportSheet &sheet, int headingRow, std::vector<ReportColumn> columns)
    : m_sheet(sheet), m_headingRow(headingRow), m_row(headingRow), m_columns(std::move(columns))
{
    for (int c = 1; c <= static_cast<int>(m_columns.size()); ++c) {
        const ReportColumn &column = m_columns[static_cast<size_t>(c - 1)];
        m_sheet.setText(m_headingRow, c, column.heading);
        m_sheet.setBold(m_headingRow, c);
        if (column.kind == ColumnKind::Notes)
            m_sheet.setColumnWidth(c, NotesWidth);
    }
}

NumberStyle ReportTable::styleOf(int column) const
{
    return m_columns[static_cast<size_t>(column - 1)].kind == ColumnKind::Money ? NumberStyle::Money
                                                                                 : NumberStyle::General;
}

void ReportTable::addRow()
{
    ++m_row;
    m_sheet.countDataRows(1);
}

void ReportTable::text(int column, const QString &value)
{
    if (value.isEmpty())
        return;
    m_sheet.setText(m_row, column, value);
    if (m_columns[static_cast<size_t>(column - 1)].kind == ColumnKind::Notes)
        m_sheet.setWrap(m_row, column);
}

void ReportTable::number(int column, double value)
{
    const NumberStyle style = styleOf(column);
    m_sheet.setNumber(m_row, column, style == NumberStyle::Money ? roundMoney(value) : value, style);
}

void ReportTable::date(int column, const QDate &value)
{
    m_sheet.setDate(m_row, column, value);
}

void ReportTable::dateTime(int column, const QDate &date, const QTime &time)
{
    m_sheet.setDateTime(m_row, column, date, time);
}

void ReportTable::rowSum(int column, int firstColumn, int lastColumn)
{
    m_sheet.setSum(m_row, column, SumKind::Sum, {m_row, firstColumn, m_row, lastColumn}, styleOf(column));
}

int ReportTable::finish(bool withFilter)
{
    const int columns = static_cast<int>(m_columns.size());
    bool anySum = false;
    const int sumRow = m_row + 2;
    for (int c = 1; c <= columns; ++c) {
        if (!m_columns[static_cast<size_t>(c - 1)].summed)
            continue;
        m_sheet.setSum(sumRow, c, withFilter ? SumKind::Subtotal : SumKind::Sum, {firstDataRow(), c, m_row, c},
                       styleOf(c));
        m_sheet.setBold(sumRow, c);
        anySum = true;
    }
    if (withFilter)
        m_sheet.setAutoFilter({m_headingRow, 1, m_row, columns});
    return anySum ? sumRow + 1 : m_row + 1;
}

} // namespace fenlark

#pragma once

#include "reports/reportsheet.h"

#include <QDate>
#include <QString>
#include <QTime>

#include <vector>

namespace fenlark {

// What a column holds, which decides its cells' type and format.
enum class ColumnKind {
    Text,       // left-aligned, fitted
    Notes,      // long text: a fixed width, wrapped
    Number,     // counts, keys, rates
    Money,      // rounded to the cent, money format
    Date,
    DateTime,
};

struct ReportColumn {
    QString heading;
    ColumnKind kind = ColumnKind::Text;
    bool summed = false;   // gets a sum under the data
};

// A column with its heading read through the string tables.
ReportColumn reportColumn(int id, const char *heading, ColumnKind kind = ColumnKind::Text, bool summed = false);

// A date in the titles of reports, dd/MM/yyyy.
QString titleDate(const QDate &date);

// Lays one table out on a sheet: bold headings on one row, a row per entry
// under them, and under the data, after a blank row, a sum for each summed
// column. With a filter the sums are SUBTOTALs (they follow the filter) and the
// filter covers the headings and the data; without, they are SUMs.
class ReportTable {
public:
    ReportTable(ReportSheet &sheet, int headingRow, std::vector<ReportColumn> columns);

    // Starts the next data row; the setters below fill it by column (1-based).
    void addRow();
    int row() const { return m_row; }
    void text(int column, const QString &value);
    // Money columns are rounded to the cent here.
    void number(int column, double value);
    void date(int column, const QDate &value);
    void dateTime(int column, const QDate &date, const QTime &time);
    // =SUM over columns of the current row, with its value.
    void rowSum(int column, int firstColumn, int lastColumn);

    int firstDataRow() const { return m_headingRow + 1; }
    int lastDataRow() const { return m_row; }   // the heading row while there is no data

    // Writes the sums and the filter; returns the first row free below the table.
    int finish(bool withFilter);

private:
    NumberStyle styleOf(int column) const;

    ReportSheet &m_sheet;
    int m_headingRow;
    int m_row;
    std::vector<ReportColumn> m_columns;
};

} // namespace fenlark

#pragma once

#include <QDate>
#include <QString>
#include <QTime>

#include <vector>

namespace fenlark {

// How a number is shown.
enum class NumberStyle {
    General,   // as it is: counts, keys, exchange rates
    Money,     // two decimals with thousands separators, aligned on the point
};

// A rectangle of cells, 1-based and inclusive. An empty one (last row before the
// first) is legal: the sum under a report without rows covers D4:D3 and is 0.
struct SheetRange {
    int firstRow = 0;
    int firstColumn = 0;
    int lastRow = 0;
    int lastColumn = 0;

    // "D4:D10" as a spreadsheet writes it.
    QString address() const;
    bool contains(int row, int column) const
    {
        return row >= firstRow && row <= lastRow && column >= firstColumn && column <= lastColumn;
    }
};

// A sum cell: SUBTOTAL(9, ...) follows a filter, SUM does not.
enum class SumKind { Subtotal, Sum };

// One cell of a report sheet. A sum keeps its range so that both its formula
// and the value it computes come from the same cells.
struct SheetCell {
    enum Kind { Empty, Text, Number, Date, DateTime, Formula };
    Kind kind = Empty;
    NumberStyle style = NumberStyle::General;
    bool bold = false;
    bool wrap = false;      // long text broken over lines within a fixed width
    int fontSize = 0;       // 0 for the sheet's normal size
    bool overflow = false;  // a line of text that runs on over the empty cells beside it
    QString text;
    double number = 0;
    QDate date;             // Date and DateTime
    QTime time;             // DateTime
    SumKind sum = SumKind::Sum;
    SheetRange range;

    bool isNumeric() const { return kind == Number || kind == Formula; }
};

// A report laid out as a spreadsheet, before it is written anywhere: cells with
// their types and formats, the widths of columns that are not fitted to their
// content, the filter and the page set-up. The .xlsx and the tab-separated
// writers both read it, so the two routes always carry the same report.
class ReportSheet {
public:
    enum Orientation { Portrait, Landscape };

    // Row 1: the title and criteria, bold and larger. The clipboard route of some
    // reports words its title differently; plainTitle() is that wording.
    void setTitle(const QString &title);
    void setPlainTitle(const QString &title) { m_plainTitle = title; }
    // A title further down (a second part of a report): bold and larger, like row 1.
    void setHeadline(int row, const QString &text);
    // A line of text that runs on over the cells beside it and so does not widen its column.
    void setLine(int row, const QString &text);
    QString title() const { return m_title; }
    QString plainTitle() const { return m_plainTitle.isEmpty() ? m_title : m_plainTitle; }

    void setText(int row, int column, const QString &text);
    void setNumber(int row, int column, double value, NumberStyle style = NumberStyle::General);
    void setDate(int row, int column, const QDate &date);
    void setDateTime(int row, int column, const QDate &date, const QTime &time);
    void setSum(int row, int column, SumKind kind, const SheetRange &range, NumberStyle style = NumberStyle::General);
    void setBold(int row, int column, bool bold = true);
    void setFontSize(int row, int column, int points);
    void setWrap(int row, int column, bool wrap = true);

    // The cell, or nullptr when nothing was ever written there.
    const SheetCell *cell(int row, int column) const;
    // A number, or what a sum adds up to (0 for anything else).
    double value(int row, int column) const;
    // The formula text of a sum cell, "=SUBTOTAL(9,D4:D10)".
    static QString formula(const SheetCell &cell);
    // The cell as plain text: money with two decimals, dates dd/MM/yyyy, times
    // dd/MM/yyyy hh:mm:ss, a sum as its value; line breaks and tabs become blanks.
    QString plainText(int row, int column) const;

    int rowCount() const { return static_cast<int>(m_rows.size()); }
    int columnCount() const { return m_columns; }
    // The cells of a row up to its last written one.
    int lastColumn(int row) const;

    // A column with a fixed width (in characters); every other column is fitted
    // to its content when written.
    void setColumnWidth(int column, double width);
    double fixedWidth(int column) const;

    void setAutoFilter(const SheetRange &range) { m_filter = range; }
    bool hasAutoFilter() const { return m_filter.firstRow > 0; }
    const SheetRange &autoFilter() const { return m_filter; }

    // Always one page wide and as many long as it needs.
    void setOrientation(Orientation orientation) { m_orientation = orientation; }
    Orientation orientation() const { return m_orientation; }

    // Data rows the report holds (headings, titles and sums not counted).
    void countDataRows(int rows) { m_dataRows += rows; }
    int dataRows() const { return m_dataRows; }

private:
    SheetCell &at(int row, int column);

    std::vector<std::vector<SheetCell>> m_rows;
    std::vector<double> m_widths;
    int m_columns = 0;
    QString m_title;
    QString m_plainTitle;
    SheetRange m_filter;
    Orientation m_orientation = Portrait;
    int m_dataRows = 0;
};

} // namespace fenlark

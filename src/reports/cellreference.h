#pragma once

#include <QString>

namespace fenlark {

// A cell of a sheet, row and column counted from 1 as the spreadsheet shows them.
struct CellRef {
    int row = 0;
    int column = 0;
    bool isValid() const { return row > 0 && column > 0; }
    bool operator==(const CellRef &) const = default;
};

// "B12" or "$B$12" as a cell; an invalid cell for anything else.
CellRef parseCellRef(const QString &text);
// "B12".
QString cellName(CellRef cell);
// "$B$12".
QString absoluteCellName(CellRef cell);
// The column of a cell name ("AB12" gives 28); 0 when it does not start with letters.
int columnOfCellName(const char *name);

// A formula (without its "=") after rows were inserted: every reference to a row at or
// below `at` on `sheet` moves down by count, as the spreadsheet itself does when rows
// are inserted. A range that spans the insertion grows. References qualified with
// another sheet, texts in quotes and function names stay as they are. Unqualified
// references count as references to `sheet` when unqualifiedIsSheet is true (a cell's
// formula) and are left alone otherwise (a workbook's defined name).
QString shiftFormulaRows(const QString &formula, int at, int count, const QString &sheet, bool unqualifiedIsSheet = true);
// A list of ranges separated by blanks ("A1:B2 D5"), as merged cells and conditional
// formats name them, after the same insertion.
QString shiftRangeList(const QString &ranges, int at, int count);

} // namespace fenlark

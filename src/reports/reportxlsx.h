#pragma once

#include "shell/progress.h"
#include "shell/refusal.h"

#include <QString>

namespace fenlark {

class ReportSheet;

// Writes the sheet as an .xlsx workbook: dates as real dates, sums as formulas
// with their computed values (so a reader that does not recalculate still shows
// them), columns fitted to their content unless fixed, the filter, one page wide.
// The file appears whole or not at all: an existing file is replaced only by a
// finished workbook.
Outcome writeReportXlsx(const ReportSheet &sheet, const QString &path);
// The same, reporting row by row; a stop leaves no file and an existing one as it was.
Outcome writeReportXlsx(const ReportSheet &sheet, const QString &path, Progress &progress);

// The width a column is given: its fixed width, else what its widest cell needs
// (titles and other lines that run on over the next cells do not count).
double fittedColumnWidth(const ReportSheet &sheet, int column);

} // namespace fenlark

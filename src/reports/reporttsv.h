#pragma once

#include "shell/refusal.h"

#include <QString>

namespace fenlark {

class ReportSheet;

// The report as tab-separated text: one line per row of the sheet, so that pasting
// it into a spreadsheet gives the same layout. Sums carry their values, not
// formulas; the title is the clipboard route's wording; the text ends with the
// last non-empty line.
QString reportTsv(const ReportSheet &sheet);

// Writes the text to a file (UTF-8), whole or not at all.
Outcome writeReportTsv(const ReportSheet &sheet, const QString &path);

} // namespace fenlark

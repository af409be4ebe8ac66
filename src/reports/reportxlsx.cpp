#include "reports/reportxlsx.h"

#include "reports/reportfailures.h"
#include "reports/reportsheet.h"
#include "shell/strings.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <xlsxwriter.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>

namespace fenlark {

namespace {

// The money format of the reports: thousands separators, two decimals, room for a sign.
const char MoneyFormat[] = "_ * #,##0.00_ ;_ * -#,##0.00_ ";
const char DateFormat[] = "dd/mm/yyyy";
const char DateTimeFormat[] = "dd/mm/yyyy hh:mm:ss";
// Text longer than a cell may hold is cut rather than refused.
constexpr int MaximumCellText = 32767;

// The formats of one workbook, made once per combination that the sheet uses.
class Formats {
public:
    explicit Formats(lxw_workbook *workbook) : m_workbook(workbook) {}

    lxw_format *of(const SheetCell &cell)
    {
        const int key = (cell.bold ? 1 : 0) | (cell.wrap ? 2 : 0) | (static_cast<int>(cell.kind) << 2) |
                        (static_cast<int>(cell.style) << 6) | (cell.fontSize << 8);
        auto found = m_formats.find(key);
        if (found != m_formats.end())
            return found->second;
        lxw_format *format = workbook_add_format(m_workbook);
        if (cell.bold)
            format_set_bold(format);
        if (cell.fontSize > 0)
            format_set_font_size(format, cell.fontSize);
        if (cell.wrap) {
            format_set_text_wrap(format);
            format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
        }
        switch (cell.kind) {
        case SheetCell::Text:
            format_set_align(format, LXW_ALIGN_LEFT);
            break;
        case SheetCell::Date:
            format_set_num_format(format, DateFormat);
            format_set_align(format, LXW_ALIGN_LEFT);
            break;
        case SheetCell::DateTime:
            format_set_num_format(format, DateTimeFormat);
            format_set_align(format, LXW_ALIGN_LEFT);
            break;
        case SheetCell::Number:
        case SheetCell::Formula:
            if (cell.style == NumberStyle::Money)
                format_set_num_format(format, MoneyFormat);
            break;
        case SheetCell::Empty:
            break;
        }
        m_formats.emplace(key, format);
        return format;
    }

private:
    lxw_workbook *m_workbook;
    std::map<int, lxw_format *> m_formats;
};

lxw_datetime toLxw(const QDate &d, const QTime &t)
{
    return lxw_datetime{d.year(), d.month(), d.day(), t.hour(), t.minute(), static_cast<double>(t.second())};
}

lxw_error writeCell(lxw_worksheet *sheet, Formats &formats, const ReportSheet &report, int row, int column)
{
    const SheetCell *cell = report.cell(row, column);
    if (!cell || cell->kind == SheetCell::Empty)
        return LXW_NO_ERROR;
    const auto r = static_cast<lxw_row_t>(row - 1);
    const auto c = static_cast<lxw_col_t>(column - 1);
    lxw_format *format = formats.of(*cell);
    switch (cell->kind) {
    case SheetCell::Text: {
        const QByteArray text = cell->text.left(MaximumCellText).toUtf8();
        return worksheet_write_string(sheet, r, c, text.constData(), format);
    }
    case SheetCell::Number:
        return worksheet_write_number(sheet, r, c, cell->number, format);
    case SheetCell::Date:
    case SheetCell::DateTime: {
        lxw_datetime when = toLxw(cell->date, cell->kind == SheetCell::DateTime ? cell->time : QTime(0, 0));
        return worksheet_write_datetime(sheet, r, c, &when, format);
    }
    case SheetCell::Formula: {
        const QByteArray formula = ReportSheet::formula(*cell).toUtf8();
        return worksheet_write_formula_num(sheet, r, c, formula.constData(), format, report.value(row, column));
    }
    case SheetCell::Empty:
        break;
    }
    return LXW_NO_ERROR;
}

void layOut(lxw_worksheet *sheet, const ReportSheet &report)
{
    for (int column = 1; column <= report.columnCount(); ++column) {
        const auto c = static_cast<lxw_col_t>(column - 1);
        worksheet_set_column(sheet, c, c, fittedColumnWidth(report, column), nullptr);
    }
    if (report.hasAutoFilter()) {
        const SheetRange &f = report.autoFilter();
        worksheet_autofilter(sheet, static_cast<lxw_row_t>(f.firstRow - 1), static_cast<lxw_col_t>(f.firstColumn - 1),
                             static_cast<lxw_row_t>(std::max(f.lastRow, f.firstRow) - 1),
                             static_cast<lxw_col_t>(f.lastColumn - 1));
    }
    if (report.orientation() == ReportSheet::Landscape)
        worksheet_set_landscape(sheet);
    else
        worksheet_set_portrait(sheet);
    worksheet_fit_to_pages(sheet, 1, 0);
    worksheet_set_selection(sheet, 3, 0, 3, 0);
}

} // namespace

double fittedColumnWidth(const ReportSheet &sheet, int column)
{
    const double fixed = sheet.fixedWidth(column);
    if (fixed > 0)
        return fixed;
    qsizetype widest = 0;
    for (int row = 1; row <= sheet.rowCount(); ++row) {
        const SheetCell *cell = sheet.cell(row, column);
        if (!cell || cell->kind == SheetCell::Empty || cell->overflow)
            continue;
        // Dates have a known width; anything else is measured as its text.
        qsizetype width = cell->kind == SheetCell::Date       ? 10
                          : cell->kind == SheetCell::DateTime ? 19
                                                              : sheet.plainText(row, column).size();
        if (cell->isNumeric() && cell->style == NumberStyle::Money)
            width += width / 3 + 2;   // thousands separators and the format's padding
        if (cell->bold)
            width += 1;
        widest = std::max(widest, width);
    }
    return std::clamp(static_cast<double>(widest) + 2.0, 6.0, 60.0);
}

Outcome writeReportXlsx(const ReportSheet &report, const QString &path)
{
    Progress unwatched;
    return writeReportXlsx(report, path, unwatched);
}

Outcome writeReportXlsx(const ReportSheet &report, const QString &path, Progress &progress)
{
    const QFileInfo target(path);
    QTemporaryFile part(target.absoluteDir().filePath(QStringLiteral(".%1.XXXXXX").arg(target.fileName())));
    if (!part.open())
        return reportNotWritten(path, part.errorString());
    part.close();
    const QByteArray partName = QFile::encodeName(part.fileName());

    lxw_workbook *workbook = workbook_new(partName.constData());
    if (!workbook)
        return reportNotWritten(path, QStringLiteral("the workbook could not be started"));
    lxw_worksheet *sheet = workbook_add_worksheet(workbook, nullptr);
    Formats formats(workbook);
    lxw_error error = LXW_NO_ERROR;
    const QString writing = getString(5307, QStringLiteral("Writing the report"));
    for (int row = 1; row <= report.rowCount() && error == LXW_NO_ERROR; ++row) {
        if (!progress.step(row - 1, report.rowCount(), writing)) {
            // The unfinished workbook is closed and its temporary file goes with part.
            workbook_close(workbook);
            return Refusal(5306, QStringLiteral("The report was stopped; no file was written."), 5308,
                           QStringLiteral("Report stopped"));
        }
        for (int column = 1; column <= report.lastColumn(row) && error == LXW_NO_ERROR; ++column)
            error = writeCell(sheet, formats, report, row, column);
    }
    layOut(sheet, report);
    const lxw_error closed = workbook_close(workbook);
    if (error == LXW_NO_ERROR)
        error = closed;
    if (error != LXW_NO_ERROR)
        return reportNotWritten(path, QString::fromUtf8(lxw_strerror(error)));
    // A temporary file is private to its owner; the report is an ordinary file.
    QFile::setPermissions(part.fileName(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                                               QFileDevice::ReadOther);
    if (std::rename(partName.constData(), QFile::encodeName(target.absoluteFilePath()).constData()) != 0)
        return reportNotWritten(path, QString::fromLocal8Bit(std::strerror(errno)));
    return Done{};
}

} // namespace fenlark

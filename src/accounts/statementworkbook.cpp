#include "accounts/statement.h"

#include "shell/textformat.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <utility>

namespace fenlark {

namespace {

constexpr const char *AccountingFormat = "_ * #,##0.00_ ;_ * -#,##0.00_ ";
constexpr int Columns = 7;
constexpr lxw_row_t HeadingRow = 2;   // row 3
constexpr lxw_row_t FirstLine = 3;    // row 4

Refusal cannotWrite(const QString &path)
{
    return Refusal(6705, QStringLiteral("Could not create %1.\n\nYou may have the file open already."), 6706,
                   QStringLiteral("Could not create %1"))
        .arg(path);
}

// Closes the workbook whatever happens, once.
class Workbook {
public:
    explicit Workbook(const QString &path) : m_book(workbook_new(QFile::encodeName(path).constData())) {}
    ~Workbook()
    {
        if (m_book)
            workbook_close(m_book);
    }
    Workbook(const Workbook &) = delete;
    Workbook &operator=(const Workbook &) = delete;

    lxw_workbook *get() const { return m_book; }
    bool close()
    {
        lxw_workbook *book = std::exchange(m_book, nullptr);
        return workbook_close(book) == LXW_NO_ERROR;
    }

private:
    lxw_workbook *m_book;
};

} // namespace

Outcome writeStatementWorkbook(const Statement &statement, const QString &path)
{
    if (!QFileInfo(path).absoluteDir().exists())
        return cannotWrite(path);
    Workbook book(path);
    if (!book.get())
        return cannotWrite(path);
    lxw_worksheet *sheet = workbook_add_worksheet(book.get(), nullptr);

    lxw_format *titleFormat = workbook_add_format(book.get());
    format_set_bold(titleFormat);
    format_set_font_size(titleFormat, 14);
    lxw_format *headingFormat = workbook_add_format(book.get());
    format_set_bold(headingFormat);
    format_set_align(headingFormat, LXW_ALIGN_CENTER);
    lxw_format *dateFormat = workbook_add_format(book.get());
    format_set_num_format(dateFormat, "yyyy-mm-dd");
    lxw_format *moneyFormat = workbook_add_format(book.get());
    format_set_num_format(moneyFormat, AccountingFormat);
    lxw_format *totalFormat = workbook_add_format(book.get());
    format_set_num_format(totalFormat, AccountingFormat);
    format_set_top(totalFormat, LXW_BORDER_THIN);
    format_set_bottom(totalFormat, LXW_BORDER_THIN);

    std::array<std::size_t, Columns> widths{};
    auto widen = [&](int column, const QString &text) {
        widths[static_cast<std::size_t>(column)] = std::max(widths[static_cast<std::size_t>(column)], static_cast<std::size_t>(text.size()));
    };
    auto write = [&](lxw_row_t row, lxw_col_t column, const QString &text, lxw_format *format) {
        worksheet_write_string(sheet, row, column, text.toUtf8().constData(), format);
    };

    write(0, 0, statement.title(), titleFormat);
    const QStringList headings = Statement::headings();
    for (int column = 0; column < Columns; ++column) {
        write(HeadingRow, static_cast<lxw_col_t>(column), headings.at(column), headingFormat);
        widen(column, headings.at(column));
    }

    lxw_row_t row = FirstLine;
    double debits = 0, credits = 0, totals = 0;
    for (const StatementLine &line : statement.lines) {
        if (line.date.isValid()) {
            lxw_datetime date{line.date.year(), line.date.month(), line.date.day(), 0, 0, 0};
            worksheet_write_datetime(sheet, row, 0, &date, dateFormat);
        }
        widen(0, QStringLiteral("yyyy-mm-dd"));
        write(row, 1, line.type, nullptr);
        widen(1, line.type);
        worksheet_write_number(sheet, row, 2, line.tranNo, nullptr);
        widen(2, QString::number(line.tranNo));
        write(row, 3, line.reference, nullptr);
        widen(3, line.reference);
        if (line.debit() != 0)
            worksheet_write_number(sheet, row, 4, line.debit(), moneyFormat);
        if (line.credit() != 0)
            worksheet_write_number(sheet, row, 5, line.credit(), moneyFormat);
        worksheet_write_number(sheet, row, 6, line.total, moneyFormat);
        for (int column : {4, 5, 6})
            widen(column, formatAmount(line.total) + QStringLiteral("    "));
        debits += line.debit();
        credits += line.credit();
        totals += line.total;
        ++row;
    }

    // Subtotals over the heading row down to the last line, as people expect
    // of a statement they go on to filter.
    const QString last = QString::number(row);   // the 1-based number of the last line's row
    const std::array<std::pair<char, double>, 3> sums = {{{'E', debits}, {'F', credits}, {'G', totals}}};
    for (lxw_col_t column = 4; column <= 6; ++column) {
        const auto &[letter, value] = sums[column - 4];
        const QString formula = QStringLiteral("=SUBTOTAL(9,%1%2:%1%3)").arg(QLatin1Char(letter)).arg(HeadingRow + 1).arg(last);
        worksheet_write_formula_num(sheet, row, column, formula.toUtf8().constData(), totalFormat, value);
    }
    for (int column = 0; column < Columns; ++column)
        worksheet_set_column(sheet, static_cast<lxw_col_t>(column), static_cast<lxw_col_t>(column),
                             static_cast<double>(widths[static_cast<std::size_t>(column)]) + 2, nullptr);
    worksheet_set_selection(sheet, FirstLine, 0, FirstLine, 0);

    if (!book.close())
        return cannotWrite(path);
    return Done{};
}

} // namespace fenlark

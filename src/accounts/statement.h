#pragma once

#include "shell/refusal.h"

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// One line of a client's statement: a ledger row, or a line of an invoice.
struct StatementLine {
    QDate date;
    QString type;
    qint32 tranNo = 0;
    QString reference;
    double amount = 0;   // positive: the client owes it
    double total = 0;    // the running total after this line
    double debit() const { return amount > 0 ? amount : 0; }
    double credit() const { return amount < 0 ? -amount : 0; }
};

// What a client still owes, line by line: the ledger rows not matched, each
// invoice expanded into its items. The last running total is the client's balance.
struct Statement {
    qint32 clientId = 0;
    QString clientName;
    std::vector<StatementLine> lines;

    double balance() const { return lines.empty() ? 0 : lines.back().total; }
    // "Statement for: <name> (<id>)"
    QString title() const;
    static QStringList headings();
};

// Matches the client's ledger, then reads its open lines. Refused: a missing
// client, and (as a notice) a client with nothing to show.
Result<Statement> buildStatement(Database &db, qint32 clientId);

// The statement as text with tabs between columns (for the clipboard or a .tsv
// file): the title, the headings, one line per entry.
QString statementText(const Statement &statement);

// Writes the statement as an .xlsx workbook: the title, the headings over
// A3:G3, the lines from row 4 with dates as dates and the amounts in the
// accounting format, then a bordered row of subtotals (each formula with its
// value). Refused when the file cannot be written.
Outcome writeStatementWorkbook(const Statement &statement, const QString &path);

} // namespace fenlark

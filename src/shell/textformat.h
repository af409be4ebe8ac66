#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVariant>

namespace fenlark {

// Trimmed text of a value; empty text for a null.
QString fieldText(const QVariant &value);
// A date as the SQL literal of the old data files, "#2008-03-09#", whatever the
// locale. Statements bind their values; this form is for texts and exports.
QString dateLiteral(const QDate &date);
// The number in a text; 0 for empty text or text that is not a number.
double safeDouble(const QString &text);
// A date typed as dd/mm/yyyy, or dd/mm/yy (2000 added to the year), optionally
// followed by a time in its last 9 characters. Invalid on anything else.
QDateTime parseDate(const QString &text);
// The key code for a number field: digits, backspace (8), comma and full stop
// pass; anything else gives 0.
int numericKey(int keyCode);
// An amount as "##0.00".
QString formatAmount(double amount);
// An amount with the currency symbol of the system's locale in front.
QString formatCurrency(double amount);
// Spreadsheet column letters: 1 = A, 26 = Z, 27 = AA.
QString columnLetter(int column);
// Each line break becomes " / ".
QString flattenLines(const QString &text);

} // namespace fenlark

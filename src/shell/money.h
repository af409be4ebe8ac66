#pragma once

#include <QLocale>
#include <QString>

#include <optional>

namespace fenlark {

// Rounds an amount of money to two decimals. It rounds the exact binary value of
// the double (2.675 is stored as 2.67499..., so it gives 2.67), and an exact tie
// goes to the even digit (0.125 gives 0.12, 0.375 gives 0.38). Every amount that
// is stored or compared goes through here; SQLite's round() is never used for money.
double roundMoney(double amount);

// An amount as a person typed it: the locale's decimal separator or "." before
// the decimals, a thousands separator ignored where it groups three digits, a
// leading sign, blanks around. Empty text is 0. Anything else ("12abc", "1,2,3",
// "1e5") is no amount at all: nullopt, never read as 0.
std::optional<double> parseAmount(const QString &text, const QLocale &locale);

} // namespace fenlark

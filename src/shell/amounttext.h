#pragma once

#include <QLocale>
#include <QString>

#include <optional>

namespace fenlark {

// Reads a number typed by a person: an amount of money, a price, a quantity.
// The locale's decimal separator and "." are both taken as the decimal point;
// thousands separators are ignored where they group three digits ("1,250.50",
// "1.250,50" in Spanish). A separator that cannot be read either way ("12,5"
// where "," groups thousands), letters, two signs or an empty text give nothing:
// the caller refuses the text, it never counts as 0. Blanks around the number
// and a leading "+" or "-" are allowed.
std::optional<double> parseAmount(const QString &text, const QLocale &locale = QLocale());

// A whole number of at least 1 typed by a person ("17" or " 17 "); nothing for
// "0", "-5", "12.7", "12abc", "abc" or a number beyond 32 bits.
std::optional<qint32> parsePositiveWholeNumber(const QString &text);

// A quantity or price as people write it: no trailing zeros ("2", "2.5", "180").
QString plainNumber(double value);

} // namespace fenlark

#pragma once

#include <QString>

#include <optional>

namespace fenlark {

// A whole number of at least 1 typed by a person ("17" or " 17 "); nothing for
// "0", "-5", "12.7", "12abc", "abc" or a number beyond 32 bits.
std::optional<qint32> parsePositiveWholeNumber(const QString &text);

// A quantity or price as people write it: no trailing zeros ("2", "2.5", "180").
QString plainNumber(double value);

} // namespace fenlark

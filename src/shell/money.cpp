#include "shell/money.h"

#include <cmath>
#include <cstdint>

namespace fenlark {

double roundMoney(double amount)
{
    if (!std::isfinite(amount) || amount == 0.0)
        return amount;
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(amount), &exponent); // |amount| = fraction * 2^exponent
    // |amount| = mantissa * 2^shift exactly, with a 53-bit integer mantissa.
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
    const int shift = exponent - 53;
    if (shift >= 0)
        return amount; // already a whole number, far beyond cents

    const unsigned __int128 hundredfold = static_cast<unsigned __int128>(mantissa) * 100u;
    const int drop = -shift;
    if (drop >= 120)
        return std::copysign(0.0, amount);
    const unsigned __int128 one = 1;
    unsigned __int128 cents = hundredfold >> drop;
    const unsigned __int128 remainder = hundredfold & ((one << drop) - 1);
    const unsigned __int128 half = one << (drop - 1);
    if (remainder > half || (remainder == half && (cents & 1u)))
        ++cents;
    const double result = static_cast<double>(cents) / 100.0;
    return amount < 0 ? -result : result;
}

namespace {

// Whole-number digits with group separators only between groups of three.
bool validGrouping(const QString &whole, QChar group)
{
    const QStringList parts = whole.split(group);
    for (int i = 0; i < parts.size(); ++i) {
        const QString &part = parts[i];
        if (part.isEmpty() || (i == 0 ? part.size() > 3 && parts.size() > 1 : part.size() != 3))
            return false;
    }
    return true;
}

bool allDigits(const QString &text)
{
    if (text.isEmpty())
        return false;
    for (QChar c : text)
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    return true;
}

} // namespace

std::optional<double> parseAmount(const QString &text, const QLocale &locale)
{
    QString t = text.trimmed();
    t.remove(QChar(0x00A0));   // the no-break space some locales group with
    t.remove(QChar(0x202F));
    if (t.isEmpty())
        return 0.0;
    bool negative = false;
    if (t.startsWith(QLatin1Char('-')) || t.startsWith(QLatin1Char('+'))) {
        negative = t.startsWith(QLatin1Char('-'));
        t = t.mid(1).trimmed();
    }
    const QChar dec = locale.decimalPoint().isEmpty() ? QLatin1Char('.') : locale.decimalPoint().front();
    QChar group = locale.groupSeparator().isEmpty() ? QLatin1Char(',') : locale.groupSeparator().front();
    if (group == QChar(0x00A0) || group == QChar(0x202F))
        group = QLatin1Char(' ');

    // Where the decimals start: the last decimal separator, or a last "." that
    // cannot be a thousands separator of this locale.
    qsizetype at = t.lastIndexOf(dec);
    if (at < 0 && dec != QLatin1Char('.')) {
        const qsizetype dot = t.lastIndexOf(QLatin1Char('.'));
        const bool dotGroups = group == QLatin1Char('.') && t.size() - dot - 1 == 3;
        if (dot >= 0 && !dotGroups)
            at = dot;
    }
    const QString whole = at < 0 ? t : t.left(at);
    const QString decimals = at < 0 ? QString() : t.mid(at + 1);
    if (at >= 0 && !allDigits(decimals))
        return std::nullopt;
    QString digits = whole;
    if (whole.contains(group)) {
        if (!validGrouping(whole, group))
            return std::nullopt;
        digits.remove(group);
    }
    if (!allDigits(digits) && !(digits.isEmpty() && at >= 0))
        return std::nullopt;
    bool ok = false;
    const double value = (digits.isEmpty() ? QStringLiteral("0") : digits)
                             .append(decimals.isEmpty() ? QString() : QLatin1Char('.') + decimals)
                             .toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return negative ? -value : value;
}

} // namespace fenlark

#include "shell/amounttext.h"

#include <QStringList>

#include <cmath>
#include <limits>

namespace fenlark {

namespace {

// Larger amounts are typing mistakes, not money a guest house handles.
constexpr double LargestAmount = 1e12;

bool isBlank(QChar c)
{
    return c.isSpace() || c == QChar(0x00A0) || c == QChar(0x202F);
}

bool onlyDigits(const QString &text)
{
    for (QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return true;
}

// The whole part with its thousands separators: the first group of one to three
// digits, every further group of exactly three. Returns the digits alone, or
// nothing when the grouping is not one.
std::optional<QString> ungroup(const QString &whole, const auto &isGroup)
{
    QStringList groups;
    QString current;
    for (QChar c : whole) {
        if (isGroup(c)) {
            groups << current;
            current.clear();
        } else {
            current += c;
        }
    }
    groups << current;
    for (const QString &g : groups) {
        if (!onlyDigits(g))
            return std::nullopt;
    }
    if (groups.size() > 1) {
        if (groups.front().isEmpty() || groups.front().size() > 3)
            return std::nullopt;
        for (qsizetype i = 1; i < groups.size(); ++i) {
            if (groups.at(i).size() != 3)
                return std::nullopt;
        }
    }
    return groups.join(QString());
}

} // namespace

std::optional<double> parseAmount(const QString &text, const QLocale &locale)
{
    QString t = text.trimmed();
    bool negative = false;
    if (!t.isEmpty() && (t.front() == QLatin1Char('-') || t.front() == QChar(0x2212) || t.front() == QLatin1Char('+'))) {
        negative = t.front() != QLatin1Char('+');
        t = t.mid(1).trimmed();
    }
    if (t.isEmpty())
        return std::nullopt;

    const QString decimalText = locale.decimalPoint();
    const QString groupText = locale.groupSeparator();
    const QChar decimal = decimalText.isEmpty() ? QLatin1Char('.') : decimalText.front();
    const QChar group = groupText.isEmpty() ? QChar() : groupText.front();
    const bool blankGroups = !group.isNull() && isBlank(group);
    auto isGroup = [&](QChar c) { return (!group.isNull() && c == group) || (blankGroups && isBlank(c)); };
    auto isDecimal = [&](QChar c) { return c == QLatin1Char('.') || c == decimal; };

    // The decimal point, if any, is the last separator; it stands once, and a
    // separator that also groups thousands is read as grouping when exactly
    // three digits follow it ("1.250" in Spanish is twelve hundred and fifty).
    qsizetype mark = -1;
    for (qsizetype i = t.size() - 1; i >= 0; --i) {
        const QChar c = t.at(i);
        if (c.isDigit())
            continue;
        const qsizetype digitsAfter = t.size() - i - 1;
        if (isDecimal(c) && t.count(c) == 1 && !(isGroup(c) && digitsAfter == 3))
            mark = i;
        break;
    }
    const auto whole = ungroup(mark < 0 ? t : t.left(mark), isGroup);
    const QString fraction = mark < 0 ? QString() : t.mid(mark + 1);
    if (!whole || !onlyDigits(fraction) || (whole->isEmpty() && fraction.isEmpty()))
        return std::nullopt;

    bool ok = false;
    const QString canonical = (whole->isEmpty() ? QStringLiteral("0") : *whole) + QLatin1Char('.')
                              + (fraction.isEmpty() ? QStringLiteral("0") : fraction);
    const double value = QLocale::c().toDouble(canonical, &ok);
    if (!ok || !std::isfinite(value) || value >= LargestAmount)
        return std::nullopt;
    return negative ? -value : value;
}

std::optional<qint32> parsePositiveWholeNumber(const QString &text)
{
    const QString t = text.trimmed();
    if (t.isEmpty() || t.size() > 10 || !onlyDigits(t))
        return std::nullopt;
    const qint64 value = t.toLongLong();
    if (value < 1 || value > std::numeric_limits<qint32>::max())
        return std::nullopt;
    return static_cast<qint32>(value);
}

QString plainNumber(double value)
{
    QString text = QString::number(value, 'f', 4);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    if (text == QLatin1String("-0"))
        text = QStringLiteral("0");
    return text;
}

} // namespace fenlark

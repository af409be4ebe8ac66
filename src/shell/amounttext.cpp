#include "shell/amounttext.h"

#include <limits>

namespace fenlark {

namespace {

bool onlyDigits(const QString &text)
{
    for (QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return true;
}

} // namespace

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

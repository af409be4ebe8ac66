#include "shell/textformat.h"

#include "shell/money.h"

#include <QLocale>

#include <cmath>

namespace fenlark {

QString fieldText(const QVariant &value)
{
    return value.isNull() ? QString() : value.toString().trimmed();
}

QString dateLiteral(const QDate &date)
{
    return QStringLiteral("#%1-%2-%3#")
        .arg(date.year())
        .arg(date.month(), 2, 10, QLatin1Char('0'))
        .arg(date.day(), 2, 10, QLatin1Char('0'));
}

double safeDouble(const QString &text)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

QDateTime parseDate(const QString &text)
{
    auto number = [&](int from, int length) {
        bool ok = false;
        const int n = text.mid(from, length).toInt(&ok);
        return ok ? n : -1;
    };
    const int day = number(0, 2);
    const int month = number(3, 2);
    if (text.size() == 10)
        return QDateTime(QDate(number(6, 4), month, day), QTime(0, 0));
    const int year = number(6, 2);
    if (year < 0)
        return {};
    const QDate date(2000 + year, month, day);
    if (text.size() > 8) {
        const QTime time = QTime::fromString(text.right(9).trimmed(), QStringLiteral("hh:mm:ss"));
        return QDateTime(date, time.isValid() ? time : QTime(0, 0));
    }
    return QDateTime(date, QTime(0, 0));
}

int numericKey(int keyCode)
{
    if ((keyCode >= '0' && keyCode <= '9') || keyCode == 8 || keyCode == 44 || keyCode == 46)
        return keyCode;
    return 0;
}

QString formatAmount(double amount)
{
    const double rounded = roundMoney(amount);
    return QString::number(rounded == 0.0 ? 0.0 : rounded, 'f', 2);
}

QString formatCurrency(double amount)
{
    return QLocale::system().currencySymbol(QLocale::CurrencySymbol) + formatAmount(amount);
}

QString columnLetter(int column)
{
    QString letters;
    while (column > 0) {
        const int digit = (column - 1) % 26;
        letters.prepend(QChar('A' + digit));
        column = (column - 1) / 26;
    }
    return letters;
}

QString flattenLines(const QString &text)
{
    QString out = text;
    out.replace(QStringLiteral("\r\n"), QStringLiteral(" / "));
    out.replace(QLatin1Char('\r'), QStringLiteral(" / "));
    out.replace(QLatin1Char('\n'), QStringLiteral(" / "));
    return out;
}

} // namespace fenlark

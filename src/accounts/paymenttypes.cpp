#include "accounts/paymenttypes.h"

#include "shell/strings.h"

namespace fenlark {

QString paymentTypeName(const QString &code)
{
    if (code == QLatin1String("0"))
        return getString(5010, QStringLiteral("Bank"));
    if (code == QLatin1String("1"))
        return getString(5011, QStringLiteral("Cash"));
    if (code == QLatin1String("2"))
        return getString(5012, QStringLiteral("Credit Card"));
    if (code == QLatin1String("3"))
        return getString(5013, QStringLiteral("Other"));
    if (code == QLatin1String("4"))
        return getString(5014, QStringLiteral("Commission"));
    return getString(5015, QStringLiteral("Unknown Type"));
}

} // namespace fenlark

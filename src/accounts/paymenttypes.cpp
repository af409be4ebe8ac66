#include "accounts/paymenttypes.h"

#include "shell/strings.h"

namespace fenlark {

QString paymentTypeName(const QString &code)
{
    if (code == QLatin1String("0"))
        return getString(2235, QStringLiteral("Bank"));
    if (code == QLatin1String("1"))
        return getString(2236, QStringLiteral("Cash"));
    if (code == QLatin1String("2"))
        return getString(2237, QStringLiteral("Credit Card"));
    if (code == QLatin1String("3"))
        return getString(2127, QStringLiteral("Other"));
    if (code == QLatin1String("4"))
        return getString(2161, QStringLiteral("Commission"));
    return getString(2238, QStringLiteral("Unknown Type"));
}

} // namespace fenlark

#include "accounts/accountrefusals.h"

namespace fenlark::refusals {

Refusal notAnAmount(const QString &typed)
{
    return Refusal(6620, QStringLiteral("\"%1\" is not an amount: type digits with a decimal point, such as 1250.50."), 6604,
                   QStringLiteral("Invalid amount"))
        .arg(typed.trimmed());
}

Refusal missingClient(qint32 clientId)
{
    return Refusal(5005, QStringLiteral("Could not find client (%1). Please call veldmoor to see why this might happen."), 5006,
                   QStringLiteral("Missing client information"))
        .arg(clientId);
}

Refusal missingAccount(qint32 accountId)
{
    return Refusal(6621, QStringLiteral("Account %1 could not be found."), 6622, QStringLiteral("Missing account")).arg(accountId);
}

Refusal extraAccountClosed()
{
    return Refusal(6640, QStringLiteral("The parent account is closed for this extra. Re-open the account if you want to make changes."),
                   6641, QStringLiteral("Account closed for extra"));
}

Refusal permissionDenied()
{
    return Refusal(5100, QStringLiteral("Your user group permission doesn't allow this action."), 5101,
                   QStringLiteral("Permission denied."));
}

} // namespace fenlark::refusals

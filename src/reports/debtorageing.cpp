#include "reports/debtorageing.h"

namespace fenlark {

AgeLimits AgeLimits::from(const QDate &today)
{
    AgeLimits limits;
    limits.current = today;
    limits.days30 = today.addMonths(-1);
    limits.days60 = limits.days30.addMonths(-1);
    limits.days90 = limits.days60.addMonths(-1);
    return limits;
}

DebtAge AgeLimits::ageOf(const QDate &tranDate) const
{
    if (tranDate <= days90)
        return DebtAge::Days90;
    if (tranDate <= days60)
        return DebtAge::Days60;
    if (tranDate <= days30)
        return DebtAge::Days30;
    if (tranDate <= current)
        return DebtAge::Current;
    return DebtAge::Future;
}

} // namespace fenlark

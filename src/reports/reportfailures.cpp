#include "reports/reportfailures.h"

namespace fenlark {

Refusal reportNotWritten(const QString &path, const QString &reason)
{
    return Refusal(6216, QStringLiteral("The report could not be written to %1: %2"), 6217,
                   QStringLiteral("Report not written"))
        .arg(path)
        .arg(reason);
}

} // namespace fenlark

#include "shell/stayoverlap.h"

#include "shell/database.h"

namespace fenlark {

QString stayOverlapSql(const QString &booking)
{
    // One day more than the longest stay, so that a ToDate written with a time of
    // day still sorts inside the bound.
    return QStringLiteral("%1.ToDate > ? and %1.FromDate <= ? and %1.ToDate <= date(?, '+' || "
                          "(select ifnull(max(julianday(ToDate) - julianday(FromDate)), 0) + 1 from booking) || ' days')")
        .arg(booking);
}

QVariantList stayOverlapValues(const QDate &first, const QDate &last)
{
    return {sqlDate(first), sqlDate(last), sqlDate(last)};
}

} // namespace fenlark

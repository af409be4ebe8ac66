#include "clients/sources.h"

#include "shell/database.h"
#include "shell/textcompare.h"

#include <QSqlQuery>

#include <algorithm>

namespace fenlark {

QStringList bookingSources(Database &db, const QString &prefix)
{
    QString sql = QStringLiteral("select source from booking where source is not null and length(source) > 0");
    QVariantList values;
    if (!prefix.isEmpty()) {
        sql += QStringLiteral(" and foldcase(source) like ?");
        values << foldCase(prefix) + QLatin1Char('%');
    }
    sql += QStringLiteral(" group by source");
    QStringList sources;
    QSqlQuery q = db.query(sql, values);
    while (q.next())
        sources << q.value(0).toString();
    std::sort(sources.begin(), sources.end(), NameOrder());
    return sources;
}

double newestAgentComm(Database &db, const QString &source)
{
    return db.scalar(QStringLiteral("select agentcomm from booking where source = ? order by bbbookingid desc limit 1"),
                     {source})
        .toDouble();
}

} // namespace fenlark

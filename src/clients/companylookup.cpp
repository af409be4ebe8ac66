#include "clients/companylookup.h"

#include "shell/database.h"

#include <QSqlQuery>

namespace fenlark {

std::vector<CompanyRow> lookupCompanies(Database &db, const QString &prefix)
{
    std::vector<CompanyRow> rows;
    QSqlQuery &q = db.repeatedQuery(QStringLiteral("select company, phoneno, add1 from client "
                                                   "where company like ? and length(company) > 0 "
                                                   "group by company, phoneno, add1 order by company, phoneno, add1"),
                                    {QString(prefix + QLatin1Char('%'))});
    while (q.next())
        rows.push_back({q.value(0).toString(), q.value(1).toString(), q.value(2).toString()});
    q.finish();
    return rows;
}

std::optional<CompanyDetails> companyDetails(Database &db, const CompanyRow &row)
{
    QSqlQuery &q = db.repeatedQuery(QStringLiteral("select company, phoneno, add1, add2, vatno, bbratesheetid from client "
                                                   "where company = ? and phoneno = ? and add1 = ? "
                                                   "order by bbclientid limit 1"),
                                    {row.Company, row.PhoneNo, row.Add1});
    std::optional<CompanyDetails> details;
    if (q.next())
        details = CompanyDetails{q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                                 q.value(3).toString(), q.value(4).toString(), static_cast<qint16>(q.value(5).toInt())};
    q.finish();
    return details;
}

} // namespace fenlark

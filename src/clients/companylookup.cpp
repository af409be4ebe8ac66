#include "clients/companylookup.h"

#include "shell/database.h"
#include "shell/textcompare.h"

#include <QSqlQuery>

namespace fenlark {

std::vector<CompanyRow> lookupCompanies(Database &db, const QString &prefix)
{
    std::vector<CompanyRow> rows;
    // The prefix is matched against the folded names clientfold keeps, so case
    // does not matter in any alphabet.
    QSqlQuery &q = db.repeatedQuery(QStringLiteral("select client.company, client.phoneno, client.add1 from clientfold, client "
                                                   "where clientfold.company like ? and client.bbclientid = clientfold.bbclientid "
                                                   "and length(client.company) > 0 "
                                                   "group by client.company, client.phoneno, client.add1 "
                                                   "order by client.company, client.phoneno, client.add1"),
                                    {QString(foldCase(prefix) + QLatin1Char('%'))});
    while (q.next())
        rows.push_back({q.value(0).toString(), q.value(1).toString(), q.value(2).toString()});
    q.finish();
    return rows;
}

std::optional<CompanyDetails> companyDetails(Database &db, const CompanyRow &row)
{
    QSqlQuery &q = db.repeatedQuery(QStringLiteral("select company, phoneno, add1, add2, vatno, bbratesheetid from client "
                                                   "where bbclientid in (select bbclientid from clientfold where company = ? collate nocase) "
                                                   "and company = ? and phoneno = ? and add1 = ? "
                                                   "order by bbclientid limit 1"),
                                    {foldCase(row.Company), row.Company, row.PhoneNo, row.Add1});
    std::optional<CompanyDetails> details;
    if (q.next())
        details = CompanyDetails{q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                                 q.value(3).toString(), q.value(4).toString(), static_cast<qint16>(q.value(5).toInt())};
    q.finish();
    return details;
}

} // namespace fenlark

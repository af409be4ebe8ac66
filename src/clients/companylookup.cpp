#include "clients/companylookup.h"

#include "shell/database.h"
#include "shell/textcompare.h"

#include <QRegularExpression>
#include <QSqlQuery>

namespace fenlark {

std::vector<CompanyRow> lookupCompanies(Database &db, const QString &prefix)
{
    // Companies are matched in their folded form, so case does not matter in any
    // alphabet. The typed text up to its first wildcard is a range of the index
    // on the folded company; only a text with a wildcard in it needs the pattern
    // as well, which folds every company in the range again.
    const QString folded = foldCase(prefix);
    const qsizetype wildcard = folded.indexOf(QRegularExpression(QStringLiteral("[%_]")));
    const QString literal = wildcard < 0 ? folded : folded.left(wildcard);
    QString sql = QStringLiteral("select company, phoneno, add1 from client "
                                 "where foldcase(company) >= ? and foldcase(company) < ? and length(company) > 0");
    QVariantList values{literal, QString(literal + QString::fromUcs4(U"\U0010FFFF"))};
    if (wildcard >= 0) {
        sql += QStringLiteral(" and foldcase(company) like ?");
        values << QString(folded + QLatin1Char('%'));
    }
    sql += QStringLiteral(" group by company, phoneno, add1 order by company, phoneno, add1");
    QSqlQuery &q = db.repeatedQuery(sql, values);
    std::vector<CompanyRow> rows;
    while (q.next())
        rows.push_back({q.value(0).toString(), q.value(1).toString(), q.value(2).toString()});
    q.finish();
    return rows;
}

std::optional<CompanyDetails> companyDetails(Database &db, const CompanyRow &row)
{
    // "+company": without it SQLite would put the value into foldcase(company)
    // and no longer see the indexed expression.
    QSqlQuery &q = db.repeatedQuery(QStringLiteral("select bbclientid, add2, vatno, bbratesheetid from client "
                                                   "where foldcase(company) = ? and +company = ? and phoneno = ? and add1 = ?"),
                                    {foldCase(row.Company), row.Company, row.PhoneNo, row.Add1});
    std::optional<CompanyDetails> details;
    qint32 first = 0;
    while (q.next()) {
        const qint32 key = q.value(0).toInt();
        if (details && key > first)
            continue;
        first = key;
        details = CompanyDetails{row.Company, row.PhoneNo, row.Add1, q.value(1).toString(), q.value(2).toString(),
                                 static_cast<qint16>(q.value(3).toInt())};
    }
    q.finish();
    return details;
}

} // namespace fenlark

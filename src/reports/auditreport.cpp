#include "reports/reportbuilders.h"
#include "reports/reportlookups.h"
#include "reports/reporttable.h"
#include "shell/database.h"
#include "shell/strings.h"

namespace fenlark {

ReportSheet securityAudit(Database &db, const ReportCriteria &criteria)
{
    enum { AuditDate = 1, User, AuditNote };
    ReportSheet sheet;
    sheet.setTitle(getString(2206, QStringLiteral("Security Audit for ")) + titleDate(criteria.from) +
                   getString(1688, QStringLiteral(" to ")) + titleDate(criteria.to));
    sheet.setPlainTitle(getString(6245, QStringLiteral("Security Audit between ")) + titleDate(criteria.from) +
                        getString(6243, QStringLiteral(" and ")) + titleDate(criteria.to));
    ReportTable table(sheet, 3,
                      {reportColumn(6328, "Audit Date", ColumnKind::DateTime), reportColumn(6329, "User"),
                       reportColumn(6330, "Audit Note", ColumnKind::Notes)});
    // The whole of the last day: every moment before the next midnight.
    QSqlQuery q = db.query(QStringLiteral("select auditdate, UserName, Notes from audit "
                                          "where auditdate >= ? and auditdate < ? order by auditdate"),
                           {sqlDate(criteria.from), sqlDate(criteria.to.addDays(1))});
    while (q.next()) {
        table.addRow();
        table.dateTime(AuditDate, sqlDay(q.value(0)), sqlTime(q.value(0)));
        table.text(User, q.value(1).toString());
        table.text(AuditNote, q.value(2).toString());
    }
    table.finish(false);
    return sheet;
}

} // namespace fenlark

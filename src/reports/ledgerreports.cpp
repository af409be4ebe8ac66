// The reports over the client ledger: Debtors (age analysis) and Client Transactions.
#include "reports/debtorageing.h"
#include "reports/reportbuilders.h"
#include "reports/reportlookups.h"
#include "reports/reporttable.h"
#include "shell/database.h"
#include "shell/money.h"
#include "shell/strings.h"

#include <QHash>

#include <array>
#include <cmath>

namespace fenlark {

namespace {

struct Debtor {
    qint32 BBClientID = 0;
    double balance = 0;
};

// The clients whose ledger does not come to nothing in whole units (a debt of
// 0.40 is left out, as is one of exactly 0.50), most owing first.
std::vector<Debtor> debtors(Database &db)
{
    std::vector<Debtor> list;
    QSqlQuery q = db.query(QStringLiteral("select BBClientID, sum(Amount) from clienttran group by BBClientID"));
    while (q.next()) {
        const double balance = q.value(1).toDouble();
        // Rounded to whole units with ties to even, a balance is 0 exactly when it
        // lies within half a unit of 0, the half included.
        if (std::abs(roundMoney(balance)) > 0.5)
            list.push_back({q.value(0).toInt(), balance});
    }
    std::stable_sort(list.begin(), list.end(), [](const Debtor &a, const Debtor &b) { return a.balance > b.balance; });
    return list;
}

// The open (unmatched) rows of every client, added up by age.
QHash<qint32, std::array<double, 4>> agedOpenRows(Database &db, const AgeLimits &limits)
{
    QHash<qint32, std::array<double, 4>> aged;
    QSqlQuery q = db.query(QStringLiteral("select BBClientID, TranDate, Amount from clienttran where Matched = 0"));
    while (q.next()) {
        const DebtAge age = limits.ageOf(sqlDay(q.value(1)));
        if (age == DebtAge::Future)
            continue;
        auto &columns = aged[q.value(0).toInt()];
        columns[static_cast<size_t>(age)] += q.value(2).toDouble();
    }
    return aged;
}

} // namespace

ReportSheet debtorsReport(Database &db, const ReportCriteria &criteria)
{
    enum { ClientId = 1, Company, Client, Current, Days30, Days60, Days90, Total, PhoneNo, Email };
    ReportSheet sheet;
    sheet.setTitle(getString(6237, QStringLiteral("Debtors/Age Analysis")) + getString(6238, QStringLiteral(" up to ")) +
                   titleDate(criteria.from));
    ReportTable table(sheet, 3,
                      {reportColumn(6297, "Client ID", ColumnKind::Number), reportColumn(6275, "Company"),
                       reportColumn(6314, "Client"), reportColumn(6315, "Current", ColumnKind::Money, true),
                       reportColumn(6316, "30 Days", ColumnKind::Money, true),
                       reportColumn(6317, "60 Days", ColumnKind::Money, true),
                       reportColumn(6318, "90 Days", ColumnKind::Money, true),
                       reportColumn(6283, "Total", ColumnKind::Money, true), reportColumn(6307, "Phone No."),
                       reportColumn(6291, "Email")});
    const QHash<qint32, std::array<double, 4>> aged = agedOpenRows(db, AgeLimits::from(criteria.today));
    const QString clientSql = QStringLiteral(
        "select Title, FirstName, Surname, Company, PhoneNo, Email from client where BBClientID = ?");
    for (const Debtor &debtor : debtors(db)) {
        table.addRow();
        table.number(ClientId, debtor.BBClientID);
        QSqlQuery &q = db.repeatedQuery(clientSql, {debtor.BBClientID});
        if (q.next()) {
            table.text(Company, q.value(3).toString());
            table.text(Client, clientNameAt(q, 0));
            table.text(PhoneNo, q.value(4).toString());
            table.text(Email, q.value(5).toString());
        }
        const std::array<double, 4> columns = aged.value(debtor.BBClientID);
        table.number(Current, columns[static_cast<size_t>(DebtAge::Current)]);
        table.number(Days30, columns[static_cast<size_t>(DebtAge::Days30)]);
        table.number(Days60, columns[static_cast<size_t>(DebtAge::Days60)]);
        table.number(Days90, columns[static_cast<size_t>(DebtAge::Days90)]);
        table.rowSum(Total, Current, Days90);
    }
    table.finish(false);
    return sheet;
}

ReportSheet transactionsReport(Database &db, const ReportCriteria &criteria)
{
    enum { TranDate = 1, Type, TranNo, Client, Reference, Amount, VAT, Gross, Total };
    ReportSheet sheet;
    sheet.setTitle(getString(6239, QStringLiteral("Client Transactions")) + getString(6240, QStringLiteral(" from ")) +
                   titleDate(criteria.from) + getString(1688, QStringLiteral(" to ")) + titleDate(criteria.to));
    ReportTable table(sheet, 3,
                      {reportColumn(6319, "Tran Date", ColumnKind::Date), reportColumn(6266, "Type"),
                       reportColumn(6320, "Tran No", ColumnKind::Number), reportColumn(6314, "Client"),
                       reportColumn(6321, "Reference"), reportColumn(6282, "Amount", ColumnKind::Money, true),
                       reportColumn(6322, "VAT", ColumnKind::Money, true),
                       reportColumn(6323, "Gross", ColumnKind::Money, true),
                       reportColumn(6283, "Total", ColumnKind::Money)});

    QString sql = QStringLiteral("select t.TranDate, t.TranType, t.TranNo, c.Title, c.FirstName, c.Surname, c.Company, "
                                 "t.Reference, t.Amount, t.VAT from clienttran t "
                                 "left join client c on c.BBClientID = t.BBClientID "
                                 "where t.TranDate >= ? and t.TranDate <= ?");
    QVariantList values{sqlDate(criteria.from), sqlDate(criteria.to)};
    if (!criteria.tranType.isEmpty()) {
        sql += QStringLiteral(" and t.TranType = ?");
        values << criteria.tranType;
    }
    if (criteria.tranNo) {
        sql += QStringLiteral(" and t.TranNo = ?");
        values << *criteria.tranNo;
    }
    if (!criteria.reference.isEmpty()) {
        sql += QStringLiteral(" and t.Reference like ?");
        values << criteria.reference + QLatin1Char('%');
    }
    if (criteria.amount) {
        // Amounts are kept to the cent; one typed to the cent finds them.
        sql += QStringLiteral(" and abs(t.Amount - ?) < 0.005");
        values << roundMoney(*criteria.amount);
    }
    sql += QStringLiteral(" order by t.TranType, t.TranNo, t.BBClientTranID");

    QSqlQuery q = db.query(sql, values);
    double running = 0;
    while (q.next()) {
        const double gross = q.value(8).toDouble();
        const double vat = q.value(9).toDouble();
        running += gross;
        table.addRow();
        table.date(TranDate, sqlDay(q.value(0)));
        table.text(Type, q.value(1).toString());
        table.number(TranNo, q.value(2).toInt());
        table.text(Client, clientNameAt(q, 3));
        table.text(Reference, q.value(7).toString());
        table.number(Amount, gross - vat);
        table.number(VAT, vat);
        table.number(Gross, gross);
        table.number(Total, running);
    }
    table.finish(true);
    return sheet;
}

} // namespace fenlark

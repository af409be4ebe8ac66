#include "accounts/accountsearch.h"

#include "accounts/accounts.h"
#include "clients/clientnames.h"
#include "shell/database.h"

#include <QSqlQuery>

namespace fenlark {

QString AccountListRow::statusName() const
{
    return getAccountStatusName(status);
}

Result<std::vector<AccountListRow>> searchAccounts(Database &db, const AccountSearchCriteria &criteria)
{
    QString sql = QStringLiteral("select account.bbaccountid, account.invoiceto, account.reference, account.status, "
                                 "client.title, client.firstname, client.surname, client.company "
                                 "from account, client where account.invoiceto = client.bbclientid");
    QVariantList values;
    if (!criteria.accountId.trimmed().isEmpty()) {
        bool ok = false;
        const int id = criteria.accountId.trimmed().toInt(&ok);
        if (!ok)
            return Refusal(6692, QStringLiteral("The account ID must be a whole number."), 6773, QStringLiteral("Account Search"));
        sql += QStringLiteral(" and account.bbaccountid = ?");
        values << id;
    }
    if (!criteria.surname.isEmpty()) {
        sql += QStringLiteral(" and client.surname like ?");
        values << criteria.surname + QLatin1Char('%');
    }
    if (!criteria.company.isEmpty()) {
        sql += QStringLiteral(" and client.company like ?");
        values << criteria.company + QLatin1Char('%');
    }
    if (!criteria.reference.isEmpty()) {
        sql += QStringLiteral(" and account.reference like ?");
        values << criteria.reference + QLatin1Char('%');
    }
    if (!criteria.status.isEmpty()) {
        sql += QStringLiteral(" and account.status = ?");
        values << criteria.status;
    }
    if (criteria.clientId > 0) {
        sql += QStringLiteral(" and account.invoiceto = ?");
        values << criteria.clientId;
    }
    if (criteria.upTo.isValid()) {
        sql += QStringLiteral(" and exists (select 1 from booking where booking.bbaccountid = account.bbaccountid and booking.fromdate <= ?)");
        values << sqlDate(criteria.upTo);
    }
    sql += QStringLiteral(" order by account.bbaccountid desc");

    std::vector<AccountListRow> rows;
    QSqlQuery q = db.query(sql, values);
    while (q.next()) {
        AccountListRow row;
        row.accountId = q.value(0).toInt();
        row.clientId = q.value(1).toInt();
        row.reference = q.value(2).toString();
        row.status = q.value(3).toString();
        row.client = QStringLiteral("(%1) ").arg(row.clientId)
                     + clientName(q.value(4).toString(), q.value(5).toString(), q.value(6).toString(), q.value(7).toString());
        rows.push_back(std::move(row));
    }
    return rows;
}

Refusal noAccountsFound()
{
    return Refusal(6694, QStringLiteral("No accounts found with this search criteria"), 6613, QStringLiteral("No Records found"))
        .asInformation();
}

} // namespace fenlark

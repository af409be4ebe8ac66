#include "clients/clientaccounts.h"

#include "clients/clientrecords.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace fenlark {

namespace {

QStringList accountItems(Database &db, qint32 accountId)
{
    QStringList items;
    QSqlQuery bookings = db.query(QStringLiteral("select bbbookingid, fromdate, client.* from booking, account, client "
                                                 "where account.bbaccountid = booking.bbaccountid "
                                                 "and account.invoiceto = client.bbclientid and account.bbaccountid = ? "
                                                 "order by booking.fromdate, booking.bbbookingid"),
                                  {accountId});
    while (bookings.next()) {
        Client client;
        client.fillFields(bookings.record());
        items << ledgerDate(dateFromSql(bookings.value(1))) + QStringLiteral("  ") + client.FullName() + QStringLiteral("  ") +
                     fillArguments(getString(6931, QStringLiteral("BkID %1")), {bookings.value(0).toString()});
    }
    if (!items.isEmpty())
        return items;
    QSqlQuery extras = db.query(QStringLiteral("select extra.extradate, extra.qty, extra.price, stock.stockname "
                                               "from account, extra, client, stock "
                                               "where account.bbaccountid = extra.bbaccountid "
                                               "and account.invoiceto = client.bbclientid and extra.bbstockid = stock.bbstockid "
                                               "and account.bbaccountid = ? order by extra.extradate, extra.bbextraid"),
                                {accountId});
    while (extras.next()) {
        items << ledgerDate(dateFromSql(extras.value(0))) + QStringLiteral(" (") + QString::number(extras.value(1).toDouble()) +
                     QStringLiteral(" x ") + extras.value(3).toString() + QStringLiteral(" @") +
                     formatAmount(roundMoney(extras.value(2).toDouble())) + QStringLiteral(")");
    }
    if (items.isEmpty())
        items << getString(6930, QStringLiteral("Error: could not find any data"));
    return items;
}

} // namespace

std::vector<ClientAccount> clientAccounts(Database &db, qint32 clientId)
{
    std::vector<ClientAccount> accounts;
    QSqlQuery q = db.query(QStringLiteral("select * from account where invoiceto = ? order by status desc, bbaccountid desc"),
                           {clientId});
    while (q.next()) {
        ClientAccount entry;
        entry.account.fillFields(q.record());
        accounts.push_back(std::move(entry));
    }
    for (ClientAccount &entry : accounts)
        entry.items = accountItems(db, entry.account.BBAccountID);
    return accounts;
}

std::vector<ClientTran> clientLedger(Database &db, qint32 clientId)
{
    std::vector<ClientTran> rows;
    QSqlQuery q = db.query(QStringLiteral("select * from clienttran where bbclientid = ? order by trandate desc, bbclienttranid desc"),
                           {clientId});
    while (q.next()) {
        ClientTran row;
        row.fillFields(q.record());
        rows.push_back(std::move(row));
    }
    return rows;
}

double ledgerBalance(Database &db, qint32 clientId)
{
    double balance = 0;
    QSqlQuery q = db.query(QStringLiteral("select amount from clienttran where bbclientid = ?"), {clientId});
    while (q.next())
        balance += q.value(0).toDouble();
    return roundMoney(balance);
}

QString ledgerDate(const QDate &date)
{
    return date.toString(QStringLiteral("dd/MM/yyyy"));
}

} // namespace fenlark

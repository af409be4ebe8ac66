#include "accounts/accounts.h"

#include "accounts/accountrecords.h"
#include "accounts/extraqueries.h"
#include "shell/strings.h"

namespace fenlark {

QString getAccountStatusName(const QString &status)
{
    if (status == accountstatus::Open)
        return getString(5700, QStringLiteral("Uninvoiced"));
    return getString(5701, QStringLiteral("Closed"));
}

QString getAccountStatusAction(const QString &status)
{
    if (status == accountstatus::Open)
        return getString(5702, QStringLiteral("Close"));
    return getString(5703, QStringLiteral("Open"));
}

qint32 createAccount(Database &db, qint32 clientId)
{
    Account account;
    account.InvoiceTo = clientId;
    account.Status = accountstatus::Open;
    account.VatCode = 1;
    account.update(db);
    return account.BBAccountID;
}

qint32 getOpenAccount(Database &db, qint32 clientId)
{
    Transaction transaction(db);
    const int open =
        db.scalar(QStringLiteral("select count(*) as cnt from account where invoiceto = ? and status = 'O'"), {clientId}).toInt();
    qint32 id = 0;
    if (open == 1)
        id = db.scalar(QStringLiteral("select bbaccountid from account where invoiceto = ? and status = 'O'"), {clientId}).toInt();
    else
        id = createAccount(db, clientId);
    transaction.commit();
    return id;
}

bool Account::fetchAccounts(Database &db, qint32 accountId, qint32 invoiceTo)
{
    return db.scalar(QStringLiteral("select bbaccountid from account where bbaccountid <> ? and invoiceto = ? and status = 'O'"),
                     {accountId, invoiceTo})
        .isValid();
}

double Account::getBalanceOnAccount(Database &db, qint32 accountId)
{
    const double accommodation =
        // The rooms of each booking are found through the booking, not through
        // every stay ever made in the same room.
        db.scalar(QStringLiteral("select sum(dailyrate.roomrate) as total from booking, dailyrate "
                                 "where booking.bbaccountid = ? and dailyrate.bbbookingid = booking.bbbookingid "
                                 "and dailyrate.bbroomid in (select guest.bbroomid from guest where guest.bbbookingid = booking.bbbookingid)"),
                  {accountId})
            .toDouble();
    double extras = 0;
    for (const Extra &extra : getExtras(db, accountId))
        extras += extra.Qty * extra.Price;
    const double payments =
        db.scalar(QStringLiteral("select sum(amount) as total from payment where bbaccountid = ?"), {accountId}).toDouble();
    return accommodation + extras + (-payments);
}

bool Account::hasPayments(Database &db, qint32 accountId)
{
    return db.scalar(QStringLiteral("select bbpaymentid from payment where bbaccountid = ?"), {accountId}).isValid();
}

int Account::getItemCount(Database &db, qint32 accountId)
{
    return db.scalar(QStringLiteral("select count(*) as cnt from booking where bbaccountid = ?"), {accountId}).toInt() +
           getExtrasCount(db, accountId);
}

int Account::getExtrasCount(Database &db, qint32 accountId)
{
    return db.scalar(QStringLiteral("select count(*) as cnt from extra where bbaccountid = ?"), {accountId}).toInt();
}

std::vector<Payment> Account::getPayments(Database &db, qint32 accountId)
{
    std::vector<Payment> payments;
    QSqlQuery q = db.query(QStringLiteral("select * from payment where bbaccountid = ? order by paymentdate, bbpaymentid"), {accountId});
    while (q.next()) {
        Payment payment;
        payment.fillFields(q.record());
        payments.push_back(std::move(payment));
    }
    return payments;
}

} // namespace fenlark

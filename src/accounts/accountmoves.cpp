#include "accounts/accountmoves.h"

#include "accounts/accountrecords.h"
#include "accounts/accountrefusals.h"
#include "accounts/accounts.h"
#include "accounts/accountvalidator.h"
#include "accounts/accountview.h"
#include "bookings/bookingrecords.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "shell/amounttext.h"
#include "shell/strings.h"

#include <QLocale>

namespace fenlark {

namespace {

Refusal cannotMove(int id, const QString &english)
{
    return Refusal(id, english, 6708, QStringLiteral("Move account item"));
}

QString shortDate(const QDate &date)
{
    return QLocale().toString(date, QLocale::ShortFormat);
}

// Checks the move and runs it inside the caller's transaction; the target must
// exist. Returns the booking whose account or extras changed.
Result<Changes> moveChecked(Database &db, const AccountItemRef &item, qint32 targetAccountId)
{
    const qint32 from = accountOfItem(db, item);
    if (from == 0 && !(item.kind == AccountItemRef::Booking ? Booking().fetch(db, item.id) : Extra().fetch(db, item.id)))
        return cannotMove(6707, QStringLiteral("The item to move could not be found."));
    Account current;
    if (current.fetch(db, from) && current.Status != accountstatus::Open)
        return itemOnClosedAccount();
    Account target;
    if (!target.fetch(db, targetAccountId))
        return refusals::missingAccount(targetAccountId);
    if (target.Status != accountstatus::Open)
        return cannotMove(6710, QStringLiteral("Account %1 is closed: an item can only move to an open account.")).arg(targetAccountId);
    if (from == targetAccountId)
        return cannotMove(6711, QStringLiteral("The item is already on account %1.")).arg(targetAccountId);

    Changes changes;
    if (item.kind == AccountItemRef::Extra) {
        Extra extra;
        extra.fetch(db, item.id);
        extra.BBAccountID = targetAccountId;
        extra.update(db);
        AccountValidator().validateGuestAccount(db, extra.BBGuestID);
        Guest guest;
        if (guest.fetch(db, extra.BBGuestID))
            changes.booking(guest.BBBookingID);
    } else {
        Booking booking;
        booking.fetch(db, item.id);
        booking.BBAccountID = targetAccountId;
        booking.update(db);
        Extra::changeAccount(db, from, targetAccountId, booking.BBBookingID);
        changes.booking(booking.BBBookingID);
    }
    AccountValidator().validateAccount(db, from, targetAccountId);
    return changes;
}

} // namespace

Refusal itemOnClosedAccount()
{
    return cannotMove(6709, QStringLiteral("Cannot move item. This account is closed."));
}

QString describeItem(Database &db, const AccountItemRef &item)
{
    if (item.kind == AccountItemRef::Booking) {
        QSqlQuery q = db.query(QStringLiteral("select booking.fromdate, client.firstname, client.surname, client.company "
                                              "from booking left join client on booking.madeby = client.bbclientid "
                                              "where booking.bbbookingid = ?"),
                               {item.id});
        if (!q.next())
            return getString(6713, QStringLiteral("Error - for BK ID %1")).arg(item.id);
        return getString(6712, QStringLiteral("BkID %1 arriving %2 - %3"))
            .arg(QString::number(item.id), shortDate(dateFromSql(q.value(0))),
                 getDisplayName(q.value(1).toString(), q.value(2).toString(), q.value(3).toString()));
    }
    QSqlQuery q = db.query(QStringLiteral("select extra.extradate, extra.qty, stock.stockname from extra "
                                          "left join stock on extra.bbstockid = stock.bbstockid where extra.bbextraid = ?"),
                           {item.id});
    if (!q.next())
        return getString(6715, QStringLiteral("Error - for Extra ID - %1")).arg(item.id);
    return getString(6714, QStringLiteral("Extra - %1 (%2 x %3)"))
        .arg(shortDate(dateFromSql(q.value(0))), plainNumber(q.value(1).toDouble()), q.value(2).toString());
}

qint32 accountOfItem(Database &db, const AccountItemRef &item)
{
    const QString sql = item.kind == AccountItemRef::Booking
        ? QStringLiteral("select bbaccountid from booking where bbbookingid = ?")
        : QStringLiteral("select bbaccountid from extra where bbextraid = ?");
    return db.scalar(sql, {item.id}).toInt();
}

std::vector<OpenAccountChoice> otherOpenAccounts(Database &db, qint32 clientId, qint32 exceptAccountId)
{
    std::vector<OpenAccountChoice> choices;
    std::vector<Account> accounts;
    QSqlQuery q = db.query(QStringLiteral("select * from account where invoiceto = ? and bbaccountid <> ? and status = 'O' "
                                          "order by bbaccountid"),
                           {clientId, exceptAccountId});
    while (q.next()) {
        Account account;
        account.fillFields(q.record());
        accounts.push_back(std::move(account));
    }
    for (const Account &account : accounts) {
        OpenAccountChoice choice;
        choice.accountId = account.BBAccountID;
        choice.text = getString(6716, QStringLiteral("A/C ID %1 - %2")).arg(QString::number(account.BBAccountID), account.Reference);
        if (const auto summary = loadAccountSummary(db, account.BBAccountID)) {
            for (const AccountItem &line : summary->items)
                choice.items << shortDate(line.date) + QStringLiteral("  ") + line.description;
        }
        choices.push_back(std::move(choice));
    }
    return choices;
}

Result<Changes> moveItem(Database &db, const AccountItemRef &item, qint32 targetAccountId)
{
    Transaction transaction(db);
    auto moved = moveChecked(db, item, targetAccountId);
    if (moved)
        transaction.commit();
    return moved;
}

Result<ItemMoved> moveItemToNewAccount(Database &db, const AccountItemRef &item)
{
    Account current;
    if (!current.fetch(db, accountOfItem(db, item)))
        return cannotMove(6707, QStringLiteral("The item to move could not be found."));
    Transaction transaction(db);
    ItemMoved result;
    result.accountId = createAccount(db, current.InvoiceTo);
    auto moved = moveChecked(db, item, result.accountId);
    if (!moved)
        return moved.refusal();
    result.changes = *moved;
    transaction.commit();
    return result;
}

Result<ClientMove> moveItemToClient(Database &db, const AccountItemRef &item, qint32 clientId)
{
    if (!Client().fetch(db, clientId))
        return refusals::missingClient(clientId);
    ClientMove result;
    std::vector<OpenAccountChoice> open = otherOpenAccounts(db, clientId, 0);
    if (open.size() > 1) {
        result.choices = std::move(open);
        return result;
    }
    Transaction transaction(db);
    result.moved.accountId = open.empty() ? createAccount(db, clientId) : open.front().accountId;
    auto moved = moveChecked(db, item, result.moved.accountId);
    if (!moved)
        return moved.refusal();
    result.moved.changes = *moved;
    transaction.commit();
    return result;
}

} // namespace fenlark

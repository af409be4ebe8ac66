#include "accounts/accountview.h"

#include "accounts/accountrefusals.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "shell/amounttext.h"
#include "shell/strings.h"

namespace fenlark {

std::optional<AccountSummary> loadAccountSummary(Database &db, qint32 accountId)
{
    AccountSummary summary;
    if (!summary.account.fetch(db, accountId))
        return std::nullopt;
    Client client;
    summary.invoiceToMissing = !client.fetch(db, summary.account.InvoiceTo);
    summary.invoiceToName = summary.invoiceToMissing
        ? getString(6686, QStringLiteral("Unknown client - ID %1")).arg(summary.account.InvoiceTo)
        : client.FullName();

    // One query each for the bookings with their accommodation and for the
    // extras with their item and room names, however busy the account.
    QSqlQuery bookings = db.query(
        QStringLiteral("select booking.bbbookingid, booking.fromdate, client.firstname, client.surname, client.company, "
                       "(select sum(dailyrate.roomrate) from dailyrate where dailyrate.bbbookingid = booking.bbbookingid "
                       "and dailyrate.bbroomid in (select guest.bbroomid from guest where guest.bbbookingid = booking.bbbookingid)) as total "
                       "from booking left join client on booking.madeby = client.bbclientid "
                       "where booking.bbaccountid = ? order by booking.fromdate, booking.todate, booking.bbbookingid"),
        {accountId});
    while (bookings.next()) {
        AccountItem item;
        item.kind = AccountItem::BookingItem;
        item.id = bookings.value(0).toInt();
        item.date = dateFromSql(bookings.value(1));
        item.description = QStringLiteral("* ")
                           + getDisplayName(bookings.value(2).toString(), bookings.value(3).toString(), bookings.value(4).toString());
        item.amount = bookings.value(5).toDouble();
        summary.accommodation += item.amount;
        summary.items.push_back(std::move(item));
    }
    QSqlQuery extras = db.query(QStringLiteral("select extra.bbextraid, extra.extradate, extra.qty, extra.price, stock.stockname, room.roomname "
                                               "from extra left join stock on extra.bbstockid = stock.bbstockid "
                                               "left join guest on extra.bbguestid = guest.bbguestid "
                                               "left join room on guest.bbroomid = room.bbroomid "
                                               "where extra.bbaccountid = ? order by extra.extradate, extra.bbextraid"),
                                {accountId});
    while (extras.next()) {
        AccountItem item;
        item.kind = AccountItem::ExtraItem;
        item.id = extras.value(0).toInt();
        item.date = dateFromSql(extras.value(1));
        const double qty = extras.value(2).toDouble();
        item.description = plainNumber(qty) + QStringLiteral(" x ") + extras.value(4).toString();
        item.amount = qty * extras.value(3).toDouble();
        item.room = extras.value(5).toString();
        summary.extras += item.amount;
        summary.items.push_back(std::move(item));
    }
    summary.payments = paymentsTotal(db, accountId);
    return summary;
}

Result<Changes> saveAccountReference(Database &db, qint32 accountId, const QString &reference)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    account.Reference = reference;
    account.update(db);
    return Changes();
}

Result<Changes> changeInvoiceTo(Database &db, qint32 accountId, qint32 clientId)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    if (!Client().fetch(db, clientId))
        return refusals::missingClient(clientId);
    const qint32 oldClient = account.InvoiceTo;
    Transaction transaction(db);
    account.InvoiceTo = clientId;
    account.update(db);
    std::vector<ClientTran> twins;
    QSqlQuery q = db.query(QStringLiteral("select clienttran.* from payment, clienttran where payment.bbpaymentid = clienttran.tranno "
                                          "and clienttran.trantype = 'PMT' and payment.bbaccountid = ?"),
                           {accountId});
    while (q.next()) {
        ClientTran twin;
        twin.fillFields(q.record());
        twins.push_back(std::move(twin));
    }
    for (ClientTran &twin : twins) {
        twin.BBClientID = clientId;
        twin.update(db);
    }
    // The moved rows change both ledgers: their matched flags are brought up to date.
    if (!twins.empty()) {
        matchTransactions(db, oldClient);
        matchTransactions(db, clientId);
    }
    transaction.commit();
    Changes changes;
    QSqlQuery bookings = db.query(QStringLiteral("select bbbookingid from booking where bbaccountid = ?"), {accountId});
    while (bookings.next())
        changes.booking(bookings.value(0).toInt());
    return changes;
}

Result<QString> cardPaymentLink(Database &db, qint32 accountId, const QString &serverBase, qint32 bbid)
{
    Account account;
    if (!account.fetch(db, accountId))
        return refusals::missingAccount(accountId);
    Client client;
    client.fetch(db, account.InvoiceTo);
    if ((client.Surname.trimmed().isEmpty() && client.Company.trimmed().isEmpty()) || client.PhoneNo.trimmed().isEmpty()
        || client.Email.trimmed().isEmpty())
        return Refusal(6687,
                       QStringLiteral("Please enter a surname/company name, phone number and email for this client.\n\n"
                                      "Click the button next to the 'Invoice To' field and fill out the client's details."),
                       6688, QStringLiteral("Client details required for PayMoorgate."));
    const QVariant bookingNo =
        db.scalar(QStringLiteral("select bookingid from booking where bbaccountid = ? order by bbbookingid limit 1"), {accountId});
    if (!bookingNo.isValid())
        return Refusal(6689, QStringLiteral("You do not have any bookings linked to this account. Cannot generate a paymoorgate link."),
                       6690, QStringLiteral("Cannot generate link"));
    if (bookingNo.toInt() == 0)
        return Refusal(6691, QStringLiteral("Your bookings must first be synchronised with the server before a link can be generated."),
                       6690, QStringLiteral("Cannot generate link"));
    return serverBase + QStringLiteral("/moorgate/paymoorgate?bbid=") + QString::number(bbid) + QStringLiteral("&bookingid=")
           + QString::number(bookingNo.toInt());
}

} // namespace fenlark

#include "accounts/extras.h"

#include "accounts/accountrefusals.h"
#include "accounts/accounts.h"
#include "accounts/accountvalidator.h"
#include "accounts/extraqueries.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/strings.h"
#include "shell/textformat.h"

namespace fenlark {

namespace {

Refusal noRoom(qint32 guestId)
{
    return Refusal(6652, QStringLiteral("The room (guest ID %1) of this extra could not be found."), 6659,
                   QStringLiteral("Could not fetch Extra"))
        .arg(guestId);
}

QString stockNameOf(Database &db, qint32 stockId)
{
    Stock stock;
    return stock.fetch(db, stockId) ? stock.StockName : QString();
}

QString extraText(const Extra &extra, const QString &stockName)
{
    return plainNumber(extra.Qty) + QStringLiteral(" x ") + stockName;
}

void audit(Database &db, const UserStruct &user, const QString &text, const QString &detail)
{
    SecurityAudit entry;
    entry.User(user);
    entry.setReason(detail);
    entry.addAudit(db, text);
}

} // namespace

bool ExtraAccounts::mainOpen() const
{
    return main.BBAccountID > 0 && main.Status == accountstatus::Open;
}

bool ExtraAccounts::roomOpen() const
{
    return room.BBAccountID > 0 && room.Status == accountstatus::Open;
}

Result<ExtraAccounts> extraAccounts(Database &db, qint32 guestId)
{
    ExtraAccounts accounts;
    if (!accounts.guest.fetch(db, guestId))
        return noRoom(guestId);
    if (!accounts.booking.fetch(db, accounts.guest.BBBookingID))
        return noRoom(guestId);
    if (!accounts.main.fetch(db, accounts.booking.BBAccountID))
        return refusals::missingAccount(accounts.booking.BBAccountID);
    if (accounts.guest.BBAccountID >= 1 && accounts.guest.BBAccountID != accounts.main.BBAccountID) {
        if (!accounts.room.fetch(db, accounts.guest.BBAccountID))
            return refusals::missingAccount(accounts.guest.BBAccountID);
    } else {
        accounts.room = accounts.main;
    }
    accounts.roomClientId = accounts.room.InvoiceTo;
    if (!accounts.mainOpen() && (!accounts.roomOpen() || accounts.room.BBAccountID == accounts.main.BBAccountID)) {
        accounts.newRoomAccount = true;
        accounts.room = Account();
    }
    return accounts;
}

Refusal noExtraFound(qint32 extraId)
{
    return Refusal(6658, QStringLiteral("Internal error: No such BBExtraID %1."), 6659, QStringLiteral("Could not fetch Extra"))
        .arg(extraId);
}

Outcome canAddExtras(Database &db)
{
    if (Stock::fetchActive(db).empty())
        return Refusal(6656, QStringLiteral("You need to create stock codes on the Setup before you can add extras."), 6657,
                       QStringLiteral("Please add Stock on Setup"));
    return Done{};
}

Result<ExtraSaved> saveExtra(Database &db, const ExtraInput &input, const UserStruct &user)
{
    if (input.stockId < 1 || !Stock().fetch(db, input.stockId))
        return Refusal(6662, QStringLiteral("Please type in a description."), 6663, QStringLiteral("No description entered."));
    if (input.qtyText.trimmed().isEmpty())
        return Refusal(6664, QStringLiteral("Please type in the quantity."), 6665, QStringLiteral("No quantity entered."));
    if (input.priceText.trimmed().isEmpty())
        return Refusal(6666, QStringLiteral("Please type in the item price."), 6667, QStringLiteral("No item price entered."));
    const auto qty = parseAmount(input.qtyText, deskLocale());
    if (!qty)
        return refusals::notAnAmount(input.qtyText);
    if (*qty <= 0)
        return Refusal(6653, QStringLiteral("The quantity must be more than 0: enter a refund as a negative price."), 6654,
                       QStringLiteral("Invalid quantity"));
    const auto price = parseAmount(input.priceText, deskLocale());
    if (!price)
        return refusals::notAnAmount(input.priceText);

    Extra extra;
    if (input.extraId > 0 && !extra.fetch(db, input.extraId))
        return noExtraFound(input.extraId);
    const qint32 guestId = input.extraId > 0 ? extra.BBGuestID : input.guestId;
    auto accounts = extraAccounts(db, guestId);
    if (!accounts)
        return accounts.refusal();
    const Extra before = extra;
    const qint32 oldAccountId = extra.BBAccountID;
    if (input.extraId > 0) {
        Account current;
        if (current.fetch(db, oldAccountId) && current.Status != accountstatus::Open)
            return refusals::extraAccountClosed();
    }

    // Where the extra goes: a named account; else, unless it already stands on
    // a special account, the main or the room's account.
    const bool special = input.extraId > 0 && oldAccountId != accounts->main.BBAccountID
                         && (accounts->newRoomAccount || oldAccountId != accounts->room.BBAccountID);
    qint32 targetId = oldAccountId;
    bool makeRoomAccount = false;
    if (input.accountId) {
        Account named;
        if (!named.fetch(db, *input.accountId))
            return refusals::missingAccount(*input.accountId);
        if (named.Status != accountstatus::Open)
            return refusals::extraAccountClosed();
        targetId = named.BBAccountID;
    } else if (!special) {
        if (!input.onRoomAccount) {
            if (!accounts->mainOpen())
                return refusals::extraAccountClosed();
            targetId = accounts->main.BBAccountID;
        } else if (accounts->newRoomAccount || accounts->room.BBAccountID == accounts->main.BBAccountID) {
            makeRoomAccount = true;
        } else {
            if (!accounts->roomOpen())
                return refusals::extraAccountClosed();
            targetId = accounts->room.BBAccountID;
        }
    }

    Transaction transaction(db);
    if (makeRoomAccount) {
        targetId = createAccount(db, accounts->roomClientId);
        Guest guest = accounts->guest;
        guest.BBAccountID = targetId;
        guest.update(db);
    }
    extra.BBGuestID = guestId;
    extra.ExtraDate = input.date.isValid() ? input.date : QDate::currentDate();
    extra.BBStockID = input.stockId;
    extra.Qty = *qty;
    extra.Price = roundMoney(*price);
    extra.BBAccountID = targetId;
    extra.update(db);
    if (input.extraId > 0
        && (before.BBStockID != extra.BBStockID || before.Qty != extra.Qty || before.Price != extra.Price)) {
        audit(db, user,
              getString(6668, QStringLiteral("Extra changed from %1 (%2) to %3 (%4)"))
                  .arg(extraText(before, stockNameOf(db, before.BBStockID)), formatAmount(before.Price),
                       extraText(extra, stockNameOf(db, extra.BBStockID)), formatAmount(extra.Price)),
              getString(6669, QStringLiteral("Account ID %1")).arg(extra.BBAccountID));
    }
    AccountValidator validator;
    if (oldAccountId > 0 && oldAccountId != targetId)
        validator.validateAccount(db, oldAccountId, targetId);
    if (oldAccountId != targetId)
        validator.validateGuestAccount(db, guestId);
    transaction.commit();
    return ExtraSaved{extra, Changes().booking(accounts->booking.BBBookingID)};
}

Result<Changes> deleteExtra(Database &db, qint32 extraId, const QString &reason, const UserStruct &user)
{
    if (!isAllowed(user, SecurityAction::ExtrasDelete))
        return refusals::permissionDenied();
    Extra extra;
    if (!extra.fetch(db, extraId))
        return noExtraFound(extraId);
    Account account;
    if (account.fetch(db, extra.BBAccountID) && account.Status != accountstatus::Open)
        return refusals::extraAccountClosed();
    if (reason.trimmed().isEmpty())
        return Refusal(6660, QStringLiteral("A reason is needed to delete an extra."), 6661, QStringLiteral("Reason required"));
    Guest guest;
    guest.fetch(db, extra.BBGuestID);

    Transaction transaction(db);
    audit(db, user,
          getString(6670, QStringLiteral("Extra Deleted. A/C ID %1: %2 @ %3"))
              .arg(QString::number(extra.BBAccountID), extraText(extra, stockNameOf(db, extra.BBStockID)), formatAmount(extra.Price)),
          reason);
    Extra::remove(db, extraId);
    AccountValidator().validateGuestAccount(db, extra.BBGuestID);
    transaction.commit();
    return Changes().booking(guest.BBBookingID);
}

std::vector<ExtraRow> extrasOfRoom(Database &db, qint32 guestId)
{
    std::vector<ExtraRow> rows;
    QSqlQuery q = db.query(QStringLiteral("select extra.*, stock.stockname, account.status from extra "
                                          "left join stock on extra.bbstockid = stock.bbstockid "
                                          "left join account on extra.bbaccountid = account.bbaccountid "
                                          "where extra.bbguestid = ? order by extra.extradate, extra.bbextraid"),
                           {guestId});
    while (q.next()) {
        ExtraRow row;
        row.extra.fillFields(q.record());
        row.stockName = q.value(QStringLiteral("stockname")).toString();
        row.accountOpen = q.value(QStringLiteral("status")).toString() != accountstatus::Closed;
        rows.push_back(std::move(row));
    }
    return rows;
}

qint32 defaultAccountOf(Database &db, qint32 guestId)
{
    Guest guest;
    if (!guest.fetch(db, guestId))
        return 0;
    if (guest.BBAccountID >= 1)
        return guest.BBAccountID;
    return db.scalar(QStringLiteral("select bbaccountid from booking where bbbookingid = ?"), {guest.BBBookingID}).toInt();
}

qint32 invoiceToOf(Database &db, qint32 accountId)
{
    return db.scalar(QStringLiteral("select invoiceto from account where bbaccountid = ?"), {accountId}).toInt();
}

} // namespace fenlark

#include "accounts/accountvalidator.h"

#include "accounts/accountrecords.h"
#include "accounts/accounts.h"
#include "accounts/extraqueries.h"
#include "bookings/bookingrecords.h"

#include <QList>

namespace fenlark {

void AccountValidator::validateBooking(Database &db, const Booking &booking, qint32 oldAccountId)
{
    Transaction transaction(db);
    const qint32 bookingAccountId = booking.BBAccountID;
    QList<qint32> rooms;
    for (Extra &extra : getExtrasByBookingAndAccount(db, booking.BBBookingID, oldAccountId)) {
        extra.BBAccountID = bookingAccountId;
        extra.update(db);
        if (!rooms.contains(extra.BBGuestID))
            rooms << extra.BBGuestID;
    }
    for (qint32 guestId : rooms)
        validateGuestAccount(db, guestId);
    validateAccount(db, oldAccountId, bookingAccountId);
    transaction.commit();
}

void AccountValidator::validateAccount(Database &db, qint32 oldAccountId, qint32 newAccountId)
{
    if (Account::getItemCount(db, oldAccountId) != 0)
        return;
    Account old;
    if (!old.fetch(db, oldAccountId))
        return;
    Transaction transaction(db);
    old.Status = accountstatus::Closed;
    old.update(db);
    // Payments need an account to go to; with none they stay on the closed one.
    if (newAccountId >= 1 && newAccountId != oldAccountId && Account::hasPayments(db, oldAccountId)) {
        for (Payment &payment : Account::getPayments(db, oldAccountId)) {
            payment.BBAccountID = newAccountId;
            payment.update(db);
        }
    }
    transaction.commit();
}

void AccountValidator::returnRoomToBooking(Database &db, Guest &guest, qint32 formerAccountId, qint32 bookingAccountId)
{
    guest.BBAccountID = 0;
    guest.update(db);
    validateAccount(db, formerAccountId, bookingAccountId);
}

void AccountValidator::validateGuestAccount(Database &db, qint32 guestId)
{
    Guest guest;
    if (!guest.fetch(db, guestId))
        return;
    Account own;
    if (guest.BBAccountID >= 1)
        own.fetch(db, guest.BBAccountID);
    const qint32 formerAccountId = own.BBAccountID;
    const bool hasOwnAccount = formerAccountId >= 1;
    Booking booking;
    if (!booking.fetch(db, guest.BBBookingID))
        return;
    const qint32 bookingAccountId = booking.BBAccountID;
    const std::vector<Extra> extras = getExtrasByRoom(db, guestId);

    Transaction transaction(db);
    if (extras.empty()) {
        if (hasOwnAccount)
            returnRoomToBooking(db, guest, formerAccountId, bookingAccountId);
    } else if (extras.size() == 1) {
        const qint32 extraAccountId = extras.front().BBAccountID;
        if (extraAccountId == bookingAccountId) {
            if (hasOwnAccount)
                returnRoomToBooking(db, guest, formerAccountId, bookingAccountId);
        } else if (formerAccountId != extraAccountId) {
            guest.BBAccountID = extraAccountId;
            guest.update(db);
            if (hasOwnAccount)
                validateAccount(db, formerAccountId, extraAccountId);
        }
    } else if (hasOwnAccount && getExtrasByRoomAndAccount(db, guestId, formerAccountId).empty()) {
        const qint32 firstAccountId = extras.front().BBAccountID;
        guest.BBAccountID = firstAccountId;
        guest.update(db);
        validateAccount(db, formerAccountId, firstAccountId);
    }
    transaction.commit();
}

void AccountValidator::closeEmptyAccountsForClient(Database &db, qint32 clientId)
{
    Transaction transaction(db);
    std::vector<qint32> open;
    QSqlQuery q = db.query(QStringLiteral("select bbaccountid from account where invoiceto = ? and status = 'O'"), {clientId});
    while (q.next())
        open.push_back(q.value(0).toInt());
    for (qint32 accountId : open) {
        if (Account::getItemCount(db, accountId) != 0)
            continue;
        Account account;
        if (!account.fetch(db, accountId))
            continue;
        account.Status = accountstatus::Closed;
        account.update(db);
    }
    transaction.commit();
}

void AccountValidator::closeAllEmptyAccounts(Database &db)
{
    Transaction transaction(db);
    std::vector<qint32> clients;
    QSqlQuery q = db.query(QStringLiteral("select distinct invoiceto from account where status = 'O'"));
    while (q.next())
        clients.push_back(q.value(0).toInt());
    for (qint32 clientId : clients)
        closeEmptyAccountsForClient(db, clientId);
    transaction.commit();
}

} // namespace fenlark

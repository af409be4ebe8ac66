#include "clients/clientretirement.h"

#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/security.h"

#include <QSqlQuery>

#include <vector>

namespace fenlark {

namespace {

std::vector<qint32> keys(Database &db, const QString &sql, qint32 clientId)
{
    std::vector<qint32> found;
    QSqlQuery q = db.query(sql, {clientId});
    while (q.next())
        found.push_back(q.value(0).toInt());
    return found;
}

// Fetches each row through its record class, points it at the replacement and
// writes it back, so the change log carries every single move to the server.
template <class Record, class Member>
int repoint(Database &db, const QString &sql, Member member, qint32 retiredId, qint32 replacementId)
{
    int moved = 0;
    for (qint32 key : keys(db, sql, retiredId)) {
        Record record;
        if (!record.fetch(db, key))
            continue;
        record.*member = replacementId;
        record.update(db);
        ++moved;
    }
    return moved;
}

} // namespace

bool MessageRetireQuestions::readyToRetire()
{
    return messages::ask(6959, QStringLiteral("Are you ready to retire this client?"), 6960, QStringLiteral("Retire client?"),
                         true);
}

Refusal clientFetchError(qint32 clientId)
{
    return Refusal(6953, QStringLiteral("Error fetching client - %1. Call veldmoor."), 6954,
                   QStringLiteral("Error fetching client"))
        .arg(qint64(clientId));
}

QString retireDisplayName(const Client &client)
{
    const QString name = client.ClientType == clienttype::Individual ? client.FirstName + QLatin1Char(' ') + client.Surname
                                                                     : client.Company;
    return name + QStringLiteral(" - ") + client.PhoneNo;
}

Result<ClientRetirement> retireClient(Database &db, const UserStruct &user, qint32 retiredId, qint32 replacementId,
                                      RetireQuestions &questions)
{
    if (retiredId < 1 || replacementId < 1)
        return Refusal(6955, QStringLiteral("Please select the client to be retired and its replacement before pressing Retire."),
                       6956, QStringLiteral("Select client to be retired."));
    if (retiredId == replacementId)
        return Refusal(6957, QStringLiteral("You have chosen the same client. Choose different clients."), 6958,
                       QStringLiteral("Cannot retire/replace the same client"));
    Client retired, replacement;
    if (!retired.fetch(db, retiredId))
        return clientFetchError(retiredId);
    if (!replacement.fetch(db, replacementId))
        return clientFetchError(replacementId);
    if (replacement.Active == QLatin1String("N"))
        return Refusal(6963, QStringLiteral("Client %1 is retired: choose an active client to take over."), 6964,
                       QStringLiteral("Replacement is retired"))
            .arg(qint64(replacementId));
    if (!questions.readyToRetire())
        return ClientRetirement{};

    ClientRetirement result;
    RetireCounts &counts = result.counts;
    Transaction transaction(db);
    counts.bookings = repoint<Booking>(db, QStringLiteral("select bbbookingid from booking where madeby = ?"), &Booking::MadeBy,
                                       retiredId, replacementId);
    counts.guests = repoint<Guest>(db, QStringLiteral("select bbguestid from guest where bbclientid = ?"), &Guest::BBClientID,
                                   retiredId, replacementId);
    counts.secondGuests = repoint<Guest>(db, QStringLiteral("select bbguestid from guest where bbclient2id > 0 and bbclient2id = ?"),
                                         &Guest::BBClient2ID, retiredId, replacementId);
    counts.accounts = repoint<Account>(db, QStringLiteral("select bbaccountid from account where invoiceto = ?"),
                                       &Account::InvoiceTo, retiredId, replacementId);
    counts.ledger = repoint<ClientTran>(db, QStringLiteral("select bbclienttranid from clienttran where bbclientid = ?"),
                                        &ClientTran::BBClientID, retiredId, replacementId);
    retired.Active = QStringLiteral("N");
    retired.update(db);

    SecurityAudit audit;
    audit.User(user);
    audit.setReason(QStringLiteral("Client Retired"));
    audit.addAudit(db, QStringLiteral("Client ID (%1) retired and replaced with Client ID (%2)").arg(retiredId).arg(replacementId));
    transaction.commit();

    result.retired = true;
    // Names on the calendar, and the bookings' makers, changed: it is read again whole.
    result.changes.everything();
    return result;
}

} // namespace fenlark

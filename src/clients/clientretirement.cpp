#include "clients/clientretirement.h"

#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/security.h"

#include <QSqlQuery>

#include <vector>

namespace fenlark {

namespace {

// Moves one reference column from the retired client to the replacement and
// logs every row it moved, so that each single move reaches the server. The
// rows move in one statement: a client with years of bookings retires at once.
// Table and column names come from this file only.
int repoint(Database &db, const char *table, const char *key, const char *column, qint32 retiredId, qint32 replacementId)
{
    const QString name = QString::fromLatin1(table);
    std::vector<qint32> moved;
    QSqlQuery q = db.query(QStringLiteral("select %1 from %2 where %3 = ?").arg(QLatin1String(key), name, QLatin1String(column)),
                           {retiredId});
    while (q.next())
        moved.push_back(q.value(0).toInt());
    if (moved.empty())
        return 0;
    db.execute(QStringLiteral("update %1 set %2 = ? where %2 = ?").arg(name, QLatin1String(column)), {replacementId, retiredId});
    for (qint32 row : moved)
        ChangeLog::logUpdate(db, name, row);
    return int(moved.size());
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
    counts.bookings = repoint(db, "booking", "BBBookingID", "MadeBy", retiredId, replacementId);
    counts.guests = repoint(db, "guest", "BBGuestID", "BBClientID", retiredId, replacementId);
    counts.secondGuests = repoint(db, "guest", "BBGuestID", "BBClient2ID", retiredId, replacementId);
    counts.accounts = repoint(db, "account", "BBAccountID", "InvoiceTo", retiredId, replacementId);
    counts.ledger = repoint(db, "clienttran", "BBClientTranID", "BBClientID", retiredId, replacementId);
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

#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"

#include <QString>

#include <optional>

namespace fenlark {

class Client;
class Database;
struct UserStruct;

// The question asked before a client is retired.
class RetireQuestions {
public:
    virtual ~RetireQuestions() = default;
    // "Are you ready to retire this client?"
    virtual bool readyToRetire() = 0;
};

// The question as a Yes/No box through the installed message sink, No by default.
class MessageRetireQuestions : public RetireQuestions {
public:
    bool readyToRetire() override;
};

// How many rows of each kind now point at the replacement.
struct RetireCounts {
    int bookings = 0;       // booking.MadeBy
    int guests = 0;         // guest.BBClientID
    int secondGuests = 0;   // guest.BBClient2ID
    int accounts = 0;       // account.InvoiceTo
    int ledger = 0;         // clienttran.BBClientID
};

// What retiring did. retired is false when the person at the desk said No:
// nothing was written.
struct ClientRetirement {
    bool retired = false;
    RetireCounts counts;
    Changes changes;
};

// Retires a client in favour of another: every booking it made, every room it
// stayed in as first or second guest, every account billed to it and every
// ledger row of it is moved to the replacement, each row logged for the server;
// then the client is marked retired (its extras stay with it) and the audit
// notes it, all in one transaction. Refused before the question, writing
// nothing: either client not chosen (below 1), the same client twice, a client
// that does not exist (any more), or a replacement that is itself retired.
Result<ClientRetirement> retireClient(Database &db, const UserStruct &user, qint32 retiredId, qint32 replacementId,
                                      RetireQuestions &questions);

// How the retire screen shows a chosen client: an individual by first name and
// surname, anyone else by company; then " - " and the phone number.
QString retireDisplayName(const Client &client);
// The refusal when a chosen client cannot be read.
Refusal clientFetchError(qint32 clientId);

} // namespace fenlark

#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

class Session;
class StartupHost;

// Moving the running desk to another of the configured databases. The new
// database must pass the same gates as at start-up (property, setup check,
// user); if any of them fails the desk goes back to the database it had.
class DatabaseChoice {
public:
    // The display names of the listed databases (Database1, Database2, ...).
    static QStringList names();

    enum Result { Unchanged, Changed, Reverted };

    // Switches the session to database number `chosen` (1-based). On success the
    // old connection is closed, the new one backed up, and the message
    // "Database changed to <name>" shown.
    static Result change(Session &session, int chosen, StartupHost &host);
};

} // namespace fenlark

#pragma once

#include <QDateTime>

namespace fenlark {

class Database;

// What the ten-second tick acts on.
class TickHooks {
public:
    virtual ~TickHooks() = default;
    // True while no dialog holds the desk: a tick never interrupts one, but runs
    // with the main window in the background or minimised.
    virtual bool deskIdle() = 0;
    // Reminds about provisional bookings past their hold.
    virtual void checkExpired() = 0;
    // Runs a synchronisation without a dialog.
    virtual void synchronise() = 0;
};

// The rules of the main window's ten-second tick.
class Ticker {
public:
    enum Result { Skipped, NothingToSend, AutoSynchOff, Synchronised };

    static Result tick(Database &db, TickHooks &hooks, const QDateTime &now = QDateTime::currentDateTime());
};

// Whether the program may close: with unsent changes it asks first, unless the
// exit flag (a forced end) is set.
bool mayExit(Database &db, bool exitFlag);

} // namespace fenlark

#pragma once

#include "synch/setupdownload.h"
#include "synch/synch.h"

#include <QDateTime>

namespace fenlark {

class Database;

// What holds back an automatic run beyond the tick's own rules (AutoSynch,
// LastSynch, a non-empty dblog): a run of this process still under way, or an
// automatic run that failed less than five minutes ago. Manual runs are never held.
class AutoSynch {
public:
    static constexpr int PauseSeconds = 5 * 60;

    static bool mayRun(const QDateTime &now = QDateTime::currentDateTime());
    // Tells the gate how an automatic run ended; a failure pauses automatic runs.
    static void noteResult(bool success, const QDateTime &now = QDateTime::currentDateTime());
};

// One synchronisation as the desk runs it: login and setup state from bbsetup,
// Server, Proxy and LogLimit from vmconfig.ini. A manual run reports through the
// observer and message boxes; an automatic one writes synch.err and feeds the
// AutoSynch gate. A cancel, when given, ends the run as soon as it is cancelled.
bool runSynch(Database &db, bool isManual, SynchObserver *observer = nullptr, SynchSummary *summary = nullptr,
              SetupDownload::LoginRetry loginRetry = {}, const SynchCancel *cancel = nullptr);

// The main window's synchronise seam. Manual: the dialog, then the new-bookings
// notice. Automatic: a silent run, with "Failure in Auto Synchronisation..." when it
// fails. After a good run the new-bookings list starts again. True when the calendar
// should be rebuilt. (The dialog part lives with the screens: see synchManually.)
bool automaticSynch(Database &db);

// The start-up's setup check: the setup download with message boxes and the log-on
// retry. The result says whether the program may go on.
struct SetupCheck {
    bool ok = false;
    bool loginRefused = false; // the user gave up at the log-on: the program ends
};
SetupCheck checkSetupAtStartup(Database &db, SetupDownload::LoginRetry loginRetry);

// The text of the new-bookings notice: up to 20 bookings that arrived from the
// server, with the client, the arrival and the rooms; empty when none arrived.
QString newBookingText(Database &db);
// After every successful run the notice's list starts again.
void clearNewBookings(Database &db);

} // namespace fenlark

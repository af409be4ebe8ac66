#pragma once

#include "shell/progress.h"
#include "shell/refusal.h"
#include "shell/session.h"

#include <QLockFile>

#include <memory>

namespace fenlark {

// What the start-up needs from the desk. Each step that draws or asks is here,
// so the order of start-up is decided (and tested) without a screen.
class StartupHost {
public:
    virtual ~StartupHost() = default;
    // The language dialog, when the configuration says to ask (Language "0").
    virtual void askLanguage() = 0;
    virtual void showSplash() = 0;
    virtual void closeSplash() = 0;
    // Binds a database without a property to one (BBID and password); false when cancelled.
    virtual bool logInProperty(Session &session) = 0;
    // The setup check against the server; false when it failed.
    virtual bool checkSetup(Session &session) = 0;
    // True when the server refused the property's log-on during the setup check
    // and the user gave up typing it again: the program ends.
    virtual bool propertyLogInRefused() const { return false; }
    // The user's log-on; false when cancelled.
    virtual bool enterPassword(Session &session) = 0;
    // Loads rooms, room types, preferences, VAT codes and draws the calendar.
    virtual void initialise(Session &session) = 0;
    // The check for double bookings; false when the user chose to stop.
    virtual bool checkDoubleBookings(Session &session) = 0;
    virtual void showMainWindow(Session &session) = 0;
    // Who watches the backup of the database just opened; nobody unless the host says.
    virtual Progress backupProgress() { return {}; }
};

// The road from a started process to the first calendar on screen, in order:
// single instance, language, splash, database number, open, backup, property,
// setup check, user, initialise, double bookings, main window.
class Startup {
public:
    enum Outcome {
        Running,
        AlreadyRunning,
        HomeNotWritable,
        CannotOpenDatabase,
        LoginCancelled,
        NoRooms,
        UserCancelled,
        StoppedAtDoubleBookings,
    };

    explicit Startup(StartupHost &host);
    Outcome run();

    // The session of a successful start (owned by the caller from then on).
    std::unique_ptr<Session> takeSession() { return std::move(m_session); }

    // Which database the program starts on: 1 when Database1 is listed, else 0.
    static int startingDatabaseNumber();
    // Opens database dbNumber at path. On failure shows "Could not open database
    // (<path>)" and why; for a damaged file with a backup it offers to restore the
    // newest backup (the damaged file kept aside) and opens that. A dbNumber of -1
    // offers no backup.
    static std::unique_ptr<Database> openConnection(const QString &path, int dbNumber);

private:
    static bool offerBackup(const Refusal &cannotOpen, const QString &backup);

    StartupHost &m_host;
    std::unique_ptr<QLockFile> m_instanceLock;
    std::unique_ptr<Session> m_session;
};

} // namespace fenlark

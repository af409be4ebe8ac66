#pragma once

#include "shell/calendar.h"
#include "shell/changes.h"
#include "shell/database.h"
#include "shell/preferences.h"
#include "shell/propertysetup.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "shell/statuscolours.h"

#include <memory>

namespace fenlark {

// What the desk holds while it runs: the one open database, which of the
// configured databases it is, and the property's settings. The main window owns
// it and hands it to every screen that needs the data.
class Session {
public:
    Session(std::unique_ptr<Database> db, int dbNumber);

    Database &db() { return *m_db; }
    int dbNumber() const { return m_dbNumber; }
    const BBSetup &setup() const { return m_setup; }
    qint16 BBID() const { return m_setup.BBID; }
    QString BBPwd() const { return m_setup.Password; }
    // Re-reads the bbsetup row (an empty table leaves BBID 0).
    void refreshBBSetup();

    // Puts another database in place (choosing a database); returns the old one.
    std::unique_ptr<Database> replaceDatabase(std::unique_ptr<Database> db, int dbNumber);

    // Whether the machine listed several databases when the program started.
    bool multipleDatabases() const { return m_multipleDatabases; }
    void setMultipleDatabases(bool on) { m_multipleDatabases = on; }

    // The person logged on at the desk.
    const UserStruct &getUser() const { return m_user; }
    void setUser(const UserStruct &user) { m_user = user; }

    // Status colours, rooms, room types, VAT codes and preferences are read
    // again, and the calendar starts empty.
    void reloadSetup();
    const PropertySetup &property() const { return m_property; }
    const StatusColours &statusColours() const { return m_statusColours; }
    void loadStatusColours() { m_statusColours.load(*m_db); }
    const Preferences &preferences() const { return m_preferences; }
    void loadPreferences() { m_preferences.load(*m_db); }
    QString getPreference(const QString &code) const { return m_preferences.get(code); }
    Calendar &calendar() { return m_calendar; }

    // Tells the listener (the desk) what a write changed. Every screen hands the
    // changes of the core's writes here; nothing else patches the calendar.
    void setChangeListener(ChangeListener *listener) { m_listener = listener; }
    void publish(const Changes &changes);

private:
    std::unique_ptr<Database> m_db;
    int m_dbNumber = 0;
    BBSetup m_setup;
    bool m_multipleDatabases = false;
    UserStruct m_user;
    PropertySetup m_property;
    StatusColours m_statusColours;
    Preferences m_preferences;
    Calendar m_calendar;
    ChangeListener *m_listener = nullptr;
};

} // namespace fenlark

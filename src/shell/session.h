#pragma once

#include "shell/database.h"
#include "shell/setuprecords.h"

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

private:
    std::unique_ptr<Database> m_db;
    int m_dbNumber = 0;
    BBSetup m_setup;
    bool m_multipleDatabases = false;
};

} // namespace fenlark

#include "shell/session.h"

namespace fenlark {

Session::Session(std::unique_ptr<Database> db, int dbNumber)
    : m_db(std::move(db))
    , m_dbNumber(dbNumber)
{
    refreshBBSetup();
}

void Session::refreshBBSetup()
{
    m_setup = BBSetup();
    m_setup.fetch(*m_db);
}

void Session::reloadSetup()
{
    m_statusColours.load(*m_db);
    m_property.load(*m_db);
    m_calendar.initCalendar();
    m_preferences.load(*m_db);
}

std::unique_ptr<Database> Session::replaceDatabase(std::unique_ptr<Database> db, int dbNumber)
{
    std::swap(m_db, db);
    m_dbNumber = dbNumber;
    refreshBBSetup();
    return db;
}

void Session::publish(const Changes &changes)
{
    if (m_listener && !changes.isEmpty())
        m_listener->applyChanges(changes);
}

} // namespace fenlark

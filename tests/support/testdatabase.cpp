#include "support/testdatabase.h"

#include "shell/home.h"

TestDatabase::TestDatabase()
{
    fenlark::Home::setPath(m_dir.path());
    m_db = fenlark::Database::open(m_dir.filePath(QStringLiteral("test.db")));
}

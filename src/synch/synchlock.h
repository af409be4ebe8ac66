#pragma once

#include <QDateTime>

namespace fenlark {

class Database;

// Keeps two PCs on one database file from synchronising at once. A row in
// synchlock means "locked"; a lock older than five minutes is taken to belong to a
// PC that died holding it and is broken.
class SynchLock {
public:
    static constexpr int ExpirySeconds = 5 * 60;

    static bool acquireLock(Database &db, const QDateTime &now = QDateTime::currentDateTime());
    static void clearLock(Database &db);
};

} // namespace fenlark

#pragma once

#include <QDateTime>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// One row of dblog: which record changed and how.
struct LogEntry {
    qint32 logid = 0;
    QDateTime logdate;
    QString logtype;   // "U", "D" or "I"
    QString TableName; // lower case
    qint32 bbtableId = 0;
};

// The change log: every write to a shared table leaves one row here, which the
// synchronisation sends and clears. At most one row per record: the latest kind
// of change stands, and a deletion replaces an earlier update.
class ChangeLog {
public:
    static void logUpdate(Database &db, const QString &tableName, qint32 id);
    static void logDelete(Database &db, const QString &tableName, qint32 id);
    static void writeLog(Database &db, const QString &logType, const QString &tableName, qint32 id);
    static void clearLog(Database &db, const QString &tableName, qint32 id);

    // Logs every row of every shared table as "I" again (pending deletions stay).
    static void markAllChanged(Database &db);

    static int count(Database &db);
    static bool isEmpty(Database &db) { return count(db) == 0; }
    static std::vector<LogEntry> entries(Database &db, int limit = -1);
};

} // namespace fenlark

#pragma once

#include "shell/progress.h"

#include <QDate>
#include <QString>
#include <QStringList>

namespace fenlark {

class Database;

// The rotating backup made at every start-up and change of database: four
// rotation files (1 newest .. 4 oldest), one file per month that is never
// deleted, and the four templates. Copies are SQLite's own consistent snapshot of
// the open database, never a raw copy of the live file. A failure skips the
// rest quietly and never harms the live database or the backups already made.
class Backup {
public:
    // Runs the backup of database dbNumber (0 = the single database) unless
    // NoBackup is exactly "Y". Returns false when it was skipped or failed.
    static bool backupDatabase(Database &db, int dbNumber, const QDate &today = QDate::currentDate());
    // The same, reporting each file; a stop between files keeps every file
    // already made and makes no more.
    static bool backupDatabase(Database &db, int dbNumber, Progress &progress, const QDate &today = QDate::currentDate());

    static QString rotationFileName(int dbNumber, int index);
    static QString monthlyFileName(int dbNumber, const QDate &today);
    static QStringList templateFileNames(int dbNumber);
};

} // namespace fenlark

#pragma once

#include <QString>

namespace fenlark {

// Which database files a machine holds: the single "Database" key, or a dense
// list "Database1", "Database2", ... of "{Name}path" entries.
bool hasMultipleDatabases();
// Path of database n: for 0 the key "Database" (written with <home>/Veldmoor.db
// when empty); for n > 0 the text behind the first "}" of Database<n>, or empty.
QString getDBPath(int dbNumber);
// Display name of database n: the text between the braces; on a malformed entry
// the configuration message is shown and empty text returned.
QString getDBName(int dbNumber);
// The number of listed databases (Database1.. up to the first empty key).
int databaseCount();
// The backup folder (BackupDir, default <home>/vmbackup, written back).
QString getBackupDir();

QString defaultDatabaseFileName();

} // namespace fenlark

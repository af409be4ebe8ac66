#pragma once

#include "shell/refusal.h"

#include <QString>

namespace fenlark {

// The newest rotation backup of database dbNumber (0 = the single database) in
// the backup folder, or empty when there is none.
QString newestBackup(int dbNumber);

// Puts a copy of the backup in the place of a database file that cannot be used.
// The backup is first copied beside the database and opened there, so a backup
// that is itself unusable changes nothing. The file that was there, with its
// journal files, is moved aside under a dated name and never deleted; that name
// is handed back.
Result<QString> restoreDatabase(const QString &databasePath, const QString &backupPath);

} // namespace fenlark

#include "shell/restore.h"

#include "shell/backup.h"
#include "shell/database.h"
#include "shell/databasefiles.h"
#include "shell/errorlog.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace fenlark {

namespace {

// The files SQLite keeps beside a database while it is open or was cut off.
const QStringList JournalSuffixes = {QString(), QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral("-journal")};

void removeWithJournals(const QString &path)
{
    for (const QString &suffix : JournalSuffixes)
        QFile::remove(path + suffix);
}

Refusal unusableBackup(const QString &backupPath, const QString &why)
{
    return Refusal(5050, QStringLiteral("The backup %1 cannot be used: %2"), 5053, QStringLiteral("Restore backup"))
        .arg(QDir::toNativeSeparators(backupPath))
        .arg(why);
}

} // namespace

QString newestBackup(int dbNumber)
{
    const QString path = QDir(getBackupDir()).filePath(Backup::rotationFileName(dbNumber, 1));
    return QFile::exists(path) ? path : QString();
}

Result<QString> restoreDatabase(const QString &databasePath, const QString &backupPath)
{
    const QString staged = databasePath + QStringLiteral(".restoring");
    removeWithJournals(staged);
    if (!QFile::exists(backupPath))
        return unusableBackup(backupPath, QStringLiteral("the file does not exist"));
    {
        QFile source(backupPath);
        if (!source.copy(staged)) {
            QFile::remove(staged);
            return unusableBackup(backupPath, source.errorString());
        }
    }
    QFile::setPermissions(staged, QFile::ReadOwner | QFile::WriteOwner);
    try {
        // Opening checks the copy through and through and brings an older
        // schema up to date; closing folds its log back into the file.
        Database::open(staged);
    } catch (const DatabaseOpenError &e) {
        removeWithJournals(staged);
        return unusableBackup(backupPath, e.explanation());
    }

    const QString keptAs = databasePath + QStringLiteral(".damaged-")
                           + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QStringList moved;
    for (const QString &suffix : JournalSuffixes) {
        if (!QFile::exists(databasePath + suffix))
            continue;
        if (!QFile::rename(databasePath + suffix, keptAs + suffix)) {
            for (const QString &back : moved)
                QFile::rename(keptAs + back, databasePath + back);
            removeWithJournals(staged);
            return Refusal(5051, QStringLiteral("%1 could not be moved aside, so the backup was not restored."), 5053,
                           QStringLiteral("Restore backup"))
                .arg(QDir::toNativeSeparators(databasePath + suffix));
        }
        moved << suffix;
    }
    if (!QFile::rename(staged, databasePath)) {
        for (const QString &back : moved)
            QFile::rename(keptAs + back, databasePath + back);
        removeWithJournals(staged);
        return unusableBackup(backupPath, QStringLiteral("it could not be put in place of the database"));
    }
    ErrorLog::write(QStringLiteral("Restored ") + backupPath + QStringLiteral(" over ") + databasePath
                    + QStringLiteral("; the file that was there is kept as ") + keptAs);
    return keptAs;
}

} // namespace fenlark

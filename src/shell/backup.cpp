#include "shell/backup.h"

#include "shell/config.h"
#include "shell/database.h"
#include "shell/databasefiles.h"
#include "shell/errorlog.h"
#include "shell/home.h"
#include "shell/strings.h"

#include <QDir>
#include <QFile>
#include <QLocale>

#include <cstdio>

namespace fenlark {

namespace {

// Moves source over target in one step: target is either the old file or the
// new one, never missing.
bool moveOver(const QString &source, const QString &target)
{
    return std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData()) == 0;
}

// Replaces target by source through a temporary file, so that a failed copy
// leaves the old target in place.
bool replaceWith(const QString &source, const QString &target)
{
    const QString temp = target + QStringLiteral(".part");
    QFile::remove(temp);
    if (!QFile::copy(source, temp))
        return false;
    return moveOver(temp, target);
}

// A consistent snapshot of the open database in the new file target.
bool snapshot(Database &db, const QString &target)
{
    QFile::remove(target);
    try {
        db.copyTo(target);
    } catch (const DatabaseError &e) {
        ErrorLog::write(QStringLiteral("Backup to ") + target + QStringLiteral(" failed: ") + e.message());
        return false;
    }
    return QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
}

QString suffix(int dbNumber)
{
    return dbNumber > 0 ? QString::number(dbNumber) : QString();
}

} // namespace

QString Backup::rotationFileName(int dbNumber, int index)
{
    return dbNumber > 0 ? QStringLiteral("DB%1-%2.db").arg(dbNumber).arg(index) : QStringLiteral("veldmoor-%1.db").arg(index);
}

QString Backup::monthlyFileName(int dbNumber, const QDate &today)
{
    // Four digits of the year and the month's short English name: "2026Nov".
    const QString stem = QString::number(today.year()) + QLocale::c().monthName(today.month(), QLocale::ShortFormat);
    return dbNumber > 0 ? stem + QStringLiteral("DB%1.db").arg(dbNumber) : stem + QStringLiteral(".db");
}

QStringList Backup::templateFileNames(int dbNumber)
{
    const QString s = suffix(dbNumber);
    return {QStringLiteral("proforma%1.xlsx").arg(s), QStringLiteral("invoice%1.xlsx").arg(s),
            QStringLiteral("Registration%1.docx").arg(s), QStringLiteral("Confirmation%1.docx").arg(s)};
}

bool Backup::backupDatabase(Database &db, int dbNumber, const QDate &today)
{
    Progress unwatched;
    return backupDatabase(db, dbNumber, unwatched, today);
}

bool Backup::backupDatabase(Database &db, int dbNumber, Progress &progress, const QDate &today)
{
    if (readConfig(QStringLiteral("NoBackup"), QStringLiteral("N")) == QLatin1String("Y"))
        return false;
    const QDir dir(getBackupDir());
    if (!dir.exists() && !QDir().mkdir(dir.path()))
        return false;

    // The snapshot, its copy, then the templates.
    const QStringList templates = templateFileNames(dbNumber);
    const qint64 steps = 2 + templates.size();
    qint64 done = 0;
    const QString what = getString(5305, QStringLiteral("Backing up the database"));
    auto next = [&] { return progress.step(done++, steps, what); };

    // Both new files are made beside their places before anything is moved, so a
    // full disk or a stop leaves every earlier backup where it was.
    const QString monthly = dir.filePath(monthlyFileName(dbNumber, today));
    const QString newest = dir.filePath(rotationFileName(dbNumber, 1));
    const QString monthlyPart = monthly + QStringLiteral(".part");
    const QString newestPart = newest + QStringLiteral(".part");
    auto discard = [&] {
        QFile::remove(monthlyPart);
        QFile::remove(newestPart);
        return false;
    };
    if (!next() || !snapshot(db, monthlyPart))
        return discard();
    QFile::remove(newestPart);
    if (!next() || !QFile::copy(monthlyPart, newestPart))
        return discard();

    // Rotate 3 -> 4, 2 -> 3, 1 -> 2 by renaming: each number takes the file the
    // one before it had, without copying a database three times at every start.
    for (int i = 3; i >= 1; --i) {
        const QString source = dir.filePath(rotationFileName(dbNumber, i));
        if (QFile::exists(source) && !moveOver(source, dir.filePath(rotationFileName(dbNumber, i + 1))))
            return discard();
    }
    if (!moveOver(monthlyPart, monthly) || !moveOver(newestPart, newest))
        return discard();

    // Templates: each on its own; a missing one is skipped.
    const QString folder = Home::path() + QLatin1Char('/');
    for (const QString &name : templates) {
        if (!next())
            return false;
        const QString source = folder + name;
        if (QFile::exists(source))
            replaceWith(source, dir.filePath(name));
    }
    progress.step(steps, steps, what);
    return true;
}

} // namespace fenlark

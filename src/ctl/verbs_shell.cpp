#include "ctl/verb.h"

#include "shell/backup.h"
#include "shell/changelog.h"
#include "shell/databasefiles.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace fenlark::ctl {

namespace {

int runInit(const CommandLine &args)
{
    const QString path = databasePath(args);
    if (QFileInfo(path).exists() && QFileInfo(path).size() > 0)
        return fail(QStringLiteral("%1 already exists").arg(path));
    auto db = openDatabase(args);
    if (!db)
        return 1;
    printJson(QJsonObject{{"database", path}});
    return 0;
}

int runBackup(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    bool ok = false;
    const int number = args.number(QStringLiteral("number"), &ok, 0);
    if (!ok || number < 0)
        return fail(QStringLiteral("--number must be a database number"));
    if (!Backup::backupDatabase(*db, number))
        return fail(QStringLiteral("backup skipped or failed (NoBackup, or the backup folder %1 cannot be written)").arg(getBackupDir()));
    printJson(QJsonObject{{"backupDir", getBackupDir()}, {"file", Backup::rotationFileName(number, 1)}});
    return 0;
}

int runLog(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    QJsonArray rows;
    for (const LogEntry &e : ChangeLog::entries(*db)) {
        rows.append(QJsonObject{{"logid", e.logid},
                                {"logdate", e.logdate.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))},
                                {"logtype", e.logtype},
                                {"table", e.TableName},
                                {"bbtableid", e.bbtableId}});
    }
    printJson(rows);
    return 0;
}

int runMarkAll(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    ChangeLog::markAllChanged(*db);
    printJson(QJsonObject{{"logged", ChangeLog::count(*db)}});
    return 0;
}

} // namespace

const std::vector<Verb> &shellVerbs()
{
    static const std::vector<Verb> verbs = {
        {"init", "init [--db PATH]                      a new empty database with the full schema", runInit},
        {"backup", "backup [--db PATH] [--number N]       the rotating backup of the database", runBackup},
        {"log", "log [--db PATH]                       the change log (dblog) as JSON", runLog},
        {"mark-all", "mark-all [--db PATH]                  log every shared row for sending again", runMarkAll},
    };
    return verbs;
}

} // namespace fenlark::ctl

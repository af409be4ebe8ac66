#include "ctl/verb.h"

#include "shell/backup.h"
#include "shell/changelog.h"
#include "shell/databasefiles.h"
#include "shell/progressline.h"
#include "shell/restore.h"
#include "desk/propertygenerator.h"
#include "shell/setuprecords.h"

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

QJsonObject countsJson(const PropertyGenerator::Counts &c)
{
    return QJsonObject{{"roomTypes", c.roomTypes}, {"rooms", c.rooms}, {"clients", c.clients},
                       {"bookings", c.bookings}, {"legs", c.legs}, {"nights", c.nights}};
}

// Fills the database named by the arguments with a property, refusing one that
// already holds a property.
int fillProperty(const CommandLine &args, const PropertyGenerator::Options &options)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    if (!BBSetup::isSetupEmpty(*db))
        return fail(QStringLiteral("%1 already holds a property").arg(databasePath(args)));
    std::optional<PropertyGenerator::Counts> counts;
    {
        ProgressLine line;
        counts = PropertyGenerator(options).generate(*db, line.progress());
    }
    QJsonObject out = countsJson(*counts);
    out.insert("database", databasePath(args));
    printJson(out);
    return 0;
}

int runDemo(const CommandLine &args)
{
    return fillProperty(args, PropertyGenerator::demo());
}

int runGenerate(const CommandLine &args)
{
    bool okRooms = false, okYears = false, okSeed = false;
    const int rooms = args.number(QStringLiteral("rooms"), &okRooms, 40);
    const int years = args.number(QStringLiteral("years"), &okYears, 10);
    const int seed = args.number(QStringLiteral("seed"), &okSeed, 1);
    if (!okRooms || rooms < 1 || rooms > 500)
        return fail(QStringLiteral("--rooms must be a number from 1 to 500"));
    if (!okYears || years < 1 || years > 50)
        return fail(QStringLiteral("--years must be a number from 1 to 50"));
    if (!okSeed)
        return fail(QStringLiteral("--seed must be a whole number"));
    return fillProperty(args, PropertyGenerator::forYears(rooms, years, static_cast<unsigned>(seed)));
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
    bool made = false;
    {
        ProgressLine line;
        made = Backup::backupDatabase(*db, number, line.progress());
    }
    if (!made)
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

int runDatabaseRestore(const CommandLine &args)
{
    const QString backup = args.option(QStringLiteral("from"));
    if (backup.isEmpty())
        return fail(QStringLiteral("--from BACKUP is needed"));
    const QString path = databasePath(args);
    const Result<QString> restored = restoreDatabase(path, backup);
    if (!restored)
        return refuse(restored.refusal());
    printJson(QJsonObject{{"database", path}, {"restoredFrom", backup}, {"keptAs", restored.value()}});
    return 0;
}

namespace {

// SQLite's check of the whole file: exit 0 when sound.
int runCheck(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const QString problems = db->quickCheck();
    printJson(QJsonObject{{"database", databasePath(args)}, {"sound", problems.isEmpty()}, {"problems", problems}});
    return problems.isEmpty() ? 0 : 1;
}

} // namespace

const std::vector<Verb> &shellVerbs()
{
    static const std::vector<Verb> verbs = {
        {"init", "init [--db PATH]                      a new empty database with the full schema", runInit},
        {"demo", "demo [--db PATH]                      the demo property in an empty database", runDemo},
        {"generate", "generate [--db PATH] --rooms N --years Y --seed S   a generated property", runGenerate},
        {"backup", "backup [--db PATH] [--number N]       the rotating backup of the database", runBackup},
        {"check", "check [--db PATH]                     SQLite's check of the whole database file", runCheck},
        {"log", "log [--db PATH]                       the change log (dblog) as JSON", runLog},
        {"mark-all", "mark-all [--db PATH]                  log every shared row for sending again", runMarkAll},
    };
    return verbs;
}

} // namespace fenlark::ctl

#include "shell/databasefiles.h"

#include "shell/config.h"
#include "shell/home.h"
#include "shell/messages.h"
#include "shell/strings.h"

namespace fenlark {

namespace {
QString entryOf(int dbNumber)
{
    return readConfig(QStringLiteral("Database%1").arg(dbNumber), QString());
}
} // namespace

QString defaultDatabaseFileName()
{
    return QStringLiteral("Veldmoor.db");
}

bool hasMultipleDatabases()
{
    return !entryOf(1).isEmpty();
}

QString getDBPath(int dbNumber)
{
    if (dbNumber <= 0) {
        const QString key = QStringLiteral("Database");
        if (readConfig(key, QString()).isEmpty())
            writeConfig(key, defaultDatabaseFileName());
        return fromHome(readConfig(key, QString()));
    }
    const QString entry = entryOf(dbNumber);
    const int close = entry.indexOf(QLatin1Char('}'));
    return fromHome(close < 0 ? entry : entry.mid(close + 1));
}

QString getDBName(int dbNumber)
{
    const QString entry = entryOf(dbNumber);
    const int open = entry.indexOf(QLatin1Char('{'));
    const int close = entry.indexOf(QLatin1Char('}'));
    if (open < 0 || close < 0) {
        messages::critical(1218, QStringLiteral("Your configuration file does not look correct. Please call veldmoor on +27(0)21 555 0100."), 1219, QStringLiteral("Incorrect config entries."));
        return {};
    }
    // By position: the brace is assumed to be the first character.
    return entry.mid(1, close - 1);
}

int databaseCount()
{
    int n = 0;
    while (!getDBPath(n + 1).isEmpty())
        ++n;
    return n;
}

QString getBackupDir()
{
    const QString key = QStringLiteral("BackupDir");
    QString dir = readConfig(key, QString());
    if (dir.isEmpty()) {
        dir = QStringLiteral("vmbackup");
        writeConfig(key, dir);
    }
    return fromHome(dir);
}

} // namespace fenlark

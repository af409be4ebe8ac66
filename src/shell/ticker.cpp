#include "shell/ticker.h"

#include "shell/changelog.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/strings.h"

namespace fenlark {

Ticker::Result Ticker::tick(Database &db, TickHooks &hooks, const QDateTime &now)
{
    if (!hooks.deskIdle())
        return Skipped;
    hooks.checkExpired();

    const QString autoKey = QStringLiteral("AutoSynch");
    if (readConfig(autoKey, QString()).isEmpty())
        writeConfig(autoKey, QStringLiteral("Y"));
    if (readConfig(autoKey, QString()) != QLatin1String("Y"))
        return AutoSynchOff;

    // LastSynch is read but never written by the program, so with its default the
    // pause has always passed; a time set by hand holds the automatic run back.
    const QString fallback = now.addDays(-5).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    QDateTime last = QDateTime::fromString(readConfig(QStringLiteral("LastSynch"), fallback), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    if (!last.isValid())
        last = QDateTime::fromString(fallback, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    if (last.secsTo(now) / 60 < 5)
        return NothingToSend;

    if (ChangeLog::isEmpty(db))
        return NothingToSend;
    hooks.synchronise();
    return Synchronised;
}

bool mayExit(Database &db, bool exitFlag)
{
    if (exitFlag || ChangeLog::isEmpty(db))
        return true;
    return messages::ask(2318, QStringLiteral(" You have not synchronised. Are you sure you want to exit?"), 2319, QStringLiteral("Exit without synchronising?"));
}

} // namespace fenlark

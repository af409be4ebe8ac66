#include "shell/databasechoice.h"

#include "shell/backup.h"
#include "shell/databasefiles.h"
#include "shell/messages.h"
#include "shell/session.h"
#include "shell/startup.h"
#include "shell/strings.h"

namespace fenlark {

QStringList DatabaseChoice::names()
{
    QStringList list;
    for (int n = 1; !getDBPath(n).isEmpty(); ++n)
        list << getDBName(n);
    return list;
}

DatabaseChoice::Result DatabaseChoice::change(Session &session, int chosen, StartupHost &host)
{
    if (chosen == session.dbNumber())
        return Unchanged;

    auto fresh = Startup::openConnection(getDBPath(chosen), chosen);
    if (!fresh)
        return Reverted;
    const int oldNumber = session.dbNumber();
    auto old = session.replaceDatabase(std::move(fresh), chosen);
    auto revert = [&] {
        session.replaceDatabase(std::move(old), oldNumber);
        return Reverted;
    };

    if (session.BBID() < 10000) {
        if (!host.logInProperty(session))
            return revert();
        session.refreshBBSetup();
    }
    if (!host.checkSetup(session))
        return revert();
    session.refreshBBSetup();
    if (!host.enterPassword(session))
        return revert();

    old.reset();
    Progress backup = host.backupProgress();
    Backup::backupDatabase(session.db(), chosen, backup);
    host.initialise(session);
    const QString name = getDBName(chosen);
    messages::inform(2288, QStringLiteral("Database changed to %1"), 2289, QStringLiteral("New Database - %1"), {name});
    return Changed;
}

} // namespace fenlark

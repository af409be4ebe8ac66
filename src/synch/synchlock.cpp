#include "synch/synchlock.h"

#include "shell/database.h"

namespace fenlark {

bool SynchLock::acquireLock(Database &db, const QDateTime &now)
{
    Transaction transaction(db);
    const QVariant held = db.scalar(QStringLiteral("select locktime from synchlock"));
    if (held.isValid()) {
        const QDateTime since = dateTimeFromSql(held);
        // Exactly five minutes old still holds; a second more and it is broken.
        if (since.isValid() && since.secsTo(now) <= ExpirySeconds)
            return false;
        clearLock(db);
    }
    db.execute(QStringLiteral("insert into synchlock (locktime) values (?)"), {sqlDateTime(now)});
    transaction.commit();
    return true;
}

void SynchLock::clearLock(Database &db)
{
    db.execute(QStringLiteral("delete from synchlock"));
}

} // namespace fenlark

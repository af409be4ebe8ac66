#include "synch/synchrun.h"

#include "clients/clientnames.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/propertyinfo.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <QSqlQuery>

namespace fenlark {

namespace {
QDateTime s_autoFailedAt;
constexpr int NoticeLimit = 20;
}

bool AutoSynch::mayRun(const QDateTime &now)
{
    if (Synch::isRunning())
        return false;
    return !s_autoFailedAt.isValid() || s_autoFailedAt.secsTo(now) >= PauseSeconds;
}

void AutoSynch::noteResult(bool success, const QDateTime &now)
{
    s_autoFailedAt = success ? QDateTime() : now;
}

bool runSynch(Database &db, bool isManual, SynchObserver *observer, SynchSummary *summary, SetupDownload::LoginRetry loginRetry)
{
    BBSetup setup;
    setup.fetch(db);
    HttpTransport transport(HttpTransport::DefaultTimeoutMs, config::proxy());
    Synch synch(db, transport);
    synch.setLogin(loginFromSetup(db));
    synch.setLastUpdated(setup.LastUpdated);
    synch.setSynchCounter(QString::number(setup.SynchCounter));
    synch.setLogLimit(config::logLimit());
    synch.setShowForm(isManual);
    synch.setObserver(observer);
    synch.setLoginRetry(std::move(loginRetry));
    const bool ok = synch.synchronise();
    if (!isManual && !synch.summary().locked)
        AutoSynch::noteResult(ok);
    if (summary)
        *summary = synch.summary();
    return ok;
}

bool automaticSynch(Database &db)
{
    if (!AutoSynch::mayRun())
        return false;
    SynchSummary summary;
    if (!runSynch(db, false, nullptr, &summary)) {
        // Another run holding the lock is no failure of this one: it said so in synch.err.
        if (summary.locked)
            return false;
        messages::critical(getString(2282, QStringLiteral("Failure in Auto Synchronisation. Try a manual synch to get the error message.")),
                           getString(2283, QStringLiteral("Auto-Synchronisation Failed")));
        return false;
    }
    clearNewBookings(db);
    return true;
}

SetupCheck checkSetupAtStartup(Database &db, SetupDownload::LoginRetry loginRetry)
{
    BBSetup setup;
    setup.fetch(db);
    HttpTransport transport(HttpTransport::DefaultTimeoutMs, config::proxy());
    SetupDownload download(db, transport);
    ServerLogin login = loginFromSetup(db);
    const QStringList version = getVersionInfo(db);
    login.versionText = version.value(0);
    login.versionNo = version.value(1).toInt();
    download.setLogin(login);
    download.setLastUpdated(setup.LastUpdated);
    download.setSynchCounter(QString::number(setup.SynchCounter));
    download.setLoginRetry(std::move(loginRetry));
    SetupCheck check;
    check.ok = download.initialise();
    check.loginRefused = download.loginRefused();
    return check;
}

QString newBookingText(Database &db)
{
    QList<qint32> ids;
    bool more = false;
    QSqlQuery q = db.query(QStringLiteral("select BBBookingID from newbooking"));
    while (q.next()) {
        if (ids.size() == NoticeLimit) {
            more = true;
            break;
        }
        ids << q.value(0).toInt();
    }
    q.finish();
    if (ids.isEmpty())
        return QString();
    QString text;
    for (const qint32 id : ids) {
        QSqlQuery b = db.query(QStringLiteral("select booking.FromDate, Title, FirstName, Surname, Company from booking, client "
                                              "where booking.MadeBy = client.BBClientID and BBBookingID = ?"),
                               {id});
        if (!b.next())
            continue;
        text += getString(2245, QStringLiteral("Client Name: "))
            + clientName(b.value(1).toString(), b.value(2).toString(), b.value(3).toString(), b.value(4).toString()) + QStringLiteral("\r\n");
        text += getString(1296, QStringLiteral("Arriving: ")) + dateFromSql(b.value(0)).toString(QStringLiteral("dd/MM/yyyy"))
            + QStringLiteral("\r\n");
        QSqlQuery rooms = db.query(QStringLiteral("select RoomName from guest, room where room.BBRoomID = guest.BBRoomID and BBBookingID = ?"), {id});
        while (rooms.next())
            text += getString(2246, QStringLiteral("Allocated to: ")) + rooms.value(0).toString() + QStringLiteral("\r\n");
        text += QStringLiteral("\r\n");
    }
    if (more)
        text += QStringLiteral("\r\n\r\n") + getString(2244, QStringLiteral("Only first 20 bookings are shown."));
    return text;
}

void clearNewBookings(Database &db)
{
    db.execute(QStringLiteral("delete from newbooking"));
}

} // namespace fenlark

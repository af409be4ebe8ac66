#include "synch/synch.h"

#include "shell/changelog.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/errorlog.h"
#include "shell/home.h"
#include "shell/messages.h"
#include "shell/propertyinfo.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"
#include "synch/pcupdates.h"
#include "synch/serverupdates.h"
#include "synch/synchlock.h"
#include "synch/synchtables.h"

#include <QDir>

#include <utility>

namespace fenlark {

namespace {

bool s_running = false;

// Marks the process as synchronising for the life of one run.
class RunningGuard {
public:
    RunningGuard() { s_running = true; }
    ~RunningGuard() { s_running = false; }
};

JsonArray arrayOf(const JsonValue &value)
{
    return value.isArray() ? *value.array() : JsonArray();
}

} // namespace

ServerLogin loginFromSetup(Database &db)
{
    ServerLogin login;
    login.server = config::server();
    BBSetup setup;
    if (setup.fetch(db)) {
        login.bbid = setup.BBID;
        login.password = setup.Password;
    }
    return login;
}

Synch::Synch(Database &db, ServerTransport &transport) : m_db(db), m_transport(transport) {}

bool Synch::isRunning()
{
    return s_running;
}

void Synch::progress(const QString &text)
{
    if (m_observer)
        m_observer->progress(text);
}

namespace {

// The lock of one run: released when the run leaves, whichever way it leaves.
class HeldLock {
public:
    explicit HeldLock(Database &db) : m_db(db) {}
    ~HeldLock()
    {
        try {
            SynchLock::clearLock(m_db);
        } catch (const std::exception &e) {
            // The lock then runs out after five minutes, as a dead PC's does.
            ErrorLog::write(QStringLiteral("Synchronisation: the lock could not be released: ") + QString::fromUtf8(e.what()));
        }
    }
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;

private:
    Database &m_db;
};

QString timeStamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yyyy HH:mm"));
}

} // namespace

bool Synch::synchronise()
{
    m_summary = SynchSummary();
    m_failed = false;
    if (s_running) {
        // A second run while one waits on the network: leave it to the first.
        reportLocked();
        return false;
    }
    RunningGuard running;
    try {
        if (!SynchLock::acquireLock(m_db)) {
            reportLocked();
            return false;
        }
    } catch (const DatabaseError &e) {
        reportFailure(e.message());
        return false;
    }
    HeldLock lock(m_db);
    // Nothing that fails below ends the program or keeps the lock.
    try {
        run();
    } catch (const DatabaseError &e) {
        reportFailure(e.message());
    } catch (const SynchDataError &e) {
        reportFailure(getString(6022, QStringLiteral("The server's reply could not be applied: ")) + e.message());
    } catch (const std::bad_alloc &) {
        reportFailure(getString(6043, QStringLiteral("The synchronisation ran out of memory.")));
    } catch (const std::exception &e) {
        reportFailure(QString::fromUtf8(e.what()));
    }
    m_summary.success = !m_failed;
    return m_summary.success;
}

void Synch::run()
{
    const QStringList version = getVersionInfo(m_db);
    m_login.versionText = version.value(0);
    m_login.versionNo = version.value(1).toInt();
    progress(getString(6001, QStringLiteral("Preparing...")));

    if (!m_skipSetup) {
        SetupDownload setup(m_db, m_transport);
        setup.setLogin(m_login);
        setup.setLastUpdated(m_lastUpdated);
        setup.setSynchCounter(m_synchCounter);
        setup.setLoginRetry(m_loginRetry);
        setup.setShowMessages(m_showForm);
        const bool setupOk = setup.initialise();
        m_login.bbid = setup.login().bbid;
        m_login.password = setup.login().password;
        if (!setupOk) {
            m_failed = true;
            m_summary.refused = setup.refusedByServer();
            const QString failure = redactPassword(setup.failure(), m_login.password);
            m_summary.errors << failure;
            if (!m_showForm)
                appendToSynchErr(Home::path(), timeStamp() + QStringLiteral(" (") + QString::number(m_login.bbid) + QStringLiteral(")") + failure);
            return;
        }
        if (!setup.ignored().isEmpty())
            ErrorLog::write(QStringLiteral("Setup download ignored: ") + setup.ignored().join(QStringLiteral(", ")));
    }

    m_requestedRecords.clear();
    m_logUpdates.clear();
    m_acknowledgements.clear();
    m_requests.clear();
    int idle = 0;
    while (!m_failed) {
        exchange();
        if (m_failed || !moreToDo())
            break;
        const bool sameReply = m_replyHash == m_previousReplyHash;
        const bool moved = m_ackedThisExchange > 0 || ChangeLog::count(m_db) != m_pendingBefore
            || (m_appliedThisExchange > 0 && !sameReply);
        idle = moved ? 0 : idle + 1;
        if (idle >= MaxIdleExchanges) {
            reportFailure(getString(6021, QStringLiteral("The server acknowledged nothing in three exchanges in a row. "
                                                         "The changes stay in the log and go at the next synchronisation.")));
            break;
        }
    }
    if (!m_failed)
        progress(getString(2009, QStringLiteral("Synchronisation successful.")));
}

void Synch::exchange()
{
    ++m_summary.exchanges;
    const int waiting = ChangeLog::count(m_db);
    m_pendingBefore = waiting;
    progress(getString(6002, QStringLiteral("Writing PC updates...")));
    const JsonValue updates = PcUpdates::collectPCUpdates(m_db, m_requestedRecords, m_logLimit);
    m_logUpdates = *updates.array();
    m_requestedRecords.clear();

    progress(getString(6003, QStringLiteral("Building message...")));
    auto data = std::make_shared<JsonObject>();
    data->add(QStringLiteral("logupdates"), updates);
    data->add(QStringLiteral("acknowledgements"), JsonValue(std::make_shared<JsonArray>(m_acknowledgements)));
    data->add(QStringLiteral("requests"), JsonValue(std::make_shared<JsonArray>(m_requests)));
    auto outer = std::make_shared<JsonObject>();
    outer->add(QStringLiteral("data"), JsonValue(data));
    m_message.setText(json::toString(JsonValue(outer)));
    for (const JsonValue &entry : m_logUpdates) {
        if (entry[QStringLiteral("dblogid")].toText() != QLatin1String("0"))
            ++m_summary.sent;
    }

    progress(getString(6004, QStringLiteral("Sending data. ")) + QString::number(waiting)
             + getString(6005, QStringLiteral(" changes to go...")));
    const QString url = synchUrl(m_login, QStringLiteral("pcsynch"));
    PostResult posted = m_transport.post(url, m_message.toString().toLatin1());
    // Held once only, and let go as soon as it is parsed: a reply may be 128 MiB of text.
    m_reply = posted.ok ? std::exchange(posted.reply, QString()) : QString();
    m_previousReplyHash = m_replyHash;
    m_replyHash = qHash(m_reply);
    if (!posted.ok && posted.httpStatus > 0) {
        // The server answered, but with nothing this run can read: an HTTP error, a
        // reply past the size limit, or one that is not UTF-8.
        m_summary.refused = posted.httpStatus >= 400 && posted.httpStatus <= 499;
        reportFailure(posted.error);
        return;
    }
    if (!posted.ok || m_reply.isEmpty())
        reportTimeout(posted.error);

    progress(getString(6006, QStringLiteral("Processing data...")));
    processReply();
}

bool Synch::moreToDo()
{
    if (!m_logUpdates.isEmpty() || !m_acknowledgements.isEmpty() || !m_requests.isEmpty() || !m_requestedRecords.isEmpty())
        return true;
    return !ChangeLog::isEmpty(m_db);
}

void Synch::processReply()
{
    m_ackedThisExchange = 0;
    m_appliedThisExchange = 0;
    QString parseErrors;
    const JsonValue reply = json::parse(m_reply, &parseErrors);
    m_reply = QString(); // only its hash is kept, for the idle test
    m_acknowledgements.clear();
    m_requests.clear();
    if (!reply.isObject() && (parseErrors.isEmpty() || parseErrors == QLatin1String("Invalid JSON"))) {
        reportFailure(getString(6010, QStringLiteral("Nothing From Server")));
        return;
    }
    if (!parseErrors.isEmpty()) {
        // A reply that was cut or garbled is not applied in part.
        reportFailure(getString(6022, QStringLiteral("The server's reply could not be applied: ")) + parseErrors.left(200));
        return;
    }
    if (!reply[QStringLiteral("success")].toBool()) {
        const JsonValue error = reply[QStringLiteral("error")];
        m_summary.refused = true;
        reportFailure(error[QStringLiteral("code")].toText() + QStringLiteral(" - ") + error[QStringLiteral("message")].toText());
        return;
    }
    const JsonValue data = reply[QStringLiteral("data")];
    for (const QString &list : {QStringLiteral("requests"), QStringLiteral("acknowledgements"), QStringLiteral("logupdates")}) {
        if (arrayOf(data[list]).size() > MaxEntriesPerList) {
            reportFailure(getString(6022, QStringLiteral("The server's reply could not be applied: "))
                          + getString(6044, QStringLiteral("more than %1 entries in %2.")).arg(MaxEntriesPerList).arg(list));
            return;
        }
    }

    progress(getString(6007, QStringLiteral("Processing server requests...")));
    QStringList missing;
    m_requestedRecords = *PcUpdates::collectRequestedRecords(m_db, arrayOf(data[QStringLiteral("requests")]), missing).array();

    try {
        Transaction transaction(m_db);
        progress(getString(6008, QStringLiteral("Processing server acknowledgements...")));
        applyAcknowledgements(arrayOf(data[QStringLiteral("acknowledgements")]));
        progress(getString(6009, QStringLiteral("Processing server updates...")));
        ServerUpdateApplier applier(m_db, m_isLink);
        applier.applyServerUpdates(arrayOf(data[QStringLiteral("logupdates")]));
        transaction.commit();
        m_acknowledgements = applier.acknowledgements();
        m_requests = applier.requests();
        m_appliedThisExchange = applier.applied();
        m_summary.received += applier.applied();
    } catch (const SynchDataError &e) {
        m_ackedThisExchange = 0;
        reportFailure(getString(6022, QStringLiteral("The server's reply could not be applied: ")) + e.message());
        return;
    } catch (const DatabaseError &e) {
        m_ackedThisExchange = 0;
        reportFailure(getString(6022, QStringLiteral("The server's reply could not be applied: ")) + e.message());
        return;
    }
    for (const QString &m : missing)
        reportFailure(getString(6011, QStringLiteral("Could not find server requested record for local table: ")) + m);
}

void Synch::applyAcknowledgements(const JsonArray &acks)
{
    for (const JsonValue &ack : acks) {
        const QString table = ack[QStringLiteral("tablename")].toText();
        if (!SynchTables::isShared(table))
            throw SynchDataError(QStringLiteral("An acknowledgement for an unknown table: ") + table.left(40));
        bool okId = false, okKey = false, okLog = false;
        const qint32 tableId = ack[QStringLiteral("tableid")].toInt(&okId);
        const qint32 localKey = ack[QStringLiteral("bbtableid")].toInt(&okKey);
        const qint32 logId = ack[QStringLiteral("dblogid")].toInt(&okLog);
        if (!okId || !okKey || !okLog || tableId < 0)
            throw SynchDataError(QStringLiteral("A malformed acknowledgement for ") + table);
        if (localKey <= 0)
            continue;
        const QString serverKey = SynchTables::serverKey(table);
        const QString localKeyName = SynchTables::localKey(table);
        if (tableId > 0) {
            // One server id names one row: a receipt that would give a second row
            // the id of another is refused, not applied.
            if (m_db.scalar(QStringLiteral("select 1 from %1 where %2 = ? and %3 <> ?").arg(table, serverKey, localKeyName),
                            {tableId, localKey})
                    .isValid())
                throw SynchDataError(QStringLiteral("The server id %1 of %2 already belongs to another row").arg(tableId).arg(table));
            m_db.execute(QStringLiteral("update %1 set %2 = ? where %3 = ?").arg(table, serverKey, localKeyName), {tableId, localKey});
        }
        // A change made while the message was on its way is newer than the receipt and goes again.
        const int cleared = m_db.execute(QStringLiteral("delete from dblog where TableName = ? and bbtableId = ? and logid <= ?"),
                                         {table, localKey, logId});
        if (cleared > 0) {
            ++m_ackedThisExchange;
            ++m_summary.acknowledged;
        }
    }
}

void Synch::appendToSynchErr(const QString &folder, const QString &text)
{
    QDir().mkpath(folder);
    ErrorLog::appendLine(QDir(folder).filePath(QStringLiteral("synch.err")), text);
}

void Synch::reportTimeout(const QString &detail)
{
    m_failed = true;
    const QString safe = redactPassword(detail, m_login.password);
    m_summary.errors << (safe.isEmpty() ? QStringLiteral("Timeout") : safe.left(ErrorLog::MaxMessageBytes));
    if (!safe.isEmpty())
        ErrorLog::write(QStringLiteral("Synchronisation: ") + safe);
    if (m_showForm) {
        progress(getString(2011, QStringLiteral("Synchronisation Timeout...")));
        messages::critical(getString(2012, QStringLiteral("Could not access the veldmoor server. You can test you have an Internet connection "))
                               + getString(2013, QStringLiteral("by opening www.veldmoor.example using your normal web browser. If this works, "))
                               + getString(2014, QStringLiteral("try pressing the Synchronise button again.")),
                           getString(2015, QStringLiteral("Connection not established")));
    } else {
        appendToSynchErr(config::logDir(), timeStamp() + QStringLiteral(" (") + QString::number(m_login.bbid)
                                               + getString(2016, QStringLiteral(") - Timeout error.")));
    }
}

void Synch::reportFailure(const QString &text)
{
    m_failed = true;
    // A server may echo anything back, the password included: none of it reaches a log.
    const QString safe = redactPassword(text, m_login.password);
    m_summary.errors << safe.left(ErrorLog::MaxMessageBytes);
    if (m_showForm) {
        progress(getString(2017, QStringLiteral("Synchronisation failed...")));
        messages::critical(getString(2018, QStringLiteral("Synchronisation failed - ")) + safe.left(100) + QStringLiteral("\r\n")
                               + getString(2019, QStringLiteral("Please call veldmoor support (021) 555 0100")),
                           getString(2020, QStringLiteral("Synchronisation failed")));
    } else {
        appendToSynchErr(Home::path(), timeStamp() + QStringLiteral(" (") + QString::number(m_login.bbid) + QStringLiteral(")") + safe);
    }
}

void Synch::reportLocked()
{
    m_summary.locked = true;
    const QString text = getString(6042, QStringLiteral("Nothing was synchronised: another synchronisation holds the lock."));
    m_summary.errors << text;
    progress(getString(6000, QStringLiteral("Synchronisation locked by another user.")));
    if (!m_showForm)
        appendToSynchErr(Home::path(), timeStamp() + QStringLiteral(" (") + QString::number(m_login.bbid) + QStringLiteral(") ") + text);
}

} // namespace fenlark

#pragma once

#include "synch/json.h"
#include "synch/setupdownload.h"
#include "synch/stringbuilder.h"
#include "synch/transport.h"

#include <QStringList>

namespace fenlark {

class Database;

// Told how a run goes: the progress texts of the synchronisation dialog.
class SynchObserver {
public:
    virtual ~SynchObserver() = default;
    virtual void progress(const QString &text) = 0;
};

// What one run did, for fenlarkctl and for tests.
struct SynchSummary {
    bool success = false;
    bool locked = false;    // another run held the lock: nothing was done
    bool refused = false;   // the server answered and said no (log-on, an error reply, HTTP 4xx)
    int exchanges = 0;
    int sent = 0;           // log entries sent
    int acknowledged = 0;   // of those, acknowledged by the server
    int received = 0;       // server rows applied here
    QStringList errors;
};

// The property's login and setup state as the database holds them (bbsetup), with
// the Server of vmconfig.ini.
ServerLogin loginFromSetup(Database &db);

// One synchronisation: take the lock, refresh the setup, then exchange one message
// each way until neither side has anything left to say. Nothing typed here is lost
// on the way: a log row goes only when the server has acknowledged it, and one reply
// is applied in one transaction or not at all. However the run ends (a failure, an
// exception of any kind, a time-out) the lock it took is released.
class Synch {
public:
    // Exchanges that make no progress in a row before the run gives up.
    static constexpr int MaxIdleExchanges = 3;
    // A reply with more entries than this in one of its lists is refused before
    // anything is applied. The server sends a few hundred at a time; a reply at the
    // 64 MiB limit holds some 200,000 rows, a hostile one of tiny entries millions.
    static constexpr qsizetype MaxEntriesPerList = 250'000;

    Synch(Database &db, ServerTransport &transport);

    void setLogin(const ServerLogin &login) { m_login = login; }
    void setLastUpdated(const QDateTime &value) { m_lastUpdated = value; }
    void setSynchCounter(const QString &value) { m_synchCounter = value; }
    void setIsLink(bool value) { m_isLink = value; }
    // A manual run (dialog and message boxes) or a silent one (synch.err).
    void setShowForm(bool value) { m_showForm = value; }
    void setObserver(SynchObserver *observer) { m_observer = observer; }
    void setLogLimit(int limit) { m_logLimit = limit > 0 ? limit : 300; }
    void setLoginRetry(SetupDownload::LoginRetry retry) { m_loginRetry = std::move(retry); }
    // Skips the setup request at the head of the run (tests of the exchange alone).
    void setSkipSetup(bool skip) { m_skipSetup = skip; }

    // The run. True only when it succeeded; a run that found the lock held did
    // nothing and says so (summary().locked).
    bool synchronise();
    const SynchSummary &summary() const { return m_summary; }

    // True while a run of this process waits on the network: a timer must not
    // start a second one.
    static bool isRunning();

private:
    void exchange();
    bool moreToDo();
    void processReply();
    void applyAcknowledgements(const JsonArray &acks);
    void run();
    void reportTimeout(const QString &detail);
    void reportFailure(const QString &text);
    void reportLocked();
    void progress(const QString &text);
    void appendToSynchErr(const QString &folder, const QString &text);

    Database &m_db;
    ServerTransport &m_transport;
    ServerLogin m_login;
    QDateTime m_lastUpdated;
    QString m_synchCounter;
    bool m_isLink = false;
    bool m_showForm = false;
    bool m_skipSetup = false;
    SynchObserver *m_observer = nullptr;
    SetupDownload::LoginRetry m_loginRetry;
    int m_logLimit = 300;

    bool m_failed = false;
    StringBuilder m_message;
    QString m_reply;
    size_t m_replyHash = 0;
    size_t m_previousReplyHash = 0;
    JsonArray m_requestedRecords;
    JsonArray m_logUpdates;
    JsonArray m_acknowledgements;
    JsonArray m_requests;
    int m_ackedThisExchange = 0;
    int m_appliedThisExchange = 0;
    SynchSummary m_summary;
    int m_pendingBefore = 0;   // log rows waiting when the current exchange began
};

} // namespace fenlark

#pragma once

#include "synch/transport.h"

#include <QDateTime>
#include <QStringList>

#include <functional>

namespace fenlark {

class Database;
class JsonValue;

// Brings the property's setup (settings, rooms, rate sheets, users...) from the
// server: either "nothing changed" (synconly) or whole replacement tables, which
// are written in one transaction so that a failure leaves the old setup whole.
class SetupDownload {
public:
    // Asked after the server refused BBID or password: true with new values to try
    // again, false to give up.
    using LoginRetry = std::function<bool(qint32 &bbid, QString &password)>;

    SetupDownload(Database &db, ServerTransport &transport);

    void setLogin(const ServerLogin &login) { m_login = login; }
    void setLastUpdated(const QDateTime &lastUpdated) { m_lastUpdated = lastUpdated; }
    void setSynchCounter(const QString &counter) { m_synchCounter = counter; }
    void setLoginRetry(LoginRetry retry) { m_loginRetry = std::move(retry); }
    // Messages go to the message sink when true (the default); a silent caller reads report().
    void setShowMessages(bool show) { m_showMessages = show; }

    // Runs the whole download; the result is status().
    bool initialise();
    bool status() const { return m_status; }
    // True when the server refused the login and no retry was given or it was declined.
    bool loginRefused() const { return m_loginRefused; }
    // True when the server answered and said no: a refused log-on, an error reply, HTTP 4xx.
    bool refusedByServer() const { return m_refused; }
    const ServerLogin &login() const { return m_login; }

    // What happened, for a caller that shows it or writes it down.
    QString failure() const { return m_failure; }
    QStringList replacedTables() const { return m_replaced; }
    // Tables and columns of the reply that this database does not know ("table" or "table.column").
    QStringList ignored() const { return m_ignored; }
    bool roomsWarning() const { return m_roomsWarning; }

    // Applies a parsed reply (the body of initialise(), open for tests).
    bool processSetupReply(const JsonValue &reply);

private:
    void replaceTables(const JsonValue &data);
    void applySyncOnly(qint32 counter);
    void checkRoomsAfterSetup();
    void reportNoConnection();
    void reportCommunicationError(const QString &text);

    Database &m_db;
    ServerTransport &m_transport;
    ServerLogin m_login;
    QDateTime m_lastUpdated;
    QString m_synchCounter;
    LoginRetry m_loginRetry;
    bool m_showMessages = true;
    bool m_status = false;
    bool m_loginRefused = false;
    bool m_refused = false;
    bool m_stopOnFailure = true;
    bool m_roomsWarning = false;
    QString m_failure;
    QStringList m_replaced;
    QStringList m_ignored;
};

} // namespace fenlark

#pragma once

#include "synch/json.h"

#include <QDate>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <stdexcept>

namespace fenlark::server {

// A failure of the server's own store or of an admin command.
class ServerError : public std::runtime_error {
public:
    explicit ServerError(const QString &message) : std::runtime_error(message.toStdString()) {}
};

// What the server gives to a new online booking.
struct OnlineBooking {
    qint32 roomId = 0;
    QDate fromDate;
    int nights = 1;
    QString surname = QStringLiteral("Online");
    QString firstName;
    QString email;
    int adults = 2;
    double rate = 100.0;      // per night
    QString status = QStringLiteral("C");
};

// The server ids of the rows an online booking made.
struct OnlineBookingIds {
    qint32 client = 0, account = 0, booking = 0, guest = 0;
};

// The server side of the exchange for any number of properties, kept in its own
// SQLite file. A property's shared rows are stored by server id with the PC's local
// key beside them; changes made here wait in an outbox until the PC acknowledges
// them; the PC's own changes are never sent back to it.
class ReferenceServer {
public:
    // Opens (or creates) the store. A name distinguishes several stores in one process.
    explicit ReferenceServer(const QString &path, const QString &connectionName = QStringLiteral("fenlark-server"));
    ~ReferenceServer();
    ReferenceServer(const ReferenceServer &) = delete;
    ReferenceServer &operator=(const ReferenceServer &) = delete;

    // --- the protocol (reply texts as the PC reads them)
    // "s": the setup, or "synconly" when the PC holds the current one.
    QString handleSetup(qint32 bbid, const QString &password, const QString &pcSynchCounter);
    // "pcsynch": one message in, one reply out.
    QString handlePcSynch(qint32 bbid, const QString &password, const QString &message);
    // "upgrade": whether an upgrade is offered (never, here).
    QString handleUpgrade(qint32 bbid, const QString &password);
    // The password arguments of the protocol are as the desk puts them on the wire,
    // URL-encoded by the low byte of each character and decoded here to those bytes
    // (one character each); a stored password is compared in that same form.
    bool authenticate(qint32 bbid, const QString &password);
    static QString wireForm(const QString &password);

    // --- administration
    void createProperty(qint32 bbid, const QString &password, const QString &name);
    // Copies the property (bbsetup) and its setup tables from a desk database.
    qint32 seedFromDesk(const QString &deskDatabasePath);
    // Replaces one setup table of a property (rows of lower-case keys) and moves the
    // setup counter on, so the PC fetches the setup again.
    void setSetupTable(qint32 bbid, const QString &table, const JsonValue &rows);
    OnlineBookingIds addOnlineBooking(qint32 bbid, const OnlineBooking &booking);
    // Changes columns of a stored row and queues it for the PC.
    void editRow(qint32 bbid, const QString &table, qint32 tableId, const JsonObject &changes);
    void deleteRow(qint32 bbid, const QString &table, qint32 tableId);

    // --- faults for tests: a name and how many requests it still hits (-1: all)
    void setFault(const QString &name, int count);
    // Takes one hit of the first active fault, or returns empty text.
    QString takeFault();

    // --- inspection
    // The stored values of a row ({"table","tableid"} references as stored), or Nothing.
    JsonValue row(qint32 bbid, const QString &table, qint32 tableId);
    qint32 tableIdForLocal(qint32 bbid, const QString &table, qint32 localId);
    qint32 localIdOf(qint32 bbid, const QString &table, qint32 tableId);
    int rowCount(qint32 bbid, const QString &table);
    int outboxCount(qint32 bbid);

    // The fault names the switches accept.
    static const QStringList &faultNames();

private:
    // Runs a statement, keeping its prepared form for the next call with the same
    // text; the caller reads its rows before running that text again.
    QSqlQuery &exec(const QString &sql, const QVariantList &values = {});
    QVariant scalar(const QString &sql, const QVariantList &values = {});
    void finishStatements();
    void begin();
    void commit();
    void rollback();
    JsonValue recordEntry(qint32 bbid, const QString &table, qint32 tableId, const QString &logType, qint32 logId);
    qint32 storeRow(qint32 bbid, const QString &table, qint32 localId, const JsonValue &values, bool fromPc);
    void queue(qint32 bbid, const QString &table, qint32 tableId, const QString &logType);
    void resolveReferences(qint32 bbid, JsonArray &requests, QSet<QString> &requested);
    void bumpSetup(qint32 bbid);
    // New server ids start above this one.
    void reserveIdsUpTo(qint64 highest);

    QSqlDatabase m_db;
    QString m_connectionName;
    QHash<QString, QSqlQuery> m_statements;
};

} // namespace fenlark::server

#pragma once

#include "synch/json.h"
#include "synch/synchtables.h"

#include <QSet>

namespace fenlark {

class Database;

// Writes the "logupdates" of one reply into the local database. Entries may come
// in any order, so references ({"table","tableid"}) are resolved to local keys in
// passes and whatever stays missing is asked for. The caller wraps the call in one
// transaction; a SynchDataError leaves it to roll back.
class ServerUpdateApplier {
public:
    explicit ServerUpdateApplier(Database &db, bool isLink = false);

    void applyServerUpdates(const JsonArray &updates);

    // The next message's receipts and requests, made by the last call.
    const JsonArray &acknowledgements() const { return m_acknowledgements; }
    const JsonArray &requests() const { return m_requests; }
    // Rows written or deleted by the last call.
    int applied() const { return m_applied; }

private:
    bool applyEntry(JsonObject &entry, const QString &table, const QString &entryKey);
    void applyDelete(const QString &table, qint32 tableId);
    qint32 writeRecord(const QString &table, JsonObject &values);
    void deleteBookingRecord(const QString &table, qint32 tableId);
    void applyDailyRates(qint32 bookingKey, qint32 roomKey, const JsonValue &rates);
    void noteNewBooking(qint32 bookingKey);
    void addAcknowledgement(const QString &table, qint32 logId, qint32 tableId, qint32 localId);
    void addRequest(const QString &table, qint32 tableId);

    Database &m_db;
    bool m_isLink;
    SynchTables m_tables;
    JsonArray m_acknowledgements;
    JsonArray m_requests;
    QSet<QString> m_requested;
    QSet<QString> m_waiting;
    int m_applied = 0;
    struct PendingRates {
        qint32 bookingKey;
        qint32 roomKey;
        JsonValue rates;
    };
    std::vector<PendingRates> m_pendingRates;
    QSet<qint32> m_noted;   // bookings already in newbooking
    bool m_notedLoaded = false;
};

} // namespace fenlark

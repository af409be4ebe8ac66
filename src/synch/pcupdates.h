#pragma once

#include "synch/json.h"

namespace fenlark {

class Database;

// The PC's side of a message: log rows turned into entries, and the records the
// server asked for.
class PcUpdates {
public:
    // The entries of the next message: first the answers to the server's requests,
    // then dblog in logid order, at most logLimit in all. A key logged twice goes
    // once; a "D" goes without values; a log row whose record is gone is cleared
    // and sends nothing; a guest carries its average nightly rate as "avgrate".
    static JsonValue collectPCUpdates(Database &db, const JsonArray &requestedRecords, int logLimit);

    // The records of the server's requests ({tablename, bbtableid} each), as
    // entries with logtype "U" and dblogid "0". Requests for rows that are not here
    // are named in missing, as "table / ID: n".
    static JsonValue collectRequestedRecords(Database &db, const JsonArray &requests, QStringList &missing);

    // The row as an object of all its columns, or Nothing when there is none.
    static JsonValue readRecord(Database &db, const QString &table, qint32 localKey);
};

} // namespace fenlark

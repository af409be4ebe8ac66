#include "synch/pcupdates.h"

#include "shell/changelog.h"
#include "shell/database.h"
#include "synch/synchtables.h"

#include <QSet>
#include <QSqlQuery>

namespace fenlark {

JsonValue PcUpdates::readRecord(Database &db, const QString &table, qint32 localKey)
{
    if (!SynchTables::isShared(table))
        return JsonValue();
    auto object = std::make_shared<JsonObject>();
    const bool found = db.readRow(QStringLiteral("select * from %1 where %2 = ?").arg(table, SynchTables::localKey(table)), localKey,
                                  [&](const QString &column, const QVariant &value) {
                                      object->add(column, JsonValue::fromVariant(value));
                                  });
    return found ? JsonValue(object) : JsonValue();
}

JsonValue PcUpdates::collectPCUpdates(Database &db, const JsonArray &requestedRecords, int logLimit)
{
    JsonValue result = JsonValue::newArray();
    JsonArray &entries = *result.array();
    entries = requestedRecords;
    int counter = static_cast<int>(requestedRecords.size()) + 1;
    QSet<QString> seen;

    QSqlQuery q = db.query(QStringLiteral("select logid, logtype, TableName, bbtableId from dblog order by logid"));
    std::vector<std::pair<QString, qint32>> orphans;
    while (q.next() && counter <= logLimit) {
        ++counter;
        const qint32 logId = q.value(0).toInt();
        const QString logType = q.value(1).toString();
        const QString table = q.value(2).toString();
        const qint32 key = q.value(3).toInt();
        const QString seenKey = table + QLatin1Char('_') + QString::number(key);
        if (seen.contains(seenKey))
            continue;
        seen.insert(seenKey);

        auto entry = std::make_shared<JsonObject>();
        entry->add(QStringLiteral("logtype"), logType);
        entry->add(QStringLiteral("dblogid"), QString::number(logId));
        entry->add(QStringLiteral("tablename"), table);
        entry->add(QStringLiteral("bbtableid"), QString::number(key));
        if (logType != QLatin1String("D")) {
            JsonValue values = readRecord(db, table, key);
            if (values.isNothing()) {
                orphans.emplace_back(table, key);
                continue;
            }
            if (table == QLatin1String("guest")) {
                const QVariant avg = db.scalar(
                    QStringLiteral("select avg(RoomRate) from guest, dailyrate where guest.BBBookingID = dailyrate.BBBookingID "
                                   "and guest.BBRoomID = dailyrate.BBRoomID and guest.BBGuestID = ?"),
                    {key});
                values.object()->add(QStringLiteral("avgrate"), JsonValue(avg.isNull() ? 0.0 : avg.toDouble()));
            }
            entry->add(QStringLiteral("values"), values);
        }
        entries.append(JsonValue(entry));
    }
    q.finish();
    if (!orphans.empty()) {
        Transaction transaction(db);
        for (const auto &[table, key] : orphans)
            ChangeLog::clearLog(db, table, key);
        transaction.commit();
    }
    return result;
}

JsonValue PcUpdates::collectRequestedRecords(Database &db, const JsonArray &requests, QStringList &missing)
{
    JsonValue result = JsonValue::newArray();
    QSet<QString> seen;
    for (const JsonValue &request : requests) {
        const QString table = request[QStringLiteral("tablename")].toText();
        const qint32 key = request[QStringLiteral("bbtableid")].toInt();
        const QString seenKey = table + QLatin1Char('_') + QString::number(key);
        if (seen.contains(seenKey))
            continue;
        seen.insert(seenKey);
        const JsonValue values = readRecord(db, table, key);
        if (values.isNothing()) {
            missing << table.left(40) + QStringLiteral(" / ID: ") + QString::number(key);
            continue;
        }
        auto entry = std::make_shared<JsonObject>();
        entry->add(QStringLiteral("logtype"), "U");
        entry->add(QStringLiteral("dblogid"), "0");
        entry->add(QStringLiteral("tablename"), table);
        entry->add(QStringLiteral("values"), values);
        result.array()->append(JsonValue(entry));
    }
    return result;
}

} // namespace fenlark

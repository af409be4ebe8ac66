#include "synch/serverupdates.h"

#include "bookings/cancellog.h"
#include "shell/database.h"
#include "shell/money.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace fenlark {

namespace {

QString valueKey(const JsonObject &values, const QString &name)
{
    for (const auto &entry : values.entries()) {
        if (entry.first.compare(name, Qt::CaseInsensitive) == 0)
            return entry.first;
    }
    return QString();
}

JsonValue valueOf(const JsonObject &values, const QString &name)
{
    const QString key = valueKey(values, name);
    return key.isEmpty() ? JsonValue() : values.value(key);
}

} // namespace

ServerUpdateApplier::ServerUpdateApplier(Database &db, bool isLink) : m_db(db), m_isLink(isLink), m_tables(db) {}

void ServerUpdateApplier::applyServerUpdates(const JsonArray &updates)
{
    m_acknowledgements.clear();
    m_requests.clear();
    m_requested.clear();
    m_waiting.clear();
    m_applied = 0;
    m_pendingRates.clear();

    std::vector<bool> done(updates.size(), false);
    bool progress = true;
    while (progress) {
        progress = false;
        for (qsizetype i = 0; i < updates.size(); ++i) {
            if (done[i])
                continue;
            const JsonValue &update = updates[i];
            if (!update.isObject())
                throw SynchDataError(QStringLiteral("An update from the server is not an object"));
            JsonObject &entry = *update.object();
            const QString table = entry.value(QStringLiteral("tablename")).toText();
            if (!SynchTables::isShared(table))
                throw SynchDataError(QStringLiteral("Unknown table from the server: ") + table.left(40));
            bool ok = false;
            const qint32 tableId = entry.value(QStringLiteral("tableid")).toInt(&ok);
            if (!ok || tableId <= 0)
                throw SynchDataError(QStringLiteral("An update for %1 without a server id").arg(table));
            const QString logType = entry.value(QStringLiteral("logtype")).toText();
            const qint32 logId = entry.value(QStringLiteral("dblogid")).toInt();
            if (logType == QLatin1String("D")) {
                applyDelete(table, tableId);
                addAcknowledgement(table, logId, tableId, 0);
                done[i] = true;
                continue;
            }
            if (logType != QLatin1String("U") && logType != QLatin1String("I"))
                throw SynchDataError(QStringLiteral("Unknown kind of change from the server: ") + logType.left(10));
            if (applyEntry(entry, table, table + QLatin1Char('@') + QString::number(tableId))) {
                done[i] = true;
                progress = true;
            }
        }
    }
    for (const PendingRates &rates : m_pendingRates)
        applyDailyRates(rates.bookingKey, rates.roomKey, rates.rates);
}

bool ServerUpdateApplier::applyEntry(JsonObject &entry, const QString &table, const QString &entryKey)
{
    const JsonValue valuesValue = entry.value(QStringLiteral("values"));
    if (!valuesValue.isObject())
        throw SynchDataError(QStringLiteral("An update for %1 without values").arg(table));
    // Resolve on a copy: the entry keeps its references for a later pass or reply.
    JsonObject values = *valuesValue.object();

    bool resolved = true;
    for (const QString &key : values.keys()) {
        const JsonValue value = values.value(key);
        if (!value.isObject() || key.compare(QLatin1String("dailyrates"), Qt::CaseInsensitive) == 0)
            continue;
        const QString refTable = (*value.object()).value(QStringLiteral("table")).toText();
        bool ok = false;
        const qint32 refId = (*value.object()).value(QStringLiteral("tableid")).toInt(&ok);
        // A reference names a shared row by a server id that may be 0 ("none"), and
        // stands only where a whole-number column of this table takes a key.
        const TableColumn *column = m_tables.column(table, key);
        if (!SynchTables::isShared(refTable) || !ok || refId < 0 || !column || !column->isInteger)
            throw SynchDataError(QStringLiteral("A bad reference in %1.%2").arg(table, key.left(40)));
        if (refId == 0) {
            values.set(key, JsonValue(0));
            continue;
        }
        const qint32 local = m_tables.serverToLocalId(refTable, refId);
        if (local < 0) {
            resolved = false;
            if (!m_waiting.contains(entryKey)) {
                addRequest(refTable, refId);
                m_waiting.insert(entryKey);
            }
            continue;
        }
        values.set(key, JsonValue(local));
    }
    if (!resolved)
        return false;

    const qint32 tableId = entry.value(QStringLiteral("tableid")).toInt();
    values.set(valueKey(values, SynchTables::serverKey(table)).isEmpty() ? SynchTables::serverKey(table)
                                                                        : valueKey(values, SynchTables::serverKey(table)),
               JsonValue(tableId));
    const qint32 localKey = writeRecord(table, values);
    addAcknowledgement(table, entry.value(QStringLiteral("dblogid")).toInt(), tableId, localKey);
    ++m_applied;
    if (table == QLatin1String("booking"))
        noteNewBooking(localKey);
    if (table == QLatin1String("guest")) {
        // After every pass: the booking of this leg may change its dates later in the same reply.
        m_pendingRates.push_back({valueOf(values, QStringLiteral("BBBookingID")).toInt(),
                                  valueOf(values, QStringLiteral("BBRoomID")).toInt(), valueOf(values, QStringLiteral("dailyrates"))});
    }
    return true;
}

qint32 ServerUpdateApplier::writeRecord(const QString &table, JsonObject &values)
{
    const QString localKeyName = SynchTables::localKey(table);
    const QString serverKeyName = SynchTables::serverKey(table);
    const qint32 tableId = valueOf(values, serverKeyName).toInt();

    qint32 localKey = m_tables.serverToLocalId(table, tableId);
    if (localKey < 0) {
        // A key the server knows: this PC's own row, still waiting for its server id,
        // is updated rather than doubled. A key that names no row here is never
        // taken over: the row gets a fresh key, which the acknowledgement reports.
        bool ok = false;
        const qint32 offered = valueOf(values, localKeyName).toInt(&ok);
        if (ok && offered > 0) {
            const QVariant held = m_db.scalar(QStringLiteral("select %1 from %2 where %3 = ?").arg(serverKeyName, table, localKeyName),
                                              {offered});
            if (held.isValid() && (held.toInt() == 0 || held.toInt() == tableId))
                localKey = offered;
        }
        if (localKey < 0) {
            QStringList names;
            QStringList marks;
            QVariantList bound;
            for (const TableColumn &c : m_tables.columns(table)) {
                if (c.name.compare(localKeyName, Qt::CaseInsensitive) == 0)
                    continue;
                names << c.name;
                marks << QStringLiteral("?");
                bound << m_tables.columnValue(c, valueOf(values, c.name), table);
            }
            m_db.execute(QStringLiteral("insert into %1 (%2) values(%3)").arg(table, names.join(QLatin1Char(',')), marks.join(QLatin1Char(','))),
                         bound);
            const qint64 fresh = m_db.lastInsertId();
            if (fresh < 1 || fresh > SynchTables::MaxKey)
                throw SynchDataError(QStringLiteral("The local keys of %1 are used up").arg(table));
            values.set(localKeyName, JsonValue(static_cast<qint32>(fresh)));
            return static_cast<qint32>(fresh);
        }
    }
    // The local key of an existing row never changes; every other column takes the server's value.
    QStringList sets;
    QVariantList bound;
    for (const TableColumn &c : m_tables.columns(table)) {
        if (c.name.compare(localKeyName, Qt::CaseInsensitive) == 0)
            continue;
        sets << c.name + QStringLiteral(" = ?");
        bound << m_tables.columnValue(c, valueOf(values, c.name), table);
    }
    bound << localKey;
    m_db.execute(QStringLiteral("update %1 set %2 where %3 = ?").arg(table, sets.join(QLatin1Char(',')), localKeyName), bound);
    values.set(localKeyName, JsonValue(localKey));
    return localKey;
}

void ServerUpdateApplier::applyDelete(const QString &table, qint32 tableId)
{
    if (table == QLatin1String("booking") || table == QLatin1String("guest")) {
        deleteBookingRecord(table, tableId);
        return;
    }
    m_db.execute(QStringLiteral("delete from %1 where %2 = ?").arg(table, SynchTables::serverKey(table)), {tableId});
    ++m_applied;
}

void ServerUpdateApplier::deleteBookingRecord(const QString &table, qint32 tableId)
{
    const qint32 localKey = m_tables.serverToLocalId(table, tableId);
    if (localKey < 0)
        return; // already gone: no failure
    if (!m_isLink)
        CancelLog::deleteRecord(m_db, table == QLatin1String("booking") ? CancelledTable::Booking : CancelledTable::Guest,
                                localKey, QStringLiteral("synch"));
    if (table == QLatin1String("guest")) {
        m_db.execute(QStringLiteral("delete from dailyrate where BBBookingID = (select BBBookingID from guest where BBGuestID = ?) "
                                    "and BBRoomID = (select BBRoomID from guest where BBGuestID = ?)"),
                     {localKey, localKey});
    }
    m_db.execute(QStringLiteral("delete from %1 where %2 = ?").arg(table, SynchTables::localKey(table)), {localKey});
    ++m_applied;
}

void ServerUpdateApplier::applyDailyRates(qint32 bookingKey, qint32 roomKey, const JsonValue &rates)
{
    QSqlQuery b = m_db.query(QStringLiteral("select FromDate, ToDate from booking where BBBookingID = ?"), {bookingKey});
    if (!b.next())
        return;
    const QDate from = dateFromSql(b.value(0));
    const QDate to = dateFromSql(b.value(1));
    b.finish();
    if (!from.isValid() || !to.isValid())
        return;
    if (from.daysTo(to) > 3660)
        throw SynchDataError(QStringLiteral("A stay of more than ten years from the server"));

    QHash<QString, double> serverRates;
    if (rates.isArray()) {
        for (const JsonValue &rate : *rates.array()) {
            if (!rate.isObject())
                throw SynchDataError(QStringLiteral("A bad daily rate from the server"));
            const JsonObject &r = *rate.object();
            bool ok = false;
            const double amount = valueOf(r, QStringLiteral("roomrate")).toDouble(&ok);
            if (!ok)
                throw SynchDataError(QStringLiteral("A daily rate from the server that is no finite number: ")
                                     + valueOf(r, QStringLiteral("roomrate")).toText().left(40));
            serverRates.insert(valueOf(r, QStringLiteral("caldate")).toText().left(10), amount);
        }
    }
    m_db.execute(QStringLiteral("delete from dailyrate where BBBookingID = ? and BBRoomID = ? and (CalDate < ? or CalDate >= ?)"),
                 {bookingKey, roomKey, sqlDate(from), sqlDate(to)});
    QSet<QString> existing;
    QSqlQuery q = m_db.query(QStringLiteral("select CalDate from dailyrate where BBBookingID = ? and BBRoomID = ?"), {bookingKey, roomKey});
    while (q.next())
        existing.insert(q.value(0).toString().left(10));
    q.finish();
    // A rate this PC already holds for a night stands against the server's.
    for (QDate night = from; night < to; night = night.addDays(1)) {
        const QString key = night.toString(Qt::ISODate);
        if (existing.contains(key))
            continue;
        m_db.execute(QStringLiteral("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values (?,?,?,?)"),
                     {sqlDate(night), bookingKey, roomKey, roundMoney(serverRates.value(key, 0.0))});
    }
}

void ServerUpdateApplier::noteNewBooking(qint32 bookingKey)
{
    // The list has no index and a large reply notes many bookings: it is read once.
    if (!m_notedLoaded) {
        QSqlQuery q = m_db.query(QStringLiteral("select BBBookingID from newbooking"));
        while (q.next())
            m_noted.insert(q.value(0).toInt());
        m_notedLoaded = true;
    }
    if (m_noted.contains(bookingKey))
        return;
    m_db.execute(QStringLiteral("insert into newbooking (BBBookingID) values (?)"), {bookingKey});
    m_noted.insert(bookingKey);
}

void ServerUpdateApplier::addAcknowledgement(const QString &table, qint32 logId, qint32 tableId, qint32 localId)
{
    auto ack = std::make_shared<JsonObject>();
    ack->add(QStringLiteral("tablename"), table);
    ack->add(QStringLiteral("dblogid"), JsonValue(logId));
    ack->add(QStringLiteral("tableid"), JsonValue(tableId));
    ack->add(QStringLiteral("bbtableid"), JsonValue(localId));
    m_acknowledgements.append(JsonValue(ack));
}

void ServerUpdateApplier::addRequest(const QString &table, qint32 tableId)
{
    const QString key = table + QLatin1Char('@') + QString::number(tableId);
    if (m_requested.contains(key))
        return;
    m_requested.insert(key);
    auto request = std::make_shared<JsonObject>();
    request->add(QStringLiteral("tablename"), table);
    request->add(QStringLiteral("tableid"), JsonValue(tableId));
    m_requests.append(JsonValue(request));
}

} // namespace fenlark

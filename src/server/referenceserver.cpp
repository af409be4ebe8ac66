#include "server/referenceserver.h"

#include "shell/schema.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace fenlark::server {

namespace {

// Which columns of each shared table point at another shared row.
const QHash<QString, QHash<QString, QString>> &referenceColumns()
{
    static const QHash<QString, QHash<QString, QString>> refs = {
        {"booking", {{"madeby", "client"}, {"bbaccountid", "account"}}},
        {"guest", {{"bbbookingid", "booking"}, {"bbclientid", "client"}, {"bbclient2id", "client"}, {"bbaccountid", "account"}}},
        {"clientextra", {{"bbclientid", "client"}}},
        {"account", {{"invoiceto", "client"}}},
        {"extra", {{"bbguestid", "guest"}, {"bbaccountid", "account"}}},
        {"payment", {{"bbaccountid", "account"}}},
        {"clienttran", {{"bbclientid", "client"}}},
        {"invoice", {{"bbclientid", "client"}, {"bbaccountid", "account"}}},
        {"invoiceitem", {{"bbinvoiceid", "invoice"}}},
    };
    return refs;
}

bool isShared(const QString &table)
{
    return Schema::sharedTables().contains(table) || table == QLatin1String("creditnote");
}

QString localKeyOf(const QString &table)
{
    return QStringLiteral("bb") + table + QStringLiteral("id");
}

QString serverKeyOf(const QString &table)
{
    return table + QStringLiteral("id");
}

JsonValue reference(const QString &table, qint32 tableId)
{
    auto ref = std::make_shared<JsonObject>();
    ref->add(QStringLiteral("table"), table);
    ref->add(QStringLiteral("tableid"), JsonValue(tableId));
    return JsonValue(ref);
}

QString failReply(const QString &code, const QString &message)
{
    auto error = std::make_shared<JsonObject>();
    error->add(QStringLiteral("code"), code);
    error->add(QStringLiteral("message"), message);
    auto reply = std::make_shared<JsonObject>();
    reply->add(QStringLiteral("success"), JsonValue(false));
    reply->add(QStringLiteral("error"), JsonValue(error));
    return json::toString(JsonValue(reply));
}

// Constant-time comparison, so the time of a refusal tells nothing of the password.
bool samePassword(const QString &a, const QString &b)
{
    const QByteArray x = QCryptographicHash::hash(a.toUtf8(), QCryptographicHash::Sha256);
    const QByteArray y = QCryptographicHash::hash(b.toUtf8(), QCryptographicHash::Sha256);
    unsigned char diff = 0;
    for (int i = 0; i < x.size(); ++i)
        diff |= static_cast<unsigned char>(x[i] ^ y[i]);
    return diff == 0 && a.size() == b.size();
}

// The key of values spelled as it is, matched without regard to case.
QString keyLike(const JsonObject &values, const QString &name)
{
    for (const auto &e : values.entries()) {
        if (e.first.compare(name, Qt::CaseInsensitive) == 0)
            return e.first;
    }
    return QString();
}

constexpr int OutboxLimit = 300;

} // namespace

ReferenceServer::ReferenceServer(const QString &path, const QString &connectionName) : m_connectionName(connectionName)
{
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    m_db.setDatabaseName(path);
    if (!m_db.open())
        throw ServerError(QStringLiteral("cannot open %1: %2").arg(path, m_db.lastError().text()));
    {
        // Settings of the connection, run once and let go: a statement kept with an
        // unread row would hold every later write uncommitted.
        QSqlQuery pragma(m_db);
        pragma.exec(QStringLiteral("pragma busy_timeout = 5000"));
        // A commit per exchange: the write-ahead log keeps that to one write, not a
        // journal file made and removed each time.
        pragma.exec(QStringLiteral("pragma journal_mode = wal"));
        pragma.exec(QStringLiteral("pragma synchronous = normal"));
        pragma.exec(QStringLiteral("pragma cache_size = -32768"));
    }
    exec(QStringLiteral("create table if not exists property (bbid integer primary key, password text not null, "
                        "name text not null default '', synchcounter integer not null default 1, lastupdated text)"));
    exec(QStringLiteral("create table if not exists setup (bbid integer not null, tablename text not null, rows text not null, "
                        "primary key (bbid, tablename))"));
    exec(QStringLiteral("create table if not exists record (tableid integer primary key autoincrement, bbid integer not null, "
                        "tablename text not null, localid integer not null default 0, data text not null, "
                        "unresolved integer not null default 0)"));
    exec(QStringLiteral("create index if not exists record_local on record (bbid, tablename, localid)"));
    // Each exchange looks for rows still waiting on a reference; there are few.
    exec(QStringLiteral("create index if not exists record_unresolved on record (bbid) where unresolved = 1"));
    exec(QStringLiteral("create table if not exists outbox (id integer primary key autoincrement, bbid integer not null, "
                        "tablename text not null, tableid integer not null, logtype text not null)"));
    exec(QStringLiteral("create table if not exists fault (name text primary key, remaining integer not null)"));
}

ReferenceServer::~ReferenceServer()
{
    m_statements.clear();
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

QSqlQuery &ReferenceServer::exec(const QString &sql, const QVariantList &values)
{
    auto it = m_statements.find(sql);
    if (it == m_statements.end()) {
        QSqlQuery prepared(m_db);
        prepared.setForwardOnly(true);
        if (!prepared.prepare(sql))
            throw ServerError(prepared.lastError().text() + QStringLiteral(" [") + sql + QLatin1Char(']'));
        it = m_statements.insert(sql, prepared);
    }
    QSqlQuery &q = it.value();
    q.finish();
    for (int i = 0; i < values.size(); ++i)
        q.bindValue(i, values.at(i));
    if (!q.exec())
        throw ServerError(q.lastError().text() + QStringLiteral(" [") + sql + QLatin1Char(']'));
    // Callers finish their reads: a statement left with unread rows would hold a
    // read transaction open.
    return q;
}

void ReferenceServer::finishStatements()
{
    // SQLite refuses to commit while a kept statement still holds unread rows.
    for (QSqlQuery &q : m_statements)
        q.finish();
}

QVariant ReferenceServer::scalar(const QString &sql, const QVariantList &values)
{
    QSqlQuery &q = exec(sql, values);
    QVariant value = q.next() ? q.value(0) : QVariant();
    q.finish();
    return value;
}

void ReferenceServer::begin()
{
    exec(QStringLiteral("begin immediate"));
}

void ReferenceServer::commit()
{
    finishStatements();
    exec(QStringLiteral("commit"));
}

void ReferenceServer::rollback()
{
    finishStatements();
    QSqlQuery q(m_db);
    q.exec(QStringLiteral("rollback"));
}

const QStringList &ReferenceServer::faultNames()
{
    static const QStringList names = {QStringLiteral("drop"), QStringLiteral("stall"), QStringLiteral("garbled"),
                                      QStringLiteral("truncated"), QStringLiteral("fail"), QStringLiteral("duplicate-acks"),
                                      QStringLiteral("shuffle")};
    return names;
}

QString ReferenceServer::wireForm(const QString &password)
{
    QString out(password.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < password.size(); ++i)
        out[i] = QChar(password[i].unicode() & 0xFF);
    return out;
}

bool ReferenceServer::authenticate(qint32 bbid, const QString &password)
{
    const QVariant stored = scalar(QStringLiteral("select password from property where bbid = ?"), {bbid});
    // Compare against something even for an unknown property, to keep the time the same.
    return samePassword(stored.isValid() ? wireForm(stored.toString()) : QStringLiteral("\x01unknown"), password) && stored.isValid();
}

// ------------------------------------------------------------------ setup

void ReferenceServer::createProperty(qint32 bbid, const QString &password, const QString &name)
{
    if (bbid < 10000 || bbid > 32767)
        throw ServerError(QStringLiteral("a BBID is a number from 10000 to 32767"));
    exec(QStringLiteral("insert or replace into property (bbid, password, name, synchcounter, lastupdated) values (?,?,?,"
                        "coalesce((select synchcounter from property where bbid = ?), 1), ?)"),
         {bbid, password, name, bbid, QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))});
    auto row = std::make_shared<JsonObject>();
    row->add(QStringLiteral("bbid"), JsonValue(bbid));
    row->add(QStringLiteral("bbname"), name);
    row->add(QStringLiteral("password"), password);
    if (!scalar(QStringLiteral("select 1 from setup where bbid = ? and tablename = 'bbsetup'"), {bbid}).isValid()) {
        auto rows = std::make_shared<JsonArray>();
        rows->append(JsonValue(row));
        setSetupTable(bbid, QStringLiteral("bbsetup"), JsonValue(rows));
    }
}

qint32 ReferenceServer::seedFromDesk(const QString &deskDatabasePath)
{
    const QString name = m_connectionName + QStringLiteral("-seed");
    qint32 bbid = 0;
    {
        QSqlDatabase desk = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        desk.setDatabaseName(deskDatabasePath);
        desk.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!desk.open())
            throw ServerError(QStringLiteral("cannot open the desk database %1").arg(deskDatabasePath));
        QSqlQuery setup(desk);
        if (!setup.exec(QStringLiteral("select BBID, Password, BBName from bbsetup")) || !setup.next())
            throw ServerError(QStringLiteral("the desk database has no property (bbsetup is empty)"));
        bbid = setup.value(0).toInt();
        // The seed is committed whole before the server answers anyone.
        begin();
        try {
            createProperty(bbid, setup.value(1).toString(), setup.value(2).toString());
            for (const QString &table : Schema::serverTables()) {
                QSqlQuery q(desk);
                if (!q.exec(QStringLiteral("select * from ") + table))
                    continue;
                auto rows = std::make_shared<JsonArray>();
                while (q.next()) {
                    auto row = std::make_shared<JsonObject>();
                    const QSqlRecord r = q.record();
                    for (int i = 0; i < r.count(); ++i)
                        row->add(r.fieldName(i).toLower(), JsonValue::fromVariant(r.value(i)));
                    rows->append(JsonValue(row));
                }
                setSetupTable(bbid, table, JsonValue(rows));
            }
            // Rows the desk already holds under server ids (a demo, a copied database) must
            // never meet a new row of this server under the same id.
            qint64 highest = 0;
            for (const QString &table : Schema::sharedTables()) {
                QSqlQuery q(desk);
                if (q.exec(QStringLiteral("select max(%1) from %2").arg(serverKeyOf(table), table)) && q.next())
                    highest = std::max(highest, q.value(0).toLongLong());
            }
            reserveIdsUpTo(highest);
            commit();
        } catch (...) {
            rollback();
            throw;
        }
        desk.close();
    }
    QSqlDatabase::removeDatabase(name);
    return bbid;
}

void ReferenceServer::reserveIdsUpTo(qint64 highest)
{
    if (highest <= 0)
        return;
    if (exec(QStringLiteral("update sqlite_sequence set seq = max(seq, ?) where name = 'record'"), {highest}).numRowsAffected() == 0)
        exec(QStringLiteral("insert into sqlite_sequence (name, seq) values ('record', ?)"), {highest});
}

void ReferenceServer::setSetupTable(qint32 bbid, const QString &table, const JsonValue &rows)
{
    if (!rows.isArray())
        throw ServerError(QStringLiteral("a setup table is a list of rows"));
    exec(QStringLiteral("insert or replace into setup (bbid, tablename, rows) values (?,?,?)"), {bbid, table.toLower(), json::toString(rows)});
    bumpSetup(bbid);
}

void ReferenceServer::bumpSetup(qint32 bbid)
{
    exec(QStringLiteral("update property set synchcounter = synchcounter + 1, lastupdated = ? where bbid = ?"),
         {QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), bbid});
}

QString ReferenceServer::handleSetup(qint32 bbid, const QString &password, const QString &pcSynchCounter)
{
    auto reply = std::make_shared<JsonObject>();
    reply->add(QStringLiteral("success"), JsonValue(true));
    if (!authenticate(bbid, password)) {
        reply->add(QStringLiteral("loginfail"), JsonValue(true));
        return json::toString(JsonValue(reply));
    }
    QSqlQuery &p = exec(QStringLiteral("select synchcounter, lastupdated from property where bbid = ?"), {bbid});
    p.next();
    const qint32 counter = p.value(0).toInt();
    const QString lastUpdated = p.value(1).toString();
    p.finish();
    if (pcSynchCounter.trimmed() == QString::number(counter)) {
        reply->add(QStringLiteral("synconly"), JsonValue(counter));
        return json::toString(JsonValue(reply));
    }
    auto data = std::make_shared<JsonObject>();
    QSqlQuery &q = exec(QStringLiteral("select tablename, rows from setup where bbid = ? order by tablename"), {bbid});
    while (q.next()) {
        const QString table = q.value(0).toString();
        JsonValue rows = json::parse(q.value(1).toString());
        if (table == QLatin1String("bbsetup") && rows.isArray()) {
            for (const JsonValue &row : *rows.array()) {
                row.object()->set(QStringLiteral("synchcounter"), JsonValue(counter));
                row.object()->set(QStringLiteral("lastupdated"), lastUpdated);
                row.object()->set(QStringLiteral("bbid"), JsonValue(bbid));
            }
        }
        data->add(table, rows);
    }
    q.finish();
    reply->add(QStringLiteral("data"), JsonValue(data));
    return json::toString(JsonValue(reply));
}

QString ReferenceServer::handleUpgrade(qint32 bbid, const QString &password)
{
    if (!authenticate(bbid, password))
        return failReply(QStringLiteral("401"), QStringLiteral("Incorrect BBID / Password"));
    return QStringLiteral("{\"success\":true,\"upgrade\":false}");
}

// ------------------------------------------------------------------ rows

qint32 ReferenceServer::tableIdForLocal(qint32 bbid, const QString &table, qint32 localId)
{
    const QVariant v = scalar(QStringLiteral("select tableid from record where bbid = ? and tablename = ? and localid = ?"),
                              {bbid, table, localId});
    return v.isValid() ? v.toInt() : 0;
}

qint32 ReferenceServer::localIdOf(qint32 bbid, const QString &table, qint32 tableId)
{
    return scalar(QStringLiteral("select localid from record where bbid = ? and tablename = ? and tableid = ?"), {bbid, table, tableId}).toInt();
}

JsonValue ReferenceServer::row(qint32 bbid, const QString &table, qint32 tableId)
{
    const QVariant data = scalar(QStringLiteral("select data from record where bbid = ? and tablename = ? and tableid = ?"),
                                 {bbid, table, tableId});
    return data.isValid() ? json::parse(data.toString()) : JsonValue();
}

int ReferenceServer::rowCount(qint32 bbid, const QString &table)
{
    return scalar(QStringLiteral("select count(*) from record where bbid = ? and tablename = ?"), {bbid, table}).toInt();
}

int ReferenceServer::outboxCount(qint32 bbid)
{
    return scalar(QStringLiteral("select count(*) from outbox where bbid = ?"), {bbid}).toInt();
}

void ReferenceServer::queue(qint32 bbid, const QString &table, qint32 tableId, const QString &logType)
{
    exec(QStringLiteral("delete from outbox where bbid = ? and tablename = ? and tableid = ?"), {bbid, table, tableId});
    exec(QStringLiteral("insert into outbox (bbid, tablename, tableid, logtype) values (?,?,?,?)"), {bbid, table, tableId, logType});
}

qint32 ReferenceServer::storeRow(qint32 bbid, const QString &table, qint32 localId, const JsonValue &values, bool fromPc)
{
    JsonObject data;
    bool unresolved = false;
    const auto refs = referenceColumns().value(table);
    for (const auto &[key, value] : values.object()->entries()) {
        const QString lower = key.toLower();
        if (lower == localKeyOf(table) || lower == serverKeyOf(table))
            continue;
        if (fromPc && refs.contains(lower) && value.isNumber() && value.toInt() > 0) {
            const qint32 target = tableIdForLocal(bbid, refs.value(lower), value.toInt());
            if (target > 0) {
                data.add(key, reference(refs.value(lower), target));
            } else {
                data.add(key, value);
                unresolved = true;
            }
            continue;
        }
        data.add(key, value);
    }
    const QString text = json::toString(JsonValue(std::make_shared<JsonObject>(data)));
    const qint32 existing = localId > 0 ? tableIdForLocal(bbid, table, localId) : 0;
    if (existing > 0) {
        exec(QStringLiteral("update record set data = ?, unresolved = ? where tableid = ?"), {text, unresolved ? 1 : 0, existing});
        return existing;
    }
    return exec(QStringLiteral("insert into record (bbid, tablename, localid, data, unresolved) values (?,?,?,?,?)"),
                {bbid, table, localId, text, unresolved ? 1 : 0})
        .lastInsertId()
        .toInt();
}

void ReferenceServer::resolveReferences(qint32 bbid, JsonArray &requests, QSet<QString> &requested)
{
    QSqlQuery &q = exec(QStringLiteral("select tableid, tablename, data from record where bbid = ? and unresolved = 1"), {bbid});
    std::vector<std::tuple<qint32, QString, QString>> rows;
    while (q.next())
        rows.emplace_back(q.value(0).toInt(), q.value(1).toString(), q.value(2).toString());
    q.finish();
    for (const auto &[tableId, table, text] : rows) {
        JsonValue data = json::parse(text);
        if (!data.isObject())
            continue;
        bool still = false;
        const auto refs = referenceColumns().value(table);
        for (const QString &key : data.object()->keys()) {
            const QString lower = key.toLower();
            const JsonValue value = data.object()->value(key);
            if (!refs.contains(lower) || !value.isNumber() || value.toInt() <= 0)
                continue;
            const QString target = refs.value(lower);
            const qint32 found = tableIdForLocal(bbid, target, value.toInt());
            if (found > 0) {
                data.object()->set(key, reference(target, found));
                continue;
            }
            still = true;
            const QString wanted = target + QLatin1Char('_') + QString::number(value.toInt());
            if (!requested.contains(wanted)) {
                requested.insert(wanted);
                auto request = std::make_shared<JsonObject>();
                request->add(QStringLiteral("tablename"), target);
                request->add(QStringLiteral("bbtableid"), JsonValue(value.toInt()));
                requests.append(JsonValue(request));
            }
        }
        exec(QStringLiteral("update record set data = ?, unresolved = ? where tableid = ?"), {json::toString(data), still ? 1 : 0, tableId});
    }
}

JsonValue ReferenceServer::recordEntry(qint32 bbid, const QString &table, qint32 tableId, const QString &logType, qint32 logId)
{
    auto entry = std::make_shared<JsonObject>();
    entry->add(QStringLiteral("logtype"), logType);
    entry->add(QStringLiteral("dblogid"), JsonValue(logId));
    entry->add(QStringLiteral("tablename"), table);
    entry->add(QStringLiteral("tableid"), JsonValue(tableId));
    if (logType == QLatin1String("D"))
        return JsonValue(entry);
    QSqlQuery &q = exec(QStringLiteral("select data, localid from record where bbid = ? and tablename = ? and tableid = ?"), {bbid, table, tableId});
    if (!q.next())
        return JsonValue();
    JsonValue values = json::parse(q.value(0).toString());
    const qint32 localId = q.value(1).toInt();
    q.finish();
    if (!values.isObject())
        return JsonValue();
    values.object()->set(serverKeyOf(table), JsonValue(tableId));
    if (localId > 0)
        values.object()->set(localKeyOf(table), JsonValue(localId));
    entry->add(QStringLiteral("values"), values);
    return JsonValue(entry);
}

QString ReferenceServer::handlePcSynch(qint32 bbid, const QString &password, const QString &message)
{
    if (!authenticate(bbid, password))
        return failReply(QStringLiteral("401"), QStringLiteral("Incorrect BBID / Password"));
    const JsonValue parsed = json::parse(message);
    const JsonValue data = parsed[QStringLiteral("data")];
    if (!data.isObject())
        return failReply(QStringLiteral("400"), QStringLiteral("The message could not be read"));

    // A deletion must name the PC's key: without one it would meet whichever row
    // still waits for its key. Such a message is refused whole.
    const JsonValue sent = data[QStringLiteral("logupdates")];
    if (sent.isArray()) {
        for (const JsonValue &update : *sent.array()) {
            bool ok = false;
            const qint32 localId = update[QStringLiteral("bbtableid")].toInt(&ok);
            if (update[QStringLiteral("logtype")].toText() == QLatin1String("D") && (!ok || localId <= 0))
                return failReply(QStringLiteral("400"), QStringLiteral("A deletion without a local key"));
        }
    }

    auto acknowledgements = std::make_shared<JsonArray>();
    auto requests = std::make_shared<JsonArray>();
    auto logupdates = std::make_shared<JsonArray>();
    QSet<QString> requested;
    begin();
    try {
        // Receipts for what this server sent: the PC's key, and the outbox entry is done.
        const JsonValue acks = data[QStringLiteral("acknowledgements")];
        if (acks.isArray()) {
            for (const JsonValue &ack : *acks.array()) {
                const QString table = ack[QStringLiteral("tablename")].toText();
                const qint32 tableId = ack[QStringLiteral("tableid")].toInt();
                const qint32 localId = ack[QStringLiteral("bbtableid")].toInt();
                const qint32 logId = ack[QStringLiteral("dblogid")].toInt();
                if (!isShared(table))
                    continue;
                if (localId > 0)
                    exec(QStringLiteral("update record set localid = ? where bbid = ? and tablename = ? and tableid = ?"),
                         {localId, bbid, table, tableId});
                exec(QStringLiteral("delete from outbox where bbid = ? and tablename = ? and tableid = ? and id <= ?"),
                     {bbid, table, tableId, logId});
            }
        }

        // The PC's changes: every entry is acknowledged, stored by the PC's own key.
        const JsonValue updates = data[QStringLiteral("logupdates")];
        if (updates.isArray()) {
            for (const JsonValue &update : *updates.array()) {
                const QString table = update[QStringLiteral("tablename")].toText();
                if (!isShared(table))
                    continue;
                const QString logType = update[QStringLiteral("logtype")].toText();
                const qint32 logId = update[QStringLiteral("dblogid")].toInt();
                const JsonValue values = update[QStringLiteral("values")];
                qint32 localId = update[QStringLiteral("bbtableid")].toInt();
                if (localId <= 0 && values.isObject())
                    localId = values[keyLike(*values.object(), localKeyOf(table))].toInt();
                qint32 tableId = 0;
                if (logType == QLatin1String("D")) {
                    tableId = tableIdForLocal(bbid, table, localId);
                    if (tableId > 0) {
                        exec(QStringLiteral("delete from record where tableid = ?"), {tableId});
                        exec(QStringLiteral("delete from outbox where bbid = ? and tablename = ? and tableid = ?"), {bbid, table, tableId});
                    }
                } else if (values.isObject() && localId > 0) {
                    tableId = storeRow(bbid, table, localId, values, true);
                } else {
                    continue;
                }
                auto ack = std::make_shared<JsonObject>();
                ack->add(QStringLiteral("tablename"), table);
                ack->add(QStringLiteral("dblogid"), JsonValue(logId));
                ack->add(QStringLiteral("tableid"), JsonValue(tableId));
                ack->add(QStringLiteral("bbtableid"), JsonValue(localId));
                acknowledgements->append(JsonValue(ack));
            }
        }
        resolveReferences(bbid, *requests, requested);

        // The PC's requests, then this server's own changes.
        const JsonValue wanted = data[QStringLiteral("requests")];
        if (wanted.isArray()) {
            for (const JsonValue &request : *wanted.array()) {
                const QString table = request[QStringLiteral("tablename")].toText();
                if (!isShared(table))
                    continue;
                const JsonValue entry = recordEntry(bbid, table, request[QStringLiteral("tableid")].toInt(), QStringLiteral("U"), 0);
                if (!entry.isNothing())
                    logupdates->append(entry);
            }
        }
        QSqlQuery &out = exec(QStringLiteral("select id, tablename, tableid, logtype from outbox where bbid = ? order by id limit ?"),
                             {bbid, OutboxLimit});
        std::vector<std::tuple<qint32, QString, qint32, QString>> pending;
        while (out.next())
            pending.emplace_back(out.value(0).toInt(), out.value(1).toString(), out.value(2).toInt(), out.value(3).toString());
        out.finish();
        for (const auto &[id, table, tableId, logType] : pending) {
            const JsonValue entry = recordEntry(bbid, table, tableId, logType, id);
            if (entry.isNothing())
                exec(QStringLiteral("delete from outbox where id = ?"), {id});
            else
                logupdates->append(entry);
        }
        commit();
    } catch (const ServerError &e) {
        rollback();
        return failReply(QStringLiteral("500"), QString::fromUtf8(e.what()));
    }

    auto replyData = std::make_shared<JsonObject>();
    replyData->add(QStringLiteral("requests"), JsonValue(requests));
    replyData->add(QStringLiteral("acknowledgements"), JsonValue(acknowledgements));
    replyData->add(QStringLiteral("logupdates"), JsonValue(logupdates));
    auto reply = std::make_shared<JsonObject>();
    reply->add(QStringLiteral("success"), JsonValue(true));
    reply->add(QStringLiteral("data"), JsonValue(replyData));
    return json::toString(JsonValue(reply));
}

// ------------------------------------------------------------------ administration

OnlineBookingIds ReferenceServer::addOnlineBooking(qint32 bbid, const OnlineBooking &b)
{
    if (!scalar(QStringLiteral("select 1 from property where bbid = ?"), {bbid}).isValid())
        throw ServerError(QStringLiteral("no property %1").arg(bbid));
    if (!b.fromDate.isValid() || b.nights < 1 || b.nights > 365)
        throw ServerError(QStringLiteral("an online booking needs a first night and from 1 to 365 nights"));
    const QString today = QDate::currentDate().toString(Qt::ISODate);
    OnlineBookingIds ids;
    begin();
    try {
        auto client = std::make_shared<JsonObject>();
        client->add("DateCreated", today);
        client->add("CreatedOn", "W");
        client->add("ClientType", "I");
        client->add("Title", "");
        client->add("FirstName", b.firstName);
        client->add("Surname", b.surname);
        client->add("Company", "");
        client->add("PhoneNo", "");
        client->add("Email", b.email);
        client->add("Notes", "");
        client->add("BBRateSheetID", JsonValue(0));
        client->add("Add1", "");
        client->add("Add2", "");
        client->add("VatNo", "");
        client->add("Active", "Y");
        ids.client = storeRow(bbid, "client", 0, JsonValue(client), false);

        auto account = std::make_shared<JsonObject>();
        account->add("InvoiceTo", reference("client", ids.client));
        account->add("ProformaNo", JsonValue(0));
        account->add("InvoiceNo", JsonValue(0));
        account->add("Status", "O");
        account->add("Reference", "");
        account->add("VatCode", JsonValue(1));
        ids.account = storeRow(bbid, "account", 0, JsonValue(account), false);

        const QDate to = b.fromDate.addDays(b.nights);
        auto booking = std::make_shared<JsonObject>();
        booking->add("BookingType", "N");
        booking->add("BookingDate", today);
        booking->add("FromDate", b.fromDate.toString(Qt::ISODate));
        booking->add("ToDate", to.toString(Qt::ISODate));
        booking->add("Status", b.status);
        booking->add("MadeBy", reference("client", ids.client));
        booking->add("Deposit", JsonValue(0.0));
        booking->add("BBRateSheetID", JsonValue(0));
        booking->add("BBAccountID", reference("account", ids.account));
        booking->add("AgentComm", JsonValue(0.0));
        booking->add("ExtBookingID", QStringLiteral("WEB-%1").arg(ids.client));
        booking->add("Source", "Online");
        booking->add("Notes", "");
        booking->add("ReservedUntil", JsonValue::null());
        booking->add("CurrencyCode", "");
        booking->add("ExchangeRate", JsonValue(1.0));
        ids.booking = storeRow(bbid, "booking", 0, JsonValue(booking), false);

        auto rates = std::make_shared<JsonArray>();
        for (QDate night = b.fromDate; night < to; night = night.addDays(1)) {
            auto rate = std::make_shared<JsonObject>();
            rate->add("caldate", night.toString(Qt::ISODate));
            rate->add("roomrate", JsonValue(b.rate));
            rates->append(JsonValue(rate));
        }
        auto guest = std::make_shared<JsonObject>();
        guest->add("BBBookingID", reference("booking", ids.booking));
        guest->add("BBRoomID", JsonValue(b.roomId));
        guest->add("BBClientID", reference("client", ids.client));
        guest->add("NoAdults", JsonValue(b.adults));
        guest->add("Child1", JsonValue(0));
        guest->add("Child2", JsonValue(0));
        guest->add("BBRateID", JsonValue(0));
        guest->add("BBClient2ID", JsonValue(0));
        guest->add("BBAccountID", reference("account", ids.account));
        guest->add("Reference", "");
        guest->add("CheckInOut", "");
        guest->add("dailyrates", JsonValue(rates));
        ids.guest = storeRow(bbid, "guest", 0, JsonValue(guest), false);

        queue(bbid, "client", ids.client, "U");
        queue(bbid, "account", ids.account, "U");
        queue(bbid, "booking", ids.booking, "U");
        queue(bbid, "guest", ids.guest, "U");
        commit();
    } catch (...) {
        rollback();
        throw;
    }
    return ids;
}

void ReferenceServer::editRow(qint32 bbid, const QString &table, qint32 tableId, const JsonObject &changes)
{
    JsonValue data = row(bbid, table, tableId);
    if (!data.isObject())
        throw ServerError(QStringLiteral("no %1 row %2").arg(table).arg(tableId));
    for (const auto &[key, value] : changes.entries()) {
        const QString existing = keyLike(*data.object(), key);
        data.object()->set(existing.isEmpty() ? key : existing, value);
    }
    begin();
    exec(QStringLiteral("update record set data = ? where tableid = ?"), {json::toString(data), tableId});
    queue(bbid, table, tableId, QStringLiteral("U"));
    commit();
}

void ReferenceServer::deleteRow(qint32 bbid, const QString &table, qint32 tableId)
{
    begin();
    const int gone = exec(QStringLiteral("delete from record where bbid = ? and tablename = ? and tableid = ?"), {bbid, table, tableId})
                         .numRowsAffected();
    if (gone > 0)
        queue(bbid, table, tableId, QStringLiteral("D"));
    commit();
    if (gone == 0)
        throw ServerError(QStringLiteral("no %1 row %2").arg(table).arg(tableId));
}

void ReferenceServer::setFault(const QString &name, int count)
{
    if (!faultNames().contains(name) && name != QLatin1String("none"))
        throw ServerError(QStringLiteral("unknown fault %1 (one of: %2)").arg(name, faultNames().join(QStringLiteral(", "))));
    if (name == QLatin1String("none") || count == 0) {
        exec(QStringLiteral("delete from fault") + (name == QLatin1String("none") ? QString() : QStringLiteral(" where name = ?")),
             name == QLatin1String("none") ? QVariantList() : QVariantList{name});
        return;
    }
    exec(QStringLiteral("insert or replace into fault (name, remaining) values (?,?)"), {name, count});
}

QString ReferenceServer::takeFault()
{
    QSqlQuery &q = exec(QStringLiteral("select name, remaining from fault where remaining <> 0 order by name limit 1"));
    if (!q.next())
        return QString();
    const QString name = q.value(0).toString();
    const int remaining = q.value(1).toInt();
    q.finish();
    if (remaining > 0)
        exec(QStringLiteral("update fault set remaining = remaining - 1 where name = ?"), {name});
    return name;
}

} // namespace fenlark::server

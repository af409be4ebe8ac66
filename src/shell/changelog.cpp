#include "shell/changelog.h"

#include "shell/database.h"
#include "shell/schema.h"

#include <QSqlQuery>

namespace fenlark {

void ChangeLog::logUpdate(Database &db, const QString &tableName, qint32 id)
{
    writeLog(db, QStringLiteral("U"), tableName, id);
}

void ChangeLog::logDelete(Database &db, const QString &tableName, qint32 id)
{
    writeLog(db, QStringLiteral("D"), tableName, id);
}

void ChangeLog::writeLog(Database &db, const QString &logType, const QString &tableName, qint32 id)
{
    Transaction transaction(db);
    clearLog(db, tableName, id);
    db.execute(QStringLiteral("insert into dblog (logdate, logtype, TableName, bbtableId) values(?,?,?,?)"),
               {sqlDateTime(QDateTime::currentDateTime()), logType, tableName, id});
    transaction.commit();
}

void ChangeLog::clearLog(Database &db, const QString &tableName, qint32 id)
{
    db.execute(QStringLiteral("delete from dblog where TableName = ? and bbtableId = ?"), {tableName, id});
}

void ChangeLog::markAllChanged(Database &db)
{
    Transaction transaction(db);
    db.execute(QStringLiteral("delete from dblog where logtype <> 'D'"));
    const QVariant now = sqlDateTime(QDateTime::currentDateTime());
    for (const QString &table : Schema::sharedTables()) {
        // Table and key names come from the code, never from input.
        db.execute(QStringLiteral("insert into dblog (logdate, logtype, TableName, bbtableId) "
                                  "select ?, 'I', ?, bb%1id from %1")
                       .arg(table),
                   {now, table});
    }
    transaction.commit();
}

int ChangeLog::count(Database &db)
{
    return db.scalar(QStringLiteral("select count(*) from dblog")).toInt();
}

std::vector<LogEntry> ChangeLog::entries(Database &db, int limit)
{
    std::vector<LogEntry> rows;
    QSqlQuery q = db.query(QStringLiteral("select logid, logdate, logtype, TableName, bbtableId from dblog order by logid limit ?"),
                           {limit});
    while (q.next()) {
        rows.push_back({q.value(0).toInt(), dateTimeFromSql(q.value(1)), q.value(2).toString(), q.value(3).toString(),
                        q.value(4).toInt()});
    }
    return rows;
}

} // namespace fenlark

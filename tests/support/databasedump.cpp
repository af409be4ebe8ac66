#include "support/databasedump.h"

#include <QSqlQuery>
#include <QStringList>

#include <atomic>

QString dumpDatabase(const QSqlDatabase &db)
{
    QString out;
    QStringList tables;
    QSqlQuery t(db);
    t.exec(QStringLiteral("select name from sqlite_master where type = 'table' order by name"));
    while (t.next())
        tables << t.value(0).toString();
    for (const QString &table : tables) {
        QStringList columns;
        QSqlQuery c(db);
        c.prepare(QStringLiteral("select name from pragma_table_info(?)"));
        c.addBindValue(table);
        c.exec();
        while (c.next())
            columns << QStringLiteral("quote(\"%1\")").arg(c.value(0).toString());
        QSqlQuery rows(db);
        rows.exec(QStringLiteral("select %1 from \"%2\" order by rowid").arg(columns.join(QStringLiteral("||','||")), table));
        while (rows.next())
            out += table + QLatin1Char(':') + rows.value(0).toString() + QLatin1Char('\n');
    }
    return out;
}

QString dumpDatabaseFile(const QString &path)
{
    static std::atomic<int> serial{0};
    const QString name = QStringLiteral("dump-%1").arg(++serial);
    QString out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (db.open())
            out = dumpDatabase(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}

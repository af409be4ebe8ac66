#include "support/writefaults.h"

#include <QCryptographicHash>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

#include <algorithm>

namespace {

sqlite3 *handleOf(fenlark::Database &db)
{
    const QVariant handle = db.connection().driver()->handle();
    return *static_cast<sqlite3 *const *>(handle.data());
}

} // namespace

WriteFaults::WriteFaults(fenlark::Database &db)
    : m_db(db)
{
    sqlite3_create_function_v2(handleOf(db), "fenlark_fault", 0, SQLITE_UTF8, this, &WriteFaults::count, nullptr, nullptr,
                               nullptr);
    QStringList tables;
    QSqlQuery q = db.query(QStringLiteral("select name from sqlite_master where type = 'table' and name not like 'sqlite_%'"));
    while (q.next())
        tables << q.value(0).toString();
    for (const QString &table : tables) {
        for (const QString &op : {QStringLiteral("insert"), QStringLiteral("update"), QStringLiteral("delete")}) {
            const QString name = QStringLiteral("fault_%1_%2").arg(table, op);
            db.execute(QStringLiteral("create temp trigger %1 before %2 on main.%3 begin select fenlark_fault(); end")
                           .arg(name, op, table));
            m_triggers << name;
        }
    }
}

WriteFaults::~WriteFaults()
{
    for (const QString &name : m_triggers)
        m_db.execute(QStringLiteral("drop trigger temp.") + name);
    sqlite3_create_function_v2(handleOf(m_db), "fenlark_fault", 0, SQLITE_UTF8, nullptr, nullptr, nullptr, nullptr, nullptr);
}

void WriteFaults::failAt(int n)
{
    m_failAt = n;
    m_seen = 0;
}

void WriteFaults::count(sqlite3_context *context, int, sqlite3_value **)
{
    auto *self = static_cast<WriteFaults *>(sqlite3_user_data(context));
    ++self->m_seen;
    if (self->m_failAt > 0 && self->m_seen == self->m_failAt)
        sqlite3_result_error_code(context, SQLITE_FULL);
    else
        sqlite3_result_null(context);
}

EveryWrite failEachWrite(fenlark::Database &db, const std::function<void()> &op)
{
    EveryWrite result;
    const QMap<QString, QByteArray> before = databaseContent(db);
    WriteFaults faults(db);
    for (int n = 1;; ++n) {
        faults.failAt(n);
        try {
            op();
        } catch (const std::exception &e) {
            if (!faults.fired()) {
                result.failure = QStringLiteral("it failed without an injected fault: ") + QString::fromUtf8(e.what());
                return result;
            }
        }
        if (!faults.fired()) {
            result.writes = n - 1;
            return result;
        }
        faults.failAt(0);
        const QStringList changed = differingTables(before, databaseContent(db));
        if (!changed.isEmpty() || !noOpenTransaction(db)) {
            result.failure = QStringLiteral("write %1 failed and left %2")
                                 .arg(n)
                                 .arg(changed.isEmpty() ? QStringLiteral("a transaction open")
                                                        : QStringLiteral("changes in ") + changed.join(QStringLiteral(", ")));
            return result;
        }
    }
}

QMap<QString, QByteArray> databaseContent(fenlark::Database &db)
{
    QStringList tables;
    {
        QSqlQuery q = db.query(QStringLiteral("select name from main.sqlite_master where type = 'table'"));
        while (q.next())
            tables << q.value(0).toString();
    }
    QMap<QString, QByteArray> content;
    for (const QString &table : tables) {
        QSqlQuery q = db.query(QStringLiteral("select * from main.") + table);
        std::vector<QByteArray> rows;
        while (q.next()) {
            const QSqlRecord record = q.record();
            QByteArray row;
            for (int i = 0; i < record.count(); ++i) {
                const QVariant value = record.value(i);
                row += value.isNull() ? QByteArray("\x01") : value.toString().toUtf8();
                row += '\x1f';
            }
            rows.push_back(row);
        }
        std::sort(rows.begin(), rows.end());
        QCryptographicHash hash(QCryptographicHash::Sha1);
        for (const QByteArray &row : rows) {
            hash.addData(row);
            hash.addData(QByteArray("\x1e"));
        }
        content.insert(table, QByteArray::number(rows.size()) + ':' + hash.result().toHex());
    }
    return content;
}

QStringList differingTables(const QMap<QString, QByteArray> &before, const QMap<QString, QByteArray> &after)
{
    QStringList tables;
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (after.value(it.key()) != it.value())
            tables << it.key();
    }
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        if (!before.contains(it.key()))
            tables << it.key();
    }
    return tables;
}

bool noOpenTransaction(fenlark::Database &db)
{
    return db.transactionDepth() == 0 && sqlite3_get_autocommit(handleOf(db)) != 0;
}

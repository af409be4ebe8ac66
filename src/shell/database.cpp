#include "shell/database.h"

#include "shell/schema.h"
#include "shell/textcompare.h"

#include <QAtomicInt>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlRecord>

namespace fenlark {

DatabaseError::DatabaseError(const QString &message, const QString &sql)
    : std::runtime_error((message + QStringLiteral(" [") + sql + QStringLiteral("]")).toStdString())
    , m_message(message)
    , m_sql(sql)
{
}

DatabaseOpenError::DatabaseOpenError(const QString &path, const QString &reason)
    : std::runtime_error((path + QStringLiteral(": ") + reason).toStdString())
    , m_path(path)
    , m_reason(reason)
{
}

namespace {

QString nextConnectionName()
{
    static QAtomicInt counter;
    return QStringLiteral("fenlark-%1").arg(counter.fetchAndAddRelaxed(1));
}

bool hasSqliteHeader(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return file.read(16) == QByteArray("SQLite format 3\0", 16);
}

} // namespace

QSqlDatabase Database::connect(const QString &path, const QString &name, bool readOnly)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(path);
    db.setConnectOptions(readOnly ? QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=5000")
                                  : QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    db.open();
    return db;
}

std::unique_ptr<Database> Database::open(const QString &path)
{
    const QFileInfo info(path);
    const bool isNew = !info.exists() || (info.isFile() && info.size() == 0);
    if (info.exists() && !info.isFile())
        throw DatabaseOpenError(path, QStringLiteral("not a file"));

    if (!isNew) {
        // Look before touching: a file that is not ours is refused without a write.
        if (!hasSqliteHeader(path))
            throw DatabaseOpenError(path, QStringLiteral("not a database file"));
        const QString probeName = nextConnectionName();
        bool ours = false;
        QString reason;
        {
            QSqlDatabase probe = connect(path, probeName, true);
            if (!probe.isOpen()) {
                reason = probe.lastError().text();
            } else {
                QSqlQuery q(probe);
                ours = q.exec(QStringLiteral("select count(*) from sqlite_master where type = 'table' and name in ('vmversion', 'bbsetup', 'dblog')"))
                    && q.next() && q.value(0).toInt() == 3;
                if (!ours)
                    reason = q.lastError().isValid() ? q.lastError().text() : QStringLiteral("not a Fenlark database");
            }
            probe.close();
        }
        QSqlDatabase::removeDatabase(probeName);
        if (!ours)
            throw DatabaseOpenError(path, reason);
    } else if (!info.absoluteDir().exists()) {
        throw DatabaseOpenError(path, QStringLiteral("the folder does not exist"));
    } else if (!info.exists()) {
        // Guests' names and payments: the file is its owner's alone from the start.
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner))
            throw DatabaseOpenError(path, file.errorString());
    }

    const QString name = nextConnectionName();
    QSqlDatabase db = connect(path, name, false);
    if (!db.isOpen()) {
        const QString reason = db.lastError().text();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        throw DatabaseOpenError(path, reason);
    }
    std::unique_ptr<Database> database(new Database(path, db, name));
    // The schema's triggers call foldcase() on every write of a client.
    if (!registerFoldCase(db))
        throw DatabaseOpenError(path, QStringLiteral("SQLite refused the text functions of the desk"));
    try {
        database->execute(QStringLiteral("pragma journal_mode = wal"));
        database->execute(QStringLiteral("pragma synchronous = normal"));
        // Ten years of a busy property is tens of megabytes; keep the working set in memory.
        database->execute(QStringLiteral("pragma cache_size = -32768"));
        Schema::ensure(*database);
    } catch (const DatabaseError &e) {
        throw DatabaseOpenError(path, e.message());
    }
    return database;
}

Database::Database(QString path, QSqlDatabase db, QString connectionName)
    : m_path(std::move(path))
    , m_connectionName(std::move(connectionName))
    , m_db(std::move(db))
{
}

Database::~Database()
{
    m_statements.clear();
    while (m_depth > 0)
        rollbackLevel();
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

void Database::prepareOrThrow(QSqlQuery &q, const QString &sql)
{
    if (!q.prepare(sql))
        throw DatabaseError(q.lastError().text(), sql);
}

void Database::execOrThrow(QSqlQuery &q, const QString &sql)
{
    if (!q.exec())
        throw DatabaseError(q.lastError().text(), sql);
}

QSqlQuery &Database::prepared(const QString &sql)
{
    auto it = m_statements.find(sql);
    if (it == m_statements.end()) {
        QSqlQuery q(m_db);
        q.setForwardOnly(true);
        prepareOrThrow(q, sql);
        it = m_statements.insert(sql, q);
    }
    return it.value();
}

void Database::finishStatements()
{
    for (QSqlQuery &q : m_statements)
        q.finish();
}

int Database::execute(const QString &sql, const QVariantList &values)
{
    QSqlQuery &q = prepared(sql);
    for (int i = 0; i < values.size(); ++i)
        q.bindValue(i, values.at(i));
    execOrThrow(q, sql);
    const int changed = q.numRowsAffected();
    if (sql.startsWith(QLatin1String("insert"), Qt::CaseInsensitive))
        m_lastInsertId = q.lastInsertId().toLongLong();
    q.finish();
    return changed;
}

QSqlQuery Database::query(const QString &sql, const QVariantList &values)
{
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    prepareOrThrow(q, sql);
    for (int i = 0; i < values.size(); ++i)
        q.bindValue(i, values.at(i));
    execOrThrow(q, sql);
    return q;
}

QSqlQuery &Database::repeatedQuery(const QString &sql, const QVariantList &values)
{
    QSqlQuery &q = prepared(sql);
    q.finish();
    for (int i = 0; i < values.size(); ++i)
        q.bindValue(i, values.at(i));
    execOrThrow(q, sql);
    return q;
}

QVariant Database::scalar(const QString &sql, const QVariantList &values)
{
    QSqlQuery &q = repeatedQuery(sql, values);
    QVariant value = q.next() ? q.value(0) : QVariant();
    q.finish();
    return value;
}

qint64 Database::lastInsertId()
{
    return m_lastInsertId;
}

bool Database::tableExists(const QString &table)
{
    return scalar(QStringLiteral("select count(*) from sqlite_master where type = 'table' and name = ?"), {table}).toInt() > 0;
}

void Database::beginLevel()
{
    execute(QStringLiteral("savepoint level%1").arg(m_depth + 1));
    ++m_depth;
}

void Database::releaseLevel()
{
    // The outermost release commits, which a kept statement with unread rows would refuse.
    if (m_depth == 1)
        finishStatements();
    execute(QStringLiteral("release savepoint level%1").arg(m_depth));
    --m_depth;
}

void Database::rollbackLevel()
{
    const QString name = QStringLiteral("level%1").arg(m_depth);
    if (m_depth == 1)
        finishStatements();
    --m_depth;
    QSqlQuery q(m_db);
    q.exec(QStringLiteral("rollback to savepoint ") + name);
    q.exec(QStringLiteral("release savepoint ") + name);
}

Transaction::Transaction(Database &db)
    : m_db(db)
{
    m_db.beginLevel();
}

Transaction::~Transaction()
{
    if (!m_done)
        m_db.rollbackLevel();
}

void Transaction::commit()
{
    if (m_done)
        return;
    m_db.releaseLevel();
    m_done = true;
}

QVariant sqlDate(const QDate &date)
{
    return date.isValid() ? QVariant(date.toString(QStringLiteral("yyyy-MM-dd"))) : QVariant();
}

QVariant sqlDateTime(const QDateTime &dateTime)
{
    return dateTime.isValid() ? QVariant(dateTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))) : QVariant();
}

QDate dateFromSql(const QVariant &value)
{
    const QString text = value.toString();
    return QDate::fromString(text.left(10), QStringLiteral("yyyy-MM-dd"));
}

QDateTime dateTimeFromSql(const QVariant &value)
{
    const QString text = value.toString();
    if (text.size() >= 19) {
        const QDateTime dt = QDateTime::fromString(text.left(19), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        if (dt.isValid())
            return dt;
    }
    const QDate d = dateFromSql(value);
    return d.isValid() ? QDateTime(d, QTime(0, 0)) : QDateTime();
}

} // namespace fenlark

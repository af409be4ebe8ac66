#include "shell/database.h"

#include "shell/schema.h"
#include "shell/textcompare.h"

#include "shell/messages.h"
#include "shell/strings.h"

#include <QAtomicInt>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlRecord>

#include <sqlite3.h>
#include <sys/vfs.h>

namespace fenlark {

DatabaseError::DatabaseError(const QString &message, const QString &sql, int sqliteCode)
    : std::runtime_error((message + QStringLiteral(" [") + sql + QStringLiteral("]")).toStdString())
    , m_message(message)
    , m_sql(sql)
    , m_sqliteCode(sqliteCode & 0xff)
{
}

DatabaseError::Cause DatabaseError::cause() const
{
    switch (m_sqliteCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Busy;
    case SQLITE_FULL:
        return DiskFull;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return ReadOnly;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Damaged;
    case SQLITE_IOERR:
        return DiskError;
    default:
        return Other;
    }
}

QString DatabaseError::explanation() const
{
    switch (cause()) {
    case Busy:
        return getString(5060, QStringLiteral("Another desk or program kept the database busy for too long. Try again in a moment."));
    case DiskFull:
        return getString(5061, QStringLiteral("The disk is full. Make room on it and try again."));
    case ReadOnly:
        return getString(5062, QStringLiteral("The database cannot be written: the file or its folder is read-only."));
    case Damaged:
        return getString(5063, QStringLiteral("The database is damaged. Close Fenlark and restore the newest backup."));
    case DiskError:
        return fillArguments(getString(5064, QStringLiteral("The disk could not be read or written (%1).")), {m_message});
    case Other:
        break;
    }
    return m_message;
}

DatabaseOpenError::DatabaseOpenError(const QString &path, const QString &reason)
    : DatabaseOpenError(path, Unreadable, reason)
{
}

DatabaseOpenError::DatabaseOpenError(const QString &path, Kind kind, const QString &reason)
    : std::runtime_error((path + QStringLiteral(": ") + reason).toStdString())
    , m_path(path)
    , m_kind(kind)
    , m_reason(reason)
{
}

QString DatabaseOpenError::explanation() const
{
    const QString path = QDir::toNativeSeparators(m_path);
    switch (m_kind) {
    case MissingFolder:
        return fillArguments(getString(5045, QStringLiteral("The folder of %1 does not exist.")), {path});
    case NotADatabase:
        return fillArguments(getString(5040, QStringLiteral("%1 is not a database file.")), {path});
    case Damaged:
        return fillArguments(getString(5041, QStringLiteral("%1 is damaged (%2).")), {path, m_reason});
    case NotFenlark:
        return fillArguments(getString(5046, QStringLiteral("%1 is a database of another program, not of Fenlark.")), {path});
    case Newer:
        return fillArguments(getString(5042, QStringLiteral("%1 was written by a newer Fenlark (its data is of version %2; this "
                                                            "Fenlark reads up to version %3). Open it with the newer Fenlark.")),
                             {path, m_reason, QString::number(Schema::currentVersion())});
    case Locked:
        return fillArguments(getString(5043, QStringLiteral("%1 is locked by another program. Close that program and try again.")),
                             {path});
    case ReadOnly:
        return fillArguments(getString(5044, QStringLiteral("%1 cannot be written: the file or its folder is read-only.")), {path});
    case DiskFull:
        return fillArguments(getString(5048, QStringLiteral("There is no room on the disk for %1.")), {path});
    case Unreadable:
        break;
    }
    return fillArguments(getString(5047, QStringLiteral("%1 could not be opened: %2")), {path, m_reason});
}

namespace {

// How long a statement waits for another desk's write before it gives up.
constexpr int BusyTimeoutMs = 5000;

QString nextConnectionName()
{
    static QAtomicInt counter;
    return QStringLiteral("fenlark-%1").arg(counter.fetchAndAddRelaxed(1));
}

bool isMemory(const QString &path)
{
    return path == QLatin1String(":memory:");
}

sqlite3 *handleOf(const QSqlDatabase &db)
{
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.data());
}

DatabaseOpenError::Kind kindOfCode(int code, const QString &path)
{
    switch (code & 0xff) {
    case SQLITE_NOTADB:
        return DatabaseOpenError::NotADatabase;
    case SQLITE_CORRUPT:
        return DatabaseOpenError::Damaged;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return DatabaseOpenError::Locked;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return DatabaseOpenError::ReadOnly;
    case SQLITE_FULL:
        return DatabaseOpenError::DiskFull;
    case SQLITE_CANTOPEN:
        // SQLite cannot make the journal beside a file in a folder it may not write.
        return QFileInfo(QFileInfo(path).absolutePath()).isWritable() ? DatabaseOpenError::Unreadable
                                                                      : DatabaseOpenError::ReadOnly;
    default:
        return DatabaseOpenError::Unreadable;
    }
}

quint32 bigEndian(const QByteArray &bytes, int at, int size)
{
    quint32 value = 0;
    for (int i = 0; i < size; ++i)
        value = (value << 8) | static_cast<quint8>(bytes.at(at + i));
    return value;
}

// Looks at the file's first hundred bytes: not SQLite at all, or SQLite cut short
// (fewer bytes than the pages its header counts).
void inspectHeader(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw DatabaseOpenError(path, file.error() == QFileDevice::PermissionsError ? DatabaseOpenError::ReadOnly
                                                                                     : DatabaseOpenError::Unreadable,
                                file.errorString());
    const QByteArray header = file.read(100);
    const qint64 size = file.size();
    if (!header.startsWith(QByteArray("SQLite format 3\0", 16)))
        throw DatabaseOpenError(path, DatabaseOpenError::NotADatabase, QStringLiteral("no SQLite header"));
    if (header.size() < 100)
        throw DatabaseOpenError(path, DatabaseOpenError::Damaged, QStringLiteral("cut short at %1 bytes").arg(size));
    const quint32 pageSize = bigEndian(header, 16, 2) == 1 ? 65536 : bigEndian(header, 16, 2);
    const bool validPageSize = pageSize >= 512 && pageSize <= 65536 && (pageSize & (pageSize - 1)) == 0;
    const quint32 pages = bigEndian(header, 28, 4);
    // The page count is trustworthy only when the header says so (the change
    // counter equals the version-valid-for number).
    const bool countValid = pages > 0 && bigEndian(header, 24, 4) == bigEndian(header, 92, 4);
    if (validPageSize && countValid && size < qint64(pages) * pageSize)
        throw DatabaseOpenError(path, DatabaseOpenError::Damaged,
                                QStringLiteral("cut short: %1 of %2 bytes").arg(size).arg(qint64(pages) * pageSize));
}

// Reads the file through a read-only connection of its own: an SQLite error,
// a schema that is not Fenlark's or is newer than this program's is refused
// before the file is touched.
void probeFile(const QString &path)
{
    // A reader of a file in write-ahead mode makes its log and index files;
    // those it made are taken away again when the file is refused.
    const QStringList companions = {path + QStringLiteral("-wal"), path + QStringLiteral("-shm")};
    QStringList madeHere;
    for (const QString &companion : companions) {
        if (!QFileInfo::exists(companion))
            madeHere << companion;
    }
    const auto refuse = [&](DatabaseOpenError::Kind kind, const QString &reason) {
        for (const QString &companion : madeHere)
            QFile::remove(companion);
        throw DatabaseOpenError(path, kind, reason);
    };
    sqlite3 *handle = nullptr;
    int code = sqlite3_open_v2(QFile::encodeName(path).constData(), &handle, SQLITE_OPEN_READONLY, nullptr);
    int tables = 0;
    int version = 0;
    auto scalar = [&](const char *sql, int &value) {
        if (code != SQLITE_OK)
            return;
        sqlite3_stmt *statement = nullptr;
        code = sqlite3_prepare_v2(handle, sql, -1, &statement, nullptr);
        if (code == SQLITE_OK) {
            code = sqlite3_step(statement);
            if (code == SQLITE_ROW) {
                value = sqlite3_column_int(statement, 0);
                code = SQLITE_OK;
            }
        }
        sqlite3_finalize(statement);
    };
    if (code == SQLITE_OK)
        sqlite3_busy_timeout(handle, BusyTimeoutMs);
    scalar("select count(*) from sqlite_master where type = 'table' and name in ('vmversion', 'bbsetup', 'dblog')", tables);
    scalar("pragma user_version", version);
    const QString message = code == SQLITE_OK ? QString()
                            : handle          ? QString::fromUtf8(sqlite3_errmsg(handle))
                                              : QString::fromUtf8(sqlite3_errstr(code));
    sqlite3_close(handle);
    if (code != SQLITE_OK)
        refuse(kindOfCode(code, path), message);
    if (tables != 3)
        refuse(DatabaseOpenError::NotFenlark, QStringLiteral("not a Fenlark database"));
    if (version > Schema::currentVersion())
        refuse(DatabaseOpenError::Newer, QString::number(version));
}

} // namespace

QString networkFileSystemName(qint64 fileSystemType)
{
    switch (static_cast<quint32>(fileSystemType)) {
    case 0x6969:
        return QStringLiteral("nfs");
    case 0x517B:
        return QStringLiteral("smb");
    case 0xFF534D42:
        return QStringLiteral("cifs");
    case 0xFE534D42:
        return QStringLiteral("smb2");
    case 0x65735546:
        return QStringLiteral("fuse");
    case 0x01021997:
        return QStringLiteral("9p");
    case 0x00C36400:
        return QStringLiteral("ceph");
    case 0x5346414F:
        return QStringLiteral("afs");
    case 0x73757245:
        return QStringLiteral("coda");
    case 0x01161970:
        return QStringLiteral("gfs2");
    case 0x7461636F:
        return QStringLiteral("ocfs2");
    default:
        return {};
    }
}

QString networkFileSystemOf(const QString &path)
{
    struct statfs info {};
    if (statfs(QFile::encodeName(QFileInfo(path).absolutePath()).constData(), &info) != 0)
        return {};
    return networkFileSystemName(static_cast<qint64>(info.f_type));
}

QSqlDatabase Database::connect(const QString &path, const QString &name, bool readOnly)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(path);
    const QString busy = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(BusyTimeoutMs);
    db.setConnectOptions(readOnly ? QStringLiteral("QSQLITE_OPEN_READONLY;") + busy : busy);
    db.open();
    return db;
}

std::unique_ptr<Database> Database::open(const QString &path)
{
    const bool memory = isMemory(path);
    const QFileInfo info(path);
    const bool isNew = memory || !info.exists() || (info.isFile() && info.size() == 0);
    if (!memory && info.exists() && !info.isFile())
        throw DatabaseOpenError(path, DatabaseOpenError::NotADatabase, QStringLiteral("not a file"));

    if (!isNew) {
        // Look before touching: a file that is not ours is refused without a write.
        inspectHeader(path);
        probeFile(path);
    } else if (!memory && !info.absoluteDir().exists()) {
        throw DatabaseOpenError(path, DatabaseOpenError::MissingFolder, QStringLiteral("the folder does not exist"));
    } else if (!memory && !info.exists()) {
        // Guests' names and payments: the file is its owner's alone from the start.
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner)
            && !QFileInfo::exists(path)) {
            throw DatabaseOpenError(path, file.error() == QFileDevice::PermissionsError ? DatabaseOpenError::ReadOnly
                                                                                         : DatabaseOpenError::Unreadable,
                                    file.errorString());
        }
    }

    const QString name = nextConnectionName();
    QSqlDatabase db = connect(path, name, false);
    if (!db.isOpen()) {
        const QSqlError error = db.lastError();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        throw DatabaseOpenError(path, kindOfCode(error.nativeErrorCode().toInt(), path), error.text());
    }
    std::unique_ptr<Database> database(new Database(path, db, name));
    // SQLite opens a file it may not write read-only without a word.
    if (!database->m_handle || sqlite3_db_readonly(database->m_handle, "main") == 1)
        throw DatabaseOpenError(path, DatabaseOpenError::ReadOnly, QStringLiteral("opened read-only"));
    // The schema's triggers call foldcase() on every write of a client.
    if (!registerFoldCase(db))
        throw DatabaseOpenError(path, QStringLiteral("SQLite refused the text functions of the desk"));
    try {
        if (!memory)
            database->m_networkFileSystem = networkFileSystemOf(path);
        // The write-ahead log lets a second desk read while one writes, but its
        // index lives in memory shared by the programs on one machine: on a
        // network file system the file keeps a rollback journal instead.
        database->scalar(database->m_networkFileSystem.isEmpty() ? QStringLiteral("pragma journal_mode = wal")
                                                                 : QStringLiteral("pragma journal_mode = delete"));
        database->execute(QStringLiteral("pragma synchronous = normal"));
        // Ten years of a busy property is tens of megabytes; keep the working set in memory.
        database->execute(QStringLiteral("pragma cache_size = -32768"));
        Schema::ensure(*database);
    } catch (const DatabaseError &e) {
        throw DatabaseOpenError(path, kindOfCode(e.sqliteCode(), path), e.message());
    }
    return database;
}

void Database::copyTo(const QString &target)
{
    const QString what = QStringLiteral("copy to ") + target;
    sqlite3 *copy = nullptr;
    const QByteArray file = QFile::encodeName(target);
    int code = sqlite3_open_v2(file.constData(), &copy, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    // A new file no one else sees until it is finished needs neither a journal
    // nor a sync per page: a failure throws the whole file away.
    if (code == SQLITE_OK)
        code = sqlite3_exec(copy, "pragma journal_mode = off; pragma synchronous = off", nullptr, nullptr, nullptr);
    if (code == SQLITE_OK) {
        // One step holds one read transaction over the whole copy, so it is the
        // database as it stood at one moment even with another desk writing.
        sqlite3_backup *backup = sqlite3_backup_init(copy, "main", m_handle, "main");
        if (!backup) {
            code = sqlite3_errcode(copy);
        } else {
            code = sqlite3_backup_step(backup, -1);
            const int finished = sqlite3_backup_finish(backup);
            code = code == SQLITE_DONE ? finished : code;
        }
    }
    const QString message = code == SQLITE_OK ? QString() : QString::fromUtf8(sqlite3_errstr(code));
    sqlite3_close(copy);
    if (code != SQLITE_OK)
        throw DatabaseError(message, what, code);
}

QString Database::quickCheck()
{
    QStringList problems;
    QSqlQuery q = query(QStringLiteral("pragma quick_check(5)"));
    while (q.next()) {
        const QString line = q.value(0).toString();
        if (line != QLatin1String("ok"))
            problems << line;
    }
    return problems.join(QStringLiteral("; "));
}

Database::Database(QString path, QSqlDatabase db, QString connectionName)
    : m_path(std::move(path))
    , m_connectionName(std::move(connectionName))
    , m_db(std::move(db))
    , m_handle(handleOf(m_db))
{
}

Database::~Database()
{
    m_statements.clear();
    m_rowStatements.clear();
    while (m_depth > 0)
        rollbackLevel();
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

void Database::fail(const QSqlQuery &q, const QString &sql)
{
    const QSqlError error = q.lastError();
    throw DatabaseError(error.text(), sql, error.nativeErrorCode().toInt());
}

void Database::prepareOrThrow(QSqlQuery &q, const QString &sql)
{
    checkTransactionAlive(sql);
    if (!q.prepare(sql))
        fail(q, sql);
}

void Database::execOrThrow(QSqlQuery &q, const QString &sql)
{
    checkTransactionAlive(sql);
    if (!q.exec())
        fail(q, sql);
}

// After some failures (a full disk, an I/O error) SQLite rolls the whole
// transaction back by itself. A statement run after that would stand alone and
// commit at once, a half of the change without the rest: it is refused instead.
void Database::checkTransactionAlive(const QString &sql)
{
    if (m_depth > 0 && m_handle && sqlite3_get_autocommit(m_handle))
        throw DatabaseError(QStringLiteral("the transaction was already rolled back"), sql, SQLITE_ABORT);
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

// A prepared statement of readRow() with its column names, read once.
struct Database::RowStatement {
    sqlite3_stmt *statement = nullptr;
    QStringList columns;
    ~RowStatement() { sqlite3_finalize(statement); }
};

bool Database::readRow(const QString &sql, qint32 key, const std::function<void(const QString &, const QVariant &)> &take)
{
    checkTransactionAlive(sql);
    std::shared_ptr<RowStatement> &row = m_rowStatements[sql];
    if (!row) {
        auto made = std::make_shared<RowStatement>();
        const QByteArray text = sql.toUtf8();
        if (const int code = sqlite3_prepare_v3(m_handle, text.constData(), int(text.size()), SQLITE_PREPARE_PERSISTENT,
                                                &made->statement, nullptr);
            code != SQLITE_OK) {
            m_rowStatements.remove(sql);
            throw DatabaseError(QString::fromUtf8(sqlite3_errmsg(m_handle)), sql, code);
        }
        for (int i = 0, n = sqlite3_column_count(made->statement); i < n; ++i)
            made->columns << QString::fromUtf8(sqlite3_column_name(made->statement, i));
        row = std::move(made);
    }
    sqlite3_stmt *statement = row->statement;
    sqlite3_bind_int(statement, 1, key);
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW) {
        for (int i = 0; i < row->columns.size(); ++i) {
            QVariant value;
            switch (sqlite3_column_type(statement, i)) {
            case SQLITE_INTEGER:
                value = qlonglong(sqlite3_column_int64(statement, i));
                break;
            case SQLITE_FLOAT:
                value = sqlite3_column_double(statement, i);
                break;
            case SQLITE_TEXT:
                value = QString(static_cast<const QChar *>(sqlite3_column_text16(statement, i)),
                                sqlite3_column_bytes16(statement, i) / 2);
                break;
            case SQLITE_BLOB:
                value = QByteArray(static_cast<const char *>(sqlite3_column_blob(statement, i)), sqlite3_column_bytes(statement, i));
                break;
            default:
                break;
            }
            take(row->columns.at(i), value);
        }
    }
    // Reset at once, so that the statement holds no read of the file open.
    sqlite3_reset(statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        throw DatabaseError(QString::fromUtf8(sqlite3_errstr(code)), sql, code);
    return code == SQLITE_ROW;
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
    // The outermost level takes the write lock before it reads anything: a
    // deferred one would read, then find another desk's write committed
    // meanwhile and fail at its first write without waiting.
    execute(m_depth == 0 ? QStringLiteral("begin immediate") : QStringLiteral("savepoint level%1").arg(m_depth + 1));
    ++m_depth;
}

void Database::releaseLevel()
{
    // The outermost release commits, which a kept statement with unread rows would refuse.
    if (m_depth == 1)
        finishStatements();
    execute(m_depth == 1 ? QStringLiteral("commit") : QStringLiteral("release savepoint level%1").arg(m_depth));
    --m_depth;
}

void Database::rollbackLevel()
{
    const int level = m_depth;
    if (level == 1)
        finishStatements();
    --m_depth;
    // Errors are of no interest here: SQLite may have rolled back already.
    QSqlQuery q(m_db);
    if (level == 1) {
        q.exec(QStringLiteral("rollback"));
    } else {
        const QString name = QStringLiteral("level%1").arg(level);
        q.exec(QStringLiteral("rollback to savepoint ") + name);
        q.exec(QStringLiteral("release savepoint ") + name);
    }
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
    // Every list and grid reads dates by the thousand, and QDate::fromString
    // interprets its format each time; a plain yyyy-MM-dd is read directly.
    if (text.size() >= 10 && text[4] == QLatin1Char('-') && text[7] == QLatin1Char('-')) {
        const auto digits = [&text](int from, int count) {
            int n = 0;
            for (int i = from; i < from + count; ++i) {
                const char16_t c = text[i].unicode();
                if (c < u'0' || c > u'9')
                    return -1;
                n = n * 10 + (c - u'0');
            }
            return n;
        };
        const int year = digits(0, 4), month = digits(5, 2), day = digits(8, 2);
        if (year > 0 && month >= 0 && day >= 0)
            return QDate(year, month, day);
    }
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

#pragma once

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <stdexcept>

struct sqlite3;

namespace fenlark {

// A statement that failed: what was run and what SQLite said.
class DatabaseError : public std::runtime_error {
public:
    // What lies behind a failure, as far as the person at the desk can act on it.
    enum Cause {
        Other,
        Busy,       // another desk or program held the database longer than the busy time-out
        DiskFull,   // the disk, or the database's page limit, is full
        ReadOnly,   // the file or its folder cannot be written
        Damaged,    // SQLite found the file corrupt
        DiskError,  // the disk could not be read or written
    };

    DatabaseError(const QString &message, const QString &sql, int sqliteCode = 0);
    QString message() const { return m_message; }
    QString sql() const { return m_sql; }
    // SQLite's primary result code, 0 when unknown.
    int sqliteCode() const { return m_sqliteCode; }
    Cause cause() const;
    // A sentence for people in the current language: the cause when it is one of
    // the above, else SQLite's own message.
    QString explanation() const;

private:
    QString m_message;
    QString m_sql;
    int m_sqliteCode = 0;
};

// A file that is not a Fenlark database, is damaged, or cannot be opened.
class DatabaseOpenError : public std::runtime_error {
public:
    enum Kind {
        Unreadable,     // any other failure: reason says what SQLite said
        MissingFolder,  // a new file in a folder that does not exist
        NotADatabase,   // not an SQLite file at all (or not a file)
        Damaged,        // an SQLite file that is cut short or corrupt
        NotFenlark,     // an SQLite database of another program
        Newer,          // written by a newer Fenlark, with a schema this one does not know
        Locked,         // another program holds it locked
        ReadOnly,       // the file or its folder cannot be written
        DiskFull,       // no room to make or bring up to date the file
    };

    DatabaseOpenError(const QString &path, const QString &reason);
    DatabaseOpenError(const QString &path, Kind kind, const QString &reason);
    QString path() const { return m_path; }
    Kind kind() const { return m_kind; }
    QString reason() const { return m_reason; }
    // Which file and why, in a sentence of the current language.
    QString explanation() const;
    // A damaged or garbled file at a path the configuration names is worth
    // replacing by a backup; a locked, newer or foreign one is not.
    bool backupMayHelp() const { return m_kind == Damaged || m_kind == NotADatabase; }

private:
    QString m_path;
    Kind m_kind = Unreadable;
    QString m_reason;
};

// The one open connection to a property's SQLite database. Every statement binds
// its values; a failing statement throws DatabaseError, and an enclosing
// Transaction rolls the whole change back.
class Database {
public:
    // Opens the file at path. A file that does not exist (or is empty) is created
    // with the full schema; an older Fenlark schema is brought up to date; any
    // other file is refused with DatabaseOpenError, saying which kind of file it
    // is, and left untouched. ":memory:" opens a new database in memory.
    // A file on a network file system is kept in a rollback journal, since SQLite's
    // write-ahead log needs memory shared by every program on the file.
    static std::unique_ptr<Database> open(const QString &path);

    // The kind of file system the file lies on when it is a network one ("nfs",
    // "smb", "fuse" ...), else empty.
    QString networkFileSystem() const { return m_networkFileSystem; }
    // SQLite's verdict on the file's structure: empty when sound, else the first
    // problems it names. Reads the whole file.
    QString quickCheck();
    ~Database();

    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    QString path() const { return m_path; }
    QSqlDatabase connection() const { return m_db; }

    // Runs a statement; returns the number of rows it changed. The prepared form
    // of the statement is kept for the next call with the same text.
    int execute(const QString &sql, const QVariantList &values = {});
    // Runs a query and hands it back positioned before its first row.
    QSqlQuery query(const QString &sql, const QVariantList &values = {});
    // A query run once per row of a loop: its prepared form is kept like execute()'s.
    // The caller reads what it needs before running the same text again.
    QSqlQuery &repeatedQuery(const QString &sql, const QVariantList &values = {});
    // Reads the one row a key names, column by column, straight from SQLite: for
    // loops over many rows, where building Qt's record of every column at each
    // run costs more than the reading. Each value comes as Qt's driver gives it
    // (whole numbers as qlonglong, reals as double, text as QString, null as a null
    // QVariant). False when no row came back. The statement is kept.
    bool readRow(const QString &sql, qint32 key, const std::function<void(const QString &column, const QVariant &value)> &take);
    // The first column of the first row, or an invalid QVariant when no row came
    // back. The prepared form is kept, as for execute().
    QVariant scalar(const QString &sql, const QVariantList &values = {});
    // The key of the row inserted by the last insert run through execute().
    qint64 lastInsertId();

    bool tableExists(const QString &table);

    // Writes a consistent snapshot of the whole database, page by page, into a new
    // file at target (which the caller has removed). Throws DatabaseError on failure and
    // leaves whatever was written for the caller to remove.
    void copyTo(const QString &target);

    // Transaction bookkeeping, used by Transaction; nested levels are savepoints.
    void beginLevel();
    void releaseLevel();
    void rollbackLevel();
    int transactionDepth() const { return m_depth; }

private:
    Database(QString path, QSqlDatabase db, QString connectionName);
    static QSqlDatabase connect(const QString &path, const QString &name, bool readOnly);
    void prepareOrThrow(QSqlQuery &q, const QString &sql);
    void execOrThrow(QSqlQuery &q, const QString &sql);
    QSqlQuery &prepared(const QString &sql);
    void finishStatements();
    void checkTransactionAlive(const QString &sql);
    [[noreturn]] void fail(const QSqlQuery &q, const QString &sql);

    QString m_path;
    QString m_connectionName;
    QString m_networkFileSystem;
    QSqlDatabase m_db;
    ::sqlite3 *m_handle = nullptr;
    QHash<QString, QSqlQuery> m_statements;
    struct RowStatement;
    QHash<QString, std::shared_ptr<RowStatement>> m_rowStatements;
    int m_depth = 0;
    qint64 m_lastInsertId = 0;
};

// A unit of work: every statement between construction and commit() stands or
// falls together. Leaving the scope without commit() (an exception, an early
// return) rolls back. Nested transactions are savepoints inside the outer one.
// The outermost takes the write lock at once, so that what it reads stays true
// until it commits even with a second desk on the same file: a desk that finds
// the other one writing waits (up to the busy time-out) before it reads.
class Transaction {
public:
    explicit Transaction(Database &db);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    void commit();

private:
    Database &m_db;
    bool m_done = false;
};

// The network file system a path lies on ("nfs", "smb", "fuse" ...), else empty.
QString networkFileSystemOf(const QString &path);
// The name of a network file system by its statfs() type, else empty.
QString networkFileSystemName(qint64 fileSystemType);

// Date and date-time values as the database keeps them: ISO text.
QVariant sqlDate(const QDate &date);
QVariant sqlDateTime(const QDateTime &dateTime);
QDate dateFromSql(const QVariant &value);
QDateTime dateTimeFromSql(const QVariant &value);

} // namespace fenlark

#pragma once

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <memory>
#include <stdexcept>

namespace fenlark {

// A statement that failed: what was run and what SQLite said.
class DatabaseError : public std::runtime_error {
public:
    DatabaseError(const QString &message, const QString &sql);
    QString message() const { return m_message; }
    QString sql() const { return m_sql; }

private:
    QString m_message;
    QString m_sql;
};

// A file that is not a Fenlark database, is damaged, or cannot be opened.
class DatabaseOpenError : public std::runtime_error {
public:
    explicit DatabaseOpenError(const QString &path, const QString &reason);
    QString path() const { return m_path; }
    QString reason() const { return m_reason; }

private:
    QString m_path;
    QString m_reason;
};

// The one open connection to a property's SQLite database. Every statement binds
// its values; a failing statement throws DatabaseError, and an enclosing
// Transaction rolls the whole change back.
class Database {
public:
    // Opens the file at path. A file that does not exist (or is empty) is created
    // with the full schema; an older Fenlark schema is brought up to date; any
    // other file is refused with DatabaseOpenError and left untouched.
    static std::unique_ptr<Database> open(const QString &path);
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
    // The first column of the first row, or an invalid QVariant when no row came
    // back. The prepared form is kept, as for execute().
    QVariant scalar(const QString &sql, const QVariantList &values = {});
    // The key of the row inserted by the last insert run through execute().
    qint64 lastInsertId();

    bool tableExists(const QString &table);

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

    QString m_path;
    QString m_connectionName;
    QSqlDatabase m_db;
    QHash<QString, QSqlQuery> m_statements;
    int m_depth = 0;
    qint64 m_lastInsertId = 0;
};

// A unit of work: every statement between construction and commit() stands or
// falls together. Leaving the scope without commit() (an exception, an early
// return) rolls back. Nested transactions are savepoints inside the outer one.
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

// Date and date-time values as the database keeps them: ISO text.
QVariant sqlDate(const QDate &date);
QVariant sqlDateTime(const QDateTime &dateTime);
QDate dateFromSql(const QVariant &value);
QDateTime dateTimeFromSql(const QVariant &value);

} // namespace fenlark

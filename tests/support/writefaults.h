#pragma once

#include "shell/database.h"

#include <QMap>
#include <QString>

#include <functional>

// Makes the n-th row written (inserted, updated or deleted, in any table, by the
// program or by one of the schema's triggers) fail as a full disk would, so a
// test can break an operation at each of its writes in turn. Temporary triggers
// do the counting; they live on the connection only and leave the file's schema
// as it was.
class WriteFaults {
public:
    explicit WriteFaults(fenlark::Database &db);
    ~WriteFaults();
    WriteFaults(const WriteFaults &) = delete;
    WriteFaults &operator=(const WriteFaults &) = delete;

    // Fails the n-th write from now (1 = the next one); 0 fails none.
    void failAt(int n);
    // Writes counted since the last failAt().
    int writesSeen() const { return m_seen; }
    // True when the write chosen by failAt() was reached and failed.
    bool fired() const { return m_failAt > 0 && m_seen >= m_failAt; }

private:
    static void count(struct sqlite3_context *context, int, struct sqlite3_value **);

    fenlark::Database &m_db;
    QStringList m_triggers;
    int m_failAt = 0;
    int m_seen = 0;
};

// Runs op once for each row it writes, failing that write, and checks each time
// that the database is then exactly as before with no transaction open; the
// last run goes through untouched. How many writes op made, or what went wrong.
struct EveryWrite {
    int writes = 0;
    QString failure;
};
EveryWrite failEachWrite(fenlark::Database &db, const std::function<void()> &op);

// Every table of the database with a digest of its rows (in no particular
// order), and SQLite's own counters of keys: two equal maps are equal contents.
QMap<QString, QByteArray> databaseContent(fenlark::Database &db);
// The tables whose content differs between two maps, for a failure message.
QStringList differingTables(const QMap<QString, QByteArray> &before, const QMap<QString, QByteArray> &after);
// True when the connection holds no open transaction, in SQLite or in the program.
bool noOpenTransaction(fenlark::Database &db);

#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace fenlark {

class Database;

// One column of a local table as the database declares it.
struct TableColumn {
    QString name;       // as the table spells it
    bool isInteger = false;
    bool isReal = false;
    bool notNull = false;
    bool primaryKey = false;
};

// The tables whose rows travel both ways, and what the exchange needs to know of
// them. Names that arrive from the server are only ever used after they were found
// here, so no text from the wire reaches SQL.
class SynchTables {
public:
    // The shared tables (and the credit notes, which are logged like them).
    static bool isShared(const QString &table);
    // "booking" -> "BBBookingID" / "BookingID", spelled as the table spells them.
    static QString localKey(const QString &table);
    static QString serverKey(const QString &table);

    explicit SynchTables(Database &db) : m_db(db) {}
    // Columns of any local table, in column order (cached); empty for no such table.
    const std::vector<TableColumn> &columns(const QString &table);
    // The column of that name, matched without regard to case; nullptr when none.
    const TableColumn *column(const QString &table, const QString &name);

    // Local keys of shared rows stay within 1 .. 2^31-1.
    static constexpr qint64 MaxKey = 2147483647;

    // The local key of the row with that server id, or -1.
    qint32 serverToLocalId(const QString &table, qint32 tableId);
    qint32 localToServerId(const QString &table, qint32 localId);

    // A value from the wire made fit for the column: numbers for numeric columns,
    // text for the rest, a neutral value for a null in a NOT NULL column. Throws
    // SynchDataError when the value cannot be one of that column: a whole-number
    // column takes only whole numbers in 32 bits, a real column only finite ones.
    QVariant columnValue(const TableColumn &column, const class JsonValue &value, const QString &table);

private:
    Database &m_db;
    QHash<QString, std::vector<TableColumn>> m_columns;
};

// A reply from the server that cannot be applied: the run fails, the transaction
// rolls back, the next run may try again.
class SynchDataError : public std::runtime_error {
public:
    explicit SynchDataError(const QString &message) : std::runtime_error(message.toStdString()), m_message(message) {}
    QString message() const { return m_message; }

private:
    QString m_message;
};

} // namespace fenlark

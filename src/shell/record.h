#pragma once

#include "shell/changelog.h"
#include "shell/database.h"

#include <QDate>
#include <QDateTime>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <variant>
#include <vector>

namespace fenlark {

// One column of a record class: its name in the table and the member that holds it.
template <class T>
struct Column {
    using Member = std::variant<qint32 T::*, qint16 T::*, double T::*, QString T::*, QDate T::*, QDateTime T::*, bool T::*>;
    const char *name;
    Member member;
    // A text column that may hold NULL (a null QString writes NULL back).
    bool nullable = false;
};

namespace recorddetail {

template <class T>
QVariant toSql(const T &record, const Column<T> &column)
{
    return std::visit(
        [&](auto member) -> QVariant {
            const auto &value = record.*member;
            using V = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<V, QString>) {
                if (value.isNull())
                    return column.nullable ? QVariant(QMetaType(QMetaType::QString)) : QVariant(QString(""));
                return value;
            } else if constexpr (std::is_same_v<V, QDate>) {
                return sqlDate(value);
            } else if constexpr (std::is_same_v<V, QDateTime>) {
                return sqlDateTime(value);
            } else if constexpr (std::is_same_v<V, bool>) {
                return value ? 1 : 0;
            } else {
                return value;
            }
        },
        column.member);
}

template <class T>
void fromSql(T &record, const Column<T> &column, const QVariant &value)
{
    std::visit(
        [&](auto member) {
            auto &target = record.*member;
            using V = std::decay_t<decltype(target)>;
            if constexpr (std::is_same_v<V, QString>)
                target = value.isNull() ? (column.nullable ? QString() : QString("")) : value.toString();
            else if constexpr (std::is_same_v<V, QDate>)
                target = dateFromSql(value);
            else if constexpr (std::is_same_v<V, QDateTime>)
                target = dateTimeFromSql(value);
            else if constexpr (std::is_same_v<V, bool>)
                target = value.toInt() != 0;
            else if constexpr (std::is_same_v<V, double>)
                target = value.toDouble();
            else
                target = static_cast<V>(value.toInt());
        },
        column.member);
}

QString joinNames(const QStringList &names);
QString placeholders(int count);

} // namespace recorddetail

// The statements of a record class, built once from its column list.
template <class T>
struct RecordSql {
    QStringList names;
    QString select;         // select * from t where key = ?
    QString insert;         // insert without the key
    QString insertWithKey;  // insert with the key as last column
    QString change;         // update t set ... where key = ?
    QString remove;         // delete from t where key = ?

    static const RecordSql &get()
    {
        static const RecordSql sql = [] {
            RecordSql s;
            for (const auto &c : T::columns())
                s.names << QString::fromLatin1(c.name);
            const QString table = QString::fromLatin1(T::Table);
            const QString key = QString::fromLatin1(T::Key);
            s.select = QStringLiteral("select * from %1 where %2 = ?").arg(table, key);
            s.insert = QStringLiteral("insert into %1 (%2) values(%3)")
                           .arg(table, recorddetail::joinNames(s.names), recorddetail::placeholders(s.names.size()));
            s.insertWithKey = QStringLiteral("insert into %1 (%2, %3) values(%4)")
                                  .arg(table, recorddetail::joinNames(s.names), key,
                                       recorddetail::placeholders(s.names.size() + 1));
            QStringList sets;
            for (const QString &n : s.names)
                sets << n + QStringLiteral(" = ?");
            s.change = QStringLiteral("update %1 set %2 where %3 = ?").arg(table, sets.join(QStringLiteral(", ")), key);
            s.remove = QStringLiteral("delete from %1 where %2 = ?").arg(table, key);
            return s;
        }();
        return sql;
    }
};

// The common behaviour of a record class. A record class T declares
//   static constexpr const char *Table = "extra";       (lower case, as logged)
//   static constexpr const char *Key = "BBExtraID";
//   static constexpr qint32 T::*KeyMember = &T::BBExtraID;
//   static const std::vector<Column<T>> &columns();    (insert order, key excluded)
template <class T>
class RecordBase {
public:
    // Reads the row with that key; false (and nothing changed) when there is none.
    bool fetch(Database &db, qint32 id)
    {
        QSqlQuery q = db.query(RecordSql<T>::get().select, {id});
        if (!q.next())
            return false;
        fillFields(q.record());
        return true;
    }

    // Copies each column of a row into the record.
    void fillFields(const QSqlRecord &row)
    {
        T &self = static_cast<T &>(*this);
        for (const auto &c : T::columns()) {
            const int at = row.indexOf(QString::fromLatin1(c.name));
            if (at >= 0)
                recorddetail::fromSql(self, c, row.value(at));
        }
        const int keyAt = row.indexOf(QString::fromLatin1(T::Key));
        if (keyAt >= 0)
            self.*T::keyMember() = row.value(keyAt).toInt();
    }

    qint32 key() const { return static_cast<const T &>(*this).*T::keyMember(); }

protected:
    QVariantList values() const
    {
        QVariantList list;
        const T &self = static_cast<const T &>(*this);
        for (const auto &c : T::columns())
            list << recorddetail::toSql(self, c);
        return list;
    }

    // Inserts without the key and takes the new key from the same connection.
    void insertNew(Database &db)
    {
        db.execute(RecordSql<T>::get().insert, values());
        static_cast<T &>(*this).*T::keyMember() = static_cast<qint32>(db.lastInsertId());
    }
};

// A table written here and shared with the server: every write reaches the
// change log in the same transaction.
template <class T>
class LocalRecord : public RecordBase<T> {
public:
    // Insert (id below 1), change (row present), or insert under the given key (a row
    // the server knows and this database does not). Always ends by logging "U".
    void update(Database &db)
    {
        T &self = static_cast<T &>(*this);
        const RecordSql<T> &sql = RecordSql<T>::get();
        Transaction transaction(db);
        const qint32 id = self.*T::keyMember();
        if (id < 1) {
            this->insertNew(db);
        } else {
            QVariantList list = this->values();
            list << id;
            if (db.execute(sql.change, list) == 0)
                db.execute(sql.insertWithKey, list);
        }
        ChangeLog::logUpdate(db, QString::fromLatin1(T::Table), self.*T::keyMember());
        transaction.commit();
    }

    // Inserts the row under its own key without a log row: for rows the server
    // already holds (a generated property, rows taken over from the server).
    void insertKeyed(Database &db)
    {
        QVariantList list = this->values();
        list << this->key();
        db.execute(RecordSql<T>::get().insertWithKey, list);
    }

    // Deletes the row and logs "D".
    static void remove(Database &db, qint32 id)
    {
        Transaction transaction(db);
        db.execute(RecordSql<T>::get().remove, {id});
        ChangeLog::logDelete(db, QString::fromLatin1(T::Table), id);
        transaction.commit();
    }
};

// A document written once (invoice, credit note): always inserted, then logged.
template <class T>
class InsertOnlyRecord : public RecordBase<T> {
public:
    void update(Database &db)
    {
        Transaction transaction(db);
        this->insertNew(db);
        ChangeLog::logUpdate(db, QString::fromLatin1(T::Table), this->key());
        transaction.commit();
    }
};

// A table whose writes are never logged: the tables that arrive only from the
// server, and the nightly rates (which travel as a change of their booking).
// update() adds one row
// as it stands (key included); clear() empties the table.
template <class T>
class UnloggedRecord {
public:
    void fillFields(const QSqlRecord &row)
    {
        T &self = static_cast<T &>(*this);
        for (const auto &c : T::columns()) {
            const int at = row.indexOf(QString::fromLatin1(c.name));
            if (at >= 0)
                recorddetail::fromSql(self, c, row.value(at));
        }
    }

    void update(Database &db) const
    {
        static const QString sql = [] {
            QStringList names;
            for (const auto &c : T::columns())
                names << QString::fromLatin1(c.name);
            return QStringLiteral("insert into %1 (%2) values(%3)")
                .arg(QString::fromLatin1(T::Table), recorddetail::joinNames(names), recorddetail::placeholders(names.size()));
        }();
        QVariantList list;
        for (const auto &c : T::columns())
            list << recorddetail::toSql(static_cast<const T &>(*this), c);
        db.execute(sql, list);
    }

    static void clear(Database &db)
    {
        db.execute(QStringLiteral("delete from ") + QString::fromLatin1(T::Table));
    }

    // Every row of the table, optionally ordered by a column of the class.
    static std::vector<T> list(Database &db, const QString &orderBy = {})
    {
        QString sql = QStringLiteral("select * from ") + QString::fromLatin1(T::Table);
        if (!orderBy.isEmpty())
            sql += QStringLiteral(" order by ") + orderBy;
        return select(db, sql, {});
    }

    static std::vector<T> select(Database &db, const QString &sql, const QVariantList &values)
    {
        std::vector<T> rows;
        QSqlQuery q = db.query(sql, values);
        while (q.next())
            rows.emplace_back().fillFields(q.record());
        return rows;
    }
};

// A server table with a single key column (room, room type, rate sheet, ...).
template <class T>
class KeyedUnloggedRecord : public UnloggedRecord<T> {
public:
    bool fetch(Database &db, qint32 id)
    {
        QSqlQuery q = db.query(QStringLiteral("select * from %1 where %2 = ?")
                                   .arg(QString::fromLatin1(T::Table), QString::fromLatin1(T::Key)),
                               {id});
        if (!q.next())
            return false;
        this->fillFields(q.record());
        return true;
    }
};

} // namespace fenlark

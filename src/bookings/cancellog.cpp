#include "bookings/cancellog.h"

#include "bookings/bookingrecords.h"
#include "shell/changelog.h"
#include "shell/database.h"

namespace fenlark {

namespace {

// The live table's columns, key first, as the record class lists them: the
// cancelled tables hold the same columns and then deldate and deluser.
template <class T>
QString columnList()
{
    QStringList names{QString::fromLatin1(T::Key)};
    names << RecordSql<T>::get().names;
    return names.join(QStringLiteral(", "));
}

struct TableNames {
    QString live;
    QString cancelled;
    QString key;
    QString columns;
};

const TableNames &namesOf(CancelledTable table)
{
    static const TableNames booking{QStringLiteral("booking"), QStringLiteral("bookingdel"), QString::fromLatin1(Booking::Key),
                                    columnList<Booking>()};
    static const TableNames guest{QStringLiteral("guest"), QStringLiteral("guestdel"), QString::fromLatin1(Guest::Key),
                                  columnList<Guest>()};
    return table == CancelledTable::Booking ? booking : guest;
}

bool restore(Database &db, CancelledTable table, qint32 key)
{
    const TableNames &t = namesOf(table);
    Transaction transaction(db);
    // The newest copy, should an older desk have left two behind.
    const int restored = db.execute(QStringLiteral("insert into %1 (%2) select %2 from %3 where %4 = ? "
                                                   "order by deldate desc limit 1")
                                        .arg(t.live, t.columns, t.cancelled, t.key),
                                    {key});
    if (restored == 0)
        return false;
    db.execute(QStringLiteral("delete from %1 where %2 = ?").arg(t.cancelled, t.key), {key});
    ChangeLog::logUpdate(db, t.live, key);
    transaction.commit();
    return true;
}

} // namespace

bool CancelLog::deleteRecord(Database &db, CancelledTable table, qint32 key, const QString &user, const QDateTime &when)
{
    const TableNames &t = namesOf(table);
    Transaction transaction(db);
    if (!db.scalar(QStringLiteral("select 1 from %1 where %2 = ?").arg(t.live, t.key), {key}).isValid())
        return false;
    db.execute(QStringLiteral("delete from %1 where %2 = ?").arg(t.cancelled, t.key), {key});
    db.execute(QStringLiteral("insert into %1 (%2, deldate, deluser) select %2, ?, ? from %3 where %4 = ?")
                   .arg(t.cancelled, t.columns, t.live, t.key),
               {sqlDateTime(when), user, key});
    transaction.commit();
    return true;
}

bool CancelLog::restoreBooking(Database &db, qint32 bookingId)
{
    return restore(db, CancelledTable::Booking, bookingId);
}

bool CancelLog::restoreGuest(Database &db, qint32 guestId)
{
    return restore(db, CancelledTable::Guest, guestId);
}

bool CancelLog::isCancelled(Database &db, CancelledTable table, qint32 key)
{
    const TableNames &t = namesOf(table);
    return db.scalar(QStringLiteral("select 1 from %1 where %2 = ?").arg(t.cancelled, t.key), {key}).isValid();
}

} // namespace fenlark

#pragma once

#include <QDateTime>
#include <QString>

namespace fenlark {

class Database;

// Which live table a cancelled row comes from.
enum class CancelledTable { Booking, Guest };

// A cancelled booking head or leg is not deleted: its row is copied into
// bookingdel or guestdel with the date and the user, and can be copied back
// under its old key. The desk's cancellations and the server's deletions both
// copy through here, so the two kinds of cancelled row look the same.
class CancelLog {
public:
    // Copies every column of the live row of that key into its cancelled table,
    // then the deletion date and user, replacing an older cancelled copy of the
    // same key. The live row itself stays (the caller deletes it). False when
    // there is no live row of that key.
    static bool deleteRecord(Database &db, CancelledTable table, qint32 key, const QString &user,
                             const QDateTime &when = QDateTime::currentDateTime());

    // Puts the cancelled row back into its live table under its old key, drops
    // the cancelled copy and logs the row as changed. False when there is no
    // cancelled row of that key.
    static bool restoreBooking(Database &db, qint32 bookingId);
    static bool restoreGuest(Database &db, qint32 guestId);

    // Whether a cancelled copy of that key is there.
    static bool isCancelled(Database &db, CancelledTable table, qint32 key);
};

} // namespace fenlark

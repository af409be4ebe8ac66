#pragma once

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// One booking of a clash, as the list of double bookings shows it. A booking
// whose head or maker could not be read keeps only its keys.
struct DoubleBookingRow {
    qint32 BBBookingID = 0;
    QString type;       // "veldmoor", "PC", "Cell" or "Unknown"
    QString name;       // the maker's surname, or the company when there is none
    QDate fromDate;
    QDate toDate;
    qint32 BBRoomID = 0;
};

// The short type word of the list of double bookings.
QString doubleBookingTypeName(const QString &code);

// Finds rooms sold twice for a night: two legs, one room, one night. One pass over
// every leg of all time; the first leg read holds the night, and a later leg on
// the same night is listed together with it. The other legs of a booking once
// listed are not looked at again, so a clash only with them shows on the next
// scan, after the first is repaired.
class DoubleBookingScan {
public:
    explicit DoubleBookingScan(Database &db) : m_db(db) {}

    // True when any clash was found.
    bool scan();
    const std::vector<DoubleBookingRow> &clashes() const { return m_clashes; }
    // Bookings of a clash whose details could not be read.
    const std::vector<qint32> &unreadable() const { return m_unreadable; }

private:
    void report(qint32 bookingId, qint32 roomId);

    Database &m_db;
    std::vector<DoubleBookingRow> m_clashes;
    std::vector<qint32> m_unreadable;
};

} // namespace fenlark

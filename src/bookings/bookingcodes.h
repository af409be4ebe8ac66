#pragma once

#include <QString>

#include <vector>

namespace fenlark {

class Booking;
class Database;

// How a booking was made.
namespace bookingtype {
inline const QString Online = QStringLiteral("N");      // the online service, through the synchronisation
inline const QString Desk = QStringLiteral("P");        // this program
inline const QString CellPhone = QStringLiteral("C");   // a cell-phone channel of the server
} // namespace bookingtype

// "veldmoor booking", "PC Booking", "Cell Phone Booking", else "Unknown booking type".
QString bookingTypeName(const QString &code);
// The two groups reports use: "Online Booking" for "N", "Off-line Booking" for the rest.
QString bookingTypeGroupName(const QString &code);

// Where a booking stands.
namespace bookingstatus {
inline const QString Confirmed = QStringLiteral("C");
inline const QString OutstandingAccount = QStringLiteral("O");
inline const QString Provisional = QStringLiteral("P");
inline const QString Reserved = QStringLiteral("R");          // held until ReservedUntil, expires
inline const QString Paid = QStringLiteral("S");
inline const QString Unavailable = QStringLiteral("U");       // room out of service: no guest, no charge
inline const QString WaitingForDeposit = QStringLiteral("W"); // first status of a booking made here
} // namespace bookingstatus

// The translated name of a status letter; the letter itself when it is unknown.
QString bookingStatusName(const QString &code);
// Statuses that hold a room until ReservedUntil ("R", "P").
bool statusHasHold(const QString &code);

// One entry of the status list the editor offers.
struct StatusEntry {
    QString code;
    QString name;
    int orderBy = 0;
};
// The status table in its order ("C" first and "S" fifth: confirming and marking
// as paid pick those list positions).
std::vector<StatusEntry> statusList(Database &db);

// Takes a booking out of service: status "U", no adults in any leg, no nightly
// rates. Head, legs and rates change together.
void setUnavailable(Database &db, Booking &booking);

} // namespace fenlark

#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

class Database;

// Program name and version, then the schema's VersionNo ("0" when the table is
// empty): what every synchronisation and setup request tells the server.
QStringList getVersionInfo(Database &db);
// True when a rate sheet is priced in another currency than the property's.
bool hasOtherCurrency(Database &db);
// The room of a booking leg, or "Error: No room name".
QString getGuestRoomName(Database &db, qint32 guestId);

} // namespace fenlark

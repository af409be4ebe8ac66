#pragma once

#include <QString>

namespace fenlark {

class Database;

// "Title First Surname", with " @ Company" behind it when there is a company; the
// company alone when there is no name; "<Blank>" when all are empty.
QString clientName(const QString &title, const QString &firstName, const QString &surname, const QString &company);
// The calendar's three-letter name: surname, else first name, else company, else "???".
QString getShortName(const QString &firstName, const QString &surname, const QString &company);
// "I" Individual, "C" Company, "T" Travel Agent, "O" Tour Operator.
QString clientTypeName(const QString &code);
// The code of a client-type list position (0 = "I" ... 3 = "O"), empty when out of range.
QString clientTypeCode(int index);
// The client's name as clientName gives it; for a missing client the message
// is shown and "Unknown client - ID <id>" returned.
QString getClientName(Database &db, qint32 clientId);
// The value of one named extra field of a client, empty when it has none.
QString getClientExtra(Database &db, qint32 clientId, const QString &fieldType);

} // namespace fenlark

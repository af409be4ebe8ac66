#pragma once

#include <QString>

namespace fenlark {

class Database;

namespace accountstatus {
inline const QString Open = QStringLiteral("O");
inline const QString Closed = QStringLiteral("C");
} // namespace accountstatus

// "Uninvoiced" for an open account, "Closed" for anything else.
QString getAccountStatusName(const QString &status);
// The word of the button that flips it: "Close" for an open account, "Open" otherwise.
QString getAccountStatusAction(const QString &status);

// A new open account for the client (VAT code 1); returns its key.
qint32 createAccount(Database &db, qint32 clientId);
// The client's one open account; with none, or with several (the program does
// not guess between them), a new one.
qint32 getOpenAccount(Database &db, qint32 clientId);

} // namespace fenlark

#pragma once

#include "shell/displaynames.h"

#include <QString>
#include <QStringList>

namespace fenlark {

class Database;

// Client types and the position of each in the editor's list.
namespace clienttype {
inline const QString Individual = QStringLiteral("I");
inline const QString Company = QStringLiteral("C");
inline const QString TravelAgent = QStringLiteral("T");
inline const QString TourOperator = QStringLiteral("O");
} // namespace clienttype

// "Individual", "Company", "Travel Agent", "Tour Operator"; empty for anything
// else. Only "I" is a fixed letter: the other three are compared with their
// translated letters, so a language with other letters labels its own.
QString clientTypeName(const QString &code);
// List position of a code (0 for anything unknown).
int getClientTypeIndex(const QString &code);
// Code of a list position ("I" for anything out of range).
QString getClientTypeCode(int index);
// The four labels in list order.
QStringList clientTypeNames();

// The client's full name. For a missing client the "Missing client information"
// message is shown and "Unknown client - ID <id>" returned: callers such as the
// calendar must go on drawing.
QString getClientName(Database &db, qint32 clientId);
// The first stored value of one field type of a client, empty when it has none.
QString getClientExtra(Database &db, qint32 clientId, const QString &fieldType);

// Field types of client extras, in the order the editor offers them.
QStringList clientExtraFieldTypes();
// "Phone No", "Fax No", ...; empty for an unknown type.
QString clientExtraFieldName(const QString &fieldType);

} // namespace fenlark

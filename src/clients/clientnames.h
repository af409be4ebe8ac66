#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

class Database;

// The full name: title, first name and surname, each trimmed, joined by blanks and
// left-trimmed, with " @ " and the company behind it when there is a company; the
// company alone when there is no name; "<Blank>" when all are empty. Only the
// left side is trimmed, so a first name without a surname keeps its trailing
// blank ("Jo  @ X") and a title without a first name leaves two ("Mr  Smith"):
// the desk has always shown them so. The company is taken as it stands.
QString clientName(const QString &title, const QString &firstName, const QString &surname, const QString &company);
// For one-line lists: the first non-empty of surname, first name, company; else "???".
QString getDisplayName(const QString &firstName, const QString &surname, const QString &company);
// The calendar's label: the first three characters of the display name.
QString getShortName(const QString &firstName, const QString &surname, const QString &company);

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

#pragma once

#include <QString>
#include <QVariantList>

#include <vector>

namespace fenlark {

class Database;

// What the person at the desk typed into the four boxes of the client search.
struct ClientSearchCriteria {
    QString firstName;
    QString surname;
    QString company;
    QString clientId;   // the id box: digits, but anything else simply finds nothing

    // True when all four boxes are empty: no query is run then.
    bool isEmpty() const;
};

// One client as the search lists it.
struct ClientSearchRow {
    qint32 BBClientID = 0;
    QString ClientType;
    QString FirstName;
    QString Surname;
    QString Company;
    QString PhoneNo;
    QString Email;

    // An individual: "First Surname - phone / company", the e-mail only when there
    // is no company. Any other type: "Company - phone / email".
    QString text() const;
    QString shortName() const;
};

// The query of a search, giving the keys of the clients found: names are
// prefixes (typed "%" and "_" stay wildcards, quotes are plain characters),
// compared without regard to case in any alphabet ("ñú" finds "Ñúñez"),
// combined with "and"; the id box must match the key exactly; retired clients
// never show; newest first. Empty sql means the search finds nothing without
// asking the database (all boxes empty, or an id box that is not a 32-bit number).
struct ClientSearchStatement {
    QString sql;
    QVariantList values;
};
ClientSearchStatement clientSearchStatement(const ClientSearchCriteria &criteria);

// The keys found, newest first. The name indexes cover this query, so even a
// one-letter search over a large table reads no client rows.
std::vector<qint32> searchClientIds(Database &db, const ClientSearchCriteria &criteria);
// The rows of those clients, in the order of the keys given (missing ones left out).
std::vector<ClientSearchRow> fetchClientRows(Database &db, const std::vector<qint32> &ids);
// Keys and rows together.
std::vector<ClientSearchRow> searchClients(Database &db, const ClientSearchCriteria &criteria);

// A typed name with its first letter in upper case and the rest as typed, so a
// client made from the search inherits a tidied name.
QString tidyName(const QString &typed);

} // namespace fenlark

#pragma once

#include "shell/record.h"

namespace fenlark {

// A person or company the property deals with.
class Client : public LocalRecord<Client> {
public:
    static constexpr const char *Table = "client";
    static constexpr const char *Key = "BBClientID";
    static constexpr auto keyMember() { return &Client::BBClientID; }
    static const std::vector<Column<Client>> &columns();

    qint32 BBClientID = 0;
    qint32 ClientID = 0;
    QDateTime DateCreated;
    QString CreatedOn;
    QString ClientType;
    QString Title;
    QString FirstName;
    QString Surname;
    QString Company;
    QString PhoneNo;
    QString Email;
    QString Notes;
    qint16 BBRateSheetID = 0;
    QString Add1;
    QString Add2;
    QString VatNo;
    QString Active;   // "Y" in use, "N" retired: only "Y" clients are found by the search

    // The full name of this client (clientName).
    QString FullName() const;
};

// A repeating named field of a client (a second phone, a fax, ...).
class ClientExtra : public LocalRecord<ClientExtra> {
public:
    static constexpr const char *Table = "clientextra";
    static constexpr const char *Key = "BBClientExtraID";
    static constexpr auto keyMember() { return &ClientExtra::BBClientExtraID; }
    static const std::vector<Column<ClientExtra>> &columns();

    qint32 BBClientExtraID = 0;
    qint32 ClientExtraID = 0;
    qint32 BBClientID = 0;
    QString FieldType;
    QString FieldValue;

    // Deletes each extra of the client by itself, so that every deletion is logged.
    static void deleteForClient(Database &db, qint32 clientId);
    // The extras of a client the editor shows: only types listed in clientxsort,
    // in its order, then by value.
    static std::vector<ClientExtra> forClient(Database &db, qint32 clientId);
};

} // namespace fenlark

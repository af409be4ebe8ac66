#include "clients/clientrecords.h"

#include "clients/clientnames.h"

namespace fenlark {

const std::vector<Column<Client>> &Client::columns()
{
    static const std::vector<Column<Client>> c = {
        {"ClientID", &Client::ClientID},
        {"DateCreated", &Client::DateCreated},
        {"CreatedOn", &Client::CreatedOn},
        {"ClientType", &Client::ClientType},
        {"Title", &Client::Title},
        {"FirstName", &Client::FirstName},
        {"Surname", &Client::Surname},
        {"Company", &Client::Company},
        {"PhoneNo", &Client::PhoneNo},
        {"Email", &Client::Email},
        {"Notes", &Client::Notes},
        {"BBRateSheetID", &Client::BBRateSheetID},
        {"Add1", &Client::Add1},
        {"Add2", &Client::Add2},
        {"VatNo", &Client::VatNo},
        {"Active", &Client::Active},
    };
    return c;
}

const std::vector<Column<ClientExtra>> &ClientExtra::columns()
{
    static const std::vector<Column<ClientExtra>> c = {
        {"ClientExtraID", &ClientExtra::ClientExtraID},
        {"BBClientID", &ClientExtra::BBClientID},
        {"FieldType", &ClientExtra::FieldType},
        {"FieldValue", &ClientExtra::FieldValue},
    };
    return c;
}

QString Client::FullName() const
{
    return clientName(Title, FirstName, Surname, Company);
}

void ClientExtra::deleteForClient(Database &db, qint32 clientId)
{
    Transaction transaction(db);
    std::vector<qint32> keys;
    QSqlQuery q = db.query(QStringLiteral("select bbclientextraid from clientextra where bbclientid = ?"), {clientId});
    while (q.next())
        keys.push_back(q.value(0).toInt());
    for (qint32 key : keys)
        remove(db, key);
    transaction.commit();
}

std::vector<ClientExtra> ClientExtra::forClient(Database &db, qint32 clientId)
{
    std::vector<ClientExtra> extras;
    QSqlQuery q = db.query(QStringLiteral("select clientextra.* from clientextra, clientxsort "
                                          "where clientextra.fieldtype = clientxsort.fieldtype and bbclientid = ? "
                                          "order by clientxsort.orderby, fieldvalue"),
                           {clientId});
    while (q.next()) {
        ClientExtra extra;
        extra.fillFields(q.record());
        extras.push_back(std::move(extra));
    }
    return extras;
}

} // namespace fenlark

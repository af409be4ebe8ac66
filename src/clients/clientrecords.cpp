#include "clients/clientrecords.h"

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

} // namespace fenlark

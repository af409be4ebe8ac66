#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

class Database;

// One company as earlier clients knew it: each different phone or first
// address line of a company is a row of its own.
struct CompanyRow {
    QString Company;
    QString PhoneNo;
    QString Add1;

    bool operator==(const CompanyRow &) const = default;
};

// What a chosen company row gives a client: the first client with exactly that
// company, phone and first address line.
struct CompanyDetails {
    QString Company;
    QString PhoneNo;
    QString Add1;
    QString Add2;
    QString VatNo;
    qint16 BBRateSheetID = 0;
};

// The companies of all clients, retired ones included, that start with the
// prefix (all of them for an empty one), each combination of company, phone
// and first address line once, in order. Case does not matter, in any
// alphabet ("ōsaka" finds "Ōsaka Travel"); a typed '%' or
// '_' still matches any text or any one character; quotes are plain characters.
// A company of blanks counts: only an empty one is left out.
std::vector<CompanyRow> lookupCompanies(Database &db, const QString &prefix);

// The details of the first client (oldest first) whose company, phone and first
// address line equal the row's; nothing when no client has them any more.
std::optional<CompanyDetails> companyDetails(Database &db, const CompanyRow &row);

} // namespace fenlark

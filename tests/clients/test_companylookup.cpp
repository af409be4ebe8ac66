#include "clients/clientrecords.h"
#include "clients/companylookup.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

qint32 addCompanyClient(Database &db, const QString &company, const QString &phone, const QString &add1,
                        const QString &add2 = {}, const QString &vat = {}, qint16 sheet = 0, const QString &active = "Y")
{
    Client c;
    c.ClientType = "C";
    c.Company = company;
    c.PhoneNo = phone;
    c.Add1 = add1;
    c.Add2 = add2;
    c.VatNo = vat;
    c.BBRateSheetID = sheet;
    c.Active = active;
    c.update(db);
    return c.BBClientID;
}

QStringList names(const std::vector<CompanyRow> &rows)
{
    QStringList out;
    for (const CompanyRow &row : rows)
        out << row.Company + "|" + row.PhoneNo + "|" + row.Add1;
    return out;
}

} // namespace

class TestCompanyLookup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachCompanyPhoneAndAddressOnce()
    {
        TestDatabase t;
        addCompanyClient(t.db(), "Table Bay Events", "021 555 0100", "1 Dock Rd");
        addCompanyClient(t.db(), "Table Bay Events", "021 555 0100", "1 Dock Rd");
        addCompanyClient(t.db(), "Table Bay Events", "021 555 0200", "1 Dock Rd");
        addCompanyClient(t.db(), "Table Bay Events", "", "1 Dock Rd");
        addCompanyClient(t.db(), "table mountain tours", "022", "", {}, {}, 0, "N");
        addCompanyClient(t.db(), "Karoo Adventures", "023", "");
        addCompanyClient(t.db(), "", "024", "");
        addCompanyClient(t.db(), "  ", "025", "");
        QCOMPARE(names(lookupCompanies(t.db(), "Ta")),
                 QStringList({"Table Bay Events||1 Dock Rd", "Table Bay Events|021 555 0100|1 Dock Rd",
                              "Table Bay Events|021 555 0200|1 Dock Rd", "table mountain tours|022|"}));
        QCOMPARE(names(lookupCompanies(t.db(), "TABLE M")), QStringList{"table mountain tours|022|"});
        // Everything with a company, blanks included, when nothing is typed.
        QCOMPARE(lookupCompanies(t.db(), "").size(), std::size_t(6));
        QCOMPARE(names(lookupCompanies(t.db(), "  ")), QStringList{"  |025|"});
    }

    void typedWildcardsMatchAndQuotesArePlain()
    {
        TestDatabase t;
        addCompanyClient(t.db(), "O'Brien & Sons", "1", "");
        addCompanyClient(t.db(), "100% Tours", "2", "");
        addCompanyClient(t.db(), "Ōsaka \"Best\" Travel", "3", "");
        QCOMPARE(names(lookupCompanies(t.db(), "O'B")), QStringList{"O'Brien & Sons|1|"});
        QCOMPARE(names(lookupCompanies(t.db(), "%Tours")), QStringList{"100% Tours|2|"});
        QCOMPARE(names(lookupCompanies(t.db(), "_'")), QStringList{"O'Brien & Sons|1|"});
        QCOMPARE(names(lookupCompanies(t.db(), "Ōsaka \"")), QStringList{"Ōsaka \"Best\" Travel|3|"});
        // Case folds in every alphabet.
        QCOMPARE(names(lookupCompanies(t.db(), "ōSAKA")), QStringList{"Ōsaka \"Best\" Travel|3|"});
        QVERIFY(lookupCompanies(t.db(), "\"").empty());
    }

    void choosingARowReadsTheFirstClientWithExactlyThoseValues()
    {
        TestDatabase t;
        addCompanyClient(t.db(), "Acme", "021", "1 Main Rd", "Cape Town", "4111111111", 3);
        addCompanyClient(t.db(), "Acme", "021", "1 Main Rd", "Paarl", "4222222222", 4);
        addCompanyClient(t.db(), "Acme", "", "1 Main Rd", "Stellenbosch", "4333333333", 5);
        addCompanyClient(t.db(), "ACME", "021", "1 Main Rd", "Wrong case", "", 6);

        const auto first = companyDetails(t.db(), {"Acme", "021", "1 Main Rd"});
        QVERIFY(first);
        QCOMPARE(first->Add2, QString("Cape Town"));
        QCOMPARE(first->VatNo, QString("4111111111"));
        QCOMPARE(first->BBRateSheetID, qint16(3));
        // A company without a phone is read back like any other.
        const auto noPhone = companyDetails(t.db(), {"Acme", "", "1 Main Rd"});
        QVERIFY(noPhone);
        QCOMPARE(noPhone->Add2, QString("Stellenbosch"));
        QCOMPARE(noPhone->PhoneNo, QString());
        // A row whose clients have changed since the list was read fills nothing.
        QVERIFY(!companyDetails(t.db(), {"Acme", "099", "1 Main Rd"}));
    }
};

QTEST_GUILESS_MAIN(TestCompanyLookup)
#include "test_companylookup.moc"

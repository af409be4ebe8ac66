// Every report on a seeded property, compared line by line with what it must
// print (cells separated by "|" here for reading; the text itself uses tabs).
#include "reports/reportcatalogue.h"
#include "reports/reporttsv.h"
#include "reportfixture.h"

#include <QtTest>

using namespace fenlark;

namespace {

// The ledger's ages count from this day, the 31st of a month.
const QDate Today(2026, 5, 31);

// The whole numbers of one column of the data rows (from row 4).
QList<int> columnValues(const ReportSheet &sheet, int column)
{
    QList<int> values;
    for (int row = 4; row < 4 + sheet.dataRows(); ++row)
        values << static_cast<int>(sheet.value(row, column));
    return values;
}

QString shown(const ReportSheet &sheet)
{
    return QLatin1Char('\n') + reportTsv(sheet).replace(QLatin1Char('\t'), QLatin1Char('|')) + QLatin1Char('\n');
}

} // namespace

class TestReportGolden : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;

    QString run(int number, const ReportCriteria &criteria)
    {
        const auto sheet = runReport(m_t->db(), number, criteria);
        if (!sheet)
            return sheet.refusal().text();
        return shown(*sheet);
    }

private Q_SLOTS:
    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        reportfixture::seed(m_t->db());
    }

    void eachReportPrintsItsRowsColumnsAndSums_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QDate>("from");
        QTest::addColumn<QDate>("to");
        QTest::addColumn<QString>("orientation");
        QTest::addColumn<QString>("expected");

    QTest::newRow("calendarPrintoutPortraitStraddlingFrom") << 1 << QDate(2026, 3, 1) << QDate(2026, 3, 3) << QStringLiteral("P") << QStringLiteral(R"(
Calendar Printout for  01/03/2026 to 03/03/2026

Date|Room 2|Room 1|Cottage
01/03/2026||Smith
02/03/2026||Smith
03/03/2026

Guest Phone Number
Room 1: Mr Sam Smith - 021 555 0101
)");
    QTest::newRow("calendarPrintoutLandscapeFortnight") << 1 << QDate(2026, 3, 9) << QDate(2026, 3, 22) << QStringLiteral("L") << QStringLiteral(R"(
Calendar Printout for  09/03/2026 to 22/03/2026

Room|09/03/2026|10/03/2026|11/03/2026|12/03/2026|13/03/2026|14/03/2026|15/03/2026|16/03/2026|17/03/2026|18/03/2026|19/03/2026|20/03/2026|21/03/2026|22/03/2026
Room 2||2 Núñez|Núñez|Núñez|1 Núñez
Room 1||||||||||||Acme & Sons|Acme & Sons
Cottage||1 Chan|Chan|Chan

Guest Phone Number
Room 1: Acme & Sons - 021 555 0606
Cottage: Dr Lee Chan - 083 555 0404
)");
    QTest::newRow("bookingSummary") << 2 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Bookings Report from 01/03/2026 to 31/03/2026

Booking ID|Arrive Date|Last Night|Made By|Guest Name|Adults|Children|Avg Rate|Nights|Commission|Room Name|Inv. No.|Pro Forma|Type|VMID|Source|Booking Date|Status|PaidToDate|Applied Rate|Currency|Ex.Rate|Company|Revenue|Nett
1|27/02/2026|02/03/2026|Mr Sam Smith|Mr Sam Smith|2|1|115.00|2|0.00|Room 1||7|Online Booking|501|Website|01/02/2026 09:15:00|Confirmed|230.00|GOLF|ZAR|1||400.00|400.00
2|10/03/2026|12/03/2026|Heron Travel|Ms Ana Núñez|2|0|200.00|3|60.00|Room 2|11||Off-line Booking||Heron|01/03/2026 14:00:00|Waiting for deposit|1600.00|Manual rates|ZAR|1||685.00|625.00
2|10/03/2026|12/03/2026|Heron Travel|Dr Lee Chan|1|0|300.00|3|90.00|Cottage|||Off-line Booking||Heron|01/03/2026 14:00:00|Waiting for deposit|0.00|Manual rates|ZAR|1||1150.00|1060.00
6|13/03/2026|13/03/2026|Ms Ana Núñez|Ms Ana Núñez|1|0|180.00|1|0.00|Room 2|||Off-line Booking|||07/03/2026 12:00:00|Provisional|0.00|Manual rates|ZAR|1||211.50|211.50
3|20/03/2026|21/03/2026|Acme & Sons|Acme & Sons|0|0|0.00|2|0.00|Room 1|||Off-line Booking|||02/03/2026 08:00:00|Unavailable|0.00|Manual rates|ZAR|1|Acme & Sons|0.00|0.00
4|30/03/2026|01/04/2026|Mr Sam Smith|Mr Sam Smith|2|0|150.00|2|0.00|Cottage|12||Online Booking|504|Website|05/03/2026 10:00:00|Paid|450.00|Manual rates|ZAR|1||300.00|300.00

|||||8|1||13|150.00||||||||||||||2746.50|2596.50
)");
    QTest::newRow("extrasReport") << 3 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Extras Report for 01/03/2026 to 31/03/2026

Date|Booking ID|Room/Unit|Description|Qty|Price|Amount|Total|Account ID|Invoice To|Invoice No|Currency|Ex.Rate
01/03/2026|1|Room 1|Wine|2|85.00|170.00|170.00|1|Mr Sam Smith||ZAR|1
11/03/2026|2|Cottage|Transfer|1|250.00|250.00|420.00|3|Dr Lee Chan||ZAR|1
12/03/2026|2|Room 2|Wine|1|85.00|85.00|505.00|2|Heron Travel|11|ZAR|1
13/03/2026|6|Room 2||3|10.50|31.50|536.50|6|Ms Ana Núñez||ZAR|1

||||7||536.50
)");
    QTest::newRow("clientReport") << 4 << QDate() << QDate() << QStringLiteral("P") << QStringLiteral(R"(
Client Report

Type|Company|Title|First Name|Surname|Phone No|Email|Fax No|Cell No|VAT No|Last Booking|Rate Sheet|Client ID|Nationality
Individual||Dr|Lee|Chan|083 555 0404|||||10/03/2026|RACK|4
Individual||Ms|Ana|Núñez||ana@example.com||||13/03/2026|RACK|3|British
Individual||Mr|Sam|Smith|021 555 0101|sam@example.com|021 555 0109|082 555 0101||10/04/2026|RACK|1|British
Company|Acme & Sons||||021 555 0606|||||20/03/2026|RACK|6
Travel Agent|Heron Travel||||011 555 0200|desk@heron.example|||4010203040|10/03/2026|CORP|2|South African
)");
    QTest::newRow("arrivalsDepartures") << 5 << QDate(2026, 3, 1) << QDate(2026, 3, 13) << QStringLiteral("P") << QStringLiteral(R"(
Arrivals for 01/03/2026 to 13/03/2026

Room Name|Guest Name|No Guests|BookingID|Nights|Additional|Phone No|Notes
Room 2|Ms Ana Núñez|2|2|3
Room 2|Ms Ana Núñez|1|6|1
Cottage|Dr Lee Chan|1|2|3||083 555 0404

Departures for 01/03/2026 to 13/03/2026

Room Name|Guest Name|No Guests|BookingID|Nights|Additional|Phone No|Notes
Room 2|Ms Ana Núñez|2|2|3
Room 1|Mr Sam Smith|3|1|4|Dr Lee Chan|021 555 0101|Late arrival
Cottage|Dr Lee Chan|1|2|3||083 555 0404
)");
    QTest::newRow("inHouse") << 6 << QDate(2026, 3, 13) << QDate() << QStringLiteral("P") << QStringLiteral(R"(
In-House - 13/03/2026

Room Name|Guest Name|Status|No Guests|BookingID|Arrival|Departure|Rate Code|Notes
Room 2|Ms Ana Núñez|Waiting for deposit|2|2|10/03/2026|13/03/2026|Manual rates
Room 2|Ms Ana Núñez|Provisional|1|6|13/03/2026|14/03/2026|Manual rates
Cottage|Dr Lee Chan|Waiting for deposit|1|2|10/03/2026|13/03/2026|Manual rates
)");
    QTest::newRow("outstandingAccounts") << 7 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Outstanding Accounts from 01/03/2026 to 31/03/2026

Account ID|Invoice No.|Client ID|Invoice To|Company|Phone No.|Email|Booking ID|Arrive Date|Last Night|Accom|Extras|Payments|Outstanding|Guests|Booking Notes
1||1|Mr Sam Smith||021 555 0101|sam@example.com|1|27/02/2026|02/03/2026|610.00|255.00|230.00|635.00|Mr Sam Smith|Late arrival
2|11|2|Heron Travel|Heron Travel|011 555 0200|desk@heron.example|2|10/03/2026|12/03/2026|1500.00|85.00|1600.00|-15.00|Ms Ana Núñez, Dr Lee Chan
3||4|Dr Lee Chan||083 555 0404||2|10/03/2026|12/03/2026|0.00|250.00|0.00|250.00|Ms Ana Núñez, Dr Lee Chan
6||3|Ms Ana Núñez|||ana@example.com|6|13/03/2026|13/03/2026|180.00|31.50|0.00|211.50|Ms Ana Núñez

||||||||||2290.00|621.50|1830.00|1081.50
)");
    QTest::newRow("debtorsOnThe31st") << 8 << QDate(2026, 5, 31) << QDate() << QStringLiteral("P") << QStringLiteral(R"(
Debtors/Age Analysis up to 31/05/2026

Client ID|Company|Client|Current|30 Days|60 Days|90 Days|Total|Phone No.|Email
1||Mr Sam Smith|100.00|500.00|400.00|500.00|1500.00|021 555 0101|sam@example.com
2|Heron Travel|Heron Travel|0.00|0.00|210.00|0.00|210.00|011 555 0200|desk@heron.example
6|Acme & Sons|Acme & Sons|-0.60|0.00|0.00|0.00|-0.60|021 555 0606

|||99.40|500.00|610.00|500.00|1709.40
)");
    QTest::newRow("clientTransactions") << 9 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Client Transactions from 01/03/2026 to 31/03/2026

Tran Date|Type|Tran No|Client|Reference|Amount|VAT|Gross|Total
13/03/2026|INV|11|Heron Travel|Group|1500.00|210.00|1710.00|1710.00
30/03/2026|INV|12|Mr Sam Smith|Stay 4|394.74|55.26|450.00|2160.00
31/03/2026|INV|22|Mr Sam Smith|Transfer|263.16|36.84|300.00|2460.00
30/03/2026|INV|23|Mr Sam Smith|Wine|350.88|49.12|400.00|2860.00
05/03/2026|PMT|2|Heron Travel|EFT 77|-1500.00|0.00|-1500.00|1360.00
31/03/2026|PMT|4|Mr Sam Smith|EFT 80|-450.00|0.00|-450.00|910.00

|||||558.78|351.22|910.00
)");
    QTest::newRow("marketingReport") << 10 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Marketing Report from 01/03/2026 to 31/03/2026

Source|Booking ID|Booking Date|Arrive Date|Last Night|Made By|Company|Accomm|Commission|Nett
Heron|2|01/03/2026 14:00:00|10/03/2026|12/03/2026|Heron Travel|Heron Travel|1500.00|150.00|1350.00
Website|4|05/03/2026 10:00:00|30/03/2026|01/04/2026|Mr Sam Smith||450.00|0.00|450.00

|||||||1950.00|150.00|1800.00
)");
    QTest::newRow("paymentsReport") << 11 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Payments Report between 01/03/2026 and 31/03/2026

Payment Type|Payment Date|Reference|Amount|Account ID|Invoice No|Related Bookings
Bank|05/03/2026|EFT 77|1500.00|2|11|2
Bank|31/03/2026|EFT 80|450.00|4|12|4
Cash|15/03/2026|Walk-in|50.00
Credit Card|02/03/2026|CARD-1|200.00|1||1, 5

|||2200.00
)");
    QTest::newRow("securityAuditAcrossMidnight") << 12 << QDate(2026, 3, 1) << QDate(2026, 3, 31) << QStringLiteral("P") << QStringLiteral(R"(
Security Audit between 01/03/2026 and 31/03/2026

Audit Date|User|Audit Note
01/03/2026 00:00:00|admin|Booking ID 2 ()
31/03/2026 23:59:59|maria|Extra Deleted. A/C ID 1: 1 x Wine @ 85 (Broken)
)");
    }

    void eachReportPrintsItsRowsColumnsAndSums()
    {
        QFETCH(int, number);
        QFETCH(QDate, from);
        QFETCH(QDate, to);
        QFETCH(QString, orientation);
        QFETCH(QString, expected);
        ReportCriteria criteria = defaultCriteria(number, Today, orientation.at(0));
        criteria.from = from;
        criteria.to = to;
        QCOMPARE(run(number, criteria), expected);
    }

    void clientReportNarrowsToATypeOrAFieldValueAmongActiveClients_data()
    {
        QTest::addColumn<QString>("clientType");
        QTest::addColumn<QString>("fieldType");
        QTest::addColumn<QString>("fieldValue");
        QTest::addColumn<QList<int>>("clients");
        QTest::newRow("travel agents") << "T" << "" << "" << QList<int>{2};
        QTest::newRow("British, the retired one left out") << "" << "N" << "British" << QList<int>{3, 1};
        QTest::newRow("British individuals") << "I" << "N" << "British" << QList<int>{3, 1};
        QTest::newRow("British travel agents") << "T" << "N" << "British" << QList<int>{};
        QTest::newRow("a value matches whole") << "" << "N" << "Brit" << QList<int>{};
    }

    void clientReportNarrowsToATypeOrAFieldValueAmongActiveClients()
    {
        QFETCH(QString, clientType);
        QFETCH(QString, fieldType);
        QFETCH(QString, fieldValue);
        QFETCH(QList<int>, clients);
        ReportCriteria criteria = defaultCriteria(report::Clients, Today);
        criteria.clientType = clientType;
        criteria.fieldType = fieldType;
        criteria.fieldValue = fieldValue;
        const auto sheet = runReport(m_t->db(), report::Clients, criteria);
        QVERIFY(sheet.ok());
        QCOMPARE(columnValues(*sheet, 13), clients);
    }

    void transactionSearchNarrowsByTypeNumberReferenceAndAmount_data()
    {
        QTest::addColumn<QString>("tranType");
        QTest::addColumn<int>("tranNo");
        QTest::addColumn<QString>("reference");
        QTest::addColumn<double>("amount");
        QTest::addColumn<QList<int>>("tranNos");
        const double anyAmount = 0;
        QTest::newRow("payments") << "PMT" << 0 << "" << anyAmount << QList<int>{2, 4};
        QTest::newRow("reference starts so, in any case") << "" << 0 << "eft 8" << anyAmount << QList<int>{4};
        QTest::newRow("an amount as stored, a credit negative") << "" << 0 << "" << -1500.0 << QList<int>{2};
        QTest::newRow("a number within its type") << "INV" << 22 << "" << anyAmount << QList<int>{22};
        QTest::newRow("nothing outside the dates") << "INV" << 20 << "" << anyAmount << QList<int>{};
    }

    void transactionSearchNarrowsByTypeNumberReferenceAndAmount()
    {
        QFETCH(QString, tranType);
        QFETCH(int, tranNo);
        QFETCH(QString, reference);
        QFETCH(double, amount);
        QFETCH(QList<int>, tranNos);
        ReportCriteria criteria = defaultCriteria(report::Transactions, Today);
        criteria.from = QDate(2026, 3, 1);
        criteria.to = QDate(2026, 3, 31);
        criteria.tranType = tranType;
        if (tranNo > 0)
            criteria.tranNo = tranNo;
        criteria.reference = reference;
        if (amount != 0)
            criteria.amount = amount;
        const auto sheet = runReport(m_t->db(), report::Transactions, criteria);
        QVERIFY(sheet.ok());
        QCOMPARE(columnValues(*sheet, 3), tranNos);
    }

    void reportWithoutRowsKeepsItsHeadingsAndSumsRowsFourToThree()
    {
        ReportCriteria criteria = defaultCriteria(report::Payments, Today);
        criteria.from = QDate(2026, 1, 1);
        criteria.to = QDate(2026, 1, 31);
        const auto sheet = runReport(m_t->db(), report::Payments, criteria);
        QVERIFY(sheet.ok());
        QCOMPARE(shown(*sheet), QStringLiteral(R"(
Payments Report between 01/01/2026 and 31/01/2026

Payment Type|Payment Date|Reference|Amount|Account ID|Invoice No|Related Bookings

|||0.00
)"));
        QCOMPARE(ReportSheet::formula(*sheet->cell(5, 4)), QStringLiteral("=SUBTOTAL(9,D4:D3)"));
        QVERIFY(sheet->hasAutoFilter());
        QCOMPARE(sheet->autoFilter().address(), QStringLiteral("A3:G3"));
    }

    void debtorsAgeFromTodayNotFromTheDateAsked_data()
    {
        QTest::addColumn<QDate>("today");
        QTest::addColumn<QList<int>>("ages");   // Sam Smith's Current, 30, 60 and 90 days
        QTest::newRow("31 May") << QDate(2026, 5, 31) << QList<int>{100, 500, 400, 500};
        // Limits 30 June, 30 May, 30 April, 30 March: the payment of 1 June is now due.
        QTest::newRow("30 June") << QDate(2026, 6, 30) << QList<int>{50, 0, 500, 900};
        QTest::newRow("1 May: what is dated later lies ahead") << QDate(2026, 5, 1) << QList<int>{200, 700, 500, 0};
    }

    void debtorsAgeFromTodayNotFromTheDateAsked()
    {
        QFETCH(QDate, today);
        QFETCH(QList<int>, ages);
        ReportCriteria criteria = defaultCriteria(report::Debtors, today);
        criteria.from = QDate(2025, 1, 15);
        const auto sheet = runReport(m_t->db(), report::Debtors, criteria);
        QVERIFY(sheet.ok());
        QCOMPARE(sheet->title(), QStringLiteral("Debtors/Age Analysis up to 15/01/2025"));
        QCOMPARE(sheet->value(4, 1), 1.0);
        QList<int> row;
        for (int column = 4; column <= 7; ++column)
            row << static_cast<int>(sheet->value(4, column));
        QCOMPARE(row, ages);
    }
};

QTEST_GUILESS_MAIN(TestReportGolden)
#include "test_reportgolden.moc"

#include "accounts/paymenttypes.h"
#include "clients/clientnames.h"
#include "shell/database.h"
#include "shell/propertyinfo.h"
#include "shell/schema.h"
#include "shell/textformat.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

class TestHelpers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbersAndAmounts()
    {
        QCOMPARE(safeDouble("12.5"), 12.5);
        QCOMPARE(safeDouble(""), 0.0);
        QCOMPARE(safeDouble("12,5x"), 0.0);
        QCOMPARE(safeDouble("1e999"), 0.0);
        QCOMPARE(formatAmount(1234.5), QString("1234.50"));
        QCOMPARE(formatAmount(2.675), QString("2.67"));
        QCOMPARE(formatAmount(-0.001), QString("0.00"));
        QCOMPARE(formatAmount(-12.345), QString("-12.35"));
        QVERIFY(formatCurrency(5).endsWith("5.00"));
        QCOMPARE(numericKey('7'), int('7'));
        QCOMPARE(numericKey(8), 8);
        QCOMPARE(numericKey(','), int(','));
        QCOMPARE(numericKey('a'), 0);
        QCOMPARE(numericKey('-'), 0);
    }

    void storedDatesReadAsQtWouldParseThem_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("a date") << QVariant("2026-03-02");
        QTest::newRow("with a time of day") << QVariant("2026-03-02 10:30:00");
        QTest::newRow("ISO with T") << QVariant("2026-03-02T10:30:00");
        QTest::newRow("month 13") << QVariant("2026-13-01");
        QTest::newRow("30 February") << QVariant("2026-02-30");
        QTest::newRow("29 February of a leap year") << QVariant("2024-02-29");
        QTest::newRow("day 00") << QVariant("2026-03-00");
        QTest::newRow("year 0000") << QVariant("0000-01-01");
        QTest::newRow("short month") << QVariant("2026-3-2");
        QTest::newRow("letters") << QVariant("2026-0a-02");
        QTest::newRow("day first") << QVariant("02/03/2026");
        QTest::newRow("empty") << QVariant("");
        QTest::newRow("null") << QVariant();
    }

    void storedDatesReadAsQtWouldParseThem()
    {
        QFETCH(QVariant, stored);
        QCOMPARE(dateFromSql(stored), QDate::fromString(stored.toString().left(10), "yyyy-MM-dd"));
    }

    void datesInTextAreLocaleFree()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        QCOMPARE(dateLiteral(QDate(2008, 3, 9)), QString("#2008-03-09#"));
        QLocale::setDefault(QLocale::c());
        QCOMPARE(parseDate("09/03/2008").date(), QDate(2008, 3, 9));
        QCOMPARE(parseDate("09/03/08").date(), QDate(2008, 3, 9));
        QCOMPARE(parseDate("09/03/08 14:30:05"), QDateTime(QDate(2008, 3, 9), QTime(14, 30, 5)));
        QVERIFY(!parseDate("31/02/2008").isValid());
        QVERIFY(!parseDate("ab/cd/ef").isValid());
        QVERIFY(!parseDate("").isValid());
    }

    void textHelpers()
    {
        QCOMPARE(columnLetter(1), QString("A"));
        QCOMPARE(columnLetter(26), QString("Z"));
        QCOMPARE(columnLetter(27), QString("AA"));
        QCOMPARE(columnLetter(703), QString("AAA"));
        QCOMPARE(columnLetter(0), QString());
        QCOMPARE(flattenLines("one\r\ntwo\rthree"), QString("one / two / three"));
        QCOMPARE(fieldText(QVariant()), QString());
        QCOMPARE(fieldText(QVariant("  x ")), QString("x"));
    }

    void lookupsAgainstTheDatabase()
    {
        TestDatabase t;
        RecordingSink sink;
        QCOMPARE(getClientName(t.db(), 42), QString("Unknown client - ID 42"));
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown[0].title, QString("Missing client information"));
        t.db().execute("insert into client (BBClientID, Title, FirstName, Surname) values (7, 'Mr', 'Seán', 'O''Brien')");
        QCOMPARE(getClientName(t.db(), 7), QString::fromUtf8("Mr Seán O'Brien"));
        t.db().execute("insert into clientextra (BBClientID, FieldType, FieldValue) values (7, 'Fax \"home\"', '021')");
        QCOMPARE(getClientExtra(t.db(), 7, "Fax \"home\""), QString("021"));
        QCOMPARE(getClientExtra(t.db(), 7, "Cell"), QString());
        QCOMPARE(getVersionInfo(t.db()).value(1), QString::number(Schema::currentVersion()));
        QVERIFY(getVersionInfo(t.db()).value(0).startsWith("fenlark "));
        QCOMPARE(getGuestRoomName(t.db(), 3), QString("Error: No room name"));
        t.db().execute("insert into bbsetup (BBID, CurrencyCode) values (12345, 'ZAR')");
        t.db().execute("insert into ratesheet (BBRateSheetID, RateCode, CurrencyCode) values (1, 'RACK', 'ZAR')");
        QVERIFY(!hasOtherCurrency(t.db()));
        t.db().execute("insert into ratesheet (BBRateSheetID, RateCode, CurrencyCode) values (2, 'USD', 'USD')");
        QVERIFY(hasOtherCurrency(t.db()));
    }
};

QTEST_GUILESS_MAIN(TestHelpers)
#include "test_helpers.moc"

#include "shell/amounttext.h"
#include "shell/money.h"

#include <QtTest>

using namespace fenlark;

class TestAmountText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void amountsAreReadAsPeopleTypeThem_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("readable");
        QTest::addColumn<double>("value");

        QTest::newRow("plain") << "en_GB" << "1250.5" << true << 1250.5;
        QTest::newRow("blanks around") << "en_GB" << "  42.10 " << true << 42.10;
        QTest::newRow("thousands") << "en_GB" << "1,250.50" << true << 1250.50;
        QTest::newRow("thousands without decimals") << "en_GB" << "12,500" << true << 12500.0;
        QTest::newRow("minus") << "en_GB" << "-35" << true << -35.0;
        QTest::newRow("plus") << "en_GB" << "+35" << true << 35.0;
        QTest::newRow("zero") << "en_GB" << "0.00" << true << 0.0;
        QTest::newRow("no whole part") << "en_GB" << ".5" << true << 0.5;
        QTest::newRow("comma decimal in English") << "en_GB" << "12,5" << false << 0.0;
        QTest::newRow("misplaced grouping") << "en_GB" << "1,25,000" << false << 0.0;
        QTest::newRow("two points") << "en_GB" << "1.2.3" << false << 0.0;
        QTest::newRow("text") << "en_GB" << "abc" << false << 0.0;
        QTest::newRow("digits and text") << "en_GB" << "12abc" << false << 0.0;
        QTest::newRow("empty is nothing owed") << "en_GB" << "" << true << 0.0;
        QTest::newRow("sign alone") << "en_GB" << "-" << false << 0.0;
        QTest::newRow("two signs") << "en_GB" << "--5" << false << 0.0;
        QTest::newRow("Spanish comma decimal") << "es_ES" << "12,5" << true << 12.5;
        QTest::newRow("Spanish point decimal") << "es_ES" << "12.5" << true << 12.5;
        QTest::newRow("Spanish thousands") << "es_ES" << "1.250,50" << true << 1250.50;
        QTest::newRow("Spanish point before three digits groups") << "es_ES" << "1.250" << true << 1250.0;
    }
    void amountsAreReadAsPeopleTypeThem()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QFETCH(bool, readable);
        QFETCH(double, value);
        const auto read = parseAmount(text, QLocale(locale));
        QCOMPARE(read.has_value(), readable);
        if (readable)
            QCOMPARE(*read, value);
    }

    void firstDocumentNumbersAreWholeNumbersOfAtLeastOne_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("number");   // 0: refused

        QTest::newRow("plain") << "1000" << 1000;
        QTest::newRow("blanks") << " 17 " << 17;
        QTest::newRow("zero") << "0" << 0;
        QTest::newRow("negative") << "-5" << 0;
        QTest::newRow("fraction") << "12.7" << 0;
        QTest::newRow("trailing text") << "12abc" << 0;
        QTest::newRow("text") << "abc" << 0;
        QTest::newRow("beyond 32 bits") << "2147483648" << 0;
        QTest::newRow("largest") << "2147483647" << 2147483647;
    }
    void firstDocumentNumbersAreWholeNumbersOfAtLeastOne()
    {
        QFETCH(QString, text);
        QFETCH(int, number);
        const auto read = parsePositiveWholeNumber(text);
        QCOMPARE(read.value_or(0), number);
    }

    void plainNumbersDropTrailingZeros()
    {
        QCOMPARE(plainNumber(2), QString("2"));
        QCOMPARE(plainNumber(2.5), QString("2.5"));
        QCOMPARE(plainNumber(-0.0), QString("0"));
        QCOMPARE(plainNumber(1234567), QString("1234567"));
    }
};

QTEST_GUILESS_MAIN(TestAmountText)
#include "test_amounttext.moc"

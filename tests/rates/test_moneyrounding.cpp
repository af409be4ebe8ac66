#include "shell/money.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace fenlark;

class TestMoneyRounding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roundsTheExactBinaryValueTiesToEven_data()
    {
        QTest::addColumn<double>("amount");
        QTest::addColumn<double>("expected");
        // The ruling's examples.
        QTest::newRow("0.125 is an exact tie: even 0.12") << 0.125 << 0.12;
        QTest::newRow("0.375 is an exact tie: even 0.38") << 0.375 << 0.38;
        QTest::newRow("2.675 is stored below the tie") << 2.675 << 2.67;
        QTest::newRow("1.005 is stored below the tie") << 1.005 << 1.00;
        QTest::newRow("-0.125 ties to even, sign kept") << -0.125 << -0.12;
        // The calculation's own examples and a few more.
        QTest::newRow("2.125 gives 2.12") << 2.125 << 2.12;
        QTest::newRow("2.375 gives 2.38") << 2.375 << 2.38;
        QTest::newRow("0.625 exact tie: 0.62") << 0.625 << 0.62;
        QTest::newRow("0.875 exact tie: 0.88") << 0.875 << 0.88;
        QTest::newRow("1.015 is stored below the tie") << 1.015 << 1.01;
        QTest::newRow("2.345 is stored above the tie") << 2.345 << 2.35;
        QTest::newRow("0.035 is stored above the tie") << 0.035 << 0.04;
        QTest::newRow("whole amount unchanged") << 160.0 << 160.0;
        QTest::newRow("already two decimals") << 49.5 << 49.5;
        QTest::newRow("long-stay 72.0000001") << 80 * (1 - 10.0 / 100) << 72.0;
        QTest::newRow("a third") << 100.0 / 3 << 33.33;
        QTest::newRow("two thirds, negative") << -200.0 / 3 << -66.67;
        QTest::newRow("zero") << 0.0 << 0.0;
        QTest::newRow("large amount below the tie") << 12345678.905 << 12345678.90;
        QTest::newRow("large amount above the tie") << 12345678.925 << 12345678.93;
    }

    void roundsTheExactBinaryValueTiesToEven()
    {
        QFETCH(double, amount);
        QFETCH(double, expected);
        QCOMPARE(roundMoney(amount), expected);
    }

    void nonFiniteValuesPassThrough()
    {
        QVERIFY(std::isnan(roundMoney(std::numeric_limits<double>::quiet_NaN())));
        QCOMPARE(roundMoney(std::numeric_limits<double>::infinity()), std::numeric_limits<double>::infinity());
        QCOMPARE(roundMoney(1e-300), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestMoneyRounding)
#include "test_moneyrounding.moc"

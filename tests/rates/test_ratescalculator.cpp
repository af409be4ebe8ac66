#include "rates/ratefixture.h"
#include "rates/ratescalculator.h"

#include <QtTest>

using namespace fenlark;
using namespace ratefixture;

namespace {

const QDate Monday(2025, 3, 3);

// The price of every night of one stay, as callers store it.
QList<double> nights(const RateData &data, qint32 rate, QDate from, QDate to, int adults, int child1 = 0,
                     int child2 = 0, qint32 sheet = 0)
{
    StayRequest request;
    request.BBRoomID = 101;
    request.BBRateID = rate;
    request.BBRateSheetID = sheet;
    request.FromDate = from;
    request.ToDate = to;
    request.adults = static_cast<qint16>(adults);
    request.child1 = static_cast<qint16>(child1);
    request.child2 = static_cast<qint16>(child2);
    return priceStay(data, request).nights.values();
}

// The fixture property with its sharing rule "N" and the default child rule.
struct PlainProperty : TestDatabase {
    PlainProperty()
    {
        insertSetup(db(), QStringLiteral("N"));
        writeProperty(db());
    }
};

// The 3-night package "WEEK3" of room type 1 (code 10), May to August, MinStay 3,
// at 500/400/300/250/200, in the package scheme given.
void writeWeek3(Database &db, const char *scheme = "1")
{
    package(db, {1, "WEEK3", QDate(2025, 5, 1), QDate(2025, 8, 31), 3, "N", 3, scheme});
    packageRT(db, 51, 1, 1);
    rateCode(db, 10, "P", 51);
    packageRate(db, 1, 51, 0, {500, 400, 300, 250, 200});
}

} // namespace

class TestRatesCalculator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // One ordinary Monday night in the first season: Pax 100/80/60/50/40.
    void guestsAndChildRules_data()
    {
        QTest::addColumn<QString>("chargeSS");
        QTest::addColumn<int>("adults");
        QTest::addColumn<int>("child1");
        QTest::addColumn<int>("child2");
        QTest::addColumn<QString>("flag1");
        QTest::addColumn<double>("rate1");
        QTest::addColumn<QString>("flag2");
        QTest::addColumn<double>("rate2");
        QTest::addColumn<int>("maxAdults");
        QTest::addColumn<int>("childAge2");
        QTest::addColumn<double>("expected");

        const QString P = "P", R = "R", F = "F", S = "S";
        QTest::newRow("one adult pays pax1") << "N" << 1 << 0 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 100.0;
        QTest::newRow("two adults pay pax2 each") << "N" << 2 << 0 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("third adult pays pax3") << "N" << 3 << 0 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 220.0;
        QTest::newRow("fourth adult pays pax4") << "N" << 4 << 0 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 270.0;
        QTest::newRow("sixth adult pays pax5 twice") << "N" << 6 << 0 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 350.0;
        QTest::newRow("nobody costs nothing") << "N" << 0 << 0 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 0.0;

        QTest::newRow("P is a percentage of pax2") << "N" << 2 << 1 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 200.0;
        QTest::newRow("R is an amount") << "N" << 2 << 0 << 1 << P << 50.0 << R << 55.0 << 4 << 17 << 215.0;
        QTest::newRow("R is capped at the position's pax") << "N" << 2 << 0 << 1 << P << 50.0 << R << 70.0 << 4 << 17 << 220.0;
        QTest::newRow("unknown flag reads as an amount") << "N" << 2 << 0 << 1 << P << 50.0 << "Q" << 55.0 << 4 << 17 << 215.0;
        QTest::newRow("S is a percentage of the position's pax") << "N" << 2 << 0 << 1 << P << 50.0 << S << 50.0 << 4 << 17 << 190.0;
        QTest::newRow("S position stops at MaxAdults") << "N" << 4 << 0 << 1 << P << 50.0 << S << 50.0 << 4 << 17 << 295.0;
        QTest::newRow("S position stops at MaxAdults 3") << "N" << 3 << 0 << 1 << P << 50.0 << S << 50.0 << 3 << 17 << 250.0;

        QTest::newRow("band 1 F is free") << "N" << 2 << 1 << 0 << F << 30.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("band 2 F is an amount") << "N" << 2 << 0 << 1 << P << 50.0 << F << 30.0 << 4 << 17 << 190.0;

        QTest::newRow("N: adult alone with paying child pays pax2") << "N" << 1 << 1 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 120.0;
        QTest::newRow("N: free younger child, adult pays pax1") << "N" << 1 << 1 << 0 << F << 0.0 << R << 55.0 << 4 << 17 << 100.0;
        QTest::newRow("N: free child with a rate still makes adult pay pax2") << "N" << 1 << 1 << 0 << F << 50.0 << R << 55.0 << 4 << 17 << 80.0;
        // A lone adult with children under "T" and "S": the first child takes the
        // second sharing place; a younger band on "F" frees the children after it.
        QTest::newRow("T: free younger child at rate 0 pays pax2 beside the adult") << "T" << 1 << 1 << 0 << F << 0.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("T: free younger child with a rate pays pax2") << "T" << 1 << 1 << 0 << F << 30.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("T: younger children after the first are free") << "T" << 1 << 3 << 0 << F << 0.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("T: older child takes the place, younger F free") << "T" << 1 << 1 << 1 << F << 30.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("T: older band F pays pax2") << "T" << 1 << 0 << 1 << P << 50.0 << F << 0.0 << 4 << 17 << 160.0;
        QTest::newRow("T: second younger child at child price") << "T" << 1 << 2 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 200.0;
        QTest::newRow("S: free younger child at rate 0 stays free, adult pays pax1") << "S" << 1 << 1 << 0 << F << 0.0 << R << 55.0 << 4 << 17 << 100.0;
        QTest::newRow("S: free younger child with a rate pays pax2") << "S" << 1 << 1 << 0 << F << 30.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("S: younger children after the first are free") << "S" << 1 << 2 << 0 << F << 30.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("S: unpaid older child passes the place to a younger F") << "S" << 1 << 1 << 1 << F << 30.0 << R << 0.0 << 4 << 17 << 160.0;
        QTest::newRow("ST: no sharing place, younger F free") << "ST" << 1 << 1 << 0 << F << 30.0 << R << 55.0 << 4 << 17 << 100.0;
        QTest::newRow("T: older child at rate 0 pays pax2") << "T" << 1 << 0 << 1 << P << 50.0 << R << 0.0 << 4 << 17 << 160.0;
        QTest::newRow("S: first child charged as an adult") << "S" << 1 << 0 << 1 << P << 50.0 << R << 55.0 << 4 << 17 << 160.0;
        QTest::newRow("S: second child at child price") << "S" << 1 << 0 << 2 << P << 50.0 << R << 55.0 << 4 << 17 << 215.0;
        QTest::newRow("S: child band rate 0 keeps pax1 and child price") << "S" << 1 << 0 << 1 << P << 50.0 << R << 0.0 << 4 << 17 << 100.0;
        QTest::newRow("S: flag passes to the paying band") << "S" << 1 << 1 << 1 << P << 50.0 << R << 0.0 << 4 << 17 << 160.0;
        QTest::newRow("empty: adult pays pax2, child price") << "" << 1 << 1 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 120.0;
        QTest::newRow("other: adult pays pax1") << "X" << 1 << 0 << 1 << P << 50.0 << R << 55.0 << 4 << 17 << 155.0;

        QTest::newRow("band 2 missing: children raise pos, cost nothing") << "N" << 2 << 1 << 2 << S << 50.0 << R << 55.0 << 4 << 0 << 185.0;
        QTest::newRow("children only: one band-1 child is the adult") << "N" << 0 << 2 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 120.0;
        QTest::newRow("children only: older child first") << "X" << 0 << 0 << 2 << P << 50.0 << R << 55.0 << 4 << 17 << 155.0;
        QTest::newRow("children only: single child pays pax1") << "N" << 0 << 1 << 0 << P << 50.0 << R << 55.0 << 4 << 17 << 100.0;
    }

    void guestsAndChildRules()
    {
        QFETCH(QString, chargeSS);
        QFETCH(int, adults);
        QFETCH(int, child1);
        QFETCH(int, child2);
        QFETCH(QString, flag1);
        QFETCH(double, rate1);
        QFETCH(QString, flag2);
        QFETCH(double, rate2);
        QFETCH(int, maxAdults);
        QFETCH(int, childAge2);
        QFETCH(double, expected);

        TestDatabase t;
        insertSetup(t.db(), chargeSS, 11, static_cast<qint16>(childAge2));
        ChildRule child;
        child.flag1 = flag1;
        child.rate1 = rate1;
        child.flag2 = flag2;
        child.rate2 = rate2;
        writeProperty(t.db(), QStringLiteral("-----XX"), static_cast<qint16>(maxAdults), child);
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(1), adults, child1, child2), QList<double>{expected});
    }

    void perUnitRoomIgnoresTheGuests()
    {
        PlainProperty t;
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 3, Monday, Monday.addDays(1), 3, 2, 1), QList<double>{900});
        QCOMPARE(nights(data, 3, Monday, Monday.addDays(1), 1), QList<double>{900});
    }

    // Friday 2025-03-07 to Monday: Friday, Saturday, Sunday, two adults.
    void weekdayMaskIsReadOnEachNight_data()
    {
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QList<double>>("expected");
        QTest::newRow("weekend marked") << "-----XX" << QList<double>{160, 200, 200};
        QTest::newRow("seven dashes: no marked night") << "-------" << QList<double>{160, 160, 160};
        QTest::newRow("no dash: every night marked") << "WWWWWWW" << QList<double>{200, 200, 200};
        QTest::newRow("five positions: Saturday and Sunday marked") << "-----" << QList<double>{160, 200, 200};
        QTest::newRow("empty mask: every night marked") << "" << QList<double>{200, 200, 200};
        QTest::newRow("Friday only") << "----X--" << QList<double>{200, 160, 160};
    }

    void weekdayMaskIsReadOnEachNight()
    {
        QFETCH(QString, mask);
        QFETCH(QList<double>, expected);
        TestDatabase t;
        insertSetup(t.db(), "N");
        writeProperty(t.db(), mask);
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 2, QDate(2025, 3, 7), QDate(2025, 3, 10), 2), expected);
    }

    void weekendChildRatesFollowTheMask()
    {
        PlainProperty t;
        const RateData data = RateData::load(t.db());
        // Friday: 160 + 55; Saturday: 200 + WChildRate2 65 (below WPax3 70).
        QCOMPARE(nights(data, 2, QDate(2025, 3, 7), QDate(2025, 3, 9), 2, 0, 1), (QList<double>{215, 265}));
    }

    void typeTwoPeriodWinsInsideTypeOne()
    {
        TestDatabase t;
        insertSetup(t.db(), "N");
        // Written before the season it overrides: the type decides, not the order.
        period(t.db(), 1, 1, 0, "2", QDate(2025, 3, 11), QDate(2025, 3, 12), {150, 130, 0, 0, 0}, {150, 130, 0, 0, 0});
        writeProperty(t.db());
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 2, QDate(2025, 3, 10), QDate(2025, 3, 14), 2), (QList<double>{160, 260, 260, 160}));
    }

    void withinOneTypeTheRowReadLastWins()
    {
        PlainProperty t;
        period(t.db(), 1, 1, 0, "1", QDate(2025, 3, 4), QDate(2025, 3, 4), {0, 90, 0, 0, 0}, {0, 90, 0, 0, 0});
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(2), 2), (QList<double>{160, 180}));
    }

    void stayAcrossSeasonBoundaryAndPastTheLastPeriod()
    {
        PlainProperty t;
        const RateData data = RateData::load(t.db());
        // Sunday 29 June (marked), Monday 30 June, Tuesday 1 July (second season).
        QCOMPARE(nights(data, 2, QDate(2025, 6, 29), QDate(2025, 7, 2), 2), (QList<double>{200, 160, 240}));
        // Tuesday 30 and Wednesday 31 December priced, 1 January has no period.
        QCOMPARE(nights(data, 2, QDate(2025, 12, 30), QDate(2026, 1, 3), 2), (QList<double>{240, 240, 0, 0}));
    }

    void otherSheetAndMealPlanHaveTheirOwnRows()
    {
        PlainProperty t;
        period(t.db(), 1, 1, 7, "1", QDate(2025, 1, 1), QDate(2025, 12, 31), {0, 60, 0, 0, 0}, {0, 60, 0, 0, 0});
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(1), 2, 0, 0, 7), QList<double>{120});
        QCOMPARE(nights(data, 1, Monday, Monday.addDays(1), 2), QList<double>{140});
        QCOMPARE(nights(data, 1, Monday, Monday.addDays(1), 2, 0, 0, 8), QList<double>{0});
    }

    // Property-wide row: 7 nights 10 %, 14 nights 5 %; arrivals up to 20 March.
    void longStayDiscounts_data()
    {
        QTest::addColumn<QDate>("from");
        QTest::addColumn<int>("nightCount");
        QTest::addColumn<double>("total");
        // Five ordinary nights at 144 and two marked at 180.
        QTest::newRow("7 nights: 10 %") << QDate(2025, 3, 17) << 7 << 1080.0;
        QTest::newRow("6 nights: no discount") << QDate(2025, 3, 17) << 6 << 1000.0;
        // Ten ordinary nights at 152, four marked at 190: the later, smaller tier wins.
        QTest::newRow("14 nights: the last tier, 5 %") << QDate(2025, 3, 17) << 14 << 2280.0;
        QTest::newRow("arrival on the row's last day") << QDate(2025, 3, 20) << 7 << 1080.0;
        QTest::newRow("arrival after the row") << QDate(2025, 3, 21) << 7 << 1200.0;
    }

    void longStayDiscounts()
    {
        QFETCH(QDate, from);
        QFETCH(int, nightCount);
        QFETCH(double, total);
        PlainProperty t;
        longStay(t.db(), 1, 0, 0, QDate(2025, 1, 1), QDate(2025, 3, 20), {7, 14, 0}, {10, 5, 0});
        const RateData data = RateData::load(t.db());
        StayRequest request;
        request.BBRateID = 2;
        request.FromDate = from;
        request.ToDate = from.addDays(nightCount);
        request.adults = 2;
        QCOMPARE(priceStay(data, request).total, total);
    }

    void roomTypeLongStayRowReplacesTheGeneralOne()
    {
        PlainProperty t;
        longStay(t.db(), 1, 0, 0, QDate(2025, 1, 1), QDate(2025, 12, 31), {7, 0, 0}, {10, 0, 0});
        longStay(t.db(), 2, 0, 2, QDate(2025, 1, 1), QDate(2025, 12, 31), {3, 0, 0}, {20, 0, 0});
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 3, Monday, Monday.addDays(3), 2), (QList<double>{720, 720, 720}));
        QCOMPARE(nights(data, 3, Monday, Monday.addDays(7), 2).first(), 720.0);
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(7), 2).first(), 144.0);
    }

    void longStayDiscountsAmountChildRatesOnly()
    {
        TestDatabase t;
        insertSetup(t.db(), "N");
        ChildRule child;
        child.flag1 = "X";
        child.rate1 = 55;
        child.flag2 = "R";
        child.rate2 = 55;
        writeProperty(t.db(), QStringLiteral("-----XX"), 4, child);
        longStay(t.db(), 1, 0, 0, QDate(2025, 1, 1), QDate(2025, 12, 31), {7, 0, 0}, {10, 0, 0});
        const RateData data = RateData::load(t.db());
        // Monday: adults 2 x 72; "R" 55 less 10 % = 49.50 under pax3 54.
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(7), 2, 0, 1).first(), 193.5);
        // The other flag keeps 55 and is capped at the discounted pax3 54.
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(7), 2, 1, 0).first(), 198.0);
    }

    void duplicateLongStayRowsAreAnError()
    {
        PlainProperty t;
        longStay(t.db(), 1, 0, 1, QDate(2025, 1, 1), QDate(2025, 12, 31), {7, 0, 0}, {10, 0, 0});
        longStay(t.db(), 2, 0, 1, QDate(2025, 3, 1), QDate(2025, 3, 31), {7, 0, 0}, {15, 0, 0});
        const RateData data = RateData::load(t.db());
        QVERIFY_THROWS_EXCEPTION(RateDataError, nights(data, 2, Monday, Monday.addDays(7), 2));
        // Outside the second row's span only one row applies.
        QCOMPARE(nights(data, 2, QDate(2025, 5, 5), QDate(2025, 5, 12), 2).first(), 144.0);
    }

    void fixedLengthPackages()
    {
        PlainProperty t;
        // Per room type: 3 nights as a whole; the package's scheme gives way to the room type's.
        writeWeek3(t.db(), "2");
        // Whole property: 3 nights as a whole.
        package(t.db(), {2, "BLOCK3", QDate(2025, 5, 1), QDate(2025, 8, 31), 3, "Y", 3, "1"});
        rateCode(t.db(), 11, "B", 2);
        packageRate(t.db(), 2, 2, 0, {600, 450, 300, 250, 200});
        const RateData data = RateData::load(t.db());
        const QDate monday(2025, 5, 5);

        QCOMPARE(nights(data, 10, monday, monday.addDays(3), 2), (QList<double>{800, 0, 0}));
        // Two more nights at the default rack rate (Thursday, Friday).
        QCOMPARE(nights(data, 10, monday, monday.addDays(5), 2), (QList<double>{800, 0, 0, 160, 160}));
        // The share of the whole-property price covers nights 4 to "extension count" only.
        QCOMPARE(nights(data, 11, monday, monday.addDays(5), 2), (QList<double>{900, 0, 0, 0, 0}));
        QCOMPARE(nights(data, 11, monday, monday.addDays(9), 2), (QList<double>{900, 0, 0, 300, 300, 300, 0, 0, 0}));
        // Shorter than the package: the whole price still stands on night 1.
        QCOMPARE(nights(data, 10, monday, monday.addDays(2), 2), (QList<double>{800, 0}));
    }

    void perNightPackageRunsToItsEndThenRackRate()
    {
        PlainProperty t;
        package(t.db(), {3, "JUNE", QDate(2025, 6, 1), QDate(2025, 6, 30), 1, "N", 2, "1"});
        packageRT(t.db(), 53, 3, 1);
        rateCode(t.db(), 12, "P", 53);
        packageRate(t.db(), 3, 53, 0, {90, 70, 50, 40, 30});
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 12, QDate(2025, 6, 2), QDate(2025, 6, 5), 2), (QList<double>{140, 140, 140}));
        // Saturday 28 to Wednesday 2 July: three package nights (no weekend
        // price), then Tuesday 1 July at the second season's rack rate.
        QCOMPARE(nights(data, 12, QDate(2025, 6, 28), QDate(2025, 7, 2), 2), (QList<double>{140, 140, 140, 240}));
    }

    void packageExtensionCountsItsOwnNightsForLongStay()
    {
        PlainProperty t;
        longStay(t.db(), 1, 0, 0, QDate(2025, 1, 1), QDate(2025, 12, 31), {3, 0, 0}, {50, 0, 0});
        writeWeek3(t.db());
        const RateData data = RateData::load(t.db());
        const QDate monday(2025, 5, 5);
        // Four nights: one extension night, too short for the 3-night discount.
        QCOMPARE(nights(data, 10, monday, monday.addDays(4), 2), (QList<double>{800, 0, 0, 160}));
        // Six nights: three extension nights (Thu, Fri, Sat) at half price.
        QCOMPARE(nights(data, 10, monday, monday.addDays(6), 2), (QList<double>{800, 0, 0, 80, 80, 100}));
    }

    void packageChildrenUseThePackageRule()
    {
        PlainProperty t;
        package(t.db(), {2, "BLOCK3", QDate(2025, 5, 1), QDate(2025, 8, 31), 3, "Y", 3, "1"});
        rateCode(t.db(), 11, "B", 2);
        ChildRule child;
        child.flag1 = "P";
        child.rate1 = 20;
        packageRate(t.db(), 2, 2, 0, {600, 450, 300, 250, 200}, child);
        const RateData data = RateData::load(t.db());
        QCOMPARE(nights(data, 11, QDate(2025, 5, 5), QDate(2025, 5, 8), 2, 1, 0), (QList<double>{990, 0, 0}));
    }

    void unpriceableStaysAreZeroNotACrash()
    {
        TestDatabase t;
        insertSetup(t.db(), "N");
        writeProperty(t.db(), QStringLiteral("-----XX"), -3);
        package(t.db(), {4, "ZERO", QDate(2025, 1, 1), QDate(2025, 12, 31), 0, "Y", 0, "1"});
        rateCode(t.db(), 20, "B", 4);
        packageRate(t.db(), 4, 4, 0, {600, 450, 300, 250, 200});
        package(t.db(), {5, "NOLINK", QDate(2025, 1, 1), QDate(2025, 12, 31), 3, "N", 0, "1"});
        rateCode(t.db(), 21, "P", 99);
        rateCode(t.db(), 22, "R", 77);
        rateCode(t.db(), 23, "B", 5);
        // A row whose numbers are all null.
        t.db().execute("insert into rates (BBRTID, BBMealPlanID, BBRateSheetID, RateType, StartDate, EndDate) "
                       "values (1, 1, 3, '1', '2025-01-01', '2025-12-31')");
        // Rows no stay can select: an unknown rate type, a period without dates.
        t.db().execute("insert into rates (BBRTID, BBMealPlanID, BBRateSheetID, RateType, StartDate, EndDate, Pax2) "
                       "values (1, 1, 0, '3', '2025-01-01', '2025-12-31', 999), (1, 1, 0, '2', null, null, 999)");
        // A long-stay row of nulls alone: no tier qualifies.
        t.db().execute("insert into rateslongstay (BBLSID, BBRateSheetID, StartDate, EndDate, BBRTID, Duration1, Discount1) "
                       "values (9, 0, '2025-01-01', '2025-12-31', 0, null, null)");
        const RateData data = RateData::load(t.db());

        QCOMPARE(nights(data, 2, Monday, Monday.addDays(8), 2).first(), 160.0);
        QCOMPARE(nights(data, 0, Monday, Monday.addDays(2), 2), (QList<double>{0, 0}));
        QCOMPARE(nights(data, 999, Monday, Monday.addDays(2), 2), (QList<double>{0, 0}));
        QCOMPARE(nights(data, 20, Monday, Monday.addDays(9), 2), QList<double>(9, 0));
        QCOMPARE(nights(data, 21, Monday, Monday.addDays(2), 2), (QList<double>{0, 0}));
        QCOMPARE(nights(data, 22, Monday, Monday.addDays(2), 2), (QList<double>{0, 0}));
        QCOMPARE(nights(data, 23, Monday, Monday.addDays(2), 2), (QList<double>{0, 0}));
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(1), 2, 1, 1, 3), QList<double>{0});
        QVERIFY(nights(data, 2, Monday, Monday, 2).isEmpty());
        QVERIFY(nights(data, 2, Monday, Monday.addDays(-3), 2).isEmpty());
        QVERIFY(nights(data, 2, QDate(), Monday, 2).isEmpty());
        // A negative MaxAdults in the data: the child is priced on no position.
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(1), 2, 0, 1), QList<double>{160});
        QCOMPARE(nights(data, 2, Monday, Monday.addDays(1), -2, -1, 0), QList<double>{0});

        RatesCalculator calculator;
        NoGuests guests;
        guests.NoAdults = 2;
        calculator.initialise(data, 2, Monday, Monday.addDays(2), guests, 0);
        QCOMPARE(calculator.DailyRate(0), 0.0);
        QCOMPARE(calculator.DailyRate(3), 0.0);
        QCOMPARE(calculator.DailyRate(2), 160.0);
    }

    void childPolicyLabels()
    {
        TestDatabase t;
        insertSetup(t.db(), "N", 11, 17);
        ChildPolicy policy;
        policy.fetchChildPolicy(t.db());
        QCOMPARE(policy.label1, QString("3-11"));
        QCOMPARE(policy.label2, QString("12-17"));
        policy.setAges(2, 0, 0);
        QVERIFY(policy.label1.isEmpty());
        QVERIFY(policy.label2.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestRatesCalculator)
#include "test_ratescalculator.moc"

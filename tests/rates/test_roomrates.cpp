#include "rates/ratefixture.h"
#include "rates/ratelists.h"
#include "rates/roomrates.h"

#include <QtTest>

using namespace fenlark;
using namespace ratefixture;

namespace {

// The fixture property with its packages:
//  1 "WEEK3"  per room type 1 (bbprid 51, code 10), 3 nights, May-August, MinStay 3
//  2 "BLOCK3" whole property (code 11), 3 nights, MinStay 3, linked to room type 1
//  3 "JUNE"   per room type 1 (bbprid 53, code 12), per night, June, MinStay 2
//  4 "ALLJUN" whole property (code 13), per night, June, linked to room type 1
//  5 "NOLINK" whole property (code 14), no packagert row for any room type
void writePackages(Database &db)
{
    package(db, {1, "WEEK3", QDate(2025, 5, 1), QDate(2025, 8, 31), 3, "N", 3, "1"});
    packageRT(db, 51, 1, 1);
    rateCode(db, 10, "P", 51);
    package(db, {2, "BLOCK3", QDate(2025, 5, 1), QDate(2025, 8, 31), 3, "Y", 3, "1"});
    packageRT(db, 52, 2, 1);
    rateCode(db, 11, "B", 2);
    package(db, {3, "JUNE", QDate(2025, 6, 1), QDate(2025, 6, 30), 1, "N", 2, "1"});
    packageRT(db, 53, 3, 1);
    rateCode(db, 12, "P", 53);
    package(db, {4, "ALLJUN", QDate(2025, 6, 1), QDate(2025, 6, 30), 1, "Y", 0, "1"});
    packageRT(db, 54, 4, 1);
    rateCode(db, 13, "B", 4);
    package(db, {5, "NOLINK", QDate(2025, 1, 1), QDate(2025, 12, 31), 2, "Y", 0, "1"});
    rateCode(db, 14, "B", 5);
}

} // namespace

class TestRoomRates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void offeredRatesInOrderWithExclusions_data()
    {
        QTest::addColumn<int>("room");
        QTest::addColumn<QDate>("from");
        QTest::addColumn<QDate>("to");
        QTest::addColumn<QList<qint32>>("expected");
        // Rack code 2 carries the default meal plan: it moves before code 1.
        QTest::newRow("no package at that date") << 101 << QDate(2025, 3, 3) << QDate(2025, 3, 6) << QList<qint32>{2, 1};
        QTest::newRow("3 nights in May: both 3-night packages") << 101 << QDate(2025, 5, 5) << QDate(2025, 5, 8)
                                                                << QList<qint32>{2, 1, 10, 11};
        QTest::newRow("4 nights: whole-property package needs exactly 3") << 102 << QDate(2025, 5, 5) << QDate(2025, 5, 9)
                                                                           << QList<qint32>{2, 1, 10};
        QTest::newRow("June: room-type packages before whole-property ones")
            << 101 << QDate(2025, 6, 2) << QDate(2025, 6, 5) << QList<qint32>{2, 1, 10, 12, 11, 13};
        QTest::newRow("June past the per-night packages' end") << 101 << QDate(2025, 6, 28) << QDate(2025, 7, 2)
                                                                << QList<qint32>{2, 1, 10};
        QTest::newRow("last night on the end date") << 101 << QDate(2025, 6, 28) << QDate(2025, 7, 1)
                                                    << QList<qint32>{2, 1, 10, 12, 11, 13};
        QTest::newRow("arrival before the start") << 101 << QDate(2025, 4, 29) << QDate(2025, 5, 2) << QList<qint32>{2, 1};
        QTest::newRow("other room type") << 201 << QDate(2025, 6, 2) << QDate(2025, 6, 5) << QList<qint32>{3};
        QTest::newRow("unknown room") << 999 << QDate(2025, 6, 2) << QDate(2025, 6, 5) << QList<qint32>{};
    }

    void offeredRatesInOrderWithExclusions()
    {
        QFETCH(int, room);
        QFETCH(QDate, from);
        QFETCH(QDate, to);
        QFETCH(QList<qint32>, expected);
        TestDatabase t;
        writeProperty(t.db());
        writePackages(t.db());
        const RateData data = RateData::load(t.db());
        const std::vector<qint32> offered = getRoomRates(data, from, to, room);
        QCOMPARE(QList<qint32>(offered.begin(), offered.end()), expected);
    }

    void perNightPackageWithoutMinStayIsNotDroppedByIt()
    {
        TestDatabase t;
        writeProperty(t.db());
        package(t.db(), {3, "JUNE", QDate(2025, 6, 1), QDate(2025, 6, 30), 1, "N", 1, "1"});
        packageRT(t.db(), 53, 3, 1);
        rateCode(t.db(), 12, "P", 53);
        const RateData data = RateData::load(t.db());
        const std::vector<qint32> offered = getRoomRates(data, QDate(2025, 6, 28), QDate(2025, 7, 2), 101);
        QCOMPARE(QList<qint32>(offered.begin(), offered.end()), (QList<qint32>{2, 1, 12}));
    }

    void rateNames()
    {
        TestDatabase t;
        writeProperty(t.db());
        writePackages(t.db());
        rateCode(t.db(), 30, "R", 77);
        rateCode(t.db(), 31, "P", 88);
        rateCode(t.db(), 32, "B", 99);
        mealPlan(t.db(), 40, 1, 9);
        rateCode(t.db(), 33, "R", 40);
        const RateData data = RateData::load(t.db());
        QCOMPARE(getRateName(data, 0), QString("Manual rates"));
        QCOMPARE(getRateName(data, 2), QString("Double - Bed & Breakfast"));
        QCOMPARE(getRateName(data, 1), QString("Double - Room Only"));
        QCOMPARE(getRateName(data, 3), QString("Cottage - Self-Catering"));
        QCOMPARE(getRateName(data, 10), QString("WEEK3"));
        QCOMPARE(getRateName(data, 11), QString("BLOCK3"));
        QCOMPARE(getRateName(data, 555), QString("(555) not found."));
        QCOMPARE(getRateName(data, 30), QString("(30) not found."));
        QCOMPARE(getRateName(data, 31), QString("(31) not found."));
        QCOMPARE(getRateName(data, 32), QString("(32) not found."));
        QCOMPARE(getRateName(data, 33), QString("Double - "));

        const std::vector<OfferedRate> offered = offeredRates(data, QDate(2025, 5, 5), QDate(2025, 5, 8), 101);
        // Code 33 is a rack rate of the room type too, though of an unnamed meal plan.
        QCOMPARE(offered.size(), std::size_t(5));
        QCOMPARE(offered[0].name, QString("Double - Bed & Breakfast"));
        QCOMPARE(offered[2].BBRateID, 33);
        QCOMPARE(offered[4].name, QString("BLOCK3"));
    }

    void rateSheetListStartsWithRackThenNamesAsPeopleSortThem()
    {
        TestDatabase t;
        for (const auto &[id, name] : {std::pair<int, const char *>{2, "CORPORATE"}, {0, "RACK"}, {1, "AGENT"},
                                       {3, "agent 10"}, {4, "agent 9"}}) {
            RateSheet sheet;
            sheet.BBRateSheetID = id;
            sheet.RateCode = name;
            sheet.update(t.db());
        }
        const std::vector<RateSheetChoice> list = rateSheetList(t.db());
        QStringList names;
        for (const RateSheetChoice &choice : list)
            names << choice.name;
        QCOMPARE(names, QStringList({"RACK", "AGENT", "agent 9", "agent 10", "CORPORATE"}));
        QCOMPARE(list[0].BBRateSheetID, 0);
        QCOMPARE(list[4].BBRateSheetID, 2);

        TestDatabase empty;
        QCOMPARE(rateSheetList(empty.db()).size(), std::size_t(1));
    }

};

QTEST_GUILESS_MAIN(TestRoomRates)
#include "test_roomrates.moc"

#include "rates/ratedata.h"
#include "rates/ratelists.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "rates/sampleratedata.h"
#include "shell/setuprecords.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

// The demo's shape: 12 rooms in 4 room types, one of them left blank for the
// sample data to complete.
void writeRooms(Database &db)
{
    const char *names[] = {"Standard Double", "Twin", "Family Room", "Garden Suite"};
    for (int t = 1; t <= 4; ++t) {
        RoomType type;
        type.BBRTID = t;
        type.RTName = QString::fromLatin1(names[t - 1]);
        type.OrderBy = static_cast<qint16>(t);
        if (t != 4) {
            type.RateScheme = QStringLiteral("1");
            type.MaxAdults = t == 3 ? 4 : 2;
            type.DefaultMealPlanID = 1;
        }
        type.update(db);
        for (int r = 0; r < 3; ++r) {
            Room room;
            room.BBRoomID = t * 100 + r;
            room.BBRTID = t;
            room.RoomName = QStringLiteral("%1%2").arg(t).arg(r);
            room.OrderBy = static_cast<qint16>(t * 10 + r);
            room.update(db);
        }
    }
}

QStringList dump(Database &db, const QString &table)
{
    QStringList rows;
    QSqlQuery q = db.query(QStringLiteral("select * from ") + table + QStringLiteral(" order by rowid"));
    while (q.next()) {
        QStringList values;
        for (int i = 0; i < q.record().count(); ++i)
            values << q.value(i).toString();
        rows << values.join(QLatin1Char('|'));
    }
    return rows;
}

} // namespace

class TestSampleRateData : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyRoomIsOfferedAndPriced()
    {
        TestDatabase t;
        writeRooms(t.db());
        SampleRateData::write(t.db(), 7);
        const RateData data = RateData::load(t.db());
        const QDate march(2026, 3, 9);   // a Monday in the mid season
        for (const Room &room : getRooms(t.db())) {
            const std::vector<OfferedRate> offered = offeredRates(data, march, march.addDays(3), room.BBRoomID);
            QVERIFY2(offered.size() >= 2, qPrintable(room.RoomName));
            StayRequest request;
            request.BBRoomID = room.BBRoomID;
            request.BBRateID = offered.front().BBRateID;
            request.FromDate = march;
            request.ToDate = march.addDays(3);
            request.adults = 2;
            request.child1 = 1;
            const StayPrice price = priceStay(data, request);
            QCOMPARE(price.nights.size(), 3);
            for (const double night : price.nights)
                QVERIFY2(night > 100, qPrintable(room.RoomName));
            // The agent sheet is cheaper than rack.
            request.BBRateSheetID = 1;
            QVERIFY(priceStay(data, request).total < price.total);
        }
    }

    void seasonsWeekendsLongStaysAndPackageShowInPrices()
    {
        TestDatabase t;
        writeRooms(t.db());
        SampleRateData::write(t.db(), 7);
        const RateData data = RateData::load(t.db());
        const qint32 rack = getRoomRates(data, QDate(2026, 3, 9), QDate(2026, 3, 10), 100).front();
        auto night = [&](QDate from, int count, int n) {
            RatesCalculator calculator;
            NoGuests guests;
            guests.NoAdults = 2;
            calculator.initialise(data, rack, from, from.addDays(count), guests, 0);
            return calculator.DailyRate(n);
        };
        const double monday = night(QDate(2026, 3, 9), 1, 1);
        QVERIFY(night(QDate(2026, 3, 13), 1, 1) > monday);   // Friday night
        QVERIFY(night(QDate(2026, 6, 8), 1, 1) < monday);    // winter
        QVERIFY(night(QDate(2026, 12, 21), 1, 1) > monday);  // summer holidays
        QVERIFY(night(QDate(2026, 4, 3), 1, 1) > night(QDate(2026, 4, 10), 1, 1));   // Good Friday
        QVERIFY(night(QDate(2026, 3, 9), 7, 1) < monday);    // a week's stay

        // The winter package is offered in June and carries its price on night 1.
        const std::vector<qint32> june = getRoomRates(data, QDate(2026, 6, 8), QDate(2026, 6, 11), 100);
        QCOMPARE(getRateName(data, june.back()), QString("WINTER3"));
        StayRequest request;
        request.BBRateID = june.back();
        request.FromDate = QDate(2026, 6, 8);
        request.ToDate = QDate(2026, 6, 11);
        request.adults = 2;
        const StayPrice price = priceStay(data, request);
        QVERIFY(price.nights.first() > 0);
        QCOMPARE(price.nights.last(), 0.0);

        BBSetup setup;
        QVERIFY(setup.fetch(t.db()));
        QCOMPARE(setup.ChildAge1, qint16(11));
        QCOMPARE(setup.ChildAge2, qint16(17));
        const std::vector<RateSheetChoice> sheets = rateSheetList(t.db());
        QCOMPARE(sheets.size(), std::size_t(3));
        QCOMPARE(sheets[0].name, QString("RACK"));
    }

    void blankRoomTypeSettingsAreCompleted()
    {
        TestDatabase t;
        writeRooms(t.db());
        SampleRateData::write(t.db(), 7);
        RoomType type;
        QVERIFY(type.fetch(t.db(), 4));
        QVERIFY(!type.RateScheme.isEmpty());
        QVERIFY(type.MaxAdults > 0);
        QCOMPARE(type.DefaultMealPlanID, 1);
        QCOMPARE(type.AppliesTo.size(), 7);
        QVERIFY(type.fetch(t.db(), 3));
        QCOMPARE(type.MaxAdults, qint16(4));
    }

    void sameSeedSameDataAndWritingAgainReplaces()
    {
        TestDatabase a;
        TestDatabase b;
        writeRooms(a.db());
        writeRooms(b.db());
        SampleRateData::write(a.db(), 11);
        SampleRateData::write(b.db(), 11);
        const int rows = a.db().scalar("select count(*) from rates").toInt();
        QVERIFY(rows > 0);
        SampleRateData::write(b.db(), 11);
        for (const char *table : {"rates", "ratecode", "rtmealplan", "packagerate", "rateslongstay", "roomtype", "bbsetup"})
            QCOMPARE(dump(a.db(), table), dump(b.db(), table));

        TestDatabase c;
        writeRooms(c.db());
        SampleRateData::write(c.db(), 12);
        QVERIFY(dump(a.db(), "rates") != dump(c.db(), "rates"));
    }
};

QTEST_GUILESS_MAIN(TestSampleRateData)
#include "test_sampleratedata.moc"

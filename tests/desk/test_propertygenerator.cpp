#include "desk/propertygenerator.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/setuprecords.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

// Mid season, away from Easter: a Monday and the Friday of the same week.
const QDate Monday(2026, 3, 9);
const QDate Friday(2026, 3, 13);

} // namespace

// The demo property a new user first sees, priced by the rate calculator as
// the booking screens price it.
class TestPropertyGenerator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        PropertyGenerator(PropertyGenerator::demo()).generate(m_database.db());
        m_rates = RateData::load(m_database.db());
    }

    void demoRoomTypesPriceByHeadsAndByWeekday_data()
    {
        QTest::addColumn<qint32>("roomType");
        QTest::addColumn<bool>("perPerson");
        QTest::newRow("Standard Double") << 1 << true;
        QTest::newRow("Twin") << 2 << true;
        QTest::newRow("Family Suite") << 3 << true;
        QTest::newRow("Garden Cottage, a price for the unit") << 4 << false;
    }

    void demoRoomTypesPriceByHeadsAndByWeekday()
    {
        QFETCH(qint32, roomType);
        QFETCH(bool, perPerson);
        qint32 room = 0;
        for (const Room &r : Room::list(m_database.db(), QStringLiteral("OrderBy"))) {
            if (r.BBRTID == roomType) {
                room = r.BBRoomID;
                break;
            }
        }
        QVERIFY(room > 0);
        const auto night = [&](QDate date, qint16 adults) {
            const std::vector<qint32> offered = getRoomRates(m_rates, date, date.addDays(1), room);
            if (offered.empty())
                return 0.0;
            return priceStay(m_rates, {room, offered.front(), 0, date, date.addDays(1), adults, 0, 0}).total;
        };
        const double oneAdult = night(Monday, 1);
        const double twoAdults = night(Monday, 2);
        QVERIFY(oneAdult > 0);
        if (perPerson) {
            // One alone pays a single rate; two sharing pay more together, less each.
            QVERIFY2(twoAdults > oneAdult, qPrintable(QStringLiteral("%1 / %2").arg(oneAdult).arg(twoAdults)));
            QVERIFY(twoAdults / 2 < oneAdult);
        } else {
            QCOMPARE(twoAdults, oneAdult);
        }
        QVERIFY2(night(Friday, 2) > twoAdults, qPrintable(QStringLiteral("%1 / %2").arg(night(Friday, 2)).arg(twoAdults)));
        QCOMPARE(night(Monday.addDays(1), 2), twoAdults);
    }

    // The bookings are made day by day; a watcher sees the days go by, and one
    // that stops the work leaves the database as empty as it was.
    void generationReportsItsDaysAndAStopLeavesNothing()
    {
        const auto options = PropertyGenerator::demo();
        const qint64 days = options.from.daysTo(options.to);
        qint64 last = -1;
        bool inOrder = true;
        Progress watched([&](qint64 done, qint64 total, const QString &) {
            inOrder = inOrder && done >= last && total == days;
            last = done;
            return true;
        });
        TestDatabase full;
        QVERIFY(PropertyGenerator(options).generate(full.db(), watched).has_value());
        QVERIFY(inOrder);
        QVERIFY(last > days / 2);

        TestDatabase stopped;
        Progress halfway([&](qint64 done, qint64, const QString &) { return done < days / 2; });
        QVERIFY(!PropertyGenerator(options).generate(stopped.db(), halfway).has_value());
        QVERIFY(BBSetup::isSetupEmpty(stopped.db()));
        QCOMPARE(stopped.db().scalar("select count(*) from booking").toInt(), 0);
        QCOMPARE(stopped.db().scalar("select count(*) from room").toInt(), 0);
    }

private:
    TestDatabase m_database;
    RateData m_rates;
};

QTEST_GUILESS_MAIN(TestPropertyGenerator)
#include "test_propertygenerator.moc"

// Finding bookings, how full the property was, what a stay would cost, and the
// nightly rates of a booking as the rates view reads, prices and saves them.
#include "accounts/accountrecords.h"
#include "bookings/bookingrates.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsearch.h"
#include "bookings/newbooking.h"
#include "bookings/occupancy.h"
#include "bookings/quickquote.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/ratelists.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "support/demodatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

const QDate Arrival(2031, 5, 10);

class Yes : public StayQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
};

QSet<qint32> bookingsOf(const std::vector<BookingSearchRow> &rows)
{
    QSet<qint32> found;
    for (const BookingSearchRow &row : rows)
        found.insert(row.BBBookingID);
    return found;
}

} // namespace

class TestBookingQueries : public QObject {
    Q_OBJECT

    std::unique_ptr<DemoDatabase> m_test;
    RateData m_rates;
    BBSetup m_setup;
    UserStruct m_user = UserStruct::autoAdmin();
    // The bookings of the search cases, by name.
    QHash<QString, qint32> m_named;

    Database &db() { return m_test->db(); }

    qint32 client(const QString &first, const QString &surname, const QString &company = {}, const QString &phone = {},
                  const QString &email = {})
    {
        Client c;
        c.FirstName = first;
        c.Surname = surname;
        c.Company = company;
        c.PhoneNo = phone;
        c.Email = email;
        c.Active = QStringLiteral("Y");
        c.update(db());
        return c.BBClientID;
    }

    qint32 book(std::vector<NewBookingRoom> rooms, qint32 clientId, QDate from = Arrival, int nights = 3)
    {
        NewBookingRequest r;
        r.FromDate = from;
        r.ToDate = from.addDays(nights);
        r.BBClientID = clientId;
        for (NewBookingRoom &room : rooms) {
            if (room.BBRateID < 0) {
                const std::vector<qint32> offered = getRoomRates(m_rates, r.FromDate, r.ToDate, room.BBRoomID);
                room.BBRateID = offered.empty() ? 0 : offered.front();
            }
            r.rooms.push_back(room);
        }
        Yes yes;
        const auto result = BookingWriter(db(), m_rates, m_setup, m_user).save(r, yes);
        return result ? result->BBBookingID : 0;
    }

    qint32 book(qint32 room, qint32 clientId, QDate from = Arrival, int nights = 3, qint16 adults = 2, qint16 child1 = 0)
    {
        return book({NewBookingRoom{room, -1, adults, child1, 0}}, clientId, from, nights);
    }

    // Five bookings, each found by one route of the search.
    void makeSearchCases()
    {
        const qint32 quill = client("Zebedee", "Quillfeather", {}, "+44 20 7946 0001", "zeb@quill.test");
        const qint32 nunez = client("Inés", "Ñúñez", "Tintagel Ltd");
        const qint32 other = client("Ora", "Vantongeren");
        m_named["invoice"] = book(1, quill);
        m_named["legAccount"] = book(2, other);
        m_named["reference"] = book(3, other);
        m_named["nunez"] = book(5, nunez);
        m_named["status"] = book(6, other);

        Booking head;
        head.fetch(db(), m_named["invoice"]);
        db().execute("update account set InvoiceNo = 9001, ProformaNo = 8001 where BBAccountID = ?", {head.BBAccountID});
        Account own;
        own.InvoiceTo = other;
        own.InvoiceNo = 9002;
        own.ProformaNo = 8002;
        own.Status = "O";
        own.update(db());
        db().execute("update guest set BBAccountID = ? where BBBookingID = ?", {own.BBAccountID, m_named["legAccount"]});
        db().execute("update guest set Reference = 'REF-77' where BBBookingID = ?", {m_named["reference"]});
        db().execute("update booking set Status = 'O' where BBBookingID = ?", {m_named["status"]});
        db().execute("update booking set BookingID = 70707 where BBBookingID = ?", {m_named["nunez"]});
    }

    Result<std::vector<BookingSearchRow>> search(const QString &fields)
    {
        BookingSearchCriteria c;
        const std::pair<const char *, QString *> boxes[] = {
            {"invoice", &c.invoiceNo}, {"proforma", &c.proformaNo}, {"id", &c.bookingId},    {"server", &c.serverId},
            {"reference", &c.reference}, {"first", &c.firstName},  {"surname", &c.surname}, {"phone", &c.phone},
            {"email", &c.email},         {"company", &c.company},  {"status", &c.status}};
        for (const QString &pair : fields.split(';', Qt::SkipEmptyParts)) {
            const QString name = pair.section('=', 0, 0);
            for (const auto &[box, target] : boxes)
                if (name == QLatin1String(box))
                    *target = pair.section('=', 1);
        }
        return searchBookings(db(), c);
    }

    Result<OccupancyFigures> occupancyOf(std::vector<qint32> rooms, QDate from, QDate to, OccupancyMode mode)
    {
        return occupancy(db(), m_rates, {from, to, std::move(rooms), mode});
    }

    Result<QuickQuote> quote(QDate from, QDate to, qint16 adults = 2, qint16 child1 = 0, qint32 sheet = 0)
    {
        Calendar calendar;
        return quickQuote(db(), calendar, m_rates, getRooms(db()), {from, to, adults, child1, 0, sheet});
    }

    QMap<QDate, double> nightsOf(qint32 booking, qint32 room)
    {
        QMap<QDate, double> nights;
        for (const DailyRate &rate : DailyRate::forLeg(db(), booking, room))
            nights.insert(rate.CalDate, rate.RoomRate);
        return nights;
    }

    int audits() { return db().scalar("select count(*) from audit").toInt(); }

private Q_SLOTS:
    void init()
    {
        m_test = std::make_unique<DemoDatabase>();
        m_rates = RateData::load(db());
        m_setup.fetch(db());
        m_named.clear();
    }

    void theFirstFilledBoxDecidesTheSearch_data()
    {
        QTest::addColumn<QString>("fields");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("invoice on the head's account") << "invoice=9001;surname=Vantongeren" << QStringList{"invoice"};
        QTest::newRow("invoice on a room's own account") << "invoice=9002" << QStringList{"legAccount"};
        QTest::newRow("pro forma before the booking id") << "proforma=8002;id=1" << QStringList{"legAccount"};
        QTest::newRow("server number") << "server=70707;reference=REF" << QStringList{"nunez"};
        QTest::newRow("reference before the names") << "reference=ref-7;surname=Quillfeather" << QStringList{"reference"};
        QTest::newRow("surname as a prefix") << "surname=quill" << QStringList{"invoice"};
        QTest::newRow("typed wildcards stay wildcards") << "surname=Qu_ll%ther" << QStringList{"invoice"};
        QTest::newRow("names in any alphabet") << "surname=ÑÚ;first=inés" << QStringList{"nunez"};
        QTest::newRow("company") << "company=tintagel" << QStringList{"nunez"};
        QTest::newRow("phone") << "phone=+44 20" << QStringList{"invoice"};
        QTest::newRow("e-mail") << "email=zeb@" << QStringList{"invoice"};
        QTest::newRow("names and status together") << "surname=Vantongeren;status=O" << QStringList{"status"};
        QTest::newRow("a quote is a plain character") << "surname=Quill\"feather" << QStringList{};
        QTest::newRow("nothing found") << "invoice=424242" << QStringList{};
    }

    void theFirstFilledBoxDecidesTheSearch()
    {
        QFETCH(QString, fields);
        QFETCH(QStringList, found);
        makeSearchCases();
        const auto rows = search(fields);
        QVERIFY(rows);
        QSet<qint32> expected;
        for (const QString &name : found)
            expected.insert(m_named.value(name));
        QCOMPARE(bookingsOf(*rows), expected);
    }

    void aBookingFoundByManyRoutesIsListedOncePerRoom()
    {
        const qint32 maker = client("Pia", "Ostrowska");
        const qint32 booking = book({NewBookingRoom{4, -1, 2, 0, 0}, NewBookingRoom{7, -1, 2, 0, 0}}, maker);
        db().execute("update guest set BBClient2ID = ? where BBBookingID = ?", {maker, booking});
        const auto rows = search("surname=Ostrowska");
        QVERIFY(rows);
        QCOMPARE(rows->size(), size_t(2));
        QCOMPARE((*rows)[0].roomName, QString("Cottage 4"));
        QCOMPARE((*rows)[1].roomName, QString("Room 7"));
        QCOMPARE((*rows)[0].madeBy, QString("Pia Ostrowska"));
        QCOMPARE((*rows)[0].guest, QString("Pia Ostrowska"));
        QCOMPARE((*rows)[0].arrival, Arrival);

        // A reference shared by both rooms still lists the booking once per room.
        db().execute("update guest set Reference = 'GROUP-1' where BBBookingID = ?", {booking});
        QCOMPARE(search("reference=GROUP")->size(), size_t(2));
    }

    void aStatusAloneFindsEveryBookingOfThatStatusNewestFirst()
    {
        makeSearchCases();
        const auto rows = search("status=O");
        QVERIFY(rows);
        QCOMPARE(rows->front().BBBookingID, m_named["status"]);
        const int outstanding = db().scalar("select count(*) from booking join guest on guest.BBBookingID = booking.BBBookingID "
                                            "where Status = 'O'").toInt();
        QCOMPARE(int(rows->size()), outstanding);
        for (size_t i = 1; i < rows->size(); ++i)
            QVERIFY((*rows)[i - 1].BBBookingID >= (*rows)[i].BBBookingID);
    }

    void searchesThatCannotRunAreRefused_data()
    {
        QTest::addColumn<QString>("fields");
        QTest::addColumn<int>("refusal");
        QTest::newRow("nothing typed") << "" << 6442;
        QTest::newRow("blanks only") << "surname=   ;company= " << 6442;
        QTest::newRow("letters in a number box") << "invoice=12a" << 6440;
        QTest::newRow("a number too long") << "id=99999999999" << 6440;
        QTest::newRow("a number past 32 bits") << "server=2147483648" << 6440;
        QTest::newRow("zero") << "proforma=0" << 6440;
        QTest::newRow("a sign") << "id=-5" << 6440;
    }

    void searchesThatCannotRunAreRefused()
    {
        QFETCH(QString, fields);
        QFETCH(int, refusal);
        QCOMPARE(search(fields).refusal().id(), refusal);
    }

    void occupancyCountsNightsBeforeDepartureByRoomsOrBeds_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<int>("room");
        QTest::addColumn<int>("adults");
        QTest::addColumn<int>("children");
        QTest::addColumn<int>("firstNight");   // days after the arrival
        QTest::addColumn<int>("lastNight");
        QTest::addColumn<bool>("beds");
        QTest::addColumn<int>("available");
        QTest::addColumn<int>("sold");
        QTest::addColumn<QString>("percent");
        QTest::addColumn<int>("gauge");
        // One booking of two nights; the rooms counted are the booking's and room 2 (a twin, free).
        QTest::newRow("one night one room") << "C" << 1 << 2 << 0 << 0 << 0 << false << 2 << 1 << "50.0%" << 50;
        QTest::newRow("day of departure is no night") << "C" << 1 << 2 << 0 << 2 << 2 << false << 2 << 0 << "0.0%" << 0;
        QTest::newRow("span over the stay") << "C" << 1 << 2 << 0 << -1 << 3 << false << 10 << 2 << "20.0%" << 20;
        QTest::newRow("out of service leaves the base") << "U" << 1 << 0 << 0 << 0 << 1 << false << 2 << 0 << "0.0%" << 0;
        QTest::newRow("beds count adults") << "C" << 3 << 3 << 0 << 0 << 0 << true << 6 << 3 << "50.0%" << 50;
        QTest::newRow("children take no bed") << "C" << 3 << 2 << 2 << 0 << 0 << true << 6 << 2 << "33.3%" << 33;
        QTest::newRow("a unit is one bed-unit") << "C" << 4 << 4 << 0 << 0 << 0 << true << 3 << 1 << "33.3%" << 33;
        QTest::newRow("more adults than beds") << "C" << 1 << 5 << 0 << 0 << 0 << true << 4 << 5 << "125.0%" << 100;
    }

    void occupancyCountsNightsBeforeDepartureByRoomsOrBeds()
    {
        QFETCH(QString, status);
        QFETCH(int, room);
        QFETCH(int, adults);
        QFETCH(int, children);
        QFETCH(int, firstNight);
        QFETCH(int, lastNight);
        QFETCH(bool, beds);
        const qint32 booking = book(room, client("Ann", "Occupant"), Arrival, 2, static_cast<qint16>(adults),
                                    static_cast<qint16>(children));
        QVERIFY(booking > 0);
        db().execute("update booking set Status = ? where BBBookingID = ?", {status, booking});
        const auto figures = occupancyOf({room, 2}, Arrival.addDays(firstNight), Arrival.addDays(lastNight),
                                         beds ? OccupancyMode::Beds : OccupancyMode::Rooms);
        QVERIFY(figures);
        QTEST(figures->available, "available");
        QTEST(figures->sold, "sold");
        QTEST(figures->percentText(), "percent");
        QTEST(figures->gauge(), "gauge");
        QCOMPARE(int(figures->nights.size()), lastNight - firstNight + 1);
        int sold = 0;
        for (const NightOccupancy &night : figures->nights)
            sold += night.sold;
        QCOMPARE(sold, figures->sold);
    }

    void anOutOfServiceNightLeavesTheOtherRoomsFull()
    {
        const qint32 broken = book(1, client("Fix", "Plumber"), Arrival, 1);
        db().execute("update booking set Status = 'U' where BBBookingID = ?", {broken});
        QVERIFY(book(2, client("Ann", "Guest"), Arrival, 1) > 0);
        QCOMPARE(occupancyOf({1, 2}, Arrival, Arrival, OccupancyMode::Rooms)->percentText(), QString("100.0%"));
    }

    void occupancyWithoutRoomsOrWithDatesBackwardsIsRefused()
    {
        QCOMPARE(occupancyOf({}, Arrival, Arrival, OccupancyMode::Rooms).refusal().id(), 6450);
        QCOMPARE(occupancyOf({1}, Arrival, Arrival.addDays(-1), OccupancyMode::Beds).refusal().id(), 6452);
    }

    void quickQuoteTotalsAreTheRoundedNightsABookingWouldStore()
    {
        const auto quoted = quote(Arrival, Arrival.addDays(7), 2, 1);
        QVERIFY(quoted);
        QCOMPARE(quoted->types.size(), size_t(4));
        const qint32 guest = client("Quinn", "Quote");
        for (const QuotedRoomType &type : quoted->types) {
            QVERIFY(!type.rates.empty());
            const Room *first = nullptr;
            for (const Room &room : getRooms(db()))
                if (room.RoomName == type.rooms.front())
                    first = m_rates.room(room.BBRoomID);
            QVERIFY(first);
            for (const QuotedRate &rate : type.rates) {
                const qint32 booking = book({NewBookingRoom{first->BBRoomID, rate.BBRateID, 2, 1, 0}}, guest, Arrival, 7);
                QVERIFY(booking > 0);
                double stored = 0;
                for (double night : nightsOf(booking, first->BBRoomID))
                    stored += night;
                QCOMPARE(rate.total, roundMoney(stored));
                QCOMPARE(rate.perNight, roundMoney(rate.total / 7));
                db().execute("delete from guest where BBBookingID = ?", {booking});
                db().execute("delete from booking where BBBookingID = ?", {booking});
            }
        }
    }

    void aRoomTypeWithNoFreeRoomIsLeftOutOfTheQuote()
    {
        const qint32 guest = client("Cora", "Cottager");
        for (qint32 cottage : {4, 8, 12})
            QVERIFY(book(cottage, guest, Arrival.addDays(1), 1) > 0);
        const auto quoted = quote(Arrival, Arrival.addDays(3));
        QVERIFY(quoted);
        QStringList names;
        for (const QuotedRoomType &type : quoted->types)
            names << type.name;
        QCOMPARE(names, (QStringList{"Standard Double", "Twin", "Family Suite"}));
        QVERIFY(quoted->text().startsWith("Standard Double x 3 Available\n  Units: Room 1 / Room 5 / Room 9\n"));

        // Leaving the day the cottages are taken is no clash.
        QCOMPARE(quote(Arrival, Arrival.addDays(1))->types.size(), size_t(4));
    }

    void aQuoteOnASheetOfAnotherCurrencyNamesIt()
    {
        db().execute("update ratesheet set CurrencyCode = 'EUR' where BBRateSheetID = 1");
        const auto quoted = quote(Arrival, Arrival.addDays(2), 2, 0, 1);
        QCOMPARE(quoted->currency, QString("EUR"));
        QVERIFY(quoted->text().contains(" = EUR "));
        QVERIFY(quote(Arrival, Arrival.addDays(2))->currency.isEmpty());
    }

    void aQuoteWithTheDatesBackwardsIsRefused()
    {
        QCOMPARE(quote(Arrival, Arrival).refusal().id(), 6469);
        QCOMPARE(quote(Arrival, Arrival.addDays(-2)).refusal().id(), 6469);
        QCOMPARE(quote(Arrival, Arrival.addDays(2), -1).refusal().id(), 6471);
    }

    void theRatesViewWritesNothingUntilSaved()
    {
        const qint32 booking = book(1, client("Rae", "Rates"));
        const QMap<QDate, double> before = nightsOf(booking, 1);
        auto view = BookingRates::load(db(), booking);
        QVERIFY(view);
        QCOMPARE(view->legs().size(), size_t(1));
        QCOMPARE(view->legs()[0].headCount(), QString("2 Adults, 0 Children"));
        view->setRate(0, 1, 5);
        view->setRateSheet(1);
        view->recalculate(m_rates);
        QCOMPARE(nightsOf(booking, 1), before);
        QVERIFY(!BookingRates::load(db(), 4242));
    }

    void aTypedAmountIsStoredInCentsAndAuditedAlone()
    {
        const qint32 booking = book({NewBookingRoom{1, -1, 2, 0, 0}, NewBookingRoom{2, -1, 2, 0, 0}}, client("Rae", "Rates"));
        auto view = BookingRates::load(db(), booking);
        const double old = view->legs()[0].rates[1];
        const auto typed = parseRate("123.456");
        QVERIFY(typed);
        view->setRate(0, 1, *typed);
        double sum = 0;
        for (const RatesLeg &leg : view->legs())
            for (double rate : leg.rates)
                sum += roundMoney(rate);
        QCOMPARE(view->total(), roundMoney(sum));
        const int auditsBefore = audits();
        QVERIFY(view->save(db(), m_setup, m_user));
        QCOMPARE(nightsOf(booking, 1).value(Arrival.addDays(1)), 123.46);
        QCOMPARE(audits(), auditsBefore + 1);
        QCOMPARE(db().scalar("select Notes from audit order by rowid desc limit 1").toString(),
                 QString("Booking (ID %1) Rate Change: %2 - Room 1 (1) (From %3 to 123.46)")
                     .arg(booking)
                     .arg(Arrival.addDays(1).toString(Qt::ISODate))
                     .arg(old, 0, 'f', 2));
    }

    void anotherSheetPricesEveryNightAgainAndIsAudited()
    {
        const qint32 booking = book(1, client("Rae", "Rates"));
        const QMap<QDate, double> rack = nightsOf(booking, 1);
        auto view = BookingRates::load(db(), booking);
        view->setRate(0, 0, 1);
        view->setRateSheet(1);
        QCOMPARE(view->legs()[0].rates[0], 1.0);
        view->recalculate(m_rates);
        QVERIFY(view->legs()[0].rates[0] < rack.first());
        QVERIFY(view->save(db(), m_setup, m_user));
        QCOMPARE(db().scalar("select BBRateSheetID from booking where BBBookingID = ?", {booking}).toInt(), 1);
        QCOMPARE(db().scalar("select count(*) from audit where Notes = ?",
                             {QString("Ratesheet Change: From ID 0 to 1 (Booking ID %1)").arg(booking)})
                     .toInt(),
                 1);
    }

    void refreshingManualRatesWipesThem()
    {
        const qint32 booking = book({NewBookingRoom{1, 0, 2, 0, 0}}, client("Rae", "Rates"));
        db().execute("update dailyrate set RoomRate = 80 where BBBookingID = ?", {booking});
        auto view = BookingRates::load(db(), booking);
        QCOMPARE(view->total(), 240.0);
        view->recalculate(m_rates);
        QCOMPARE(view->total(), 0.0);
    }

    void copyForwardFillsTheLaterNightsOfOneRoom()
    {
        const qint32 booking = book({NewBookingRoom{1, -1, 2, 0, 0}, NewBookingRoom{2, -1, 2, 0, 0}}, client("Rae", "Rates"), Arrival, 4);
        auto view = BookingRates::load(db(), booking);
        const std::vector<double> other = view->legs()[1].rates;
        const double first = view->legs()[0].rates[0];
        view->setRate(0, 1, 77);
        view->copyForward(0, 1);
        QCOMPARE(view->legs()[0].rates, (std::vector<double>{first, 77, 77, 77}));
        QCOMPARE(view->legs()[1].rates, other);
    }

    void theExchangeRateChangesOnlyForASheetOfAnotherCurrency()
    {
        const qint32 booking = book(1, client("Rae", "Rates"));
        auto view = BookingRates::load(db(), booking);
        view->setExchangeRate(18.5);
        QVERIFY(view->save(db(), m_setup, m_user));
        QCOMPARE(db().scalar("select ExchangeRate from booking where BBBookingID = ?", {booking}).toDouble(), 0.0);
        db().execute("update ratesheet set CurrencyCode = 'EUR' where BBRateSheetID = 1");
        view = BookingRates::load(db(), booking);
        view->setRateSheet(1);
        view->setExchangeRate(18.5);
        QVERIFY(view->save(db(), m_setup, m_user));
        QCOMPARE(db().scalar("select ExchangeRate from booking where BBBookingID = ?", {booking}).toDouble(), 18.5);
    }

    void ratesThatAreNotAmountsAreRefused_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<double>("amount");
        QTest::newRow("plain") << "120" << true << 120.0;
        QTest::newRow("decimals") << " 99.5 " << true << 99.5;
        QTest::newRow("three decimals stay for rounding") << "123.456" << true << 123.456;
        QTest::newRow("empty is nothing to charge") << "" << true << 0.0;
        QTest::newRow("letters") << "12abc" << false << 0.0;
        QTest::newRow("two points") << "1.2.3" << false << 0.0;
        QTest::newRow("exponent") << "1e5" << false << 0.0;
    }

    void ratesThatAreNotAmountsAreRefused()
    {
        QFETCH(QString, typed);
        QFETCH(bool, accepted);
        const Result<double> parsed = parseRate(typed);
        QCOMPARE(parsed.ok(), accepted);
        if (accepted)
            QTEST(*parsed, "amount");
        else
            QCOMPARE(parsed.refusal().id(), 5991);
    }

    void aBookingGoneBeforeTheRatesAreSavedIsRefused()
    {
        const qint32 booking = book(1, client("Rae", "Rates"));
        auto view = BookingRates::load(db(), booking);
        db().execute("delete from booking where BBBookingID = ?", {booking});
        const int rows = db().scalar("select count(*) from dailyrate").toInt();
        QCOMPARE(view->save(db(), m_setup, m_user).refusal().id(), 5823);
        QCOMPARE(db().scalar("select count(*) from dailyrate").toInt(), rows);
    }
};

QTEST_GUILESS_MAIN(TestBookingQueries)
#include "test_bookingqueries.moc"

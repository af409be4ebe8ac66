// Taking and changing bookings on a generated property (of the size chosen in generatedproperty.h).
//   BM_NewBooking   a 3-room, 7-night booking saved end to end: head, client, legs,
//                   priced nights, account, audit
//   BM_OpenEditor   what the editor reads on opening a leg
//   BM_DateMove     a 14-night, 2-room booking moved by a week and back (one save)
#include "generatedproperty.h"
#include "bookings/bookingdetails.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "bookings/doublebookings.h"
#include "bookings/newbooking.h"
#include "rates/ratedata.h"
#include "rates/roomrates.h"
#include "shell/home.h"
#include "shell/security.h"
#include "shell/setuprecords.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

struct Property {
    std::unique_ptr<Database> db;
    RateData rates;
    BBSetup setup;
    UserStruct user = UserStruct::autoAdmin();
    QDate nextFree;

    Property()
    {
        db = Database::open(bench::generatedProperty());
        rates = RateData::load(*db);
        setup.fetch(*db);
        nextFree = bench::generatedOptions().to.addDays(30);
    }
};

Property &property()
{
    static Property p;
    return p;
}

class Yes : public SaveQuestions {
public:
    bool changeAllLegs() override { return true; }
    bool changeLinkedBookings() override { return true; }
    bool checkRates() override { return false; }
    bool repriceAtNewRoom(const QString &) override { return false; }
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
};

NewBookingRequest stay(Property &p, std::initializer_list<qint32> rooms, int nights)
{
    NewBookingRequest request;
    request.FromDate = p.nextFree;
    request.ToDate = p.nextFree.addDays(nights);
    request.surname = QStringLiteral("Bench");
    for (qint32 room : rooms) {
        const std::vector<qint32> offered = getRoomRates(p.rates, request.FromDate, request.ToDate, room);
        request.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
    }
    p.nextFree = request.ToDate;
    return request;
}

void BM_NewBooking(benchmark::State &state)
{
    Property &p = property();
    Yes yes;
    BookingWriter writer(*p.db, p.rates, p.setup, p.user);
    const NewBookingRequest request = stay(p, {1, 2, 3}, 7);
    for (auto _ : state) {
        const auto result = writer.save(request, yes);
        // The same rooms and dates again next time: the booking goes.
        state.PauseTiming();
        for (const char *table : {"dailyrate", "guest", "booking"})
            p.db->execute(QStringLiteral("delete from %1 where bbbookingid = ?").arg(QLatin1String(table)),
                          QVariantList{result->BBBookingID});
        state.ResumeTiming();
    }
}
BENCHMARK(BM_NewBooking)->Unit(benchmark::kMillisecond);

void BM_OpenEditor(benchmark::State &state)
{
    Property &p = property();
    Yes yes;
    const qint32 id = BookingWriter(*p.db, p.rates, p.setup, p.user).save(stay(p, {4, 5}, 5), yes)->BBBookingID;
    for (auto _ : state) {
        benchmark::DoNotOptimize(loadBookingEdit(*p.db, id, 4));
        benchmark::DoNotOptimize(loadBookingDetails(*p.db, id));
    }
}
BENCHMARK(BM_OpenEditor)->Unit(benchmark::kMillisecond);

void BM_DateMove(benchmark::State &state)
{
    Property &p = property();
    Yes yes;
    const qint32 id = BookingWriter(*p.db, p.rates, p.setup, p.user).save(stay(p, {6, 7}, 14), yes)->BBBookingID;
    p.nextFree = p.nextFree.addDays(7);
    BookingSave saver(*p.db, p.rates, p.setup, p.user, yes);
    int shift = 7;
    for (auto _ : state) {
        auto edit = loadBookingEdit(*p.db, id, 6);
        edit->fromDate = edit->fromDate.addDays(shift);
        edit->toDate = edit->toDate.addDays(shift);
        if (!saver.save(*edit))
            state.SkipWithError("date move refused");
        shift = -shift;
    }
}
BENCHMARK(BM_DateMove)->Unit(benchmark::kMillisecond);

// Every night of every leg of all time, as start-up scans it.
void BM_DoubleBookingScan(benchmark::State &state)
{
    Database &db = *property().db;
    for (auto _ : state) {
        DoubleBookingScan scan(db);
        benchmark::DoNotOptimize(scan.scan());
    }
}
BENCHMARK(BM_DoubleBookingScan)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Keeping bookings on the generated property (of the size chosen in generatedproperty.h).
//   BM_StatusSearch        the booking search by a status alone, every row filled
//   BM_Occupancy           occupancy of every room over all its years, by rooms and by beds
//   BM_QuickQuote          a 7-night quick quote over every room type, the calendar read first
//   BM_CancellationsList   the newest 2000 of 20,000 cancelled rooms, with their dates and clients
//   BM_Swap                two rooms exchange their guests (one write transaction)
#include "generatedproperty.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsearch.h"
#include "bookings/cancellation.h"
#include "bookings/newbooking.h"
#include "bookings/occupancy.h"
#include "bookings/quickquote.h"
#include "bookings/roommoves.h"
#include "rates/ratedata.h"
#include "rates/ratelists.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
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
    std::vector<Room> rooms;
    UserStruct user = UserStruct::autoAdmin();

    Property()
    {
        db = Database::open(bench::generatedProperty());
        rates = RateData::load(*db);
        setup.fetch(*db);
        rooms = getRooms(*db);
    }
};

Property &property()
{
    static Property p;
    return p;
}

class Yes : public StayQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
};

void BM_StatusSearch(benchmark::State &state)
{
    Property &p = property();
    BookingSearchCriteria criteria;
    criteria.status = QStringLiteral("C");
    size_t rows = 0;
    for (auto _ : state) {
        const auto found = searchBookings(*p.db, criteria);
        rows = found->size();
        benchmark::DoNotOptimize(rows);
    }
    state.counters["rows"] = static_cast<double>(rows);
}
BENCHMARK(BM_StatusSearch)->Unit(benchmark::kMillisecond);

void BM_Occupancy(benchmark::State &state)
{
    Property &p = property();
    const PropertyGenerator::Options options = bench::generatedOptions();
    OccupancyRequest request{options.from, options.to, {}, state.range(0) ? OccupancyMode::Beds : OccupancyMode::Rooms};
    for (const Room &room : p.rooms)
        request.rooms.push_back(room.BBRoomID);
    for (auto _ : state)
        benchmark::DoNotOptimize(occupancy(*p.db, p.rates, request)->sold);
}
BENCHMARK(BM_Occupancy)->Arg(0)->Arg(1)->ArgName("beds")->Unit(benchmark::kMillisecond);

void BM_QuickQuote(benchmark::State &state)
{
    Property &p = property();
    // A week a month ahead: the diary is busy there, with some rooms still free.
    const QDate from = QDate::currentDate().addMonths(1);
    const QuickQuoteRequest request{from, from.addDays(7), 2, 1, 0, 0};
    for (auto _ : state) {
        Calendar calendar;
        benchmark::DoNotOptimize(quickQuote(*p.db, calendar, p.rates, p.rooms, request)->types.size());
    }
}
BENCHMARK(BM_QuickQuote)->Unit(benchmark::kMillisecond);

void BM_CancellationsList(benchmark::State &state)
{
    Property &p = property();
    static const bool cancelled = [&p] {
        // 20,000 rooms cancelled over the years, their heads with them.
        Transaction transaction(*p.db);
        p.db->execute(QStringLiteral("insert into guestdel select guest.*, booking.BookingDate, 'admin' from guest "
                                     "join booking on booking.BBBookingID = guest.BBBookingID order by guest.BBGuestID limit 20000"));
        p.db->execute(QStringLiteral("insert into bookingdel select *, BookingDate, 'admin' from booking "
                                     "where BBBookingID in (select BBBookingID from guestdel)"));
        transaction.commit();
        return true;
    }();
    benchmark::DoNotOptimize(cancelled);
    for (auto _ : state)
        benchmark::DoNotOptimize(cancelledLegs(*p.db).size());
    state.counters["cancelled"] = p.db->scalar(QStringLiteral("select count(*) from guestdel")).toDouble();
}
BENCHMARK(BM_CancellationsList)->Unit(benchmark::kMillisecond);

void BM_Swap(benchmark::State &state)
{
    Property &p = property();
    // Two stays after the generated years, in rooms of two types.
    // Other benchmarks book after the generated years too: the first week where
    // both rooms are free.
    Yes yes;
    std::vector<qint32> legs;
    for (int week = 0; legs.size() < 2 && week < 100; ++week) {
        const QDate from = bench::generatedOptions().to.addDays(60 + 7 * week);
        legs.clear();
        for (qint32 room : {1, 2}) {
            NewBookingRequest request;
            request.FromDate = from;
            request.ToDate = from.addDays(5);
            request.surname = QStringLiteral("Bench");
            const std::vector<qint32> offered = getRoomRates(p.rates, request.FromDate, request.ToDate, room);
            request.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
            const auto made = BookingWriter(*p.db, p.rates, p.setup, p.user).save(request, yes);
            if (!made)
                break;
            legs.push_back(made->legs.front().BBGuestID);
        }
    }
    if (legs.size() < 2) {
        state.SkipWithError("no free week for two rooms");
        return;
    }
    RoomSwap swap(*p.db, p.user);
    for (auto _ : state) {
        if (!swap.swap(legs[0], legs[1]))
            state.SkipWithError("swap refused");
    }
}
BENCHMARK(BM_Swap)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// The new-booking screen prices the stay again at every change of a rate or a head
// count; a 3-room, 14-night stay on a generated property (of the size chosen in generatedproperty.h).
//   BM_RepriceAsAdultsChange   the core's quote as one room's adults go 1, 2, 3, 4
//   BM_RepriceAsRateChanges    the same as one room's rate goes through those offered
//   BM_RepriceOnScreen         the screen's own slot: a head count typed, the quote,
//                              every room's total and the booking's total shown
// Run offscreen: QT_QPA_PLATFORM=offscreen build/bench/bench/bench_repricing
#include "generatedproperty.h"
#include "bookings/newbooking.h"
#include "bookings/screens/confirmbooking.h"
#include "rates/ratedata.h"
#include "rates/roomrates.h"
#include "shell/session.h"

#include <QApplication>
#include <QSpinBox>
#include <QTableWidget>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

constexpr int Nights = 14;
const std::vector<qint32> Rooms = {1, 2, 3};

struct Property {
    std::unique_ptr<Session> session;
    RateData rates;
    QDate arrival;
    qint32 clientWithSheet = 0;

    Property()
    {
        session = std::make_unique<Session>(Database::open(bench::generatedProperty()), 0);
        session->reloadSetup();
        session->setUser(UserStruct::autoAdmin());
        rates = RateData::load(session->db());
        arrival = bench::generatedOptions().to.addDays(-60);
        // A client priced on a rate sheet of its own, when the property has one.
        clientWithSheet = session->db()
                              .scalar(QStringLiteral("select BBClientID from client where BBRateSheetID > 0 order by BBClientID limit 1"))
                              .toInt();
    }
};

Property &property()
{
    static Property p;
    return p;
}

NewBookingRequest stay(Property &p)
{
    NewBookingRequest request;
    request.FromDate = p.arrival;
    request.ToDate = p.arrival.addDays(Nights);
    request.BBClientID = p.clientWithSheet;
    for (qint32 room : Rooms) {
        const std::vector<qint32> offered = getRoomRates(p.rates, request.FromDate, request.ToDate, room);
        request.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
    }
    return request;
}

// A stay with nothing to price would measure nothing.
bool priced(benchmark::State &state, const NewBookingQuote &quote)
{
    if (quote.total > 0)
        return true;
    state.SkipWithError("the stay has no rates to price");
    return false;
}

void BM_RepriceAsAdultsChange(benchmark::State &state)
{
    Property &p = property();
    NewBookingRequest request = stay(p);
    if (!priced(state, quoteNewBooking(p.session->db(), p.rates, request)))
        return;
    int adults = 1;
    for (auto _ : state) {
        request.rooms[1].NoAdults = static_cast<qint16>(adults);
        benchmark::DoNotOptimize(quoteNewBooking(p.session->db(), p.rates, request));
        adults = adults % 4 + 1;
    }
}
BENCHMARK(BM_RepriceAsAdultsChange)->Unit(benchmark::kMillisecond);

void BM_RepriceAsRateChanges(benchmark::State &state)
{
    Property &p = property();
    NewBookingRequest request = stay(p);
    if (!priced(state, quoteNewBooking(p.session->db(), p.rates, request)))
        return;
    std::vector<qint32> offered = getRoomRates(p.rates, request.FromDate, request.ToDate, Rooms[0]);
    offered.push_back(0);   // "No rate selected"
    std::size_t next = 0;
    for (auto _ : state) {
        request.rooms[0].BBRateID = offered[next];
        benchmark::DoNotOptimize(quoteNewBooking(p.session->db(), p.rates, request));
        next = (next + 1) % offered.size();
    }
}
BENCHMARK(BM_RepriceAsRateChanges)->Unit(benchmark::kMillisecond);

void BM_RepriceOnScreen(benchmark::State &state)
{
    Property &p = property();
    if (!priced(state, quoteNewBooking(p.session->db(), p.rates, stay(p))))
        return;
    ConfirmBooking screen(*p.session, p.rates, Rooms, p.arrival, Nights);
    auto *adults = qobject_cast<QSpinBox *>(screen.gdRooms->cellWidget(1, ConfirmBooking::ColAdults));
    int value = 1;
    for (auto _ : state) {
        adults->setValue(value);   // the slot prices and shows the totals before returning
        value = value % 4 + 1;
    }
}
BENCHMARK(BM_RepriceOnScreen)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

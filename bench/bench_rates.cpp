#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/raterecords.h"
#include "rates/roomrates.h"
#include "rates/sampleratedata.h"
#include "shell/database.h"
#include "shell/home.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

// A generated property at its largest: 40 rooms in 8 room types, with the
// sample rate data over all its years.
class GeneratedProperty {
public:
    GeneratedProperty()
    {
        Home::setPath(m_dir.path());
        m_db = Database::open(m_dir.filePath(QStringLiteral("bench.db")));
        Transaction transaction(*m_db);
        for (int t = 1; t <= 8; ++t) {
            RoomType type;
            type.BBRTID = t;
            type.RTName = QStringLiteral("Type %1").arg(t);
            type.OrderBy = static_cast<qint16>(t);
            type.update(*m_db);
            for (int r = 0; r < 5; ++r) {
                Room room;
                room.BBRoomID = t * 100 + r;
                room.BBRTID = t;
                room.RoomName = QStringLiteral("%1%2").arg(t).arg(r);
                room.update(*m_db);
            }
        }
        transaction.commit();
        SampleRateData::write(*m_db, 2026);
    }

    Database &db() { return *m_db; }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
};

GeneratedProperty &property()
{
    static GeneratedProperty generated;
    return generated;
}

// A 14-night stay of one leg on the rack sheet with a long-stay discount,
// crossing a weekend twice: two adults and a child.
void BM_Price14NightStay(benchmark::State &state)
{
    const RateData data = RateData::load(property().db());
    const qint32 rate = getRoomRates(data, QDate(2026, 3, 2), QDate(2026, 3, 16), 100).front();
    NoGuests guests;
    guests.BBRoomID = 100;
    guests.NoAdults = 2;
    guests.Child1 = 1;
    for (auto _ : state) {
        RatesCalculator calculator;
        calculator.initialise(data, rate, QDate(2026, 3, 2), QDate(2026, 3, 16), guests, 0);
        double total = 0;
        for (int n = 1; n <= calculator.nights(); ++n)
            total += calculator.DailyRate(n);
        benchmark::DoNotOptimize(total);
    }
    state.counters["stays/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_Price14NightStay);

// The same through priceStay, which also rounds each night and builds the
// date-keyed result.
void BM_PriceStay14Nights(benchmark::State &state)
{
    const RateData data = RateData::load(property().db());
    StayRequest request;
    request.BBRoomID = 100;
    request.BBRateID = getRoomRates(data, QDate(2026, 3, 2), QDate(2026, 3, 16), 100).front();
    request.FromDate = QDate(2026, 3, 2);
    request.ToDate = QDate(2026, 3, 16);
    request.adults = 2;
    request.child1 = 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(priceStay(data, request).total);
    state.counters["stays/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PriceStay14Nights);

void BM_LoadRateData(benchmark::State &state)
{
    Database &db = property().db();
    for (auto _ : state) {
        const RateData data = RateData::load(db);
        benchmark::DoNotOptimize(data.rateCodes().size());
    }
    state.counters["rates rows"] = db.scalar(QStringLiteral("select count(*) from rates")).toDouble();
}
BENCHMARK(BM_LoadRateData)->Unit(benchmark::kMillisecond);

void BM_WriteSampleRateData(benchmark::State &state)
{
    Database &db = property().db();
    for (auto _ : state)
        SampleRateData::write(db, 2026);
}
BENCHMARK(BM_WriteSampleRateData)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

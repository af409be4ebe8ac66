// The calendar's cost on a property of the chosen size (generatedproperty.h): its
// rooms and years of stays back to back, one guest per booking.
//   BM_FirstDraw   fillCache + grid build of a 60-day window from an empty cache
//   BM_MoveWeek    the window moved on by one week (only the seven new days read)
//   BM_BareScan    the same rows as the first draw, read by a plain query
#include "generatedproperty.h"
#include "shell/calendargrid.h"
#include "shell/home.h"
#include "shell/session.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

const int Rooms = bench::propertySize().rooms;
// 5,000 clients on the small property, growing with its rooms and years.
const int Clients = 5000 * Rooms / 40 * bench::propertySize().years / 10;
constexpr int WindowDays = 60;
const QDate PropertyStart(2016, 1, 1);
const QDate PropertyEnd = PropertyStart.addYears(bench::propertySize().years);
const QDate WindowStart(2021, 6, 7);

struct Property {
    QTemporaryDir dir;
    std::unique_ptr<Session> session;
    int bookings = 0;

    Property()
    {
        Home::setPath(dir.path());
        auto db = Database::open(dir.filePath("bench.db"));
        QRandomGenerator random(42);
        {
            Transaction t(*db);
            for (int r = 1; r <= Rooms; ++r)
                db->execute("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values(?, 1, ?, ?)",
                            {r, QString("Room %1").arg(r), r});
            for (int c = 1; c <= Clients; ++c)
                db->execute("insert into client (BBClientID, FirstName, Surname) values(?, ?, ?)",
                            {c, QString("First%1").arg(c), QString("Surname%1").arg(c)});
            const char *statuses[] = {"C", "C", "C", "S", "W", "P", "O"};
            qint32 id = 0;
            for (int r = 1; r <= Rooms; ++r) {
                QDate d = PropertyStart;
                while (d < PropertyEnd) {
                    d = d.addDays(random.bounded(3));
                    const int nights = 1 + random.bounded(6);
                    ++id;
                    db->execute("insert into booking (BBBookingID, BookingType, FromDate, ToDate, Status, MadeBy) "
                                "values(?, 'N', ?, ?, ?, ?)",
                                {id, sqlDate(d), sqlDate(d.addDays(nights)), QString(statuses[random.bounded(7)]),
                                 1 + random.bounded(Clients)});
                    db->execute("insert into guest (BBBookingID, BBRoomID, BBClientID, NoAdults, Child1) values(?, ?, ?, 2, ?)",
                                {id, r, 1 + random.bounded(Clients), random.bounded(2)});
                    d = d.addDays(nights);
                }
            }
            bookings = id;
            t.commit();
        }
        db->execute("analyze");
        session = std::make_unique<Session>(std::move(db), 0);
        session->reloadSetup();
    }
};

Property &property()
{
    static Property p;
    return p;
}

void BM_FirstDraw(benchmark::State &state)
{
    Session &session = *property().session;
    CalendarGrid grid;
    for (auto _ : state) {
        session.calendar().initCalendar();
        grid.build(session, WindowStart, WindowDays);
        benchmark::DoNotOptimize(grid.cell(0, 0).text.size());
    }
    state.counters["entries"] = double(session.calendar().entryCount());
    state.counters["bookings"] = property().bookings;
}
BENCHMARK(BM_FirstDraw)->Unit(benchmark::kMillisecond);

void BM_MoveWeek(benchmark::State &state)
{
    Session &session = *property().session;
    CalendarGrid grid;
    QDate from = WindowStart;
    session.calendar().initCalendar();
    grid.build(session, from, WindowDays);
    int moves = 0, queries = 0;
    for (auto _ : state) {
        from = from.addDays(7);
        if (from.addDays(WindowDays) > PropertyEnd) {
            state.PauseTiming();
            from = WindowStart.addDays(7);
            session.calendar().initCalendar();
            grid.build(session, WindowStart, WindowDays);
            state.ResumeTiming();
        }
        const int before = session.calendar().queriesRun();
        grid.build(session, from, WindowDays);
        queries += session.calendar().queriesRun() - before;
        ++moves;
        benchmark::DoNotOptimize(grid.cell(0, 0).text.size());
    }
    state.counters["queriesPerMove"] = moves ? double(queries) / moves : 0.0;
}
BENCHMARK(BM_MoveWeek)->Unit(benchmark::kMillisecond);

void BM_BareScan(benchmark::State &state)
{
    Database &db = property().session->db();
    const QDate last = WindowStart.addDays(WindowDays - 1);
    qint64 rows = 0;
    for (auto _ : state) {
        QSqlQuery q(db.connection());
        q.setForwardOnly(true);
        q.prepare("select booking.BBBookingID, client.BBClientID, booking.Status, guest.CheckInOut, booking.FromDate, "
                  "booking.ToDate, guest.BBRoomID, client.FirstName, client.Surname, client.Company, guest.NoAdults, "
                  "guest.Child1 + guest.Child2, guest.BBClientID "
                  "from booking join guest on booking.BBBookingID = guest.BBBookingID "
                  "left join client on guest.BBClientID = client.BBClientID "
                  "where booking.ToDate > ? and booking.FromDate <= ?");
        q.addBindValue(sqlDate(WindowStart));
        q.addBindValue(sqlDate(last));
        q.exec();
        rows = 0;
        while (q.next()) {
            for (int c = 0; c < 13; ++c)
                benchmark::DoNotOptimize(q.value(c));
            ++rows;
        }
    }
    state.counters["rows"] = double(rows);
}
BENCHMARK(BM_BareScan)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

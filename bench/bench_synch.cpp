#include "generatedproperty.h"
#include "server/httpfront.h"
#include "server/referenceserver.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/home.h"
#include "synch/json.h"
#include "synch/serverupdates.h"
#include "synch/synch.h"

#include <QCoreApplication>
#include <QFile>
#include <QHostAddress>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstring>

using namespace fenlark;

namespace {

// A reply of n server rows in the shape the desk receives: clients, accounts,
// bookings and legs with their nightly rates, references by server id.
QString serverReply(int n)
{
    QString text = QStringLiteral("{\"success\":true,\"data\":{\"requests\":[],\"acknowledgements\":[],\"logupdates\":[");
    const int groups = n / 4;
    for (int i = 0; i < groups; ++i) {
        const int c = 100000 + i * 4, a = c + 1, b = c + 2, g = c + 3;
        const QString from = QDate(2026, 1, 1).addDays(i % 3000).toString(Qt::ISODate);
        const QString to = QDate(2026, 1, 1).addDays(i % 3000 + 3).toString(Qt::ISODate);
        const QString night2 = QDate(2026, 1, 1).addDays(i % 3000 + 1).toString(Qt::ISODate);
        const QString night3 = QDate(2026, 1, 1).addDays(i % 3000 + 2).toString(Qt::ISODate);
        if (i)
            text += QLatin1Char(',');
        text += QStringLiteral(
                    "{\"tablename\":\"client\",\"logtype\":\"U\",\"dblogid\":%1,\"tableid\":%1,\"values\":{\"ClientID\":%1,"
                    "\"Surname\":\"Guest %1\",\"FirstName\":\"Ann\",\"Email\":\"ann%1@example.org\",\"Active\":\"Y\",\"Notes\":\"Prefers a quiet room \\u00e9\"}},"
                    "{\"tablename\":\"account\",\"logtype\":\"U\",\"dblogid\":%2,\"tableid\":%2,\"values\":{\"AccountID\":%2,"
                    "\"InvoiceTo\":{\"table\":\"client\",\"tableid\":%1},\"Status\":\"O\"}},"
                    "{\"tablename\":\"booking\",\"logtype\":\"U\",\"dblogid\":%3,\"tableid\":%3,\"values\":{\"BookingID\":%3,"
                    "\"BookingType\":\"N\",\"FromDate\":\"%5\",\"ToDate\":\"%6\",\"Status\":\"C\",\"MadeBy\":{\"table\":\"client\",\"tableid\":%1},"
                    "\"BBAccountID\":{\"table\":\"account\",\"tableid\":%2},\"Deposit\":120.5}},"
                    "{\"tablename\":\"guest\",\"logtype\":\"U\",\"dblogid\":%4,\"tableid\":%4,\"values\":{\"GuestID\":%4,"
                    "\"BBBookingID\":{\"table\":\"booking\",\"tableid\":%3},\"BBRoomID\":%7,\"BBClientID\":{\"table\":\"client\",\"tableid\":%1},"
                    "\"NoAdults\":2,\"BBAccountID\":{\"table\":\"account\",\"tableid\":%2},\"dailyrates\":["
                    "{\"caldate\":\"%5\",\"roomrate\":95.5},{\"caldate\":\"%8\",\"roomrate\":95.5},{\"caldate\":\"%9\",\"roomrate\":95.5}]}}")
                    .arg(c).arg(a).arg(b).arg(g).arg(from, to).arg(i % 40 + 1).arg(night2, night3);
    }
    text += QStringLiteral("]}}");
    return text;
}

void BM_JsonParse(benchmark::State &state)
{
    const QString text = serverReply(2000);
    for (auto _ : state)
        benchmark::DoNotOptimize(json::parse(text));
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
    state.counters["bytes"] = static_cast<double>(text.size() * 2);
}
BENCHMARK(BM_JsonParse)->Unit(benchmark::kMillisecond);

void BM_JsonWrite(benchmark::State &state)
{
    const JsonValue tree = json::parse(serverReply(2000));
    qsizetype size = 0;
    for (auto _ : state) {
        const QString out = json::toString(tree);
        size = out.size();
        benchmark::DoNotOptimize(out.constData());
    }
    state.SetBytesProcessed(state.iterations() * size * 2);
}
BENCHMARK(BM_JsonWrite)->Unit(benchmark::kMillisecond);

// The floor to compare with: a plain copy of the same bytes.
void BM_PlainCopy(benchmark::State &state)
{
    const QString text = serverReply(2000);
    const std::size_t bytes = static_cast<std::size_t>(text.size()) * 2;
    std::vector<char> target(bytes);
    for (auto _ : state) {
        std::memcpy(target.data(), text.constData(), bytes);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}
BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond);

// 5,000 server rows applied in one transaction to a fresh database.
void BM_ApplyServerUpdates(benchmark::State &state)
{
    const JsonValue reply = json::parse(serverReply(5000));
    const JsonArray updates = *reply[QStringLiteral("data")][QStringLiteral("logupdates")].array();
    for (auto _ : state) {
        state.PauseTiming();
        QTemporaryDir dir;
        Home::setPath(dir.path());
        auto db = Database::open(dir.filePath(QStringLiteral("apply.db")));
        state.ResumeTiming();
        Transaction transaction(*db);
        ServerUpdateApplier applier(*db);
        applier.applyServerUpdates(updates);
        transaction.commit();
        if (applier.acknowledgements().size() != updates.size())
            state.SkipWithError("not every update was applied");
        state.PauseTiming();
        db.reset();
        state.ResumeTiming();
    }
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(updates.size()) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ApplyServerUpdates)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// Everything marked for sending again, sent over loopback HTTP to an empty reference server.
void BM_FullSynchToEmptyServer(benchmark::State &state)
{
    const QString original = bench::generatedProperty();
    int rows = 0;
    int run = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const QString copy = bench::workDir().filePath(QStringLiteral("desk%1.db").arg(run));
        const QString serverFile = bench::workDir().filePath(QStringLiteral("server%1.db").arg(run++));
        QFile::copy(original, copy);
        auto db = Database::open(copy);
        const qint32 bbid = db->scalar(QStringLiteral("select BBID from bbsetup")).toInt();
        ChangeLog::markAllChanged(*db);
        rows = ChangeLog::count(*db);
        server::ReferenceServer store(serverFile, QStringLiteral("bench-server"));
        store.createProperty(bbid, QStringLiteral("pw"), QStringLiteral("Bench"));
        server::HttpFront front(serverFile);
        const quint16 port = front.listen(QHostAddress::LocalHost, 0);
        HttpTransport transport;
        Synch synch(*db, transport);
        synch.setLogin({QStringLiteral("127.0.0.1:%1").arg(port), bbid, QStringLiteral("pw"), 0, QString()});
        synch.setSkipSetup(true);
        state.ResumeTiming();
        if (!synch.synchronise() || synch.summary().acknowledged != rows) {
            const QByteArray why = synch.summary().errors.join(QLatin1Char(' ')).toUtf8();
            state.SkipWithError(("the synchronisation did not finish: " + why).constData());
            break;
        }
        state.PauseTiming();
        db.reset();
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FullSynchToEmptyServer)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Foundation figures on the generated property:
// generating it, backing it up, starting up on it, and record writes with their log rows.
#include "accounts/accountrecords.h"
#include "generatedproperty.h"
#include "shell/backup.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/home.h"
#include "desk/propertygenerator.h"
#include "shell/startup.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

void BM_GenerateProperty(benchmark::State &state)
{
    Home::setPath(bench::workDir().path());
    static int n = 0; // each repetition generates into a file of its own
    for (auto _ : state) {
        const QString path = bench::workDir().filePath(QStringLiteral("gen%1.db").arg(n++));
        auto db = Database::open(path);
        const auto counts = PropertyGenerator(bench::generatedOptions()).generate(*db);
        state.counters["bookings"] = counts.bookings;
        state.counters["nights"] = counts.nights;
        state.counters["rooms"] = counts.rooms;
        state.PauseTiming();
        db.reset();
        for (const char *suffix : {"", "-wal", "-shm"})
            QFile::remove(path + QLatin1String(suffix));
        state.ResumeTiming();
    }
}
BENCHMARK(BM_GenerateProperty)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_Backup(benchmark::State &state)
{
    auto db = Database::open(bench::generatedProperty());
    for (auto _ : state) {
        state.PauseTiming();
        bench::clearBackups();
        state.ResumeTiming();
        Backup::backupDatabase(*db, 0);
    }
    bench::clearBackups();
}
BENCHMARK(BM_Backup)->Unit(benchmark::kMillisecond)->Iterations(3);

// Start-up without a screen: lock, language, open, backup, property, user.
class QuietHost : public StartupHost {
public:
    void askLanguage() override {}
    void showSplash() override {}
    void closeSplash() override {}
    bool logInProperty(Session &) override { return true; }
    bool checkSetup(Session &) override { return true; }
    bool enterPassword(Session &) override { return true; }
    void initialise(Session &) override {}
    bool checkDoubleBookings(Session &) override { return true; }
    void showMainWindow(Session &) override {}
};

void BM_StartupHeadless(benchmark::State &state)
{
    const QString path = bench::generatedProperty();
    writeConfig("Database", path);
    writeConfig("Language", "1033");
    for (auto _ : state) {
        state.PauseTiming();
        bench::clearBackups();
        state.ResumeTiming();
        QuietHost host;
        Startup startup(host);
        if (startup.run() != Startup::Running)
            state.SkipWithError("start-up failed");
        benchmark::DoNotOptimize(startup.takeSession());
    }
    bench::clearBackups();
}
BENCHMARK(BM_StartupHeadless)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_RecordUpdateWithLog(benchmark::State &state)
{
    Home::setPath(bench::workDir().path());
    auto db = Database::open(bench::workDir().filePath("writes.db"));
    const int batch = static_cast<int>(state.range(0));
    for (auto _ : state) {
        Transaction transaction(*db);
        for (int i = 0; i < batch; ++i) {
            Extra extra;
            extra.BBGuestID = i;
            extra.ExtraDate = QDate(2026, 1, 1);
            extra.Qty = 1;
            extra.Price = 10;
            extra.update(*db);
        }
        transaction.commit();
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_RecordUpdateWithLog)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Reports on the generated property (of the size chosen in generatedproperty.h).
//   BM_BookingSummaryYearToXlsx  a year's Booking Summary read, laid out and saved as .xlsx
//   BM_BookingSummaryYearLayout  the same without the file: reading and laying out alone
//   BM_PaymentsYearToXlsx        a year's payments with the related bookings of each account
#include "generatedproperty.h"
#include "reports/reportcatalogue.h"
#include "reports/reportxlsx.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

Database &property()
{
    static std::unique_ptr<Database> db = Database::open(bench::generatedProperty());
    return *db;
}

// The last whole calendar year, which the generated property fills.
ReportCriteria lastYear(int number)
{
    const QDate today = QDate::currentDate();
    ReportCriteria criteria = defaultCriteria(number, today);
    criteria.from = QDate(today.year() - 1, 1, 1);
    criteria.to = QDate(today.year() - 1, 12, 31);
    return criteria;
}

void reportToXlsx(benchmark::State &state, int number)
{
    Database &db = property();
    const ReportCriteria criteria = lastYear(number);
    const QString path = bench::workDir().filePath(QStringLiteral("report.xlsx"));
    int rows = 0;
    for (auto _ : state) {
        const auto sheet = runReport(db, number, criteria);
        if (!sheet || !writeReportXlsx(*sheet, path)) {
            state.SkipWithError("report refused");
            break;
        }
        rows = sheet->dataRows();
    }
    state.counters["rows"] = rows;
}

void BM_BookingSummaryYearToXlsx(benchmark::State &state)
{
    reportToXlsx(state, report::BookingSummary);
}
BENCHMARK(BM_BookingSummaryYearToXlsx)->Unit(benchmark::kMillisecond);

void BM_BookingSummaryYearLayout(benchmark::State &state)
{
    Database &db = property();
    const ReportCriteria criteria = lastYear(report::BookingSummary);
    for (auto _ : state)
        benchmark::DoNotOptimize(runReport(db, report::BookingSummary, criteria).ok());
}
BENCHMARK(BM_BookingSummaryYearLayout)->Unit(benchmark::kMillisecond);

void BM_PaymentsYearToXlsx(benchmark::State &state)
{
    reportToXlsx(state, report::Payments);
}
BENCHMARK(BM_PaymentsYearToXlsx)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

#include "accounts/accountrecords.h"
#include "clients/clientsearchmodel.h"
#include "shell/database.h"
#include "shell/home.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

constexpr int ClientCount = 200000;
constexpr int FirstScreenRows = 25;

const char *const Syllables[] = {"ma", "mar", "son", "ber", "ri", "van", "der", "ka", "lo", "ne", "ste", "wa", "ton", "bra",
                                 "del", "fi", "gor", "ha", "jo", "kel", "lin", "mo", "na", "pe", "qui", "ros", "sa", "te",
                                 "ul", "vi", "yo", "zan", "chi", "ev", "ind", "ox"};

QString makeName(QRandomGenerator &random, int parts)
{
    QString name;
    for (int i = 0; i < parts; ++i)
        name += QString::fromLatin1(Syllables[random.bounded(int(std::size(Syllables)))]);
    name[0] = name[0].toUpper();
    return name;
}

// One property's database: 200,000 clients (one in twenty retired, one in five a
// company), and one client with 50 bookings of two rooms and three nights on one
// account, with extras and payments, among 5,000 other bookings.
struct Fixture {
    Fixture()
    {
        Home::setPath(dir.path());
        db = Database::open(dir.filePath(QStringLiteral("bench.db")));
        QRandomGenerator random(20261123);
        Transaction transaction(*db);
        const QString insert = QStringLiteral(
            "insert into client (ClientType, FirstName, Surname, Company, PhoneNo, Email, Active) values (?,?,?,?,?,?,?)");
        for (int i = 0; i < ClientCount; ++i) {
            const bool company = random.bounded(5) == 0;
            db->execute(insert, {company ? QStringLiteral("C") : QStringLiteral("I"), makeName(random, 2),
                                 makeName(random, 2 + random.bounded(2)),
                                 company || random.bounded(4) == 0 ? makeName(random, 2) + QStringLiteral(" Ltd") : QStringLiteral(""),
                                 QStringLiteral("021 555 %1").arg(i), QStringLiteral("c%1@example.org").arg(i),
                                 random.bounded(20) == 0 ? QStringLiteral("N") : QStringLiteral("Y")});
        }

        const auto addBooking = [&](qint32 client, qint32 account, const QDate &from) {
            db->execute(QStringLiteral("insert into booking (BookingType, FromDate, ToDate, Status, MadeBy, BBAccountID) "
                                       "values ('P', ?, ?, 'C', ?, ?)"),
                        {sqlDate(from), sqlDate(from.addDays(3)), client, account});
            const qint64 booking = db->lastInsertId();
            for (int room = 1; room <= 2; ++room) {
                db->execute(QStringLiteral("insert into guest (BBBookingID, BBRoomID, BBClientID, NoAdults) values (?, ?, ?, 2)"),
                            {booking, room, client});
                const qint64 guest = db->lastInsertId();
                for (int night = 0; night < 3; ++night)
                    db->execute(QStringLiteral("insert into dailyrate values (?, ?, ?, ?)"),
                                {sqlDate(from.addDays(night)), booking, room, 95.5 + night});
                db->execute(QStringLiteral("insert into extra (BBGuestID, ExtraDate, Qty, Price, BBAccountID) values (?, ?, 2, 12.5, ?)"),
                            {guest, sqlDate(from), account});
            }
            db->execute(QStringLiteral("insert into payment (BBAccountID, PaymentDate, Amount) values (?, ?, 150)"),
                        {account, sqlDate(from)});
        };
        for (int i = 0; i < 5000; ++i)
            addBooking(2 + i, 100 + i, QDate(2026, 1, 1).addDays(i % 700));
        db->execute(QStringLiteral("insert into account (InvoiceTo, Status) values (1, 'O')"));
        account = static_cast<qint32>(db->lastInsertId());
        for (int i = 0; i < 50; ++i)
            addBooking(1, account, QDate(2026, 1, 1).addDays(i * 7));
        transaction.commit();
        db->execute(QStringLiteral("analyze"));
    }

    QTemporaryDir dir;
    std::unique_ptr<Database> db;
    qint32 account = 0;
};

Fixture &fixture()
{
    static Fixture f;
    return f;
}

// One keystroke: the query and the model filled, then the rows of the first screen read.
void BM_ClientSearchSurnamePrefix(benchmark::State &state)
{
    Fixture &f = fixture();
    // "m" takes three of the 36 syllables a surname starts with, "ma" two, "mar" one.
    const QString prefix = QStringLiteral("mar").left(static_cast<int>(state.range(0)));
    ClientSearchModel model;
    for (auto _ : state) {
        model.search(*f.db, {QString(), prefix, QString(), QString()});
        const int shown = std::min(model.rowCount(), FirstScreenRows);
        for (int row = 0; row < shown; ++row) {
            for (int column = 0; column < ClientSearchModel::ColumnCount; ++column)
                benchmark::DoNotOptimize(model.data(model.index(row, column)));
        }
    }
    state.counters["rows"] = model.rowCount();
    state.SetLabel(prefix.toStdString());
}
BENCHMARK(BM_ClientSearchSurnamePrefix)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMillisecond);

void BM_AccountBalanceOf50Bookings(benchmark::State &state)
{
    Fixture &f = fixture();
    double balance = 0;
    for (auto _ : state) {
        balance = Account::getBalanceOnAccount(*f.db, f.account);
        benchmark::DoNotOptimize(balance);
    }
    state.counters["balance"] = balance;
}
BENCHMARK(BM_AccountBalanceOf50Bookings)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

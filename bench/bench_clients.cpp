// The client search and the account balance on a table of 200,000 clients;
// and on the generated property (of the size chosen in generatedproperty.h) grown to 200,000 clients:
//   BM_RetireClientWith500Bookings   a client whose 500 bookings, their rooms,
//                                    accounts and 1,000 ledger rows all move
//   BM_HistoryOfClientWith500Bookings   the history list of such a client
//   BM_CompanyLookupTwoLetters       the company lookup for a 2-letter prefix
#include "generatedproperty.h"
#include "accounts/accountrecords.h"
#include "clients/clienthistory.h"
#include "clients/clientretirement.h"
#include "clients/clientsearchmodel.h"
#include "clients/companylookup.h"
#include "shell/security.h"
#include "shell/database.h"
#include "shell/home.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QStringList>
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

// The generated property with clients added (one in five a company, one in
// four individuals with a company too) until it holds 200,000; and one
// frequent client who made 500 of its bookings, is billed on their accounts,
// stays in their rooms, and has an invoice and a payment in the ledger for each.
struct GrownProperty {
    GrownProperty()
    {
        db = Database::open(bench::generatedProperty());
        QRandomGenerator random(20261124);
        Transaction transaction(*db);
        const int have = db->scalar(QStringLiteral("select count(*) from client")).toInt();
        const QString insert = QStringLiteral("insert into client (ClientType, FirstName, Surname, Company, PhoneNo, Add1, Active) "
                                              "values (?,?,?,?,?,?,?)");
        for (int i = have; i < ClientCount; ++i) {
            const bool company = random.bounded(5) == 0;
            db->execute(insert, {company ? QStringLiteral("C") : QStringLiteral("I"), makeName(random, 2),
                                 makeName(random, 2 + random.bounded(2)),
                                 company || random.bounded(4) == 0 ? makeName(random, 2) + QStringLiteral(" Ltd") : QString(""),
                                 QStringLiteral("021 555 %1").arg(random.bounded(10000)),
                                 QStringLiteral("%1 Main Rd").arg(random.bounded(200)),
                                 random.bounded(20) == 0 ? QStringLiteral("N") : QStringLiteral("Y")});
        }
        db->execute(QStringLiteral("insert into client (ClientType, Surname, Active) values ('I', 'Frequent', 'Y')"));
        frequent = static_cast<qint32>(db->lastInsertId());
        QSqlQuery q = db->query(QStringLiteral("select bbbookingid, bbaccountid, fromdate from booking where bbaccountid > 0 "
                                               "order by bbbookingid limit 500"));
        while (q.next()) {
            bookings << q.value(0).toString();
            accounts << q.value(1).toString();
            const QVariant date = q.value(2);
            for (const auto &[type, amount] : {std::pair{"INV", 400.0}, std::pair{"PMT", -400.0}}) {
                db->execute(QStringLiteral("insert into clienttran (BBClientID, TranDate, TranType, Amount) values (?, ?, ?, ?)"),
                            {frequent, date, QString::fromLatin1(type), amount});
                ledger << QString::number(db->lastInsertId());
            }
        }
        pointAt(frequent);
        db->execute(QStringLiteral("delete from dblog"));
        transaction.commit();
        db->execute(QStringLiteral("analyze"));
    }

    // Makes the client the maker, first guest, billed client and ledger owner of the 500 bookings.
    void pointAt(qint32 client)
    {
        // The keys are numbers read from the database, never typed input.
        const QString inBookings = QStringLiteral(" in (%1)").arg(bookings.join(QLatin1Char(',')));
        db->execute(QStringLiteral("update booking set madeby = ? where bbbookingid") + inBookings, {client});
        db->execute(QStringLiteral("update guest set bbclientid = ? where bbbookingid") + inBookings, {client});
        db->execute(QStringLiteral("update account set invoiceto = ? where bbaccountid in (%1)").arg(accounts.join(QLatin1Char(','))),
                    {client});
        db->execute(QStringLiteral("update clienttran set bbclientid = ? where bbclienttranid in (%1)").arg(ledger.join(QLatin1Char(','))),
                    {client});
    }

    std::unique_ptr<Database> db;
    qint32 frequent = 0;
    QStringList bookings, accounts, ledger;
};

GrownProperty &grown()
{
    static GrownProperty g;
    return g;
}

class Ready : public RetireQuestions {
public:
    bool readyToRetire() override { return true; }
};

// Each round makes a fresh pair of clients, gives the 500 bookings to the first
// (not timed) and retires it into the second: every row moves through its
// record, logged, in one transaction with the audit line.
void BM_RetireClientWith500Bookings(benchmark::State &state)
{
    GrownProperty &g = grown();
    Ready ready;
    const UserStruct user = UserStruct::autoAdmin();
    RetireCounts counts;
    for (auto _ : state) {
        state.PauseTiming();
        g.db->execute(QStringLiteral("insert into client (ClientType, Surname, Active) values ('I', 'Twice', 'Y')"));
        const qint32 retired = static_cast<qint32>(g.db->lastInsertId());
        g.db->execute(QStringLiteral("insert into client (ClientType, Surname, Active) values ('I', 'Once', 'Y')"));
        const qint32 replacement = static_cast<qint32>(g.db->lastInsertId());
        g.pointAt(retired);
        g.db->execute(QStringLiteral("delete from dblog"));
        state.ResumeTiming();
        counts = retireClient(*g.db, user, retired, replacement, ready)->counts;
    }
    state.counters["bookings"] = counts.bookings;
    state.counters["guests"] = counts.guests;
    state.counters["accounts"] = counts.accounts;
    state.counters["ledger"] = counts.ledger;
}
BENCHMARK(BM_RetireClientWith500Bookings)->Unit(benchmark::kMillisecond);

void BM_HistoryOfClientWith500Bookings(benchmark::State &state)
{
    GrownProperty &g = grown();
    g.pointAt(g.frequent);
    std::size_t rows = 0;
    for (auto _ : state) {
        const std::vector<ClientHistoryRow> history = clientHistory(*g.db, g.frequent);
        rows = history.size();
        benchmark::DoNotOptimize(history.data());
    }
    state.counters["rows"] = double(rows);
}
BENCHMARK(BM_HistoryOfClientWith500Bookings)->Unit(benchmark::kMillisecond);

// "Ma" starts two of the 36 syllables a company name starts with.
void BM_CompanyLookupTwoLetters(benchmark::State &state)
{
    GrownProperty &g = grown();
    std::size_t rows = 0;
    for (auto _ : state) {
        const std::vector<CompanyRow> found = lookupCompanies(*g.db, QStringLiteral("Ma"));
        rows = found.size();
        benchmark::DoNotOptimize(found.data());
    }
    state.counters["rows"] = double(rows);
    state.counters["clients"] = g.db->scalar(QStringLiteral("select count(*) from client")).toDouble();
}
BENCHMARK(BM_CompanyLookupTwoLetters)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

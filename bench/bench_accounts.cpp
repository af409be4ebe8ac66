// Money on the generated property (of the size chosen in generatedproperty.h), given the ledger rows
// of its payments and invoices for its settled accounts of the last two years.
//   BM_MatchTransactions            matching a client with 10,000 ledger rows, flags already right
//   BM_MatchTransactionsFromScratch the same with every flag wrong first
//   BM_MakeInvoice                  invoicing a 3-room 14-night booking with 20 extras, end to end
//   BM_AccountScreen                the account screen's items and totals of a busy account
//   BM_MoneySimulation              the randomized invariant run over more seeds and longer
//                                   sequences than CI runs (FENLARK_MONEY_SEEDS, FENLARK_MONEY_STEPS)
#include "generatedproperty.h"
#include "accounts/accounts.h"
#include "accounts/accountview.h"
#include "accounts/extras.h"
#include "accounts/invoices.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "accounts/vat.h"
#include "bookings/newbooking.h"
#include "bookings/stayquestions.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/roomrates.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "support/moneysimulation.h"

#include <QCoreApplication>
#include <QSqlQuery>

#include <benchmark/benchmark.h>

using namespace fenlark;

namespace {

class FirstNumber : public FirstNumberPrompter {
public:
    std::optional<QString> askFirstNumber(const QString &, const QString &) override { return QStringLiteral("1000"); }
    void refuseFirstNumber(const Refusal &) override {}
};

class BookAnyway : public StayQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
};

struct Property {
    std::unique_ptr<Database> db;
    RateData rates;
    BBSetup setup;
    VatRules vat;
    UserStruct user = UserStruct::autoAdmin();
    FirstNumber prompter;
    QDate nextFree;

    Property()
    {
        db = Database::open(bench::generatedProperty());
        rates = RateData::load(*db);
        setup.fetch(*db);
        vat = VatRules::load(*db);
        nextFree = bench::generatedOptions().to.addDays(30);
        giveLedger();
    }

    // The generated payments get their ledger rows, and the settled accounts of
    // the last two years are invoiced (re-opened first: the generator closes
    // them without an invoice).
    void giveLedger()
    {
        Transaction transaction(*db);
        std::vector<std::pair<Payment, qint32>> payments;
        QSqlQuery q = db->query(QStringLiteral("select payment.*, account.invoiceto from payment, account "
                                               "where payment.bbaccountid = account.bbaccountid order by bbpaymentid"));
        while (q.next()) {
            Payment payment;
            payment.fillFields(q.record());
            payments.emplace_back(payment, q.value(QStringLiteral("invoiceto")).toInt());
        }
        for (const auto &[payment, client] : payments)
            addClientTran(*db, payment, client);
        std::vector<qint32> settled;
        QSqlQuery accounts = db->query(QStringLiteral("select distinct account.bbaccountid from account, booking "
                                                      "where booking.bbaccountid = account.bbaccountid and account.status = 'C' "
                                                      "and account.invoiceno = 0 and booking.todate >= ? order by account.bbaccountid"),
                                       {sqlDate(QDate::currentDate().addYears(-2))});
        while (accounts.next())
            settled.push_back(accounts.value(0).toInt());
        for (qint32 account : settled) {
            db->execute(QStringLiteral("update account set status = 'O' where bbaccountid = ?"), {account});
            (void)makeInvoice(*db, account, user, prompter, vat);
        }
        transaction.commit();
    }

    NewBookingRequest stay(std::initializer_list<qint32> rooms, int nights)
    {
        NewBookingRequest request;
        request.FromDate = nextFree;
        request.ToDate = nextFree.addDays(nights);
        request.surname = QStringLiteral("Bench");
        for (qint32 room : rooms) {
            const std::vector<qint32> offered = getRoomRates(rates, request.FromDate, request.ToDate, room);
            request.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
        }
        nextFree = request.ToDate;
        return request;
    }
};

Property &property()
{
    static Property p;
    return p;
}

// A client with 10,000 rows: stays invoiced and paid in two parts, the last
// stretch still owing, so the matched groups end well before the newest row.
qint32 busyLedgerClient()
{
    static const qint32 client = [] {
        Property &p = property();
        Database &db = *p.db;
        Transaction transaction(db);
        Client c;
        c.Surname = QStringLiteral("Ledger");
        c.update(db);
        for (int i = 0; i < 10000; ++i) {
            ClientTran row;
            row.BBClientID = c.BBClientID;
            row.TranDate = QDate(2020, 1, 1).addDays(i / 3);
            const int step = i % 3;
            row.TranType = step == 0 ? trantype::Invoice : trantype::Payment;
            row.TranNo = 100000 + i;
            row.Amount = step == 0 ? 1234.56 : (i > 9000 ? -600.0 : (step == 1 ? -1000.0 : -234.56));
            row.update(db);
        }
        transaction.commit();
        return c.BBClientID;
    }();
    return client;
}

void BM_MatchTransactions(benchmark::State &state)
{
    Database &db = *property().db;
    const qint32 client = busyLedgerClient();
    matchTransactions(db, client);
    for (auto _ : state)
        matchTransactions(db, client);
    state.counters["matched"] = db.scalar(QStringLiteral("select count(*) from clienttran where bbclientid = ? and matched"), {client}).toInt();
}
BENCHMARK(BM_MatchTransactions)->Unit(benchmark::kMillisecond);

void BM_MatchTransactionsFromScratch(benchmark::State &state)
{
    Database &db = *property().db;
    const qint32 client = busyLedgerClient();
    for (auto _ : state) {
        state.PauseTiming();
        db.execute(QStringLiteral("update clienttran set matched = 1 - matched where bbclientid = ?"), {client});
        state.ResumeTiming();
        matchTransactions(db, client);
    }
}
BENCHMARK(BM_MatchTransactionsFromScratch)->Unit(benchmark::kMillisecond);

void BM_MakeInvoice(benchmark::State &state)
{
    Property &p = property();
    BookAnyway questions;
    const auto booking = BookingWriter(*p.db, p.rates, p.setup, p.user).save(p.stay({1, 2, 3}, 14), questions);
    if (!booking) {
        state.SkipWithError("the booking was refused");
        return;
    }
    for (int i = 0; i < 20; ++i) {
        ExtraInput extra;
        extra.guestId = booking->legs[static_cast<std::size_t>(i % 3)].BBGuestID;
        extra.date = p.nextFree.addDays(-14 + i % 14);
        extra.stockId = 1 + i % 4;
        extra.qtyText = QString::number(1 + i % 3);
        extra.priceText = QStringLiteral("%1.50").arg(40 + i);
        if (!saveExtra(*p.db, extra, p.user)) {
            state.SkipWithError("an extra was refused");
            return;
        }
    }
    for (auto _ : state) {
        const auto made = makeInvoice(*p.db, booking->BBAccountID, p.user, p.prompter, VatRules::load(*p.db));
        if (!made || !*made) {
            state.SkipWithError("the invoice was refused");
            return;
        }
        state.PauseTiming();
        (void)reopenAccount(*p.db, booking->BBAccountID, p.user);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MakeInvoice)->Unit(benchmark::kMillisecond);

void BM_AccountScreen(benchmark::State &state)
{
    Property &p = property();
    Database &db = *p.db;
    // A travel agent's account: 60 bookings of the property moved onto it, and
    // 240 extras on their rooms.
    const qint32 account = createAccount(db, 1);
    {
        Transaction transaction(db);
        db.execute(QStringLiteral("update booking set bbaccountid = ? where bbbookingid in "
                                  "(select bbbookingid from booking where status <> 'U' order by bbbookingid desc limit 60)"),
                   {account});
        std::vector<qint32> rooms;
        QSqlQuery q = db.query(QStringLiteral("select guest.bbguestid from guest, booking where guest.bbbookingid = booking.bbbookingid "
                                              "and booking.bbaccountid = ?"),
                               {account});
        while (q.next())
            rooms.push_back(q.value(0).toInt());
        for (int i = 0; i < 240; ++i) {
            Extra extra;
            extra.BBGuestID = rooms[static_cast<std::size_t>(i) % rooms.size()];
            extra.ExtraDate = QDate(2030, 1, 1).addDays(i);
            extra.Qty = 1 + i % 3;
            extra.Price = 25 + i % 50;
            extra.BBStockID = 1 + i % 4;
            extra.BBAccountID = account;
            extra.update(db);
        }
        transaction.commit();
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(loadAccountSummary(db, account));
}
BENCHMARK(BM_AccountScreen)->Unit(benchmark::kMillisecond);

void BM_MoneySimulation(benchmark::State &state)
{
    const int seeds = qEnvironmentVariableIntValue("FENLARK_MONEY_SEEDS") > 0 ? qEnvironmentVariableIntValue("FENLARK_MONEY_SEEDS") : 12;
    const int steps = qEnvironmentVariableIntValue("FENLARK_MONEY_STEPS") > 0 ? qEnvironmentVariableIntValue("FENLARK_MONEY_STEPS") : 1000;
    int run = 0;
    for (auto _ : state) {
        for (int seed = 100; seed < 100 + seeds; ++seed) {
            const moneysim::Outcome outcome = moneysim::simulate(static_cast<unsigned>(seed), steps);
            run += outcome.stepsRun;
            if (outcome.failure) {
                state.SkipWithError(qPrintable(outcome.failure->report()));
                return;
            }
        }
    }
    state.counters["operations"] = run;
}
BENCHMARK(BM_MoneySimulation)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

#include "generatedproperty.h"
#include "peakmemory.h"
#include "serverprocess.h"
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
#include <QJsonDocument>
#include <QJsonParseError>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstring>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

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

// Our reader and Qt's on the same strict document. Both count the document's
// UTF-8 bytes, as they come from the server, so their bytes/s compare directly.
void BM_JsonParse(benchmark::State &state)
{
    const QString text = serverReply(2000);
    for (auto _ : state)
        benchmark::DoNotOptimize(json::parse(text));
    const qsizetype bytes = text.toUtf8().size();
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_JsonParse)->Unit(benchmark::kMillisecond);

void BM_QtJsonParse(benchmark::State &state)
{
    const QByteArray bytes = serverReply(2000).toUtf8();
    for (auto _ : state) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
        if (error.error != QJsonParseError::NoError)
            state.SkipWithError("Qt refused the document");
        benchmark::DoNotOptimize(document.isObject());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
    state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(BM_QtJsonParse)->Unit(benchmark::kMillisecond);

// Qt's reader given the text as the desk holds it, converted to UTF-8 first.
void BM_QtJsonParseFromText(benchmark::State &state)
{
    const QString text = serverReply(2000);
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(text.toUtf8()).isObject());
    state.SetBytesProcessed(state.iterations() * text.toUtf8().size());
}
BENCHMARK(BM_QtJsonParseFromText)->Unit(benchmark::kMillisecond);

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
        const QString password = db->scalar(QStringLiteral("select Password from bbsetup")).toString();
        ChangeLog::markAllChanged(*db);
        rows = ChangeLog::count(*db);
        // Seeded from the desk, so that new server ids stay clear of those the desk holds.
        server::ReferenceServer store(serverFile, QStringLiteral("bench-server"));
        store.seedFromDesk(copy);
        server::HttpFront front(serverFile);
        const quint16 port = front.listen(QHostAddress::LocalHost, 0);
        HttpTransport transport;
        Synch synch(*db, transport);
        synch.setLogin({QStringLiteral("127.0.0.1:%1").arg(port), bbid, password, 0, QString()});
        synch.setSkipSetup(true);
        state.ResumeTiming();
        if (!synch.synchronise() || synch.summary().acknowledged != rows) {
            const QByteArray why = synch.summary().errors.join(QLatin1Char(' ')).toUtf8();
            state.SkipWithError(("the synchronisation did not finish: " + why).constData());
            break;
        }
        state.PauseTiming();
        db.reset();
        // The large property's copies fill a disk quickly.
        for (const QString &file : {copy, serverFile})
            for (const char *suffix : {"", "-wal", "-shm"})
                QFile::remove(file + QLatin1String(suffix));
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FullSynchToEmptyServer)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

// A full synchronisation of the generated property, everything marked for sending
// again, to fenlark-server in a process of its own: the desk's peak memory.
void BM_FullSynchPeakMemory(benchmark::State &state)
{
    const QString original = bench::generatedProperty();
    const QString copy = bench::workDir().filePath(QStringLiteral("peak-desk.db"));
    const QString serverFile = bench::workDir().filePath(QStringLiteral("peak-server.db"));
    // A repetition starts again from an empty server.
    for (const QString &file : {copy, serverFile})
        for (const char *suffix : {"", "-wal", "-shm"})
            QFile::remove(file + QLatin1String(suffix));
    QFile::copy(original, copy);
    auto db = Database::open(copy);
    const qint32 bbid = db->scalar(QStringLiteral("select BBID from bbsetup")).toInt();
    const QString password = db->scalar(QStringLiteral("select Password from bbsetup")).toString();
    ChangeLog::markAllChanged(*db);
    const int rows = ChangeLog::count(*db);
    {
        // Seeded from the desk, so that new server ids stay clear of those the desk holds.
        server::ReferenceServer store(serverFile, QStringLiteral("peak-prepare"));
        store.seedFromDesk(copy);
    }
    bench::ServerProcess server(serverFile);
    if (server.port == 0) {
        state.SkipWithError("fenlark-server did not start beside the benchmarks");
        return;
    }
    double before = 0;
    for (auto _ : state) {
        HttpTransport transport;
        Synch synch(*db, transport);
        synch.setLogin({QStringLiteral("127.0.0.1:%1").arg(server.port), bbid, password, 0, QString()});
        synch.setSkipSetup(true);
        bench::resetPeak();
        before = bench::residentMiB("VmRSS");
        if (!synch.synchronise() || synch.summary().acknowledged != rows)
            state.SkipWithError(("the synchronisation did not finish: " + synch.summary().errors.join(QLatin1Char(' ')).left(300).toUtf8()).constData());
    }
    state.counters["rows"] = rows;
    state.counters["rss_before_MiB"] = before;
    state.counters["peak_MiB"] = bench::residentMiB("VmHWM");
}
BENCHMARK(BM_FullSynchPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

// Serves one fixed reply to the first exchange and an empty one to each after, on
// a thread of its own with plain sockets, until it is told to stop.
class ReplyServer {
public:
    explicit ReplyServer(QByteArray first) : m_first(std::move(first))
    {
        m_listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address);
        listen(m_listener, 4);
        socklen_t length = sizeof address;
        getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &length);
        port = ntohs(address.sin_port);
        m_thread = std::thread([this] { serve(); });
    }
    ~ReplyServer()
    {
        shutdown(m_listener, SHUT_RDWR);
        close(m_listener);
        m_thread.join();
    }

    quint16 port = 0;

private:
    void serve()
    {
        bool first = true;
        while (true) {
            const int client = accept(m_listener, nullptr, nullptr);
            if (client < 0)
                return;
            QByteArray request;
            char buffer[65536];
            qint64 wanted = -1;
            while (wanted < 0 || request.size() < wanted) {
                const ssize_t got = recv(client, buffer, sizeof buffer, 0);
                if (got <= 0)
                    break;
                request.append(buffer, got);
                const qsizetype end = request.indexOf("\r\n\r\n");
                if (wanted < 0 && end >= 0) {
                    const qsizetype at = request.toLower().indexOf("content-length:");
                    wanted = end + 4 + (at < 0 ? 0 : request.mid(at + 15, request.indexOf('\r', at) - at - 15).trimmed().toLongLong());
                }
            }
            const QByteArray body = first ? m_first : QByteArray("{\"success\":true,\"data\":{}}");
            first = false;
            const QByteArray answer = "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\nConnection: close\r\nContent-Length: "
                + QByteArray::number(body.size()) + "\r\n\r\n";
            send(client, answer.constData(), static_cast<size_t>(answer.size()), MSG_NOSIGNAL);
            for (qsizetype sent = 0; sent < body.size();) {
                const ssize_t put = send(client, body.constData() + sent, static_cast<size_t>(body.size() - sent), MSG_NOSIGNAL);
                if (put <= 0)
                    break;
                sent += put;
            }
            close(client);
        }
    }

    QByteArray m_first;
    int m_listener = -1;
    std::thread m_thread;
};

// A reply just under the 64 MiB limit, of server rows in the shape the desk
// receives, read over loopback and applied to a fresh database: the desk's peak
// memory above what it held before (which includes the reply the serving thread keeps).
void BM_ApplyLargeReplyPeakMemory(benchmark::State &state)
{
    const qsizetype perGroup = serverReply(4000).toUtf8().size() / 1000;
    QByteArray reply = serverReply(static_cast<int>((63 * 1024 * 1024 / perGroup) * 4)).toUtf8();
    ReplyServer server(reply);
    const qsizetype replyBytes = reply.size();
    reply = QByteArray();
    int applied = 0;
    double before = 0;
    for (auto _ : state) {
        QTemporaryDir dir;
        Home::setPath(dir.path());
        auto db = Database::open(dir.filePath(QStringLiteral("large.db")));
        HttpTransport transport;
        Synch synch(*db, transport);
        synch.setLogin({QStringLiteral("127.0.0.1:%1").arg(server.port), 12345, QStringLiteral("pw"), 0, QString()});
        synch.setSkipSetup(true);
        bench::resetPeak();
        before = bench::residentMiB("VmRSS");
        if (!synch.synchronise())
            state.SkipWithError(("the reply was not applied: " + synch.summary().errors.join(QLatin1Char(' ')).left(200).toUtf8()).constData());
        applied = synch.summary().received;
    }
    state.counters["reply_MiB"] = static_cast<double>(replyBytes) / (1024.0 * 1024.0);
    state.counters["rows"] = applied;
    state.counters["rss_before_MiB"] = before;
    state.counters["peak_MiB"] = bench::residentMiB("VmHWM");
}
BENCHMARK(BM_ApplyLargeReplyPeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

// Answers every post with the same text, as if it had come off the wire.
class FixedReply : public ServerTransport {
public:
    explicit FixedReply(QString reply) : m_reply(std::move(reply)) {}
    PostResult post(const QString &, const QByteArray &) override
    {
        PostResult r;
        r.ok = true;
        r.reply = m_reply;
        return r;
    }

private:
    QString m_reply;
};

// A million small entries in one reply: the run refuses it whole (past the limit
// of values a reply may hold) in bounded time and memory.
void BM_MillionSmallEntriesRefused(benchmark::State &state)
{
    QString reply = QStringLiteral("{\"success\":true,\"data\":{\"logupdates\":[");
    for (int i = 1; i <= 1'000'000; ++i) {
        reply += QStringLiteral("{\"tablename\":\"client\",\"logtype\":\"D\",\"tableid\":%1}").arg(i);
        reply += i < 1'000'000 ? QLatin1Char(',') : QLatin1Char(']');
    }
    reply += QStringLiteral("}}");
    reply.squeeze();
    FixedReply transport(reply);
    double before = 0;
    for (auto _ : state) {
        state.PauseTiming();
        QTemporaryDir dir;
        Home::setPath(dir.path());
        auto db = Database::open(dir.filePath(QStringLiteral("million.db")));
        Synch synch(*db, transport);
        synch.setSkipSetup(true);
        bench::resetPeak();
        before = bench::residentMiB("VmRSS");
        state.ResumeTiming();
        if (synch.synchronise())
            state.SkipWithError("a reply of a million entries was taken");
    }
    state.counters["reply_MiB"] = static_cast<double>(reply.toUtf8().size()) / (1024.0 * 1024.0);
    state.counters["rss_before_MiB"] = before;
    state.counters["peak_MiB"] = bench::residentMiB("VmHWM");
}
// The most values a hostile reply can pack into 64 MiB of text: "[0,0,0,...": the
// parse gives up at its limit of values, within bounded memory.
void BM_HostileArrayOfZeros(benchmark::State &state)
{
    QString reply = QStringLiteral("[") + QStringLiteral("0,").repeated(32 * 1024 * 1024 - 2) + QStringLiteral("0]");
    double before = 0;
    for (auto _ : state) {
        bench::resetPeak();
        before = bench::residentMiB("VmRSS");
        QString errors;
        if (!json::parse(reply, &errors).isNothing())
            state.SkipWithError("32 million values were taken");
    }
    state.counters["rss_before_MiB"] = before;
    state.counters["peak_MiB"] = bench::residentMiB("VmHWM");
}
BENCHMARK(BM_HostileArrayOfZeros)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(BM_MillionSmallEntriesRefused)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

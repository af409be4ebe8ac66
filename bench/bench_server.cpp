// The reference server under many desks at once: fenlark-server runs as its own
// process on loopback, and 200 desks, each a property of its own, send one
// exchange after another over kept connections for a fixed time, with and without
// one slow client that trickles its request a few bytes at a time.
#include "serverprocess.h"
#include "server/referenceserver.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <vector>

using namespace fenlark;

namespace {

constexpr qint32 FirstBbid = 10000;
constexpr int RunMs = 10000;
constexpr int WarmUpMs = 1000;

QTemporaryDir &workDir()
{
    static QTemporaryDir dir;
    return dir;
}

// A store with one property for each desk.
QString prepareStore(int desks)
{
    static int serial = 0;
    const QString path = workDir().filePath(QStringLiteral("server%1.db").arg(++serial));
    server::ReferenceServer store(path, QStringLiteral("bench-prepare"));
    for (int i = 0; i < desks; ++i)
        store.createProperty(FirstBbid + i, QStringLiteral("pw"), QStringLiteral("Property %1").arg(i));
    return path;
}

// One desk: a kept connection, one exchange after another, each carrying one
// changed client, the time from sending to the whole answer noted.
class Desk {
public:
    Desk(quint16 port, qint32 bbid, std::vector<double> &latencies, const QElapsedTimer &clock, bool &stopped)
        : m_bbid(bbid), m_latencies(latencies), m_clock(clock), m_stopped(stopped)
    {
        QObject::connect(&m_socket, &QTcpSocket::connected, &m_socket, [this] { send(); });
        QObject::connect(&m_socket, &QTcpSocket::readyRead, &m_socket, [this] { read(); });
        QObject::connect(&m_socket, &QTcpSocket::disconnected, &m_socket, [this] { ++failures; });
        m_socket.connectToHost(QHostAddress::LocalHost, port);
    }

    int failures = 0;

private:
    void send()
    {
        ++m_sequence;
        const QByteArray key = QByteArray::number(m_sequence % 50 + 1);
        const QByteArray message = "{\"data\":{\"logupdates\":[{\"logtype\":\"U\",\"dblogid\":\"" + QByteArray::number(m_sequence)
            + "\",\"tablename\":\"client\",\"bbtableid\":\"" + key + "\",\"values\":{\"BBClientID\":" + key
            + ",\"ClientID\":0,\"Surname\":\"Guest " + key + "\",\"FirstName\":\"Ann\",\"Email\":\"ann@example.org\",\"Notes\":\"Quiet room\","
              "\"BBRateSheetID\":0,\"Active\":\"Y\"}}],\"acknowledgements\":[],\"requests\":[]}}";
        const QByteArray target = "/moorgate/Synchronisation?a=pcsynch&bbid=" + QByteArray::number(m_bbid) + "&p=pw&version=1";
        m_socket.write("POST " + target + " HTTP/1.1\r\nHost: bench\r\nContent-Type: text/plain\r\nContent-Length: "
                       + QByteArray::number(message.size()) + "\r\n\r\n" + message);
        m_sentAt = m_clock.nsecsElapsed();
    }

    void read()
    {
        m_received += m_socket.readAll();
        const qsizetype end = m_received.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        const qsizetype at = m_received.indexOf("Content-Length: ");
        const qint64 length = m_received.mid(at + 16, m_received.indexOf('\r', at) - at - 16).toLongLong();
        if (m_received.size() < end + 4 + length)
            return;
        if (!m_received.startsWith("HTTP/1.1 200") || !m_received.contains("\"success\":true"))
            ++failures;
        m_received.remove(0, end + 4 + length);
        if (m_clock.elapsed() >= WarmUpMs)
            m_latencies.push_back(static_cast<double>(m_clock.nsecsElapsed() - m_sentAt) / 1e6);
        if (!m_stopped)
            send();
    }

    QTcpSocket m_socket;
    qint32 m_bbid;
    std::vector<double> &m_latencies;
    const QElapsedTimer &m_clock;
    bool &m_stopped;
    int m_sequence = 0;
    qint64 m_sentAt = 0;
    QByteArray m_received;
};

// Sends its request two bytes every 50 ms, a 50 MB body behind a head that takes
// its time: the kind of client that once held a one-thread server.
class SlowClient {
public:
    explicit SlowClient(quint16 port)
    {
        m_request = "POST /moorgate/Synchronisation?a=pcsynch&bbid=10000&p=pw HTTP/1.1\r\nHost: bench\r\nContent-Length: 50000000\r\n\r\n";
        m_request += QByteArray(4096, ' ');
        QObject::connect(&m_timer, &QTimer::timeout, &m_socket, [this] {
            if (m_socket.state() != QAbstractSocket::ConnectedState)
                return;
            m_socket.write(m_request.mid(m_sent % m_request.size(), 2));
            m_sent += 2;
        });
        m_socket.connectToHost(QHostAddress::LocalHost, port);
        m_timer.start(50);
    }

private:
    QTcpSocket m_socket;
    QTimer m_timer;
    QByteArray m_request;
    qsizetype m_sent = 0;
};

double percentile(std::vector<double> values, double p)
{
    if (values.empty())
        return 0;
    const auto at = static_cast<std::size_t>(p * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(at), values.end());
    return values[at];
}

void BM_ServerManyDesks(benchmark::State &state)
{
    const int desks = static_cast<int>(state.range(0));
    const bool withSlowClient = state.range(1) != 0;
    bench::ServerProcess server(prepareStore(desks));
    if (server.port == 0) {
        state.SkipWithError("fenlark-server did not start beside the benchmarks");
        return;
    }
    std::vector<double> latencies;
    int failures = 0;
    for (auto _ : state) {
        latencies.clear();
        QElapsedTimer clock;
        clock.start();
        bool stopped = false;
        std::unique_ptr<SlowClient> slow;
        if (withSlowClient)
            slow = std::make_unique<SlowClient>(server.port);
        std::vector<std::unique_ptr<Desk>> running;
        for (int i = 0; i < desks; ++i)
            running.push_back(std::make_unique<Desk>(server.port, FirstBbid + i, latencies, clock, stopped));
        QEventLoop loop;
        QTimer::singleShot(RunMs, &loop, [&] {
            stopped = true;
            loop.quit();
        });
        loop.exec();
        for (const auto &desk : running)
            failures += desk->failures;
    }
    const double seconds = (RunMs - WarmUpMs) / 1000.0;
    state.counters["desks"] = desks;
    state.counters["exchanges_per_s"] = static_cast<double>(latencies.size()) / seconds;
    state.counters["p50_ms"] = percentile(latencies, 0.50);
    state.counters["p99_ms"] = percentile(latencies, 0.99);
    state.counters["max_ms"] = latencies.empty() ? 0 : *std::max_element(latencies.begin(), latencies.end());
    state.counters["failures"] = failures;
}
BENCHMARK(BM_ServerManyDesks)->ArgNames({"desks", "slow"})->Args({200, 0})->Args({200, 1})->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

#include "server/httpfront.h"
#include "server/loginthrottle.h"
#include "server/referenceserver.h"
#include "synch/json.h"
#include "synch/transport.h"

#include "support/databasedump.h"

#include <QProcess>
#include <QSqlError>
#include <QSqlQuery>
#include <QTcpSocket>
#include <QtTest>

using namespace fenlark;
using namespace fenlark::server;

namespace {

constexpr qint32 Bbid = 12345;
constexpr qint32 OtherBbid = 23456;
const QByteArray Password = "s3cret";

// A client on a raw socket, for requests no desk would send. The server runs in
// this thread, so every wait turns the event loop.
class RawClient {
public:
    explicit RawClient(quint16 port)
    {
        m_socket.connectToHost(QHostAddress::LocalHost, port);
        QObject::connect(&m_socket, &QTcpSocket::readyRead, &m_socket, [this] { m_received += m_socket.readAll(); });
        QTRY_VERIFY(m_socket.state() == QAbstractSocket::ConnectedState || m_socket.state() == QAbstractSocket::UnconnectedState);
    }

    void send(const QByteArray &bytes) { m_socket.write(bytes); }

    // Waits for a whole answer (head and the body its length gives) or for the
    // server to close; the answer's status, 0 for none.
    int status(int timeoutMs = 5000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!deadline.hasExpired() && !complete() && m_socket.state() == QAbstractSocket::ConnectedState)
            QTest::qWait(5);
        return m_received.startsWith("HTTP/1.1 ") ? m_received.mid(9, 3).toInt() : 0;
    }
    QByteArray body() const { return m_received.mid(m_received.indexOf("\r\n\r\n") + 4); }
    bool closedWithin(int timeoutMs)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!deadline.hasExpired() && m_socket.state() == QAbstractSocket::ConnectedState)
            QTest::qWait(5);
        return m_socket.state() != QAbstractSocket::ConnectedState;
    }

private:
    bool complete() const
    {
        const qsizetype end = m_received.indexOf("\r\n\r\n");
        if (end < 0)
            return false;
        const qsizetype at = m_received.toLower().indexOf("content-length:");
        const qint64 length = at < 0 ? 0 : m_received.mid(at + 15, m_received.indexOf('\r', at) - at - 15).trimmed().toLongLong();
        return m_received.size() >= end + 4 + length;
    }

    QTcpSocket m_socket;
    QByteArray m_received;
};

QByteArray post(const QByteArray &target, const QByteArray &body, const QByteArray &headers = {})
{
    return "POST " + target + " HTTP/1.1\r\nHost: x\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body;
}

QByteArray synchTarget(const QByteArray &action, qint32 bbid = Bbid, const QByteArray &password = Password)
{
    return "/moorgate/Synchronisation?a=" + action + "&bbid=" + QByteArray::number(bbid) + "&p=" + password + "&version=1";
}

QByteArray message(const QByteArray &logupdates, const QByteArray &acknowledgements = "[]", const QByteArray &requests = "[]")
{
    return "{\"data\":{\"logupdates\":" + logupdates + ",\"acknowledgements\":" + acknowledgements + ",\"requests\":" + requests + "}}";
}

// A store with two properties, one online booking each waiting for its PC, and
// the front before it on loopback.
class Rig {
public:
    explicit Rig(const HttpLimits &limits = {}, int maxConnections = 1000)
    {
        static int serial = 0;
        path = dir.filePath(QStringLiteral("server.db"));
        store = std::make_unique<ReferenceServer>(path, QStringLiteral("server-test-%1").arg(++serial));
        store->createProperty(Bbid, QString::fromLatin1(Password), QStringLiteral("Fen Lodge"));
        store->createProperty(OtherBbid, QStringLiteral("other"), QStringLiteral("Marsh House"));
        OnlineBooking b;
        b.fromDate = QDate(2027, 1, 1);
        online = store->addOnlineBooking(Bbid, b);
        other = store->addOnlineBooking(OtherBbid, b);
        front = std::make_unique<HttpFront>(path);
        front->setLimits(limits);
        front->setMaxConnections(maxConnections);
        port = front->listen(QHostAddress::LocalHost, 0);
    }

    QString dump() const { return dumpDatabaseFile(path); }

    QTemporaryDir dir;
    QString path;
    std::unique_ptr<ReferenceServer> store;
    std::unique_ptr<HttpFront> front;
    OnlineBookingIds online;
    OnlineBookingIds other;
    quint16 port = 0;
};

} // namespace

class TestReferenceServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Each request is refused on the wire and leaves the store as it was.
    void refusedRequestsChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        QTest::newRow("body past 64 MiB, refused on its declared length")
            << QByteArray("POST " + synchTarget("pcsynch") + " HTTP/1.1\r\nContent-Length: 67108865\r\n\r\n{") << 413;
        QTest::newRow("head past 64 KiB") << QByteArray("GET /x HTTP/1.1\r\nX-Pad: " + QByteArray(70000, 'a') + "\r\n\r\n") << 431;
        QTest::newRow("chunked body") << QByteArray("POST /x HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n") << 411;
        QTest::newRow("length that is no number") << QByteArray("POST /x HTTP/1.1\r\nContent-Length: -5\r\n\r\n") << 400;
        QTest::newRow("two lengths") << QByteArray("POST /x HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nab") << 400;
        QTest::newRow("no request line") << QByteArray("hello\r\n\r\n") << 400;
        QTest::newRow("admin by plain GET") << QByteArray("GET /admin/fault?name=drop&count=-1 HTTP/1.1\r\n\r\n") << 403;
        QTest::newRow("admin POST without token") << post("/admin/delete?bbid=12345&table=client&tableid=1", "") << 403;
    }

    void refusedRequestsChangeNothing()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, status);
        Rig rig;
        const QString before = rig.dump();
        RawClient client(rig.port);
        client.send(request);
        QCOMPARE(client.status(), status);
        QVERIFY(client.closedWithin(2000));
        QCOMPARE(rig.dump(), before);
        // The server goes on serving.
        RawClient next(rig.port);
        next.send(post(synchTarget("pcsynch"), message("[]")));
        QCOMPARE(next.status(), 200);
    }

    void deletionWithoutALocalKeyIsRefused()
    {
        Rig rig;
        const QString before = rig.dump();
        for (const QByteArray &entry : {QByteArray("{\"logtype\":\"D\",\"dblogid\":\"4\",\"tablename\":\"client\"}"),
                                        QByteArray("{\"logtype\":\"D\",\"dblogid\":\"4\",\"tablename\":\"client\",\"bbtableid\":\"0\"}")}) {
            RawClient client(rig.port);
            client.send(post(synchTarget("pcsynch"), message("[" + entry + "]")));
            QCOMPARE(client.status(), 200);
            QVERIFY(client.body().contains("A deletion without a local key"));
        }
        QCOMPARE(rig.dump(), before);
        QCOMPARE(rig.store->rowCount(Bbid, QStringLiteral("client")), 1);
    }

    // A PC reaches only its own property's rows, whatever ids it names.
    void anotherPropertysRowsAreOutOfReach()
    {
        Rig rig;
        RawClient client(rig.port);
        client.send(post(synchTarget("pcsynch"),
                         message("[]", "[{\"tablename\":\"client\",\"dblogid\":999,\"tableid\":" + QByteArray::number(rig.other.client) + ",\"bbtableid\":5}]",
                                 "[{\"tablename\":\"client\",\"tableid\":" + QByteArray::number(rig.other.client) + "}]")));
        QCOMPARE(client.status(), 200);
        const JsonValue reply = json::parse(QString::fromUtf8(client.body()));
        for (const JsonValue &entry : *reply[QStringLiteral("data")][QStringLiteral("logupdates")].array())
            QVERIFY(entry[QStringLiteral("tableid")].toInt() != rig.other.client);
        QCOMPARE(rig.store->localIdOf(OtherBbid, QStringLiteral("client"), rig.other.client), 0);
        QCOMPARE(rig.store->outboxCount(OtherBbid), 4);
    }

    void adminTakesOnlyATokenPostFromThisMachine()
    {
        Rig rig;
        QFile tokenFile(HttpFront::tokenPath(rig.path));
        QVERIFY(tokenFile.open(QIODevice::ReadOnly));
        QCOMPARE(tokenFile.permissions() & (QFileDevice::ReadGroup | QFileDevice::ReadOther), QFileDevice::Permissions());
        const QByteArray token = tokenFile.readAll();
        QCOMPARE(QString::fromLatin1(token), rig.front->adminToken());

        RawClient fromAPage(rig.port);
        fromAPage.send(post("/admin/fault?name=drop", "", "X-Fenlark-Token: " + token + "\r\nOrigin: http://elsewhere.example\r\n"));
        QCOMPARE(fromAPage.status(), 403);
        RawClient wrongToken(rig.port);
        wrongToken.send(post("/admin/fault?name=drop", "", "X-Fenlark-Token: " + QByteArray(token.size(), '0') + "\r\n"));
        QCOMPARE(wrongToken.status(), 403);
        QCOMPARE(rig.store->takeFault(), QString());

        RawClient admin(rig.port);
        admin.send(post("/admin/fault?name=garbled&count=1", "", "X-Fenlark-Token: " + token + "\r\n"));
        QCOMPARE(admin.status(), 200);
        QCOMPARE(rig.store->takeFault(), QStringLiteral("garbled"));
    }

    void repeatedFailedLogonsAreSlowedDown()
    {
        Rig rig;
        for (int i = 0; i < LoginThrottle::FreeFailures; ++i) {
            RawClient guess(rig.port);
            guess.send(post(synchTarget("s", Bbid, "guess" + QByteArray::number(i)), ""));
            QCOMPARE(guess.status(), 200);
            QVERIFY(guess.body().contains("loginfail"));
        }
        // Even the right password waits now: the address is not heard for a while.
        RawClient right(rig.port);
        right.send(post(synchTarget("s"), ""));
        QCOMPARE(right.status(), 200);
        QVERIFY2(right.body().contains("Too many failed log-ons"), right.body().constData());
    }

    void throttleDoublesTheWaitAndForgetsAGoodLogOn()
    {
        LoginThrottle throttle;
        const QDateTime t0 = QDateTime(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC);
        for (int i = 0; i < LoginThrottle::FreeFailures - 1; ++i)
            throttle.failed(QStringLiteral("a"), t0);
        QCOMPARE(throttle.waitFor(QStringLiteral("a"), t0), 0);
        throttle.failed(QStringLiteral("a"), t0);
        QCOMPARE(throttle.waitFor(QStringLiteral("a"), t0), 1000);
        throttle.failed(QStringLiteral("a"), t0);
        QCOMPARE(throttle.waitFor(QStringLiteral("a"), t0), 2000);
        for (int i = 0; i < 20; ++i)
            throttle.failed(QStringLiteral("a"), t0);
        QCOMPARE(throttle.waitFor(QStringLiteral("a"), t0), LoginThrottle::MaxWaitMs);
        QCOMPARE(throttle.waitFor(QStringLiteral("b"), t0), 0);
        throttle.succeeded(QStringLiteral("a"));
        QCOMPARE(throttle.waitFor(QStringLiteral("a"), t0), 0);
    }

    void silentAndTricklingClientsAreCutOff()
    {
        HttpLimits limits;
        limits.idleMs = 300;
        Rig rig(limits);
        RawClient silent(rig.port);
        QVERIFY(silent.closedWithin(3000));
        // One byte every 100 ms is never idle, but the head may not take longer in all.
        RawClient trickle(rig.port);
        const QByteArray head = "GET /moorgate/paymoorgate?bbid=1 HTTP/1.1\r\nX-Slow: ";
        QElapsedTimer clock;
        clock.start();
        int sent = 0;
        while (!trickle.closedWithin(100) && clock.elapsed() < 3000)
            trickle.send(head.mid(sent++ % head.size(), 1));
        QVERIFY(clock.elapsed() < 3000);
    }

    // A client that sends half a body and stops holds no one else up.
    void aSlowClientHoldsNoOneElse()
    {
        Rig rig;
        RawClient slow(rig.port);
        slow.send("POST " + synchTarget("pcsynch") + " HTTP/1.1\r\nContent-Length: 50000000\r\n\r\n" + QByteArray(1024 * 1024, ' '));
        std::vector<std::unique_ptr<RawClient>> others;
        for (int i = 0; i < 20; ++i) {
            others.push_back(std::make_unique<RawClient>(rig.port));
            others.back()->send(post(synchTarget("pcsynch"), message("[]")));
        }
        for (auto &other : others)
            QCOMPARE(other->status(3000), 200);
        QCOMPARE(slow.status(10), 0);
    }

    void fullConnectionTableMakesRoomFromTheIdlest()
    {
        Rig rig({}, 4);
        std::vector<std::unique_ptr<RawClient>> idle;
        for (int i = 0; i < 4; ++i) {
            idle.push_back(std::make_unique<RawClient>(rig.port));
            QTest::qWait(20);
        }
        QTRY_COMPARE(rig.front->connectionCount(), 4);
        RawClient newcomer(rig.port);
        newcomer.send(post(synchTarget("pcsynch"), message("[]")));
        QCOMPARE(newcomer.status(), 200);
        QVERIFY(idle.front()->closedWithin(1000));
    }

    // Past the large-body budget only small bodies are still taken.
    void largeSendersCannotBlockSmallOnes()
    {
        HttpLimits limits;
        limits.bodyBudget = 4 * 1024 * 1024;
        limits.largeBodyBudget = 3 * 1024 * 1024;
        Rig rig(limits);
        const QByteArray head = "POST " + synchTarget("pcsynch") + " HTTP/1.1\r\nContent-Length: 8000000\r\n\r\n";
        RawClient first(rig.port);
        first.send(head + QByteArray(2 * 1024 * 1024, ' '));
        QTest::qWait(200);
        RawClient second(rig.port);
        second.send(head + QByteArray(2 * 1024 * 1024, ' '));
        QCOMPARE(second.status(), 503);
        RawClient small(rig.port);
        small.send(post(synchTarget("pcsynch"), message("[]")));
        QCOMPARE(small.status(), 200);
    }

    // The seed is in the store, committed, by the time the server says it listens:
    // another program may write to the store at once.
    void seedIsCommittedBeforeTheServerListens()
    {
        const QString program = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlark-server"));
        if (!QFileInfo(program).isExecutable())
            QSKIP("fenlark-server is not built beside the tests");
        QTemporaryDir dir;
        const QString desk = dir.filePath(QStringLiteral("desk.db"));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("seed-desk"));
            db.setDatabaseName(desk);
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("create table bbsetup (BBID integer, Password text, BBName text)")));
            QVERIFY(q.exec(QStringLiteral("insert into bbsetup values (12345, 'pw', 'Fen Lodge')")));
            QVERIFY(q.exec(QStringLiteral("create table room (BBRoomID integer primary key, RoomName text)")));
            QVERIFY(q.exec(QStringLiteral("insert into room values (1, 'Heron')")));
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("seed-desk"));
        const QString storePath = dir.filePath(QStringLiteral("server.db"));
        QProcess server;
        server.start(program, {QStringLiteral("serve"), QStringLiteral("--db"), storePath, QStringLiteral("--seed"), desk});
        QVERIFY(server.waitForStarted());
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += server.readAllStandardOutput()).contains('\n'), 20000);
        QVERIFY2(said.startsWith("listening on "), (said + server.readAllStandardError()).constData());
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("seed-store"));
            db.setDatabaseName(storePath);
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY2(q.exec(QStringLiteral("begin immediate")), qPrintable(q.lastError().text()));
            QVERIFY(q.exec(QStringLiteral("select count(*) from setup where tablename = 'room'")) && q.next());
            QCOMPARE(q.value(0).toInt(), 1);
            q.finish();
            QVERIFY(q.exec(QStringLiteral("commit")));
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("seed-store"));
        server.kill();
        server.waitForFinished();
    }

    // A password with "&", blanks and a letter past ASCII logs on whole.
    void passwordOfAnyCharactersLogsOn()
    {
        Rig rig;
        const QString password = QStringLiteral("Ab&cd9 #%+\u00e9");
        rig.store->createProperty(Bbid, password, QStringLiteral("Fen Lodge"));
        const ServerLogin login{QStringLiteral("127.0.0.1:%1").arg(rig.port), Bbid, password, 1, QStringLiteral("fenlark")};
        const PostResult right = HttpTransport(5000).post(synchUrl(login, QStringLiteral("pcsynch")), message("[]"));
        QVERIFY(right.ok);
        QVERIFY2(right.reply.contains(QLatin1String("\"success\":true")), qPrintable(right.reply));
        ServerLogin cut = login;
        cut.password = QStringLiteral("Ab");
        QVERIFY(HttpTransport(5000).post(synchUrl(cut, QStringLiteral("pcsynch")), message("[]")).reply.contains(QLatin1String("401")));
    }
};

QTEST_GUILESS_MAIN(TestReferenceServer)
#include "test_referenceserver.moc"

#include "hostileserver.h"
#include "server/httpfront.h"
#include "server/referenceserver.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/errorlog.h"
#include "synch/synch.h"
#include "synch/transport.h"

#include "support/databasedump.h"
#include "support/testdatabase.h"

#include <QProcess>
#include <QSqlQuery>
#include <QtTest>

#include <sys/resource.h>

using namespace fenlark;
using namespace fenlark::server;

namespace {

constexpr qint32 Bbid = 12345;
const QString Password = QStringLiteral("s3cret");

QString dump(Database &db)
{
    return dumpDatabase(db.connection());
}

// One change of a client, and every other entry of a reply around it.
QByteArray exchangeReply(const QByteArray &logupdates, const QByteArray &acknowledgements = "[]", const QByteArray &requests = "[]")
{
    return "{\"success\":true,\"data\":{\"requests\":" + requests + ",\"acknowledgements\":" + acknowledgements
        + ",\"logupdates\":" + logupdates + "}}";
}

// The desk's database with changes waiting, a reference server to end every case
// with a clean run, and a hostile server on loopback.
class Rig {
public:
    Rig()
    {
        t.db().execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (?,?,?)"), {Bbid, QStringLiteral("Fen Lodge"), Password});
        t.db().execute(QStringLiteral("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values (1, 1, 'Heron', 1), (2, 1, 'Otter', 2)"));
        t.db().execute(QStringLiteral("insert into stock (BBStockID, StockName, Price) values (1, 'Wine', 12.5)"));
        static int serial = 0;
        const QString storePath = serverDir.filePath(QStringLiteral("server.db"));
        store = std::make_unique<ReferenceServer>(storePath, QStringLiteral("hostile-%1").arg(++serial));
        store->seedFromDesk(t.db().path());
        front = std::make_unique<HttpFront>(storePath);
        cleanPort = front->listen(QHostAddress::LocalHost, 0);
        addChange(QStringLiteral("Walker"));
    }

    // A client made at the desk, waiting in the change log.
    qint32 addChange(const QString &surname)
    {
        t.db().execute(QStringLiteral("insert into client (Surname) values (?)"), {surname});
        const qint32 id = static_cast<qint32>(t.db().lastInsertId());
        ChangeLog::logUpdate(t.db(), QStringLiteral("client"), id);
        return id;
    }

    SynchSummary run(quint16 port, int timeoutMs = 5000, const QString &password = Password)
    {
        HttpTransport transport(timeoutMs);
        Synch synch(t.db(), transport);
        ServerLogin login;
        login.server = QStringLiteral("127.0.0.1:%1").arg(port);
        login.bbid = Bbid;
        login.password = password;
        synch.setLogin(login);
        synch.setSynchCounter(t.db().scalar(QStringLiteral("select SynchCounter from bbsetup")).toString());
        synch.synchronise();
        return synch.summary();
    }

    // The hostile run fails with the expected reason, and leaves the database as it
    // was and no lock; then a run against the real server goes through.
    void verifyRefusedAndRecoverable(const QString &reason, int timeoutMs = 5000)
    {
        const QString before = dump(t.db());
        const SynchSummary hostile = run(hostileServer.port(), timeoutMs);
        QVERIFY(!hostile.success);
        QVERIFY(!hostile.errors.isEmpty());
        QVERIFY2(hostile.errors.join(QLatin1Char('|')).contains(reason, Qt::CaseInsensitive),
                 qPrintable(hostile.errors.join(QLatin1Char('|')).left(400)));
        QCOMPARE(dump(t.db()), before);
        QCOMPARE(locks(), 0);
        const SynchSummary clean = run(cleanPort);
        QVERIFY2(clean.success, qPrintable(clean.errors.join(QLatin1Char('|'))));
        QCOMPARE(ChangeLog::count(t.db()), 0);
        addChange(QStringLiteral("Next"));
    }

    int locks() { return t.db().scalar(QStringLiteral("select count(*) from synchlock")).toInt(); }
    QString ctl() const { return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlarkctl")); }
    void pointConfigAt(const QString &address)
    {
        QFile ini(t.file(QStringLiteral("vmconfig.ini")));
        QVERIFY(ini.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ini.write(QStringLiteral("[Param]\nServer=%1\n").arg(address).toUtf8());
    }

    TestDatabase t;
    QTemporaryDir serverDir;
    std::unique_ptr<ReferenceServer> store;
    std::unique_ptr<HttpFront> front;
    quint16 cleanPort = 0;
    HostileServer hostileServer;
};

const QByteArray ClientOpening = "{\"success\":true,\"data\":{\"logupdates\":[";
QByteArray clientPiece()
{
    QByteArray piece;
    while (piece.size() < 64 * 1024)
        piece += "{\"tablename\":\"client\",\"logtype\":\"D\",\"dblogid\":1,\"tableid\":1},";
    return piece;
}

// A client row whose BBRateSheetID, an integer column, is the given text.
QByteArray clientWith(const QByteArray &column, const QByteArray &value, const QByteArray &tableId = "701")
{
    return "[{\"tablename\":\"client\",\"logtype\":\"U\",\"dblogid\":1,\"tableid\":" + tableId + ",\"values\":{\"ClientID\":" + tableId
        + ",\"Surname\":\"Hostile\",\"" + column + "\":" + value + "}}]";
}

// gcc says so with a macro, clang through __has_feature.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FENLARK_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define FENLARK_ASAN 1
#endif

bool builtWithAddressSanitizer()
{
#if defined(FENLARK_ASAN)
    return true;
#else
    return false;
#endif
}

// The largest resident size, in MiB, of any child this process has waited for.
long childPeakMiB()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_maxrss / 1024;
}

} // namespace

class TestHostileReplies : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_rig = std::make_unique<Rig>(); }
    void cleanupTestCase() { m_rig.reset(); }

    // Each reply fails the run with its reason and changes nothing; the next clean
    // run goes through.
    void hostileExchangeRepliesFailAndChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("reason");

        QTest::newRow("declared length past 64 MiB") << httpAnswer("{}", 200, "OK", "Content-Length: 67108865\r\n") << "larger than 64 MiB";
        QTest::newRow("body past 64 MiB") << httpAnswer(ClientOpening + QByteArray(64 * 1024 * 1024, ' ')) << "larger than 64 MiB";
        QTest::newRow("length longer than the body") << httpAnswer(exchangeReply("[]"), 200, "OK", "Content-Length: 5000\r\n") << "broke off";
        QTest::newRow("length shorter than the body") << httpAnswer(exchangeReply("[]"), 200, "OK", "Content-Length: 20\r\n") << "could not be applied";
        QTest::newRow("HTTP 500") << httpAnswer("oops", 500, "Internal Server Error") << "HTTP 500";
        QTest::newRow("HTTP 404") << httpAnswer("gone", 404, "Not Found") << "HTTP 404";
        QTest::newRow("redirect elsewhere") << httpAnswer("", 302, "Found", "Location: http://127.0.0.1:1/x\r\n") << "HTTP 302";
        QTest::newRow("not JSON") << httpAnswer("<html>502 Bad Gateway</html>") << "Nothing From Server";
        QTest::newRow("invalid UTF-8") << httpAnswer(exchangeReply(clientWith("Notes", "\"M\xfcller\""))) << "not valid UTF-8";
        QTest::newRow("duplicate JSON key") << httpAnswer("{\"success\":true,\"success\":false,\"data\":{}}") << "already associated";
        QTest::newRow("deep nesting") << httpAnswer("{\"success\":true,\"data\":" + QByteArray(5000, '[')) << "too deep";
        QTest::newRow("many small entries") << httpAnswer(exchangeReply("[" + QByteArray("{},").repeated(Synch::MaxEntriesPerList) + "{}]"))
                                           << "more than 250000 entries";
        QTest::newRow("error reply") << httpAnswer("{\"success\":false,\"error\":{\"code\":7,\"message\":\"closed for the winter\"}}")
                                     << "closed for the winter";

        QTest::newRow("negative server id") << httpAnswer(exchangeReply(clientWith("Notes", "\"x\"", "-4"))) << "without a server id";
        QTest::newRow("zero server id") << httpAnswer(exchangeReply(clientWith("Notes", "\"x\"", "0"))) << "without a server id";
        QTest::newRow("negative reference") << httpAnswer(exchangeReply(
            "[{\"tablename\":\"account\",\"logtype\":\"U\",\"dblogid\":1,\"tableid\":9,\"values\":{\"InvoiceTo\":{\"table\":\"client\",\"tableid\":-2}}}]"))
                                            << "bad reference";
        QTest::newRow("reference in a text column") << httpAnswer(exchangeReply(clientWith("Notes", "{\"table\":\"client\",\"tableid\":3}")))
                                                    << "bad reference";
        QTest::newRow("reference to a row no one sends") << httpAnswer(exchangeReply(
            "[{\"tablename\":\"account\",\"logtype\":\"U\",\"dblogid\":1,\"tableid\":9,\"values\":{\"InvoiceTo\":{\"table\":\"client\",\"tableid\":424242}}}]"))
                                                         << "three exchanges";
        QTest::newRow("negative acknowledged id") << httpAnswer(exchangeReply("[]", "[{\"tablename\":\"client\",\"dblogid\":1,\"tableid\":-1,\"bbtableid\":1}]"))
                                                  << "malformed acknowledgement";
        QTest::newRow("one server id for two rows") << httpAnswer(exchangeReply(
            "[]", "[{\"tablename\":\"client\",\"dblogid\":999,\"tableid\":77,\"bbtableid\":1},{\"tablename\":\"client\",\"dblogid\":999,\"tableid\":77,\"bbtableid\":2}]"))
                                                    << "already belongs to another row";

        // Numbers that are no value of their column, in every kind of numeric place.
        const QList<QByteArray> numbers = {"1e999", "-1e999", "NaN", "Infinity", "-Infinity", "1.5.5e3", "1e", "2147483648",
                                           "-2147483649", "99999999999999999999", "\"1e999\"", "\"NaN\"", "\"12abc\""};
        for (const QByteArray &n : numbers) {
            QTest::addRow("integer column %s", n.constData()) << httpAnswer(exchangeReply(clientWith("BBRateSheetID", n))) << "";
            QTest::addRow("real column %s", n.constData()) << httpAnswer(exchangeReply(
                "[{\"tablename\":\"payment\",\"logtype\":\"U\",\"dblogid\":1,\"tableid\":61,\"values\":{\"PaymentID\":61,\"Amount\":" + n + "}}]"))
                                                           << "";
        }
        QTest::newRow("integer column 1.5") << httpAnswer(exchangeReply(clientWith("BBRateSheetID", "1.5"))) << "whole number";
        for (const QByteArray &n : {QByteArray("1e999"), QByteArray("NaN"), QByteArray("2147483648"), QByteArray("1.5.5e3"), QByteArray("\"1e999\"")}) {
            QTest::addRow("daily rate %s", n.constData()) << httpAnswer(exchangeReply(
                "[{\"tablename\":\"booking\",\"logtype\":\"U\",\"dblogid\":1,\"tableid\":81,\"values\":{\"BookingID\":81,\"FromDate\":\"2027-01-10\",\"ToDate\":\"2027-01-12\"}},"
                "{\"tablename\":\"guest\",\"logtype\":\"U\",\"dblogid\":2,\"tableid\":82,\"values\":{\"GuestID\":82,\"BBBookingID\":{\"table\":\"booking\",\"tableid\":81},"
                "\"BBRoomID\":1,\"dailyrates\":[{\"caldate\":\"2027-01-10\",\"roomrate\":" + n + "}]}}]"))
                                                          << "";
            QTest::addRow("server id %s", n.constData()) << httpAnswer(exchangeReply(clientWith("Notes", "\"x\"", n))) << "";
            QTest::addRow("reference id %s", n.constData()) << httpAnswer(exchangeReply(
                "[{\"tablename\":\"account\",\"logtype\":\"U\",\"dblogid\":1,\"tableid\":9,\"values\":{\"InvoiceTo\":{\"table\":\"client\",\"tableid\":" + n + "}}}]"))
                                                            << "";
            QTest::addRow("acknowledged id %s", n.constData()) << httpAnswer(exchangeReply(
                "[]", "[{\"tablename\":\"client\",\"dblogid\":1,\"tableid\":" + n + ",\"bbtableid\":1}]"))
                                                               << "";
        }
    }

    void hostileExchangeRepliesFailAndChangeNothing()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, reason);
        m_rig->hostileServer.answerSetup({});
        m_rig->hostileServer.answerExchanges(answer);
        m_rig->verifyRefusedAndRecoverable(reason);
    }

    void endlessReplyFailsAtTheLimit()
    {
        m_rig->hostileServer.answerEndlessly(ClientOpening, clientPiece());
        m_rig->verifyRefusedAndRecoverable(QStringLiteral("larger than 64 MiB"), 60000);
    }

    // A small full reply, cut just after every bracket, brace, quote, colon and
    // comma, and inside every number.
    void replyCutAtEveryStructuralPositionChangesNothing()
    {
        const QByteArray reply = exchangeReply(
            "[{\"tablename\":\"booking\",\"logtype\":\"U\",\"dblogid\":3,\"tableid\":91,\"values\":{\"BookingID\":91,\"FromDate\":\"2027-02-01\","
            "\"ToDate\":\"2027-02-03\",\"Deposit\":12.5}},{\"tablename\":\"guest\",\"logtype\":\"U\",\"dblogid\":4,\"tableid\":92,\"values\":"
            "{\"GuestID\":92,\"BBBookingID\":{\"table\":\"booking\",\"tableid\":91},\"BBRoomID\":2,\"dailyrates\":[{\"caldate\":\"2027-02-01\",\"roomrate\":80}]}}]",
            "[{\"tablename\":\"client\",\"dblogid\":1,\"tableid\":93,\"bbtableid\":1}]");
        QList<int> cuts;
        for (int i = 1; i < reply.size(); ++i) {
            const char before = reply[i - 1], at = reply[i];
            const bool structural = QByteArray("{}[]\":,").contains(before);
            const bool insideNumber = std::isdigit(static_cast<unsigned char>(before)) && (std::isdigit(static_cast<unsigned char>(at)) || at == '.');
            if (structural || insideNumber)
                cuts << i;
        }
        QVERIFY(cuts.size() > 80);
        HttpTransport transport(5000);
        const QString before = dump(m_rig->t.db());
        for (const int cut : cuts) {
            m_rig->hostileServer.answerExchanges(httpAnswer(reply.left(cut)));
            Synch synch(m_rig->t.db(), transport);
            synch.setLogin({m_rig->hostileServer.address(), Bbid, Password, 0, QString()});
            synch.setSkipSetup(true);
            QVERIFY2(!synch.synchronise(), qPrintable(QString::fromLatin1(reply.left(cut))));
            QCOMPARE(dump(m_rig->t.db()), before);
        }
        QCOMPARE(m_rig->locks(), 0);
        // The whole reply is good and applies.
        m_rig->hostileServer.answerExchanges(httpAnswer(reply));
        m_rig->run(m_rig->hostileServer.port());
        QCOMPARE(m_rig->t.db().scalar(QStringLiteral("select count(*) from dailyrate where BBRoomID = 2")).toInt(), 2);
    }

    void setupReplyCutInsideEachTableChangesNothing_data()
    {
        QTest::addColumn<QString>("table");
        for (const char *table : {"room", "roomtype", "stock", "vatcode"})
            QTest::newRow(table) << QString::fromLatin1(table);
    }

    void setupReplyCutInsideEachTableChangesNothing()
    {
        QFETCH(QString, table);
        const QByteArray setup = "{\"success\":true,\"data\":{"
                                 "\"room\":[{\"bbroomid\":1,\"roomname\":\"Heron\"},{\"bbroomid\":2,\"roomname\":\"Otter\"},{\"bbroomid\":3,\"roomname\":\"Teal\"}],"
                                 "\"roomtype\":[{\"bbrtid\":1,\"rtname\":\"Double\"},{\"bbrtid\":2,\"rtname\":\"Single\"}],"
                                 "\"stock\":[{\"bbstockid\":1,\"stockname\":\"Wine\",\"price\":13.5},{\"bbstockid\":2,\"stockname\":\"Tea\",\"price\":2}],"
                                 "\"vatcode\":[{\"vatcode\":1,\"vatrate\":15},{\"vatcode\":2,\"vatrate\":0}]}}";
        // Cut after the first row of the table, in the middle of the second.
        const qsizetype at = setup.indexOf("\"" + table.toLatin1() + "\":[");
        const qsizetype cut = setup.indexOf("},{", at) + 8;
        m_rig->hostileServer.answerSetup(httpAnswer(setup.left(cut)));
        m_rig->hostileServer.answerExchanges(httpAnswer(exchangeReply("[]")));
        m_rig->verifyRefusedAndRecoverable(QStringLiteral("could not be applied"));
        // Whole, the same reply replaces the tables in one piece (the exchange after it,
        // which acknowledges nothing, is no matter here).
        m_rig->hostileServer.answerSetup(httpAnswer(setup));
        m_rig->run(m_rig->hostileServer.port());
        QCOMPARE(m_rig->t.db().scalar(QStringLiteral("select count(*) from room")).toInt(), 3);
        m_rig->hostileServer.answerSetup({});
    }

    void setupWithBadKeysOrNumbersChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("rooms");
        QTest::addColumn<QString>("reason");
        QTest::newRow("duplicate key") << QByteArray("[{\"bbroomid\":1},{\"bbroomid\":1}]") << "UNIQUE";
        QTest::newRow("negative key") << QByteArray("[{\"bbroomid\":-1}]") << "not a key";
        QTest::newRow("missing key") << QByteArray("[{\"roomname\":\"Nowhere\"}]") << "not a key";
        QTest::newRow("integer column 1e999") << QByteArray("[{\"bbroomid\":1,\"orderby\":1e999}]") << "Invalid number";
        QTest::newRow("integer column overflow") << QByteArray("[{\"bbroomid\":1,\"orderby\":2147483648}]") << "Overflow";
        QTest::newRow("integer column NaN text") << QByteArray("[{\"bbroomid\":1,\"orderby\":\"NaN\"}]") << "whole number";
        QTest::newRow("real column Infinity") << QByteArray("[{\"bbroomid\":1}],\"stock\":[{\"bbstockid\":1,\"price\":Infinity}]") << "Type mismatch";
        QTest::newRow("real column 1.5.5e3") << QByteArray("[{\"bbroomid\":1}],\"stock\":[{\"bbstockid\":1,\"price\":1.5.5e3}]") << "Invalid number";
        QTest::newRow("synconly not a number") << QByteArray() << "synconly";
    }

    void setupWithBadKeysOrNumbersChangesNothing()
    {
        QFETCH(QByteArray, rooms);
        QFETCH(QString, reason);
        m_rig->hostileServer.answerSetup(httpAnswer(rooms.isEmpty() ? QByteArray("{\"success\":true,\"synconly\":\"soon\"}")
                                                                    : "{\"success\":true,\"data\":{\"room\":" + rooms + "}}"));
        m_rig->verifyRefusedAndRecoverable(reason);
        m_rig->hostileServer.answerSetup({});
    }

    // A local key the server names that does not exist here is not taken: the row
    // gets the next key of its own, and the receipt says which.
    void serverNamedLocalKeysGetFreshKeys()
    {
        const qint32 highest = m_rig->t.db().scalar(QStringLiteral("select max(BBClientID) from client")).toInt();
        m_rig->hostileServer.answerExchanges(httpAnswer(exchangeReply(
            "[{\"tablename\":\"client\",\"logtype\":\"U\",\"dblogid\":5,\"tableid\":601,\"values\":{\"ClientID\":601,\"BBClientID\":2147483647,\"Surname\":\"Far\"}},"
            "{\"tablename\":\"client\",\"logtype\":\"U\",\"dblogid\":6,\"tableid\":602,\"values\":{\"ClientID\":602,\"BBClientID\":-5,\"Surname\":\"Below\"}}]")));
        m_rig->hostileServer.bodies.clear();
        m_rig->run(m_rig->hostileServer.port());
        QCOMPARE(m_rig->t.db().scalar(QStringLiteral("select BBClientID from client where ClientID = 601")).toInt(), highest + 1);
        QCOMPARE(m_rig->t.db().scalar(QStringLiteral("select BBClientID from client where ClientID = 602")).toInt(), highest + 2);
        QVERIFY(m_rig->hostileServer.bodies.size() >= 2);
        QVERIFY(m_rig->hostileServer.bodies[1].contains(QStringLiteral("\"tableid\":601,\"bbtableid\":%1").arg(highest + 1).toLatin1()));
        QCOMPARE(m_rig->addChange(QStringLiteral("Local")), highest + 3);
        QVERIFY(m_rig->run(m_rig->cleanPort).success);
    }

    // The password goes encoded and whole, logs on, and no part of it reaches a
    // log, even when a server echoes it back.
    void passwordWithSpecialCharactersLogsOnAndNeverReachesALog()
    {
        const QString password = QStringLiteral("Ab&cd9 #%+\u00e9");
        m_rig->t.db().execute(QStringLiteral("update bbsetup set Password = ?"), {password});
        m_rig->store->createProperty(Bbid, password, QStringLiteral("Fen Lodge"));
        const SynchSummary clean = m_rig->run(m_rig->cleanPort, 5000, password);
        QVERIFY2(clean.success, qPrintable(clean.errors.join(QLatin1Char('|'))));

        m_rig->hostileServer.targets.clear();
        m_rig->hostileServer.answerExchanges(httpAnswer("{\"success\":false,\"error\":{\"code\":401,\"message\":\"wrong password "
                                                        + password.toUtf8() + " / Ab%26cd9%20%23%25%2B%E9\"}}"));
        const SynchSummary refused = m_rig->run(m_rig->hostileServer.port(), 5000, password);
        QVERIFY(refused.refused);
        QVERIFY(m_rig->hostileServer.targets.value(0).contains("&p=Ab%26cd9%20%23%25%2B%E9&"));
        for (const QString &log : {m_rig->t.file(QStringLiteral("synch.err")), ErrorLog::path()}) {
            QFile file(log);
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const QByteArray text = file.readAll();
            QVERIFY2(!text.contains("cd9"), text.constData());
        }
        for (const QString &error : refused.errors)
            QVERIFY(!error.contains(QLatin1String("cd9")));
        m_rig->store->createProperty(Bbid, Password, QStringLiteral("Fen Lodge"));
        m_rig->t.db().execute(QStringLiteral("update bbsetup set Password = ?"), {Password});
    }

    void aHugeErrorMessageIsCutInTheLog()
    {
        QFile::remove(m_rig->t.file(QStringLiteral("synch.err")));
        m_rig->hostileServer.answerExchanges(httpAnswer("{\"success\":false,\"error\":{\"code\":1,\"message\":\"" + QByteArray(10 * 1024 * 1024, 'x') + "\"}}"));
        QVERIFY(!m_rig->run(m_rig->hostileServer.port()).success);
        QVERIFY(QFileInfo(m_rig->t.file(QStringLiteral("synch.err"))).size() <= ErrorLog::MaxMessageBytes + 1);
    }

    // fenlarkctl against a reply that never ends: it fails with the reason, within
    // bounded memory (under prlimit where the build allows it), leaving no lock.
    void endlessReplyInAChildProcessStaysWithinBoundedMemory()
    {
        if (!QFileInfo(m_rig->ctl()).isExecutable())
            QSKIP("fenlarkctl is not built beside the tests");
        m_rig->pointConfigAt(m_rig->hostileServer.address());
        m_rig->hostileServer.answerEndlessly(ClientOpening, clientPiece());
        const QString before = dump(m_rig->t.db());
        QProcess child;
        const QStringList args = {QStringLiteral("synch"), QStringLiteral("--home"), m_rig->t.home(), QStringLiteral("--db"), m_rig->t.db().path()};
        // AddressSanitizer reserves terabytes of address space, so only a plain build can be capped.
        if (builtWithAddressSanitizer())
            child.start(m_rig->ctl(), args);
        else
            child.start(QStringLiteral("prlimit"), QStringList{QStringLiteral("--as=1073741824"), m_rig->ctl()} + args);
        QVERIFY(child.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(child.state() == QProcess::NotRunning, 120000);
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 1);
        QVERIFY(child.readAllStandardError().contains("larger than 64 MiB"));
        QVERIFY2(childPeakMiB() < (builtWithAddressSanitizer() ? 900 : 400), qPrintable(QString::number(childPeakMiB())));
        QCOMPARE(dump(m_rig->t.db()), before);
        QCOMPARE(m_rig->locks(), 0);
    }

    void fenlarkctlExitCodesTellFailureRefusalAndLock()
    {
        if (!QFileInfo(m_rig->ctl()).isExecutable())
            QSKIP("fenlarkctl is not built beside the tests");
        m_rig->pointConfigAt(m_rig->hostileServer.address());
        m_rig->hostileServer.answerExchanges(httpAnswer("<html>"));
        QCOMPARE(runCtl(), 1);
        m_rig->hostileServer.answerExchanges(httpAnswer("{\"success\":false,\"error\":{\"code\":9,\"message\":\"no\"}}"));
        QCOMPARE(runCtl(), 3);
        m_rig->hostileServer.answerSetup(httpAnswer("{\"success\":true,\"loginfail\":1}"));
        QCOMPARE(runCtl(), 3);
        m_rig->hostileServer.answerSetup({});
        m_rig->t.db().execute(QStringLiteral("insert into synchlock (locktime) values (?)"), {sqlDateTime(QDateTime::currentDateTime())});
        QCOMPARE(runCtl(), 4);
        QCOMPARE(m_rig->locks(), 1);
        m_rig->t.db().execute(QStringLiteral("delete from synchlock"));
        m_rig->pointConfigAt(QStringLiteral("127.0.0.1:%1").arg(m_rig->cleanPort));
        QCOMPARE(runCtl(), 0);
    }

private:
    // "fenlarkctl synch" on the rig's database; its exit code, -1 when it did not end.
    int runCtl()
    {
        QProcess child;
        child.start(m_rig->ctl(), {QStringLiteral("synch"), QStringLiteral("--home"), m_rig->t.home(), QStringLiteral("--db"), m_rig->t.db().path()});
        if (!child.waitForStarted())
            return -1;
        QDeadlineTimer deadline(60000);
        while (child.state() != QProcess::NotRunning && !deadline.hasExpired())
            QTest::qWait(20);
        return child.state() == QProcess::NotRunning && child.exitStatus() == QProcess::NormalExit ? child.exitCode() : -1;
    }

    std::unique_ptr<Rig> m_rig;
};

QTEST_GUILESS_MAIN(TestHostileReplies)
#include "test_hostilereplies.moc"

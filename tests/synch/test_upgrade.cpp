// The software upgrade against a server on loopback: the reference server for the
// whole road, and a scripted one for replies the reference server never gives.
#include "server/httpfront.h"
#include "server/referenceserver.h"
#include "shell/backup.h"
#include "shell/config.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "synch/httpfetch.h"
#include "synch/upgrade.h"

#include "support/testdatabase.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

using namespace fenlark;
using namespace fenlark::server;

namespace {

constexpr qint32 Bbid = 12345;
const QString Password = QStringLiteral("s3cret");
const QString Offered = QStringLiteral("99.1.0");
const QByteArray Package = QByteArray("!<arch>\ndebian-binary   0           0     0     100644  4         `\n2.0\n");

// Answers every request with the same body, as plain HTTP/1.1, and notes the
// request line and body of the last one.
class ScriptedServer : public QTcpServer {
public:
    QByteArray body;
    QByteArray method;
    QByteArray query;
    QByteArray requestBody;

    quint16 start()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
        });
        return listen(QHostAddress::LocalHost, 0) ? serverPort() : 0;
    }

private:
    void read(QTcpSocket *socket)
    {
        QByteArray &seen = m_pending[socket];
        seen += socket->readAll();
        const qsizetype headEnd = seen.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        const QByteArray head = seen.left(headEnd);
        qsizetype length = 0;
        for (const QByteArray &line : head.split('\n')) {
            if (line.toLower().startsWith("content-length:"))
                length = line.mid(15).trimmed().toLongLong();
        }
        if (seen.size() < headEnd + 4 + length)
            return;
        const QList<QByteArray> requestLine = head.left(head.indexOf("\r\n")).split(' ');
        method = requestLine.value(0);
        query = requestLine.value(1).mid(requestLine.value(1).indexOf('?') + 1);
        requestBody = seen.mid(headEnd + 4, length);
        m_pending.remove(socket);
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\nContent-Length: "
                      + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QHash<QTcpSocket *, QByteArray> m_pending;
};

// A desk home folder with one property database, and the reference server on loopback.
class Rig {
public:
    Rig()
    {
        addProperty(t.db());
        writeConfig(QStringLiteral("Database"), t.db().path());
        writeConfig(QStringLiteral("BackupDir"), t.file(QStringLiteral("backups")));
        static int serial = 0;
        store = std::make_unique<ReferenceServer>(serverDir.filePath(QStringLiteral("server.db")), QStringLiteral("upgrade-%1").arg(++serial));
        store->createProperty(Bbid, Password, QStringLiteral("Fen Lodge"));
        front = std::make_unique<HttpFront>(serverDir.filePath(QStringLiteral("server.db")));
        port = front->listen(QHostAddress::LocalHost, 0);
        writeConfig(QStringLiteral("Server"), server());
    }

    static void addProperty(Database &db)
    {
        db.execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (?,?,?)"), {Bbid, QStringLiteral("Fen Lodge"), Password});
    }

    QString server() const { return QStringLiteral("127.0.0.1:%1").arg(port); }

    void offer(const QString &version, const QByteArray &bytes = Package, const QString &notes = QStringLiteral("Faster calendar."))
    {
        store->offerUpgrade({version, QStringLiteral("fenlark_%1_amd64.deb").arg(version), notes, bytes});
    }

    ServerLogin login(const QString &password = Password) const
    {
        ServerLogin l;
        l.server = server();
        l.bbid = Bbid;
        l.password = password;
        return l;
    }

    TestDatabase t;
    QTemporaryDir serverDir;
    std::unique_ptr<ReferenceServer> store;
    std::unique_ptr<HttpFront> front;
    quint16 port = 0;
};

} // namespace

class TestUpgrade : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void checkPassesOnlyOnTheExactReplyOK_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("refusalId");    // 0: the check passes
        QTest::addColumn<QString>("reason");   // shown in the refusal's text
        QTest::newRow("OK") << QByteArray("OK") << 0 << QString();
        QTest::newRow("trailing blank") << QByteArray("OK ") << 7302 << QStringLiteral("Reason: OK \n");
        QTest::newRow("line end") << QByteArray("OK\r\n") << 7302 << QStringLiteral("Reason: OK\r\n");
        QTest::newRow("lower case") << QByteArray("ok") << 7302 << QStringLiteral("Reason: ok\n");
        QTest::newRow("a reason") << QByteArray("Licence expired") << 7302 << QStringLiteral("Reason: Licence expired\n");
        QTest::newRow("empty") << QByteArray() << 2012 << QStringLiteral("try to run the upgrade program again.");
        QTest::newRow("binary") << QByteArray("\x00\x01OK", 4) << 7302 << QStringLiteral("The server's reply is not text.");
        QTest::newRow("not UTF-8") << QByteArray("O\xffK") << 7302 << QStringLiteral("The server's reply is not text.");
        QTest::newRow("accented") << QByteArray("Mise \xc3\xa0 jour refus\xc3\xa9") << 7302 << QStringLiteral("Mise à jour refusé");
    }
    void checkPassesOnlyOnTheExactReplyOK()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, refusalId);
        QFETCH(QString, reason);
        TestDatabase t;
        ScriptedServer server;
        server.body = reply;
        ServerLogin login;
        login.server = QStringLiteral("127.0.0.1:%1").arg(server.start());
        login.bbid = Bbid;
        login.password = Password;
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, login);
        QStringList progress;
        upgrade.setProgress([&](const QString &line) { progress << line; });
        const Outcome outcome = upgrade.check();
        QCOMPARE(outcome.ok(), refusalId == 0);
        if (refusalId != 0) {
            QCOMPARE(outcome.refusal().id(), refusalId);
            QVERIFY2(outcome.refusal().text().contains(reason), qPrintable(outcome.refusal().text()));
            QCOMPARE(progress.contains(QStringLiteral("Connection Timeout...")), refusalId == 2012);
        }
        QCOMPARE(server.method, QByteArray("POST"));
        QVERIFY(server.requestBody.isEmpty());
        QCOMPARE(server.query, QByteArray("a=upgrade&bbid=12345&p=s3cret"));
    }

    void aHugeReplyIsReadOneChunkAndRefused()
    {
        TestDatabase t;
        ScriptedServer server;
        server.body = QByteArray("OK") + QByteArray(8 * 1024 * 1024, 'x');
        ServerLogin login;
        login.server = QStringLiteral("127.0.0.1:%1").arg(server.start());
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, login);
        const Outcome outcome = upgrade.check();
        QVERIFY(!outcome.ok());
        QCOMPARE(outcome.refusal().id(), 7302);
        QCOMPARE(upgrade.reply().size(), qsizetype(SoftwareUpgrade::ReplyChunk));
    }

    void noServerIsAConnectionFailure()
    {
        TestDatabase t;
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost, 0));
        ServerLogin login;
        login.server = QStringLiteral("127.0.0.1:%1").arg(closed.serverPort());
        closed.close();
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, login);
        const Outcome outcome = upgrade.check();
        QVERIFY(!outcome.ok());
        QCOMPARE(outcome.refusal().id(), 2012);
        QCOMPARE(outcome.refusal().titleId(), 2015);
    }

    void referenceServerAllowsOnlyARightLoginWhileAReleaseIsOffered()
    {
        Rig rig;
        HttpFetch fetch(5000);
        {
            SoftwareUpgrade upgrade(fetch, rig.login());
            const Outcome nothingOffered = upgrade.check();
            QVERIFY(!nothingOffered.ok());
            QCOMPARE(upgrade.reply(), QStringLiteral("No upgrade is available."));
        }
        rig.offer(Offered);
        {
            SoftwareUpgrade upgrade(fetch, rig.login(QStringLiteral("wrong")));
            QVERIFY(!upgrade.check().ok());
            QCOMPARE(upgrade.reply(), QStringLiteral("Incorrect BBID / Password"));
        }
        SoftwareUpgrade upgrade(fetch, rig.login());
        QVERIFY(upgrade.check().ok());
        rig.store->offerUpgrade({});
        QVERIFY(!upgrade.check().ok());
    }

    void offerNamesVersionNotesAndDownloadAddress()
    {
        Rig rig;
        rig.offer(Offered);
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, rig.login());
        const Result<UpgradeOffer> offer = upgrade.fetchOffer();
        QVERIFY(offer.ok());
        QCOMPARE(offer->version, Offered);
        QCOMPARE(offer->package, QStringLiteral("fenlark_99.1.0_amd64.deb"));
        QCOMPARE(offer->notes, QStringLiteral("Faster calendar."));
        QCOMPARE(offer->downloadUrl, QStringLiteral("http://%1/download/fenlark_99.1.0_amd64.deb").arg(rig.server()));
        QVERIFY(offer->newer);

        rig.offer(QStringLiteral(FENLARK_VERSION));
        const Result<UpgradeOffer> same = upgrade.fetchOffer();
        QVERIFY(same.ok());
        QVERIFY(!same->newer);
    }

    void upgradeBacksUpEveryConfiguredDatabaseThenDownloadsThePackage()
    {
        Rig rig;
        // A machine with two properties: both are backed up, the first one's login is used.
        auto beach = Database::open(rig.t.file(QStringLiteral("beach.db")));
        Rig::addProperty(*beach);
        writeConfig(QStringLiteral("Database1"), QStringLiteral("{Main}") + rig.t.db().path());
        writeConfig(QStringLiteral("Database2"), QStringLiteral("{Beach}") + beach->path());
        QCOMPARE(firstDatabaseLogin().bbid, Bbid);
        QCOMPARE(firstDatabaseLogin().server, rig.server());

        // Something of an earlier attempt is cleared away.
        QVERIFY(QDir().mkpath(SoftwareUpgrade::upgradeFolder() + QStringLiteral("/old")));
        rig.offer(Offered);
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, firstDatabaseLogin());
        QStringList progress;
        upgrade.setProgress([&](const QString &line) { progress << line; });
        QVERIFY(upgrade.check().ok());
        const Result<UpgradeOffer> offer = upgrade.fetchOffer();
        QVERIFY(offer.ok());
        const Result<UpgradeDownload> ready = upgrade.upgradeSoftware(*offer);
        QVERIFY2(ready.ok(), ready.ok() ? "" : qPrintable(ready.refusal().text()));

        QCOMPARE(ready->backedUp, (QStringList{rig.t.db().path(), beach->path()}));
        const QString backups = rig.t.file(QStringLiteral("backups/"));
        QVERIFY(QFileInfo::exists(backups + Backup::rotationFileName(1, 1)));
        QVERIFY(QFileInfo::exists(backups + Backup::rotationFileName(2, 1)));
        QCOMPARE(progress, (QStringList{QStringLiteral("Backing up databases..."), QStringLiteral("Downloading new software...")}));

        QCOMPARE(ready->packagePath, SoftwareUpgrade::upgradeFolder() + QStringLiteral("/fenlark_99.1.0_amd64.deb"));
        QFile package(ready->packagePath);
        QVERIFY(package.open(QIODevice::ReadOnly));
        QCOMPARE(package.readAll(), Package);
        QVERIFY(!QFileInfo::exists(SoftwareUpgrade::upgradeFolder() + QStringLiteral("/old")));

        const QString told = installInstructions(*ready);
        QVERIFY(told.contains(QStringLiteral("Fenlark 99.1.0 is ready to install.")));
        QVERIFY(told.contains(QStringLiteral("Faster calendar.")));
        QVERIFY(told.contains(QStringLiteral("sudo apt install ") + ready->packagePath));
        QVERIFY(told.contains(offer->downloadUrl));
    }

    void aDownloadThatIsNotAPackageFailsAfterTheBackupAndLeavesNoFile()
    {
        Rig rig;
        rig.offer(Offered, QByteArray("<html>502 Bad Gateway</html>"));
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, rig.login());
        const Result<UpgradeOffer> offer = upgrade.fetchOffer();
        QVERIFY(offer.ok());
        const Result<UpgradeDownload> ready = upgrade.upgradeSoftware(*offer);
        QVERIFY(!ready.ok());
        QCOMPARE(ready.refusal().id(), 7317);
        QCOMPARE(ready.refusal().titleId(), 7316);
        QVERIFY(QFileInfo::exists(rig.t.file(QStringLiteral("backups/")) + Backup::rotationFileName(0, 1)));
        QVERIFY(QDir(SoftwareUpgrade::upgradeFolder()).isEmpty());
    }

    void aPackageTheServerDoesNotHaveIsAConnectionFailure()
    {
        Rig rig;
        rig.offer(Offered);
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, rig.login());
        UpgradeOffer offer = *upgrade.fetchOffer();
        offer.downloadUrl += QStringLiteral(".missing");
        const Result<UpgradeDownload> ready = upgrade.upgradeSoftware(offer);
        QVERIFY(!ready.ok());
        QCOMPARE(ready.refusal().id(), 2012);
        QVERIFY(ready.refusal().text().endsWith(QStringLiteral("try pressing Upgrade again.")));
    }

    void anUpgradeFolderThatCannotBeMadeStopsBeforeTheBackup()
    {
        Rig rig;
        rig.offer(Offered);
        QFile inTheWay(SoftwareUpgrade::upgradeFolder());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        inTheWay.close();
        HttpFetch fetch(5000);
        SoftwareUpgrade upgrade(fetch, rig.login());
        const Result<UpgradeDownload> ready = upgrade.upgradeSoftware(*upgrade.fetchOffer());
        QVERIFY(!ready.ok());
        QCOMPARE(ready.refusal().id(), 7311);
        QCOMPARE(ready.refusal().titleId(), 7312);
        QVERIFY(ready.refusal().text().endsWith(SoftwareUpgrade::upgradeFolder()));
        QVERIFY(!QFileInfo::exists(rig.t.file(QStringLiteral("backups"))));
    }

    void offerDescriptionsThatCannotBeTrusted_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("readable");
        QTest::newRow("whole") << QByteArray(R"({"version":"1.2.0","package":"fenlark_1.2.0_amd64.deb","notes":"x"})") << true;
        QTest::newRow("no notes") << QByteArray(R"({"version":"1.2","package":"fenlark_1.2_amd64.deb"})") << true;
        QTest::newRow("not JSON") << QByteArray("<html></html>") << false;
        QTest::newRow("a list") << QByteArray("[1,2]") << false;
        QTest::newRow("no version") << QByteArray(R"({"package":"fenlark.deb"})") << false;
        QTest::newRow("version of words") << QByteArray(R"({"version":"latest","package":"fenlark.deb"})") << false;
        QTest::newRow("no package") << QByteArray(R"({"version":"1.2.0"})") << false;
        QTest::newRow("path upward") << QByteArray(R"({"version":"1.2.0","package":"../../.bashrc"})") << false;
        QTest::newRow("absolute path") << QByteArray(R"({"version":"1.2.0","package":"/etc/passwd"})") << false;
        QTest::newRow("hidden file") << QByteArray(R"({"version":"1.2.0","package":".profile"})") << false;
        QTest::newRow("blank in name") << QByteArray(R"({"version":"1.2.0","package":"fen lark.deb"})") << false;
    }
    void offerDescriptionsThatCannotBeTrusted()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, readable);
        const Result<UpgradeOffer> offer = parseOffer(json, QStringLiteral("https://sync.example"));
        QCOMPARE(offer.ok(), readable);
        if (readable)
            QVERIFY(offer->downloadUrl.startsWith(QStringLiteral("https://sync.example/download/fenlark_1.2")));
        else
            QCOMPARE(offer.refusal().id(), 7328);
    }

    void versionsCompareNumberByNumber_data()
    {
        QTest::addColumn<QString>("offered");
        QTest::addColumn<QString>("running");
        QTest::addColumn<bool>("newer");
        QTest::newRow("ten after nine") << "1.10.0" << "1.9.2" << true;
        QTest::newRow("same") << "1.0.0" << "1.0.0" << false;
        QTest::newRow("missing zero") << "1.0" << "1.0.0" << false;
        QTest::newRow("older") << "0.9.9" << "1.0.0" << false;
        QTest::newRow("patch") << "1.0.1" << "1.0.0" << true;
    }
    void versionsCompareNumberByNumber()
    {
        QFETCH(QString, offered);
        QFETCH(QString, running);
        QFETCH(bool, newer);
        QCOMPARE(isNewerVersion(offered, running), newer);
    }

    void fenlarkctlPrintsWhatTheServerOffered()
    {
        const QString ctl = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlarkctl"));
        if (!QFileInfo(ctl).isExecutable())
            QSKIP("fenlarkctl is not built beside the tests");
        Rig rig;
        auto run = [&](const QStringList &arguments, QJsonObject &json, QString &errors) {
            QProcess process;
            QSignalSpy finished(&process, &QProcess::finished);
            process.start(ctl, QStringList{QStringLiteral("upgrade-check"), QStringLiteral("--home"), rig.t.home()} + arguments);
            // The server answers from this process's event loop, which the spy keeps turning.
            if (!finished.wait(60000))
                return -1;
            json = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
            errors = QString::fromUtf8(process.readAllStandardError());
            return process.exitCode();
        };
        QJsonObject json;
        QString errors;
        QCOMPARE(run({}, json, errors), 1);
        QCOMPARE(json.value(QStringLiteral("allowed")).toBool(true), false);
        QCOMPARE(json.value(QStringLiteral("reply")).toString(), QStringLiteral("No upgrade is available."));
        QVERIFY(errors.contains(QStringLiteral("Reason: No upgrade is available.")));

        rig.offer(Offered);
        QCOMPARE(run({}, json, errors), 0);
        QCOMPARE(json.value(QStringLiteral("version")).toString(), Offered);
        QCOMPARE(json.value(QStringLiteral("running")).toString(), QStringLiteral(FENLARK_VERSION));
        QCOMPARE(json.value(QStringLiteral("newer")).toBool(), true);
        QCOMPARE(json.value(QStringLiteral("download")).toString(), QStringLiteral("http://%1/download/fenlark_99.1.0_amd64.deb").arg(rig.server()));
        QVERIFY(!QFileInfo::exists(SoftwareUpgrade::upgradeFolder()));

        QCOMPARE(run({QStringLiteral("--download")}, json, errors), 0);
        QCOMPARE(json.value(QStringLiteral("saved")).toString(), SoftwareUpgrade::upgradeFolder() + QStringLiteral("/fenlark_99.1.0_amd64.deb"));
        QCOMPARE(json.value(QStringLiteral("backedUp")).toArray().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestUpgrade)
#include "test_upgrade.moc"

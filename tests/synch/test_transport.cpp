#include "server/httpfront.h"
#include "synch/emergencysynch.h"
#include "synch/transport.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QUrlQuery>
#include <QtTest>

using namespace fenlark;

namespace {
// Answers every request on loopback with the given body, whatever was asked.
class RawReplyServer {
public:
    explicit RawReplyServer(QByteArray body) : m_body(std::move(body))
    {
        QVERIFY(m_server.listen(QHostAddress::LocalHost));
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                // The multipart body ends with its closing boundary line.
                m_request += socket->readAll();
                if (!m_request.endsWith("--\r\n"))
                    return;
                socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\nContent-Length: "
                              + QByteArray::number(m_body.size()) + "\r\n\r\n" + m_body);
                socket->disconnectFromHost();
            });
        });
    }
    QString url() const
    {
        return QStringLiteral("http://127.0.0.1:%1/moorgate/Synchronisation?a=pcsynch").arg(m_server.serverPort());
    }

private:
    QTcpServer m_server;
    QByteArray m_body;
    QByteArray m_request;
};
} // namespace

class TestTransport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void urlEncodeKeepsOnlyDigitsAndLetters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("encoded");
        QTest::newRow("version") << "fenlark 1.0.0" << "fenlark%201%2E0%2E0";
        QTest::newRow("date") << "2026-03-09 17:05:00" << "2026%2D03%2D09%2017%3A05%3A00";
        QTest::newRow("control") << QString(QChar(9)) << "%09";
        QTest::newRow("latin1") << QString(QChar(0xE9)) << "%E9";
        QTest::newRow("non-latin cut to low byte") << QString(QChar(0x263A)) << "%3A";
        QTest::newRow("letter in high plane keeps its low byte") << QString(QChar(0x0141)) << "A";
        QTest::newRow("empty") << "" << "";
    }

    void urlEncodeKeepsOnlyDigitsAndLetters()
    {
        QFETCH(QString, text);
        QFETCH(QString, encoded);
        QCOMPARE(urlEncode(text), encoded);
    }

    void urlsCarryTheKeysInOrder()
    {
        ServerLogin login{QStringLiteral("sync.example:8080"), 12345, QStringLiteral("pw"), 3, QStringLiteral("fenlark 1.0.0")};
        QCOMPARE(synchUrl(login, QStringLiteral("pcsynch")),
                 QStringLiteral("http://sync.example:8080/moorgate/Synchronisation?a=pcsynch&bbid=12345&p=pw&version=3"
                                "&moorgateversion=fenlark%201%2E0%2E0"));
        QCOMPARE(setupUrl(login, QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)), QStringLiteral("17")),
                 QStringLiteral("http://sync.example:8080/moorgate/Synchronisation?a=s&bbid=12345&p=pw&version=3"
                                "&moorgateversion=fenlark%201%2E0%2E0&pclastupdated=2026%2D01%2D02%2003%3A04%3A05&pcsynchcounter=17"));
        QCOMPARE(upgradeUrl(login), QStringLiteral("http://sync.example:8080/moorgate/Synchronisation?a=upgrade&bbid=12345&p=pw"));
        login.server = QStringLiteral("https://secure.example/");
        QVERIFY(synchUrl(login, QStringLiteral("pcsynch")).startsWith(QLatin1String("https://secure.example/moorgate/")));
    }

    void passwordNeverShowsInALoggedText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("logged");
        QTest::newRow("encoded url") << "http://h/m?a=s&bbid=1&p=topsecret&version=2" << ""
                                     << "http://h/m?a=s&bbid=1&p=***&version=2";
        QTest::newRow("ampersand shown decoded") << "Error transferring http://h/m?a=s&p=Ab&cd9&version=2 - server replied"
                                                 << "" << "Error transferring http://h/m?a=s&p=***&version=2 - server replied";
        QTest::newRow("blank shown decoded") << "http://h/m?p=Ab cd9&version=2" << "" << "http://h/m?p=***&version=2";
        QTest::newRow("nothing after it") << "Error transferring http://h/m?p=x - server replied" << ""
                                          << "Error transferring http://h/m?p=***";
        QTest::newRow("echoed by a server") << "401 - wrong password Ab&cd9 for 12345" << "Ab&cd9"
                                            << "401 - wrong password *** for 12345";
        QTest::newRow("echoed encoded") << "no such user Ab%26cd9" << "Ab&cd9" << "no such user ***";
    }

    void passwordNeverShowsInALoggedText()
    {
        QFETCH(QString, text);
        QFETCH(QString, password);
        QFETCH(QString, logged);
        QCOMPARE(redactPassword(text, password), logged);
    }

    void passwordGoesEncodedAndWhole()
    {
        ServerLogin login{QStringLiteral("h"), 12345, QStringLiteral("Ab&cd9 #%+\u00e9"), 3, QStringLiteral("v")};
        const QUrl url(synchUrl(login, QStringLiteral("pcsynch")));
        QCOMPARE(QUrlQuery(url).queryItemValue(QStringLiteral("p"), QUrl::FullyEncoded), QStringLiteral("Ab%26cd9%20%23%25%2B%E9"));
        QCOMPARE(QUrlQuery(url).queryItemValue(QStringLiteral("version")), QStringLiteral("3"));
    }

    void multipartBodyIsExact()
    {
        const QByteArray body = buildMultipart(QStringLiteral("1234567890123456"), QByteArray("{\"data\":{}}"));
        QCOMPARE(body, QByteArray("--1234567890123456\r\n"
                                  "Content-Disposition: form-data; name=\"mydata\"; filename=\"\"\r\n"
                                  "Content-Type: application/octet-stream\r\n"
                                  "\r\n"
                                  "{\"data\":{}}\r\n"
                                  "--1234567890123456--\r\n"));
        QCOMPARE(server::multipartData("multipart/form-data; boundary=1234567890123456", body), QByteArray("{\"data\":{}}"));
        QCOMPARE(server::multipartData("text/plain", QByteArray("{}")), QByteArray("{}"));
    }

    void boundaryNeverOccursInTheData()
    {
        for (int i = 0; i < 50; ++i) {
            const QString boundary = newBoundary(QByteArray("0123456789"));
            QCOMPARE(boundary.size(), 16);
            QVERIFY(std::all_of(boundary.begin(), boundary.end(), [](QChar c) { return c.isDigit(); }));
        }
    }

    void emergencyCodeIsExact()
    {
        QVERIFY(emergencyAccessGranted(QStringLiteral("sparrow")));
        QVERIFY(!emergencyAccessGranted(QStringLiteral("Sparrow")));
        QVERIFY(!emergencyAccessGranted(QStringLiteral("sparro")));
        QVERIFY(!emergencyAccessGranted(QStringLiteral("sparrows")));
        QVERIFY(!emergencyAccessGranted(QString()));
    }

    void refusedConnectionIsAFailureNotAHang()
    {
        HttpTransport transport(2000);
        const PostResult r = transport.post(QStringLiteral("http://127.0.0.1:1/moorgate/Synchronisation?a=pcsynch&p=pw"), QByteArray("{}"));
        QVERIFY(!r.ok);
        QVERIFY(!r.error.contains(QLatin1String("p=pw")));
    }

    void replyIsReadAsUtf8AndRefusedWhenItIsNot()
    {
        RawReplyServer good("{\"success\":true,\"name\":\"M\xc3\xbcller\"}");
        const PostResult read = HttpTransport(5000).post(good.url(), QByteArray("{}"));
        QVERIFY(read.ok);
        QVERIFY(read.reply.contains(QStringLiteral("M\u00fcller")));

        RawReplyServer bad("{\"success\":true,\"name\":\"M\xfcller\"}");
        const PostResult refused = HttpTransport(5000).post(bad.url(), QByteArray("{}"));
        QVERIFY(!refused.ok);
        QVERIFY(refused.reply.isEmpty());
        QCOMPARE(refused.error, QStringLiteral("The server's reply is not valid UTF-8 text."));
    }
};

QTEST_GUILESS_MAIN(TestTransport)
#include "test_transport.moc"

// The demo's own server lives exactly as long as the desk that started it.
#include "shell/inifile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace fenlark;

namespace {

bool answers(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), port);
    return socket.waitForConnected(300);
}

} // namespace

class TestDemoLife : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theServerEndsWithTheDesk_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("killed") << int(SIGKILL);
        QTest::newRow("terminated") << int(SIGTERM);
        QTest::newRow("interrupted") << int(SIGINT);
    }

    void theServerEndsWithTheDesk()
    {
        QFETCH(int, signal);
        const QDir programs(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("..")));
        const QString desk = programs.filePath(QStringLiteral("fenlark"));
        if (!QFileInfo(desk).isExecutable() || !QFileInfo(programs.filePath(QStringLiteral("fenlark-server"))).isExecutable())
            QSKIP("the desk and its server are not built beside the tests");

        QTemporaryDir home;
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        // The desk is ended by a signal on purpose: what it leaves unfreed is no leak.
        env.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        process.setProcessEnvironment(env);
        process.start(desk, {QStringLiteral("--demo"), QStringLiteral("--home"), home.path()});
        QVERIFY(process.waitForStarted());

        // The desk names its server's address in its configuration once the server listens.
        const IniFile ini(QDir(home.path()).filePath(QStringLiteral("vmconfig.ini")));
        QString address;
        QTRY_VERIFY_WITH_TIMEOUT(!(address = ini.read(QStringLiteral("Param"), QStringLiteral("Server"), QString())).isEmpty(),
                                 120000);
        const quint16 port = quint16(address.section(QLatin1Char(':'), 1).toUInt());
        QVERIFY(port > 0);
        QVERIFY(answers(port));

        ::kill(pid_t(process.processId()), signal);
        QVERIFY(process.waitForFinished(10000));
        QTRY_VERIFY_WITH_TIMEOUT(!answers(port), 2000);
    }
};

QTEST_GUILESS_MAIN(TestDemoLife)
#include "test_demolife.moc"

#include "shell/errorlog.h"

#include <QStringDecoder>
#include <QTemporaryDir>
#include <QtTest>

using namespace fenlark;

class TestErrorLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLogRollsIntoOneOlderFileAtOneMiB()
    {
        QTemporaryDir dir;
        const QString log = dir.filePath(QStringLiteral("synch.err"));
        const QString line = QString(1000, QLatin1Char('x'));
        for (int i = 0; i < 3 * 1024; ++i)
            ErrorLog::appendLine(log, QString::number(i) + line);
        QVERIFY(QFileInfo(log).size() <= ErrorLog::MaxFileBytes);
        QVERIFY(QFileInfo(log + QStringLiteral(".1")).size() <= ErrorLog::MaxFileBytes);
        QVERIFY(QFileInfo(log + QStringLiteral(".1")).size() > ErrorLog::MaxFileBytes - 2000);
        QVERIFY(!QFile::exists(log + QStringLiteral(".2")));
        QFile file(log);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().endsWith(QByteArray::number(3 * 1024 - 1) + line.toLatin1() + '\n'));
    }

    void aMessageIsCutAtFourKiBOnACharacterBoundary()
    {
        QTemporaryDir dir;
        const QString log = dir.filePath(QStringLiteral("fenlark.log"));
        ErrorLog::appendLine(log, QStringLiteral("x") + QString(5000, QChar(0x00e9)));
        QFile file(log);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        QVERIFY(written.size() <= ErrorLog::MaxMessageBytes + 1);
        QVERIFY(written.size() >= ErrorLog::MaxMessageBytes - 1);
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder.decode(written);
        QVERIFY(!decoder.hasError());
        QVERIFY(text.endsWith(QStringLiteral("\u00e9\n")));
    }

    void aMessageStaysOnOneLine()
    {
        QTemporaryDir dir;
        const QString log = dir.filePath(QStringLiteral("fenlark.log"));
        ErrorLog::appendLine(log, QStringLiteral("first\r\nsecond\nthird\rfourth"));
        QFile file(log);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("first second third fourth\n"));
    }
};

QTEST_GUILESS_MAIN(TestErrorLog)
#include "test_errorlog.moc"

#include "shell/config.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "shell/inifile.h"
#include "support/recordingsink.h"

#include <QtTest>

using namespace fenlark;

class TestConfiguration : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_home;

    QString configText()
    {
        QFile f(configPath());
        f.open(QIODevice::ReadOnly);
        return QString::fromUtf8(f.readAll());
    }

private Q_SLOTS:
    void init()
    {
        QFile::remove(m_home.filePath("vmconfig.ini"));
        Home::setPath(m_home.path());
    }

    void valuesSurviveARoundTripVerbatim_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("backslashes") << R"(c:\data\veldmoor\file.db)";
        QTest::newRow("braces") << "{Main Lodge}/srv/data/main.db";
        QTest::newRow("commas") << "a,b, c";
        QTest::newRow("equals and semicolon") << "x=y;z";
        QTest::newRow("non-latin") << QString::fromUtf8("Ñandú 東京");
        QTest::newRow("percent") << "%HOME%/x";
    }
    void valuesSurviveARoundTripVerbatim()
    {
        QFETCH(QString, value);
        QVERIFY(writeConfig("Database1", value));
        QCOMPARE(readConfig("Database1", "none"), value);
    }

    void missingFileAndKeyGiveTheDefault()
    {
        QCOMPARE(readConfig("LogLimit", "300"), QString("300"));
        writeConfig("Proxy", "proxy:8080");
        QCOMPARE(readConfig("LogLimit", "300"), QString("300"));
        QCOMPARE(config::logLimit(), 300);
    }

    // A damaged line is passed over: the settings around it still read, and the
    // line is named for the log.
    void damagedLinesAreSkippedAndNamed()
    {
        QFile f(configPath());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[Param]\nLanguage=3082\n\xc3\x28 garbage without equals\n=no key\n# comment\n\nServer=host:81\n");
        f.close();
        QCOMPARE(readConfig("Language", "0"), QString("3082"));
        QCOMPARE(readConfig("Server", ""), QString("host:81"));
        const QStringList damaged = IniFile(configPath()).damagedLines();
        QCOMPARE(damaged.size(), 2);
        QVERIFY(damaged.at(0).startsWith("line 3: "));
        QCOMPARE(damaged.at(1), QString("line 4: =no key"));
    }

    void keysMatchWithoutCaseAndWritesKeepOtherLines()
    {
        QFile f(configPath());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("; written by hand\n[Other]\nServer=elsewhere\n[param]\nserver = \"host:81\"\nAutoSynch=N\n");
        f.close();
        QCOMPARE(readConfig("Server", ""), QString("host:81"));
        QVERIFY(writeConfig("SERVER", "host:82"));
        QCOMPARE(readConfig("Server", ""), QString("host:82"));
        const QString text = configText();
        QVERIFY(text.contains("; written by hand"));
        QVERIFY(text.contains("[Other]\nServer=elsewhere"));
        QVERIFY(text.contains("AutoSynch=N"));
        QCOMPARE(text.count("host:82"), 1);
    }

    void longValuesAreCutAt255()
    {
        writeConfig("Notes", QString(400, 'x'));
        QCOMPARE(readConfig("Notes", "").size(), 255);
    }

    void theValueIsReadAfreshOnEveryCall()
    {
        writeConfig("LogLimit", "50");
        QCOMPARE(config::logLimit(), 50);
        IniFile(configPath()).write("Param", "LogLimit", "70");
        QCOMPARE(config::logLimit(), 70);
        writeConfig("LogLimit", "lots");
        QCOMPARE(config::logLimit(), 300);
    }

    void singleDatabaseDefaultIsWrittenBack()
    {
        QCOMPARE(getDBPath(0), m_home.filePath("Veldmoor.db"));
        QVERIFY(configText().contains("Database=Veldmoor.db\n"));
        writeConfig("Database", "/data/other.db");
        QCOMPARE(getDBPath(0), QString("/data/other.db"));
    }

    // A home folder copied elsewhere works on its own files, not the old ones.
    void pathsInsideTheHomeFollowItWhenItMoves()
    {
        getDBPath(0);
        getBackupDir();
        config::invoiceDir(0);
        writeConfig("Database1", "{Beach}beach/b.db");
        QTemporaryDir moved;
        QVERIFY(QFile::copy(configPath(), moved.filePath("vmconfig.ini")));
        Home::setPath(moved.path());
        QCOMPARE(getDBPath(0), moved.filePath("Veldmoor.db"));
        QCOMPARE(getBackupDir(), moved.filePath("vmbackup"));
        QCOMPARE(config::invoiceDir(0), moved.filePath("invoices"));
        QCOMPARE(getDBPath(1), moved.filePath("beach/b.db"));
        Home::setPath(m_home.path());
    }

    void theConfigurationIsItsOwnersAlone()
    {
        writeConfig("Server", "example.org");
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QCOMPARE(QFileInfo(configPath()).permissions() & others, QFile::Permissions());
    }

    void multipleDatabasesAreReadByPosition()
    {
        writeConfig("Database1", "{Main}/srv/a.db");
        writeConfig("Database2", "{Beach}/srv/odd}name.db");
        QVERIFY(hasMultipleDatabases());
        QCOMPARE(databaseCount(), 2);
        QCOMPARE(getDBPath(2), QString("/srv/odd}name.db"));
        QCOMPARE(getDBName(1), QString("Main"));
        QCOMPARE(getDBPath(3), QString());
    }

    void malformedEntryShowsTheConfigurationMessage()
    {
        RecordingSink sink;
        writeConfig("Database1", "/srv/a.db");
        QCOMPARE(getDBName(1), QString());
        QCOMPARE(sink.shown.size(), 1);
        QCOMPARE(sink.shown[0].title, QString("Incorrect config entries."));
        QVERIFY(sink.shown[0].text.startsWith("Your configuration file does not look correct."));
    }

    void backupAndInvoiceFoldersDefaultIntoTheHome()
    {
        QCOMPARE(getBackupDir(), m_home.filePath("vmbackup"));
        QCOMPARE(readConfig("BackupDir", ""), QString("vmbackup"));
        QCOMPARE(config::invoiceDir(3), m_home.filePath("invoices3"));
        QVERIFY(QDir(m_home.filePath("invoices3")).exists());
        QCOMPARE(readConfig("InvoiceDir3", ""), QString("invoices3"));
        QCOMPARE(config::templateDir(), m_home.path() + "/");
    }

    void homeComesFromArgumentThenEnvironmentThenXdg()
    {
        QCOMPARE(Home::resolve("/tmp/explicit"), QString("/tmp/explicit"));
        qputenv("FENLARK_HOME", "/tmp/fromenv");
        QCOMPARE(Home::resolve(), QString("/tmp/fromenv"));
        qunsetenv("FENLARK_HOME");
        qputenv("XDG_DATA_HOME", "/tmp/xdg");
        QCOMPARE(Home::resolve(), QString("/tmp/xdg/fenlark"));
        QStringList args = {"--demo", "--home", "/x", "more"};
        QCOMPARE(Home::takeHomeArgument(args), QString("/x"));
        QCOMPARE(args, QStringList({"--demo", "more"}));
    }
};

QTEST_GUILESS_MAIN(TestConfiguration)
#include "test_configuration.moc"

#include "shell/backup.h"
#include "shell/config.h"
#include "shell/database.h"
#include "shell/home.h"
#include "shell/schema.h"
#include "shell/setuprecords.h"
#include "support/filebytes.h"
#include "support/testdatabase.h"

#include <QtTest>
using namespace fenlark;

class TestDatabaseFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newFileGetsTheFullSchemaAndVersion()
    {
        TestDatabase t;
        for (const QString &table : Schema::sharedTables() + Schema::serverTables())
            QVERIFY2(t.db().tableExists(table), qPrintable(table));
        for (const char *table : {"bookingdel", "guestdel", "dailyrate", "newbooking", "dblog", "synchlock", "audit",
                                  "preference", "status", "trantype", "currencycode", "clientxsort"})
            QVERIFY2(t.db().tableExists(table), table);
        QCOMPARE(t.db().scalar("select VersionNo from vmversion").toString(), QString::number(Schema::currentVersion()));
        QCOMPARE(t.db().scalar("select count(*) from status").toInt(), 7);
        QVERIFY(BBSetup::isSetupEmpty(t.db()));
    }

    void anEmptyFileIsMadeIntoADatabase()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("empty.db");
        writeFile(path, {});
        auto db = Database::open(path);
        QVERIFY(db->tableExists("booking"));
    }

    // A file of the schema before folded names: opening it folds the names of
    // the clients it already holds, and writes from then on keep them folded.
    void olderDatabaseGetsItsClientNamesFoldedOnOpen()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("older.db");
        Database::open(path).reset();
        {
            QSqlDatabase raw = QSqlDatabase::addDatabase("QSQLITE", "older");
            raw.setDatabaseName(path);
            raw.open();
            // Everything after version 3 goes.
            for (const char *sql : {"drop index client_companyfold", "drop index guest_client2",
                                    "drop trigger client_fold_insert", "drop trigger client_fold_update",
                                    "drop trigger client_fold_delete", "drop table clientfold",
                                    "create index client_surname on client (Surname collate nocase, Active)",
                                    "create index client_firstname on client (FirstName collate nocase, Active)",
                                    "create index client_company on client (Company collate nocase, Active)",
                                    "pragma user_version = 3"})
                QVERIFY2(QSqlQuery(raw).exec(sql), sql);
            QSqlQuery insert(raw);
            insert.prepare("insert into client (BBClientID, FirstName, Surname, Active) values (4, ?, ?, 'Y')");
            insert.addBindValue(QString::fromUtf8("ÉMILE"));
            insert.addBindValue(QString::fromUtf8("Ñúñez"));
            QVERIFY(insert.exec());
            raw.close();
        }
        QSqlDatabase::removeDatabase("older");

        auto db = Database::open(path);
        QCOMPARE(db->scalar("pragma user_version").toInt(), Schema::currentVersion());
        QCOMPARE(db->scalar("select FirstName || '/' || Surname from clientfold where BBClientID = 4").toString(),
                 QString::fromUtf8("émile/ñúñez"));
        db->execute("update client set Surname = 'Smith' where BBClientID = 4");
        QCOMPARE(db->scalar("select Surname from clientfold where BBClientID = 4").toString(), QString("smith"));
    }

    void innerTransactionRollsBackAloneOuterCommits()
    {
        TestDatabase t;
        {
            Transaction outer(t.db());
            t.db().execute("insert into preference (prefcode, prefvalue) values ('A', '1')");
            try {
                Transaction inner(t.db());
                t.db().execute("insert into preference (prefcode, prefvalue) values ('B', '1')");
                t.db().execute("insert into preference (prefcode, prefvalue) values ('A', 'duplicate')");
                inner.commit();
            } catch (const DatabaseError &) {
            }
            outer.commit();
        }
        QCOMPARE(t.db().scalar("select group_concat(prefcode) from preference").toString(), QString("A"));
        QCOMPARE(t.db().transactionDepth(), 0);
    }

    // Kept statements are run again with new values, see rows written since, and a
    // statement left with unread rows does not stop a commit.
    void keptStatementsSeeNewRowsAndDoNotHoldCommits()
    {
        TestDatabase t;
        const QString count = QStringLiteral("select count(*) from preference where prefcode like ?");
        QCOMPARE(t.db().scalar(count, {"K%"}).toInt(), 0);
        {
            Transaction tx(t.db());
            t.db().execute("insert into preference (prefcode, prefvalue) values ('K1', '1'), ('K2', '2')");
            QSqlQuery &rows = t.db().repeatedQuery("select prefcode from preference where prefcode like ? order by prefcode", {"K%"});
            QVERIFY(rows.next());
            QCOMPARE(rows.value(0).toString(), QString("K1"));
            QCOMPARE(t.db().scalar(count, {"K%"}).toInt(), 2);
            tx.commit();
        }
        QCOMPARE(t.db().scalar(count, {"K2"}).toInt(), 1);
        QSqlQuery &again = t.db().repeatedQuery("select prefcode from preference where prefcode like ? order by prefcode", {"K2"});
        QVERIFY(again.next());
        QCOMPARE(again.value(0).toString(), QString("K2"));
        QVERIFY(!again.next());
    }
};

class TestBackup : public QObject {
    Q_OBJECT

private:
    static QStringList files(const QString &dir)
    {
        return QDir(dir).entryList(QDir::Files, QDir::Name);
    }
    static qint32 markerIn(const QString &path)
    {
        auto db = Database::open(path);
        return db->scalar("select count(*) from client").toInt();
    }
    static void addClient(Database &db)
    {
        db.execute("insert into client (Surname) values ('x')");
    }

private Q_SLOTS:
    void theDatabaseAndItsBackupsAreTheirOwnersAlone()
    {
        TestDatabase t;
        QVERIFY(Backup::backupDatabase(t.db(), 0, QDate(2026, 11, 2)));
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        for (const QString &file : {t.file("test.db"), t.file("vmbackup/veldmoor-1.db"), t.file("vmbackup/2026Nov.db")}) {
            QVERIFY2(QFileInfo::exists(file), qPrintable(file));
            QCOMPARE(QFileInfo(file).permissions() & others, QFile::Permissions());
        }
    }

    void rotationKeepsFourAndOneFilePerMonth()
    {
        TestDatabase t;
        const QString dir = t.file("vmbackup");
        for (int run = 1; run <= 5; ++run) {
            addClient(t.db());
            const QDate day = run <= 3 ? QDate(2026, 10, 30) : QDate(2026, 11, 2);
            QVERIFY(Backup::backupDatabase(t.db(), 0, day));
        }
        QCOMPARE(files(dir), QStringList({"2026Nov.db", "2026Oct.db", "veldmoor-1.db", "veldmoor-2.db", "veldmoor-3.db", "veldmoor-4.db"}));
        QCOMPARE(markerIn(dir + "/veldmoor-1.db"), 5);
        QCOMPARE(markerIn(dir + "/veldmoor-4.db"), 2);
        QCOMPARE(markerIn(dir + "/2026Oct.db"), 3); // the last backup of October stays for good
        QCOMPARE(markerIn(dir + "/2026Nov.db"), 5);
    }

    void numberedDatabasesUseTheirOwnNamesAndTemplates()
    {
        TestDatabase t;
        for (const QString &name : Backup::templateFileNames(12))
            writeFile(t.file(name), "template");
        QFile::remove(t.file("invoice12.xlsx")); // a missing template is skipped quietly
        QVERIFY(Backup::backupDatabase(t.db(), 12, QDate(2026, 11, 23)));
        QCOMPARE(files(t.file("vmbackup")),
                 QStringList({"2026NovDB12.db", "Confirmation12.docx", "DB12-1.db", "Registration12.docx", "proforma12.xlsx"}));
    }

    void onlyAnExactYTurnsTheBackupOff()
    {
        TestDatabase t;
        writeConfig("NoBackup", "y");
        QVERIFY(Backup::backupDatabase(t.db(), 0));
        writeConfig("NoBackup", "Y");
        QFile::remove(t.file("vmbackup/veldmoor-1.db"));
        QVERIFY(!Backup::backupDatabase(t.db(), 0));
        QVERIFY(!QFile::exists(t.file("vmbackup/veldmoor-1.db")));
    }

    void anUnwritableBackupFolderSkipsTheBackupAndHarmsNothing()
    {
        TestDatabase t;
        addClient(t.db());
        QVERIFY(Backup::backupDatabase(t.db(), 0));
        const QByteArray kept = digest(t.file("vmbackup/veldmoor-1.db"));
        writeConfig("BackupDir", t.file("nofolder/below/backup")); // only one level is made
        addClient(t.db());
        QVERIFY(!Backup::backupDatabase(t.db(), 0));
        QCOMPARE(t.db().scalar("select count(*) from client").toInt(), 2);
        QCOMPARE(digest(t.file("vmbackup/veldmoor-1.db")), kept);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    TestDatabaseFile a;
    TestBackup b;
    return QTest::qExec(&a, argc, argv) | QTest::qExec(&b, argc, argv);
}
#include "test_databasefile.moc"

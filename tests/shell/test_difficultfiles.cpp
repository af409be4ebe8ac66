#include "shell/backup.h"
#include "shell/database.h"
#include "shell/home.h"
#include "shell/restore.h"
#include "shell/schema.h"
#include "shell/startup.h"
#include "support/filebytes.h"
#include "support/recordingsink.h"

#include <QElapsedTimer>
#include <QtTest>

#include <sqlite3.h>

#include <future>
#include <thread>

using namespace fenlark;

namespace {

// A closed Fenlark database of several dozen pages.
void makeDatabase(const QString &path, int rows = 400)
{
    auto db = Database::open(path);
    Transaction tx(*db);
    for (int i = 0; i < rows; ++i)
        db->execute("insert into preference (prefcode, prefvalue) values (?, ?)", {QString("P%1").arg(i), QString(200, 'x')});
    tx.commit();
}

// Runs a statement on a connection of SQLite's own, outside the program.
void rawExec(sqlite3 *handle, const char *sql)
{
    char *error = nullptr;
    const int code = sqlite3_exec(handle, sql, nullptr, nullptr, &error);
    QVERIFY2(code == SQLITE_OK, error);
}

DatabaseOpenError::Kind openFailure(const QString &path)
{
    try {
        Database::open(path);
    } catch (const DatabaseOpenError &e) {
        return e.kind();
    }
    return DatabaseOpenError::Kind(-1);
}

// A desk that only records whether start-up got as far as its main window.
class QuietHost : public StartupHost {
public:
    void askLanguage() override {}
    void showSplash() override {}
    void closeSplash() override {}
    bool logInProperty(Session &) override { return true; }
    bool checkSetup(Session &) override { return true; }
    bool enterPassword(Session &) override { return true; }
    void initialise(Session &) override {}
    bool checkDoubleBookings(Session &) override { return true; }
    void showMainWindow(Session &) override {}
};

} // namespace

class TestDifficultFiles : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString &name) const { return m_dir->filePath(name); }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        Home::setPath(m_dir->path());
    }

    void eachKindOfUnusableFileIsNamedAndLeftUntouched_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("backupMayHelp");
        QTest::newRow("text") << "text" << int(DatabaseOpenError::NotADatabase) << true;
        QTest::newRow("sqlite header, garbage after") << "garbage after header" << int(DatabaseOpenError::NotADatabase) << true;
        QTest::newRow("cut short") << "truncate" << int(DatabaseOpenError::Damaged) << true;
        QTest::newRow("first hundred bytes only") << "header only" << int(DatabaseOpenError::Damaged) << true;
        QTest::newRow("another program's database") << "foreign" << int(DatabaseOpenError::NotFenlark) << false;
        QTest::newRow("a newer Fenlark's") << "newer" << int(DatabaseOpenError::Newer) << false;
    }
    void eachKindOfUnusableFileIsNamedAndLeftUntouched()
    {
        QFETCH(QString, damage);
        QFETCH(int, kind);
        QFETCH(bool, backupMayHelp);
        const QString file = path("Veldmoor.db");
        if (damage == "text") {
            writeFile(file, "bookings, one a line\n");
        } else if (damage == "garbage after header") {
            writeFile(file, QByteArray("SQLite format 3\0", 16) + QByteArray(8192, '\x01'));
        } else if (damage == "foreign") {
            sqlite3 *raw = nullptr;
            sqlite3_open(qPrintable(file), &raw);
            rawExec(raw, "create table notes (x text)");
            sqlite3_close(raw);
        } else {
            makeDatabase(file);
            if (damage == "truncate") {
                writeFile(file, readFile(file).left(int(QFileInfo(file).size() / 2)));
            } else if (damage == "header only") {
                writeFile(file, readFile(file).left(100));
            } else {
                sqlite3 *raw = nullptr;
                sqlite3_open(qPrintable(file), &raw);
                rawExec(raw, qPrintable(QString("pragma user_version = %1").arg(Schema::currentVersion() + 1)));
                sqlite3_close(raw);
            }
        }
        const QByteArray before = digest(file);
        try {
            Database::open(file);
            QFAIL("the file was opened");
        } catch (const DatabaseOpenError &e) {
            QCOMPARE(int(e.kind()), kind);
            QCOMPARE(e.backupMayHelp(), backupMayHelp);
            QVERIFY2(e.explanation().contains(QDir::toNativeSeparators(file)), qPrintable(e.explanation()));
        }
        QCOMPARE(digest(file), before);
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList{"Veldmoor.db"});
    }

    void aFileAnotherProgramHoldsLockedIsReportedLocked()
    {
        const QString file = path("Veldmoor.db");
        makeDatabase(file, 5);
        sqlite3 *raw = nullptr;
        sqlite3_open(qPrintable(file), &raw);
        rawExec(raw, "pragma journal_mode = delete");
        rawExec(raw, "begin exclusive");
        rawExec(raw, "insert into preference (prefcode, prefvalue) values ('held', '1')");
        QCOMPARE(openFailure(file), DatabaseOpenError::Locked);
        rawExec(raw, "rollback");
        sqlite3_close(raw);
        QVERIFY(Database::open(file));
    }

    // A damaged page deep in the file lets the file open; the check finds it.
    void quickCheckFindsADamagedPageTheOpeningDidNotRead()
    {
        const QString file = path("Veldmoor.db");
        makeDatabase(file);
        QCOMPARE(Database::open(file)->quickCheck(), QString());
        QByteArray bytes = readFile(file);
        const int pageSize = 4096;
        QVERIFY(bytes.size() > 20 * pageSize);
        bytes.replace(bytes.size() - 3 * pageSize, pageSize, QByteArray(pageSize, '\x5a'));
        writeFile(file, bytes);
        QVERIFY(!Database::open(file)->quickCheck().isEmpty());
    }

    // The page limit stands in for a full disk: the write fails with its cause,
    // nothing of it stays, and the same connection writes again once there is room.
    void aDiskFullInTheMiddleOfAWriteRollsItAllBack()
    {
        const QString file = path("Veldmoor.db");
        makeDatabase(file, 10);
        auto db = Database::open(file);
        const int pages = db->scalar("pragma page_count").toInt();
        db->scalar(QString("pragma max_page_count = %1").arg(pages + 2));
        const QByteArray before = db->scalar("select group_concat(prefcode) from preference").toByteArray();
        try {
            Transaction tx(*db);
            for (int i = 0; i < 200; ++i)
                db->execute("insert into preference (prefcode, prefvalue) values (?, ?)", {QString("F%1").arg(i), QString(500, 'y')});
            tx.commit();
            QFAIL("the disk did not fill");
        } catch (const DatabaseError &e) {
            QCOMPARE(e.cause(), DatabaseError::DiskFull);
            QCOMPARE(e.explanation(), QString("The disk is full. Make room on it and try again."));
        }
        QCOMPARE(db->transactionDepth(), 0);
        QCOMPARE(db->scalar("select group_concat(prefcode) from preference").toByteArray(), before);
        db->scalar("pragma max_page_count = 1000000");
        {
            Transaction tx(*db);
            db->execute("insert into preference (prefcode, prefvalue) values ('after', '1')");
            tx.commit();
        }
        QCOMPARE(db->scalar("select count(*) from preference where prefcode = 'after'").toInt(), 1);
        QCOMPARE(db->quickCheck(), QString());
    }

    // Two desks on one file: the second desk's write waits for the first one's
    // to commit, then reads what it wrote; a desk that only reads never waits.
    void aSecondDeskWaitsForTheFirstWriteAndThenSeesIt()
    {
        const QString file = path("Veldmoor.db");
        makeDatabase(file, 1);
        auto desk = Database::open(file);
        std::promise<void> holding;
        std::promise<void> readDone;
        std::thread other([&] {
            sqlite3 *raw = nullptr;
            sqlite3_open(qPrintable(file), &raw);
            sqlite3_exec(raw, "begin immediate; insert into preference (prefcode, prefvalue) values ('other', '1')", nullptr,
                         nullptr, nullptr);
            holding.set_value();
            readDone.get_future().wait();
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            sqlite3_exec(raw, "commit", nullptr, nullptr, nullptr);
            sqlite3_close(raw);
        });
        holding.get_future().wait();
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(desk->scalar("select count(*) from preference").toInt(), 1);
        QVERIFY(clock.elapsed() < 200);
        readDone.set_value();
        {
            Transaction tx(*desk);
            QVERIFY(clock.elapsed() >= 250);
            QCOMPARE(desk->scalar("select count(*) from preference where prefcode = 'other'").toInt(), 1);
            desk->execute("insert into preference (prefcode, prefvalue) values ('desk', '1')");
            tx.commit();
        }
        other.join();
        QCOMPARE(desk->scalar("select count(*) from preference").toInt(), 3);
    }

    // A file on this machine's own disk is no network file: no warning at start-up.
    void aLocalFileIsNotTakenForANetworkOne()
    {
        QVERIFY(networkFileSystemOf(path("Veldmoor.db")).isEmpty());
        QCOMPARE(networkFileSystemName(0x6969), QString("nfs"));
        QCOMPARE(networkFileSystemName(0xFF534D42), QString("cifs"));
        QVERIFY(networkFileSystemName(0xEF53).isEmpty());   // ext4
        QVERIFY(networkFileSystemName(0x01021994).isEmpty());   // tmpfs
    }

    void restoringABackupKeepsTheDamagedFileAside()
    {
        const QString file = path("Veldmoor.db");
        const QString backup = path("veldmoor-1.db");
        makeDatabase(backup, 7);
        writeFile(file, "damaged");
        writeFile(file + "-wal", "its log");
        const Result<QString> restored = restoreDatabase(file, backup);
        QVERIFY(restored);
        QCOMPARE(readFile(restored.value()), QByteArray("damaged"));
        QCOMPARE(readFile(restored.value() + "-wal"), QByteArray("its log"));
        QCOMPARE(Database::open(file)->scalar("select count(*) from preference").toInt(), 7);
        QVERIFY(QFile::exists(backup));
    }

    void anUnusableBackupChangesNothing()
    {
        const QString file = path("Veldmoor.db");
        writeFile(file, "damaged");
        writeFile(path("veldmoor-1.db"), "not a backup either");
        const Result<QString> restored = restoreDatabase(file, path("veldmoor-1.db"));
        QVERIFY(!restored);
        QCOMPARE(restored.refusal().id(), 5050);
        QCOMPARE(readFile(file), QByteArray("damaged"));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files).size(), 2);
        QVERIFY(!restoreDatabase(file, path("missing.db")));
    }

    void startUpOffersTheNewestBackupForADamagedDatabase_data()
    {
        QTest::addColumn<bool>("restore");
        QTest::newRow("restored") << true;
        QTest::newRow("declined") << false;
    }
    void startUpOffersTheNewestBackupForADamagedDatabase()
    {
        QFETCH(bool, restore);
        QDir(m_dir->path()).mkdir("vmbackup");
        makeDatabase(path("vmbackup/veldmoor-1.db"), 3);
        const QString file = path("Veldmoor.db");
        writeFile(file, QByteArray("SQLite format 3\0", 16) + QByteArray(200, '\0'));
        const QByteArray damaged = readFile(file);
        RecordingSink sink;
        sink.answer = restore;
        QuietHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), restore ? Startup::Running : Startup::CannotOpenDatabase);
        QCOMPARE(sink.askedIds(), QList<int>{5052});
        QVERIFY(sink.asked.first().text.startsWith("Could not open database (" + file + ")"));
        const QStringList kept = QDir(m_dir->path()).entryList({"Veldmoor.db.damaged-*"}, QDir::Files);
        if (restore) {
            QCOMPARE(kept.size(), 1);
            QCOMPARE(readFile(path(kept.first())), damaged);
            QCOMPARE(startup.takeSession()->db().scalar("select count(*) from preference").toInt(), 3);
        } else {
            QVERIFY(kept.isEmpty());
            QCOMPARE(readFile(file), damaged);
        }
    }

    // A home folder that cannot be written (here: one that cannot exist, under
    // a file) is reported as such, not as a second desk.
    void aHomeFolderThatCannotBeWrittenIsSaidSo()
    {
        writeFile(path("a-file"), "x");
        Home::setPath(path("a-file/home"));
        RecordingSink sink;
        QuietHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::HomeNotWritable);
        QCOMPARE(sink.shownIds(), QList<int>{5056});
    }

    void startUpWithoutABackupSaysWhyItCannotOpen()
    {
        writeFile(path("Veldmoor.db"), "damaged");
        RecordingSink sink;
        QuietHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::CannotOpenDatabase);
        QVERIFY(sink.asked.isEmpty());
        QCOMPARE(sink.shownIds(), QList<int>{5020});
        QVERIFY(sink.shown.first().text.endsWith(path("Veldmoor.db") + " is not a database file."));
    }
};

QTEST_GUILESS_MAIN(TestDifficultFiles)
#include "test_difficultfiles.moc"

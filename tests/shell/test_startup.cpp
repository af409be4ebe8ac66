#include "shell/changelog.h"
#include "shell/config.h"
#include "shell/databasechoice.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "shell/startup.h"
#include "shell/ticker.h"
#include "support/recordingsink.h"

#include <QtTest>

using namespace fenlark;

namespace {

// A desk that records what start-up asked of it and answers as told.
class FakeHost : public StartupHost {
public:
    QStringList calls;
    bool loginAnswer = true;
    bool setupAnswer = true;
    bool passwordAnswer = true;
    bool continueAfterDoubles = true;
    int dbNumberSeen = -1;

    void askLanguage() override
    {
        calls << "language";
        writeConfig("Language", "1033");
    }
    void showSplash() override { calls << "splash"; }
    void closeSplash() override { calls << "close splash"; }
    bool logInProperty(Session &s) override
    {
        calls << "login";
        if (loginAnswer)
            s.db().execute("insert into bbsetup (BBID, Password) values (12345, 'pw')");
        return loginAnswer;
    }
    bool checkSetup(Session &s) override
    {
        calls << "setup";
        dbNumberSeen = s.dbNumber();
        return setupAnswer;
    }
    bool enterPassword(Session &) override
    {
        calls << "user";
        return passwordAnswer;
    }
    void initialise(Session &) override { calls << "initialise"; }
    bool checkDoubleBookings(Session &) override
    {
        calls << "doubles";
        return continueAfterDoubles;
    }
    void showMainWindow(Session &) override { calls << "main"; }
};

class FakeTick : public TickHooks {
public:
    bool active = true;
    int expiredChecks = 0;
    int synchs = 0;
    bool deskIdle() override { return active; }
    void checkExpired() override { ++expiredChecks; }
    void synchronise() override { ++synchs; }
};

} // namespace

class TestStartup : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_home;

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        Home::setPath(m_home->path());
    }

    void firstStartOnAnEmptyConfiguration()
    {
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        QCOMPARE(host.calls, QStringList({"language", "splash", "close splash", "login", "setup", "close splash", "user",
                                          "initialise", "doubles", "main"}));
        QCOMPARE(readConfig("Language", ""), QString("1033"));
        // Named in the home folder, so the folder can move with its configuration.
        QCOMPARE(readConfig("Database", ""), QString("Veldmoor.db"));
        QCOMPARE(getDBPath(0), m_home->filePath("Veldmoor.db"));
        QVERIFY(QFile::exists(m_home->filePath("Veldmoor.db")));
        QVERIFY(QFile::exists(m_home->filePath("vmbackup/veldmoor-1.db")));
        auto session = startup.takeSession();
        QCOMPARE(session->BBID(), qint16(12345));
        QCOMPARE(host.dbNumberSeen, 0);
    }

    void knownLanguageAndPropertySkipTheirDialogs()
    {
        writeConfig("Language", "1033");
        {
            FakeHost first;
            Startup s(first);
            QCOMPARE(s.run(), Startup::Running);
        }
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        QVERIFY(!host.calls.contains("language"));
        QVERIFY(!host.calls.contains("login"));
    }

    void theFirstListedDatabaseIsUsedWhenThereAreSeveral()
    {
        writeConfig("Database1", "{Main}" + m_home->filePath("main.db"));
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        QCOMPARE(host.dbNumberSeen, 1);
        QVERIFY(QFile::exists(m_home->filePath("vmbackup/DB1-1.db")));
        QVERIFY(startup.takeSession()->multipleDatabases());
    }

    void secondDatabaseWithoutTheFirstRunsOnTheSingleOne()
    {
        writeConfig("Database2", "{Beach}" + m_home->filePath("beach.db"));
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        QCOMPARE(host.dbNumberSeen, 0);
        QVERIFY(!startup.takeSession()->multipleDatabases());
    }

    void stopsAtEachRefusal()
    {
        {
            FakeHost host;
            host.loginAnswer = false;
            Startup s(host);
            QCOMPARE(s.run(), Startup::LoginCancelled);
        }
        {
            RecordingSink sink;
            FakeHost host;
            host.setupAnswer = false;
            Startup s(host);
            QCOMPARE(s.run(), Startup::NoRooms);
            QCOMPARE(sink.shown.value(0).text, QString("Cannot find any rooms under this BBID."));
        }
        {
            FakeHost host;
            host.passwordAnswer = false;
            Startup s(host);
            QCOMPARE(s.run(), Startup::UserCancelled);
            QVERIFY(!host.calls.contains("initialise"));
        }
        {
            FakeHost host;
            host.continueAfterDoubles = false;
            Startup s(host);
            QCOMPARE(s.run(), Startup::StoppedAtDoubleBookings);
            QVERIFY(!host.calls.contains("main"));
        }
    }

    void aFailedSetupCheckGoesOnWhenRoomsExist()
    {
        FakeHost first;
        {
            Startup s(first);
            QCOMPARE(s.run(), Startup::Running);
            s.takeSession()->db().execute("insert into room (BBRoomID, RoomName) values (1, 'Room 1')");
        }
        FakeHost host;
        host.setupAnswer = false;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
    }

    void aSecondDeskOnTheSameHomeIsRefused()
    {
        RecordingSink sink;
        FakeHost one, two;
        Startup first(one);
        QCOMPARE(first.run(), Startup::Running);
        Startup second(two);
        QCOMPARE(second.run(), Startup::AlreadyRunning);
        QCOMPARE(sink.shown.value(0).title, QString("veldmoor application already open"));
        QVERIFY(two.calls.isEmpty());
    }

    void choosingADatabaseRevertsWhenAGateFails()
    {
        writeConfig("Database1", "{Main}" + m_home->filePath("main.db"));
        writeConfig("Database2", "{Beach}" + m_home->filePath("beach.db"));
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        auto session = startup.takeSession();
        QCOMPARE(DatabaseChoice::names(), QStringList({"Main", "Beach"}));
        QCOMPARE(DatabaseChoice::change(*session, 1, host), DatabaseChoice::Unchanged);

        host.loginAnswer = false; // the new database has no property and the log-on is cancelled
        QCOMPARE(DatabaseChoice::change(*session, 2, host), DatabaseChoice::Reverted);
        QCOMPARE(session->dbNumber(), 1);
        QCOMPARE(session->db().path(), m_home->filePath("main.db"));
        QCOMPARE(session->BBID(), qint16(12345));

        RecordingSink sink;
        host.loginAnswer = true;
        host.calls.clear();
        QCOMPARE(DatabaseChoice::change(*session, 2, host), DatabaseChoice::Changed);
        QCOMPARE(host.calls, QStringList({"login", "setup", "user", "initialise"}));
        QCOMPARE(session->dbNumber(), 2);
        QVERIFY(QFile::exists(m_home->filePath("vmbackup/DB2-1.db")));
        QCOMPARE(sink.shown.value(0).text, QString("Database changed to Beach"));
        QCOMPARE(sink.shown.value(0).title, QString("New Database - Beach"));

        host.passwordAnswer = false;
        QCOMPARE(DatabaseChoice::change(*session, 1, host), DatabaseChoice::Reverted);
        QCOMPARE(session->dbNumber(), 2);
    }

    void tickRules()
    {
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        auto session = startup.takeSession();
        Database &db = session->db();
        FakeTick tick;

        tick.active = false; // a dialog is open: nothing at all happens
        QCOMPARE(Ticker::tick(db, tick), Ticker::Skipped);
        QCOMPARE(tick.expiredChecks, 0);
        QCOMPARE(readConfig("AutoSynch", ""), QString());

        tick.active = true; // an empty log costs nothing, but AutoSynch is switched on
        QCOMPARE(Ticker::tick(db, tick), Ticker::NothingToSend);
        QCOMPARE(tick.expiredChecks, 1);
        QCOMPARE(readConfig("AutoSynch", ""), QString("Y"));

        ChangeLog::logUpdate(db, "client", 1);
        QCOMPARE(Ticker::tick(db, tick), Ticker::Synchronised);
        QCOMPARE(tick.synchs, 1);

        const QDateTime now = QDateTime::currentDateTime();
        writeConfig("LastSynch", now.toString("yyyy-MM-dd hh:mm:ss"));
        QCOMPARE(Ticker::tick(db, tick, now.addSecs(4 * 60)), Ticker::NothingToSend);
        QCOMPARE(Ticker::tick(db, tick, now.addSecs(5 * 60)), Ticker::Synchronised);

        writeConfig("AutoSynch", "N"); // off by hand stays off
        QCOMPARE(Ticker::tick(db, tick), Ticker::AutoSynchOff);
        QCOMPARE(readConfig("AutoSynch", ""), QString("N"));
        QCOMPARE(tick.synchs, 2);
    }

    void exitAsksOnlyWithUnsentChanges()
    {
        FakeHost host;
        Startup startup(host);
        QCOMPARE(startup.run(), Startup::Running);
        auto session = startup.takeSession();
        Database &db = session->db();
        RecordingSink sink;
        QVERIFY(mayExit(db, false));
        QVERIFY(sink.asked.isEmpty());
        ChangeLog::logUpdate(db, "booking", 3);
        sink.answer = false;
        QVERIFY(!mayExit(db, false));
        QCOMPARE(sink.asked.value(0).text, QString(" You have not synchronised. Are you sure you want to exit?"));
        sink.answer = true;
        QVERIFY(mayExit(db, false));
        QVERIFY(mayExit(db, true));
        QCOMPARE(sink.asked.size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestStartup)
#include "test_startup.moc"

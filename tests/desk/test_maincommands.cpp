#include "desk/maincommands.h"
#include "shell/config.h"
#include "shell/deskfixture.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QFile>
#include <QSet>
#include <QtTest>

using namespace fenlark;
using namespace deskfixture;

namespace {

// The main window without widgets: it writes down what it was asked to do and
// answers the questions its screens would.
class FakeDesk : public DeskUi {
public:
    QDate fromDate() const override { return from; }
    void setFromDate(QDate date) override { from = date; }
    void drawCalendar() override { log << "draw"; }
    void refreshCalendar() override { log << "refresh"; }
    void checkRooms() override { log << "checkRooms"; }
    void bookSelectedRooms() override { log << "book"; }
    void closeRoomList() override { log << "closeRoomList"; }
    void viewSelectedBooking() override { log << "view"; }
    void quickQuote() override { log << "quote"; }
    bool openPath(const QString &path) override
    {
        log << "open " + QFileInfo(path).fileName();
        return opens;
    }
    void setHourglass(bool on) override { log << (on ? "hourglass" : "pointer"); }
    void exitDesk() override { log << "exit"; }
    void endDesk() override { log << "end"; }
    void searchBookings() override { log << "search"; }
    void checkInOut(int mode) override { log << QString("checkInOut %1").arg(mode); }
    void swapRooms() override { log << "swap"; }
    void changeUser() override { log << "changeUser"; }
    bool synchronise(bool manual) override
    {
        log << (manual ? "synch" : "quiet synch");
        return synchChanges;
    }
    bool emergencyAccessGranted() override
    {
        log << "access code";
        return accessGranted;
    }
    bool doubleBookings(bool onStart) override
    {
        log << (onStart ? "double check" : "double list");
        return stayAfterDoubleBookings;
    }
    void chooseDatabase() override { log << "chooseDatabase"; }
    void chooseLanguage() override
    {
        log << "language";
        StringTable::instance().setLanguage(SpanishLanguage);
    }
    void runReport(int number) override { log << QString("report %1").arg(number); }
    void occupancy() override { log << "occupancy"; }
    void cancellations() override { log << "cancellations"; }
    void replaceSource() override { log << "sources"; }
    void options() override { log << "options"; }
    void clientSearch() override { log << "clients"; }
    void clientHistory() override { log << "history"; }
    void clientRetire() override { log << "retire"; }
    void accountSearch() override { log << "accounts"; }
    void transactions() override { log << "transactions"; }
    void upgrade() override { log << "upgrade"; }
    void about() override { log << "about"; }

    QStringList log;
    QDate from = QDate(2026, 3, 10);
    bool opens = true;
    bool synchChanges = false;
    bool accessGranted = true;
    bool stayAfterDoubleBookings = true;
};

// What the desk's one listener was told.
class Listener : public ChangeListener {
public:
    void applyChanges(const Changes &changes) override { setupChanges += changes.setupChanged() ? 1 : 0; }
    int setupChanges = 0;
};

struct Desk {
    explicit Desk(const QString &userName = QStringLiteral("admin"), bool runReports = true)
    {
        addRoomType(t.db(), 1, "Double");
        addRoom(t.db(), 1, "Room 1");
        session = std::make_unique<Session>(Database::open(t.file("test.db")), 0);
        UserStruct user;
        user.UserName = userName;
        user.RunReports = runReports;
        user.CancelBooking = user.CancelRoom = user.ExtrasDelete = user.PaymentsDelete = true;
        session->setUser(user);
        session->setChangeListener(&listener);
        commands = std::make_unique<MainCommands>(*session, ui);
    }
    ~Desk() { session->setChangeListener(nullptr); }

    qint64 logRows() { return t.db().scalar("select count(*) from dblog").toLongLong(); }

    TestDatabase t;
    FakeDesk ui;
    Listener listener;
    std::unique_ptr<Session> session;
    std::unique_ptr<MainCommands> commands;
};

} // namespace

class TestMainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyEntrySitsInAKnownMenuAndEveryNameRuns()
    {
        Desk desk;
        QSet<QString> menus;
        for (const DeskMenu &m : MainCommands::menus())
            menus << m.name;
        QSet<QString> seen;
        for (const DeskCommand &c : MainCommands::commands()) {
            QVERIFY2(!seen.contains(c.name), qPrintable(c.name));
            seen << c.name;
            QVERIFY2(!c.caption.isEmpty(), qPrintable(c.name));
            QCOMPARE(c.place == DeskCommand::InMenu, menus.contains(c.menu));
        }
        QCOMPARE(seen.size(), 18 + 6 + 5 + 2 + 12 + 5 + 4 + 2 + 1 + 2);
        QVERIFY(!desk.commands->run("m2TeamViewer"));   // remote support is not part of the desk
        QVERIFY(desk.ui.log.isEmpty());
    }

    void captionsCarryTheirMnemonicsInEitherLanguage()
    {
        auto caption = [](const QString &name) {
            for (const DeskCommand &c : MainCommands::commands())
                if (c.name == name)
                    return c.caption;
            return QString();
        };
        QCOMPARE(caption("cmdToday"), QString("&Today"));
        QCOMPARE(caption("m2Language"), QString("Choose &Language"));
        QCOMPARE(caption("m2ClientReport"), QString("Client Report"));
        StringTable::instance().setLanguage(SpanishLanguage);
        QCOMPARE(caption("cmdToday"), QString("&Hoy"));
        QCOMPARE(MainCommands::menus().front().title, getString(1335, "&File"));
        StringTable::instance().setLanguage(EnglishLanguage);
    }

    void commandsOpenTheirScreens_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("done");
        QTest::newRow("view") << "cmdView" << QStringList{"view"};
        QTest::newRow("check-in") << "cmdCheckIn" << QStringList{"checkInOut 1"};
        QTest::newRow("check-out") << "cmdCheckOut" << QStringList{"checkInOut 2"};
        QTest::newRow("exit button") << "cmdExit" << QStringList{"exit"};
        QTest::newRow("exit menu") << "m2Exit" << QStringList{"exit"};
        QTest::newRow("report") << "m2xl9" << QStringList{"report 9"};
        QTest::newRow("client report is report 4") << "m2ClientReport" << QStringList{"report 4"};
        QTest::newRow("transactions") << "m1Transactions" << QStringList{"transactions"};
        QTest::newRow("cancellations then the double check") << "m2Cancellations" << QStringList{"cancellations", "double check"};
        QTest::newRow("options") << "m2Options" << QStringList{"options"};
        QTest::newRow("refresh") << "cmdRefresh" << QStringList{"refresh"};
    }

    void commandsOpenTheirScreens()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, done);
        Desk desk;
        QVERIFY(desk.commands->run(name));
        QCOMPARE(desk.ui.log, done);
    }

    void refusedRightsBuildNoScreen_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("runReports");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("report without the right") << "mary" << false << "m2xl1" << false;
        QTest::newRow("last report without the right") << "mary" << false << "m2xl12" << false;
        QTest::newRow("client report without the right") << "mary" << false << "m2ClientReport" << false;
        QTest::newRow("report with the right") << "mary" << true << "m2xl3" << true;
        QTest::newRow("options for a user with every right") << "mary" << true << "m2Options" << false;
        QTest::newRow("admin passes whatever its group") << "admin" << false << "m2xl2" << true;
    }

    void refusedRightsBuildNoScreen()
    {
        QFETCH(QString, user);
        QFETCH(bool, runReports);
        QFETCH(QString, name);
        QFETCH(bool, allowed);
        Desk desk(user, runReports);
        RecordingSink sink;
        desk.commands->run(name);
        QCOMPARE(desk.ui.log.isEmpty(), !allowed);
        QCOMPARE(sink.shownIds(), allowed ? QList<int>{} : QList<int>{5100});
    }

    void chooseDatabaseIsOfferedOnlyWithMoreThanOneDatabase()
    {
        Desk desk;
        QVERIFY(!desk.commands->isShown("m2ChooseDB"));
        writeConfig("Database1", "{Lodge}" + desk.t.file("lodge.db"));
        QVERIFY(!desk.commands->isShown("m2ChooseDB"));
        desk.commands->run("m2ChooseDB");
        QVERIFY(desk.ui.log.isEmpty());
        writeConfig("Database2", "{Cottages}" + desk.t.file("cottages.db"));
        QVERIFY(desk.commands->isShown("m2ChooseDB"));
        desk.commands->run("m2ChooseDB");
        QCOMPARE(desk.ui.log, QStringList{"chooseDatabase"});
    }

    void changeUserIsOfferedOnlyWhenThePropertyHasUsers()
    {
        Desk desk;
        QVERIFY(!desk.commands->isShown("cmdChangeUser"));
        desk.t.db().execute("insert into vmuser values(3, 'bob', 'b', 0)");
        QVERIFY(desk.commands->isShown("cmdChangeUser"));
    }

    void windowCaptionNamesTheListedDatabase()
    {
        Desk desk;
        QCOMPARE(desk.commands->windowCaption(), QString("veldmoor"));
        writeConfig("Database1", "{Lodge}" + desk.t.file("test.db"));
        Session listed(Database::open(desk.t.file("test.db")), 1);
        FakeDesk ui;
        QCOMPARE(MainCommands(listed, ui).windowCaption(), QString("veldmoor - Lodge"));
    }

    void theCalendarMovesByWeekAndMonthAndTodayShowsTheWeekGone()
    {
        Desk desk;
        desk.commands->run("cmdNextWeek");
        QCOMPARE(desk.ui.from, QDate(2026, 3, 17));
        desk.commands->run("cmdPrevMonth");
        QCOMPARE(desk.ui.from, QDate(2026, 2, 17));
        desk.commands->run("cmdPrevWeek");
        desk.commands->run("cmdNextMonth");
        QCOMPARE(desk.ui.from, QDate(2026, 3, 10));
        desk.commands->run("cmdToday");
        QCOMPARE(desk.ui.from, QDate::currentDate().addDays(-7));
    }

    void emergencySynchNeedsTheCodeThenAYesThatIsNotTheDefault()
    {
        Desk desk;
        addClient(desk.t.db(), "Anna", "Smith");
        desk.t.db().execute("delete from dblog");   // everything sent already
        RecordingSink sink;
        const qint64 before = desk.logRows();

        desk.ui.accessGranted = false;
        desk.commands->run("m2SynchFull");
        QCOMPARE(desk.ui.log, QStringList{"access code"});
        QVERIFY(sink.asked.isEmpty());

        desk.ui.accessGranted = true;
        desk.ui.log.clear();
        sink.answers = {false};
        desk.commands->run("m2SynchFull");
        QCOMPARE(sink.askedIds(), QList<int>{6027});
        QVERIFY(sink.asked.last().defaultNo);
        QCOMPARE(desk.logRows(), before);
        QCOMPARE(desk.ui.log, QStringList{"access code"});

        sink.answers = {true};
        desk.ui.log.clear();
        desk.commands->run("m2SynchFull");
        QVERIFY(desk.logRows() > before);
        QCOMPARE(desk.ui.log, (QStringList{"access code", "hourglass", "pointer", "synch", "refresh"}));
    }

    void aSynchronisationThatChangedDataReadsTheSetupAndChecksForDoubleBookings()
    {
        Desk desk;
        desk.commands->run("cmdSynch");
        QCOMPARE(desk.ui.log, (QStringList{"synch", "refresh"}));
        QCOMPARE(desk.listener.setupChanges, 0);

        desk.ui.log.clear();
        desk.ui.synchChanges = true;
        desk.commands->run("m2SynchLD");
        QCOMPARE(desk.listener.setupChanges, 1);
        QCOMPARE(desk.ui.log, (QStringList{"synch", "double check"}));

        // Leaving from the list of rooms sold twice ends the desk.
        desk.ui.log.clear();
        desk.ui.stayAfterDoubleBookings = false;
        desk.commands->run("cmdSynch");
        QCOMPARE(desk.ui.log, (QStringList{"synch", "double check", "end"}));
    }

    void doubleBookingsAreListedOnlyAfterAYes()
    {
        Desk desk;
        RecordingSink sink;
        sink.answers = {false, true};
        desk.commands->run("m2DoubleBooking");
        QVERIFY(desk.ui.log.isEmpty());
        desk.ui.stayAfterDoubleBookings = false;
        desk.commands->run("m2DoubleBooking");
        QCOMPARE(sink.askedIds(), (QList<int>{2299, 2299}));
        QCOMPARE(desk.ui.log, (QStringList{"double list", "end"}));
    }

    void aNewLanguageReloadsTheStatusNamesAndRedraws()
    {
        Desk desk;
        desk.session->loadStatusColours();
        QCOMPARE(desk.session->statusColours().find("C")->Description, QString("Confirmed"));
        desk.commands->run("m2Language");
        QCOMPARE(desk.session->statusColours().find("C")->Description, QString("Confirmada"));
        QCOMPARE(desk.ui.log, (QStringList{"language", "draw"}));
        StringTable::instance().setLanguage(EnglishLanguage);
    }

    void templatesOpenWhenTheyExistAndAreNamedWhenMissing()
    {
        Desk desk;
        RecordingSink sink;
        writeConfig("TemplateDir", desk.t.file("templates") + "/");
        desk.commands->run("m2Invoice");
        QCOMPARE(sink.lastShownId(), 5300);
        QVERIFY(sink.shown.last().text.contains("invoice.xlsx"));
        QVERIFY(desk.ui.log.isEmpty());

        QDir().mkpath(desk.t.file("templates"));
        for (const char *name : {"templates/invoice.xlsx", "templates/Confirmation.dotx"}) {
            QFile file(desk.t.file(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        sink.clear();
        desk.commands->run("m2Invoice");
        desk.commands->run("m2Confirmation");
        QCOMPARE(desk.ui.log, (QStringList{"open invoice.xlsx", "open Confirmation.dotx", "draw"}));
        QVERIFY(sink.shown.isEmpty());

        desk.ui.opens = false;
        desk.commands->run("m2Invoice");
        QCOMPARE(sink.lastShownId(), 5301);
    }

    void foldersAndTheConfigurationSayWhenNothingOpensThem()
    {
        Desk desk;
        RecordingSink sink;
        desk.ui.opens = false;
        writeConfig("Server", "example.org");
        desk.commands->run("m2Config");
        QCOMPARE(sink.shown.last().title, QString("vmConfig.ini"));
        QVERIFY(sink.shown.last().text.contains("Server=example.org"));
        desk.commands->run("m2vmfolder");
        QCOMPARE(sink.lastShownId(), 1263);
        // With no folder configured the invoices go to one in the home folder.
        sink.clear();
        desk.commands->run("m2InvoiceFolder");
        QCOMPARE(desk.ui.log.last(), QString("open invoices"));
        QCOMPARE(sink.shownIds(), QList<int>{1263});
    }
};

QTEST_GUILESS_MAIN(TestMainCommands)
#include "test_maincommands.moc"

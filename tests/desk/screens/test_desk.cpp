#include "accounts/accounts.h"
#include "desk/screens/mainwindow.h"
#include "shell/config.h"
#include "shell/errorlog.h"
#include "shell/deskfixture.h"
#include "shell/screens/calendarview.h"
#include "shell/screens/guard.h"
#include "shell/screens/languagedialog.h"
#include "shell/strings.h"
#include "support/guitestmain.h"
#include "support/testdatabase.h"

#include <QAction>
#include <QDialog>
#include <QFile>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

using namespace fenlark;
using namespace deskfixture;

namespace {

// A property of four rooms with one booking in the first visible week.
std::unique_ptr<Session> makeSession(TestDatabase &t, const QString &user = "admin")
{
    addRoomType(t.db(), 1, "Double");
    for (int r = 1; r <= 4; ++r)
        addRoom(t.db(), r, QString("Room %1").arg(r));
    const qint32 c = addClient(t.db(), "Anna", "Smith", "021");
    addBooking(t.db(), 2, c, QDate::currentDate().addDays(-5), 3, "C", 2, 1);
    auto session = std::make_unique<Session>(Database::open(t.file("test.db")), 0);
    UserStruct u = UserStruct::autoAdmin();
    u.UserName = user;
    session->setUser(u);
    return session;
}

} // namespace

class TestDesk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windowDrawsTheDaysItsWidthHoldsAndFillsIt()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        window.resize(1100, 650);
        window.show();
        window.initialise();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        CalendarView *view = window.calendarView();
        QCOMPARE(window.calendarModel()->columnCount(), dayColumnsForWidth(twipsFromPixels(view->viewport()->width())));
        int total = 0;
        for (int c = 0; c < window.calendarModel()->columnCount(); ++c)
            total += view->columnWidth(c);
        QCOMPARE(total, view->viewport()->width());
        const int before = window.calendarModel()->columnCount();
        window.resize(850, 650);
        QTRY_VERIFY(window.calendarModel()->columnCount() < before);

        const QDate from = window.fromDate();
        window.button("cmdNextWeek")->click();
        QCOMPARE(window.fromDate(), from.addDays(7));
        QCOMPARE(window.inDateEdit()->date(), from.addDays(7));
        window.button("cmdToday")->click();
        QCOMPARE(window.fromDate(), QDate::currentDate().addDays(-7));
    }

    void dragOverFreeCellsListsTheFreeRoomsWithTheDraggedOnesSelected()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        window.resize(1100, 650);
        window.show();
        window.initialise();
        CalendarModel *model = window.calendarModel();
        auto *selection = window.calendarView()->selectionModel();
        // From bottom right to top left over rooms 3 and 4, days 9 to 11 of the window.
        selection->select(QItemSelection(model->index(3, 11), model->index(2, 9)), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(window.inDateEdit()->date(), window.fromDate().addDays(9));
        QCOMPARE(window.nightsEdit()->text(), QString("3"));
        QVERIFY(window.roomListActive());
        QCOMPARE(window.roomList()->count(), 4);
        QStringList picked;
        for (QListWidgetItem *item : window.roomList()->selectedItems())
            picked << item->text();
        picked.sort();
        QCOMPARE(picked, (QStringList{"Room 3", "Room 4"}));

        // A click on the booking fills the details box instead.
        selection->select(model->index(1, 3), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(window.detailsBox()->toPlainText(), QString("Anna Smith / 021 (2 adults, 1 Child)"));

        // Nights over the booked room leave it out.
        window.inDateEdit()->setDate(window.fromDate().addDays(2));
        window.nightsEdit()->setText("2");
        window.checkRooms();
        QCOMPARE(window.roomList()->count(), 3);
    }

    void commandsWithoutTheirScreensAreDisabledNotHidden()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        for (const char *name : {"cmdView", "cmdSearch", "cmdCheckIn", "cmdCheckOut", "cmdSwapRoom", "cmdSynch", "cmdQuote"}) {
            QVERIFY2(!window.button(name)->isEnabled(), name);
            QVERIFY2(!window.button(name)->isHidden(), name);
        }
        for (const char *name : {"m2xl1", "m2Client", "m2Upgrade", "m2SynchLD", "m2Occupancy"}) {
            QVERIFY2(!window.menuAction(name)->isEnabled(), name);
            QVERIFY2(window.menuAction(name)->isVisible(), name);
        }
        QVERIFY(window.menuAction("m2Options")->isEnabled());
        QVERIFY(!window.menuAction("m2ChooseDB")->isVisible());
        QVERIFY(window.button("cmdChangeUser")->isHidden());   // no users downloaded

        std::vector<std::pair<qint32, qint32>> opened;
        DeskSeams seams;
        seams.viewBooking = [&](MainWindow &, qint32 b, qint32 r) { opened.emplace_back(b, r); };
        window.setSeams(seams);
        QVERIFY(window.button("cmdView")->isEnabled());
        window.resize(1100, 650);
        window.show();
        window.initialise();
        window.calendarView()->selectionModel()->select(window.calendarModel()->index(1, 4), QItemSelectionModel::ClearAndSelect);
        window.calendarView()->setCurrentIndex(window.calendarModel()->index(1, 4));
        window.button("cmdView")->click();
        QCOMPARE(opened.size(), std::size_t(1));
        QCOMPARE(opened[0].second, 2);

        RecordingSink sink;
        window.calendarView()->setCurrentIndex(window.calendarModel()->index(0, 4));
        window.button("cmdView")->click();
        QCOMPARE(sink.shownIds(), QList<int>{2286});
    }

    void clientMenusOpenTheirScreens()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        QStringList opened;
        DeskSeams seams;
        seams.clientMaintenance = [&](MainWindow &) { opened << "browser"; };
        seams.clientHistory = [&](MainWindow &) { opened << "history"; };
        seams.clientRetire = [&](MainWindow &) { opened << "retire"; };
        seams.replaceSource = [&](MainWindow &) { opened << "sources"; };
        window.setSeams(seams);
        for (const char *name : {"m2Client", "m2ClientHistory", "m2ClientRetire", "m2Source"}) {
            QVERIFY2(window.menuAction(name)->isEnabled(), name);
            window.menuAction(name)->trigger();
        }
        QCOMPARE(opened, QStringList({"browser", "history", "retire", "sources"}));
    }

    void reportEntriesRunTheirReportsAndTheClientsMenuRunsTheClientReport()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        QList<int> run;
        DeskSeams seams;
        seams.runReport = [&](MainWindow &, int number) { run << number; };
        window.setSeams(seams);
        QVERIFY(window.menuAction("m2xl12")->isEnabled());
        QVERIFY(window.menuAction("m2ClientReport")->isEnabled());
        window.menuAction("m2xl7")->trigger();
        window.menuAction("m2ClientReport")->trigger();
        QCOMPARE(run, (QList<int>{7, 4}));
    }

    void optionsAreForAdminOnly()
    {
        TestDatabase t;
        MainWindow window(makeSession(t, "mary"));
        RecordingSink sink;
        window.menuAction("m2Options")->trigger();
        QCOMPARE(sink.shownIds(), QList<int>{5100});
    }

    void languageChangeRetranslatesOpenWindows()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        window.show();
        window.initialise();
        QCOMPARE(window.button("cmdToday")->text(), QString("&Today"));
        LanguageDialog::applyLanguage(SpanishLanguage);
        QCOMPARE(window.button("cmdToday")->text(), QString("&Hoy"));
        QCOMPARE(window.menuAction("m2Options")->text(), QString("Opciones"));
        QCOMPARE(window.session().statusColours().find("C")->Description, QString("Confirmada"));
        LanguageDialog::applyLanguage(EnglishLanguage);
        QCOMPARE(window.button("cmdToday")->text(), QString("&Today"));
    }

    // Changes from the server may sell a room twice: the check follows, and leaving
    // from its list closes the desk. A run that changed nothing checks nothing.
    void synchronisationThatChangedDataChecksForDoubleBookings()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        bool changed = false;
        int checks = 0;
        DeskSeams seams;
        seams.synchronise = [&](MainWindow &, bool) { return changed; };
        seams.doubleBookings = [&](MainWindow &, bool onStart) {
            ++checks;
            return !onStart;
        };
        window.setSeams(seams);
        QVERIFY(window.menuAction("m2DoubleBooking")->isEnabled());
        window.show();
        window.button("cmdSynch")->click();
        QCOMPARE(checks, 0);
        QVERIFY(window.isVisible());
        changed = true;
        window.button("cmdSynch")->click();
        QCOMPARE(checks, 1);
        QVERIFY(!window.isVisible());
    }

    void theMaintenanceCommandsOpenTheirScreensThroughTheSeams()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        QStringList opened;
        std::pair<QDate, int> quoted;
        bool stay = true;
        DeskSeams seams;
        seams.swapRoom = [&](MainWindow &) { opened << "swap"; };
        seams.search = [&](MainWindow &) { opened << "search"; };
        seams.quickQuote = [&](MainWindow &, QDate arrival, int nights) {
            opened << "quote";
            quoted = {arrival, nights};
        };
        seams.occupancy = [&](MainWindow &) { opened << "occupancy"; };
        seams.cancellations = [&](MainWindow &) {
            opened << "cancellations";
            return stay;
        };
        window.setSeams(seams);
        window.show();
        window.initialise();
        for (const char *name : {"cmdSwapRoom", "cmdSearch"})
            QVERIFY2(window.button(name)->isEnabled(), name);
        QVERIFY(!window.button("cmdQuote")->isEnabled());   // no rooms listed yet
        window.button("cmdSwapRoom")->click();
        window.button("cmdSearch")->click();
        window.menuAction("m2Occupancy")->trigger();
        window.menuAction("m2Cancellations")->trigger();

        // The quote starts from the new-booking panel's stay.
        window.inDateEdit()->setDate(QDate::currentDate().addDays(20));
        window.nightsEdit()->setText("3");
        window.checkRooms();
        QVERIFY(window.button("cmdQuote")->isEnabled());
        window.button("cmdQuote")->click();
        QCOMPARE(opened, (QStringList{"swap", "search", "occupancy", "cancellations", "quote"}));
        QCOMPARE(quoted, std::make_pair(QDate::currentDate().addDays(20), 3));

        // Leaving the program from the double-booking check after the list ends the desk.
        QVERIFY(window.isVisible());
        stay = false;
        window.menuAction("m2Cancellations")->trigger();
        QVERIFY(!window.isVisible());
    }

    void aWriteComesBackToTheCalendarThroughOneRoad()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        window.resize(1100, 650);
        window.show();
        window.initialise();
        CalendarModel *model = window.calendarModel();
        const int day = 10;
        QVERIFY(model->index(2, day).data().toString().isEmpty());
        const qint32 c = addClient(t.db(), "Bea", "Lark");
        const qint32 id = addBooking(t.db(), 3, c, window.fromDate().addDays(day), 2, "P", 1);
        QVERIFY(model->index(2, day).data().toString().isEmpty());   // nobody said
        window.session().publish(Changes().booking(id).client(c));
        QCOMPARE(model->index(2, day).data().toString(), QString("1\nLar"));

        // Moved to another room: both rooms are read again.
        t.db().execute("update guest set BBRoomID = 4 where BBBookingID = ?", {id});
        window.session().publish(Changes().booking(id));
        QVERIFY(model->index(2, day).data().toString().isEmpty());
        QCOMPARE(model->index(3, day + 1).data(CalendarModel::BookingIdRole).toInt(), id);
    }

    void theBookingPanelStartsAtToday()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        window.show();
        window.initialise();
        QCOMPARE(window.fromDate(), QDate::currentDate().addDays(-7));
        QCOMPARE(window.inDateEdit()->date(), QDate::currentDate());
    }

    void theTickRunsInTheBackgroundButNotUnderADialog()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        writeConfig("AutoSynch", "N");
        QCOMPARE(window.tick(), Ticker::AutoSynchOff);   // not shown, not active: it still ticks
        Ticker::Result underDialog = Ticker::Synchronised;
        QDialog dialog(&window);
        QTimer::singleShot(0, &dialog, [&] {
            underDialog = window.tick();
            dialog.reject();
        });
        dialog.exec();
        QCOMPARE(underDialog, Ticker::Skipped);
    }

    void aFailingTickIsReportedAndTheDeskGoesOn()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(makeSession(t));
        writeConfig("AutoSynch", "Y");
        t.db().execute("alter table dblog rename to dblog_gone");   // every look at the log fails
        const int before = guardedFailures();
        QTimer *timer = window.findChild<QTimer *>("Timer");
        timer->start(1);
        QTRY_VERIFY(guardedFailures() > before);
        timer->stop();
        QCOMPARE(sink.lastShownId(), 5033);
        QFile log(ErrorLog::path());
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().contains("dblog"));
    }

    void configAndFoldersSayWhenNothingOpensThem()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(makeSession(t));
        QList<QUrl> asked;
        window.openUrl = [&](const QUrl &url) {
            asked << url;
            return false;
        };
        writeConfig("Server", "example.org");
        window.menuAction("m2Config")->trigger();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(sink.shown.last().title, QString("vmConfig.ini"));
        QVERIFY(sink.shown.last().text.contains("Server=example.org"));
        window.menuAction("m2vmfolder")->trigger();
        QCOMPARE(sink.lastShownId(), 1263);
        window.openUrl = [&](const QUrl &) { return true; };
        sink.clear();
        window.menuAction("m2vmfolder")->trigger();
        QVERIFY(sink.shown.isEmpty());
    }

    void closeEmptyClosesTheAccountsThatHoldNothing()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(makeSession(t));
        const qint32 c = addClient(t.db(), "Cy", "Empty");
        const qint32 account = createAccount(t.db(), c);
        QVERIFY(window.menuAction("m2AccountsCloseEmpty")->isEnabled());
        sink.answers = {false};
        window.menuAction("m2AccountsCloseEmpty")->trigger();
        QCOMPARE(t.db().scalar("select Status from account where BBAccountID = ?", {account}).toString(), QString("O"));
        sink.answers = {true};
        window.menuAction("m2AccountsCloseEmpty")->trigger();
        QCOMPARE(sink.askedIds(), (QList<int>{5186, 5186}));
        QCOMPARE(t.db().scalar("select Status from account where BBAccountID = ?", {account}).toString(), QString("C"));
    }
};

FENLARK_GUI_TEST_MAIN(TestDesk)
#include "test_desk.moc"

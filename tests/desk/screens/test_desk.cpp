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
#include "support/recordingsink.h"
#include "support/screendesk.h"
#include "support/testdatabase.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>
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

void showDesk(MainWindow &window)
{
    window.resize(1100, 650);
    window.show();
    window.initialise();
}

} // namespace

class TestDesk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windowDrawsTheDaysItsWidthHoldsAndFillsIt()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t));
        showDesk(window);
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
        QCOMPARE(from, QDate::currentDate().addDays(-7));
        QCOMPARE(window.inDateEdit()->date(), QDate::currentDate());
        window.button("cmdNextWeek")->click();
        QCOMPARE(window.fromDate(), from.addDays(7));
        QCOMPARE(window.inDateEdit()->date(), from.addDays(7));
        window.button("cmdToday")->click();
        QCOMPARE(window.fromDate(), QDate::currentDate().addDays(-7));
    }

    void dragOverFreeCellsListsTheFreeRoomsWithTheDraggedOnesSelected()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t));
        showDesk(window);
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

    void oneDatabaseWithoutUsersHidesChooseDatabaseAndChangeUserOnly()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t));
        for (const DeskCommand &command : MainCommands::commands()) {
            const bool hidden = command.name == "m2ChooseDB" || command.name == "cmdChangeUser" || command.name == "cmdCloseBox";
            if (command.place == DeskCommand::Button)
                QVERIFY2(window.button(command.name)->isHidden() == hidden, qPrintable(command.name));
            else
                QVERIFY2(window.menuAction(command.name)->isVisible() == !hidden, qPrintable(command.name));
        }
        QCOMPARE(window.windowTitle(), QString("veldmoor"));
        QCOMPARE(window.menuAction("m2Language")->text(), QString("Choose &Language"));
        // Transactions is a command of the menu bar itself.
        QVERIFY(window.menuAction("m1Transactions")->menu() == nullptr);
        QVERIFY(window.menuBar()->actions().contains(window.menuAction("m1Transactions")));

        RecordingSink sink;
        showDesk(window);
        window.calendarView()->setCurrentIndex(window.calendarModel()->index(0, 4));
        window.button("cmdView")->click();
        QCOMPARE(sink.shownIds(), QList<int>{2286});
    }

    // Each entry builds its screen for real; a timer closes whatever modal dialog
    // comes up, and questions are answered No. Nothing may stay open afterwards.
    void everyMenuEntryOpensItsScreenAndLeavesNothingOpen()
    {
        ScreenDesk desk;
        RecordingSink sink;
        sink.answer = false;
        writeConfig("Server", "127.0.0.1:9");   // nothing listens there
        auto session = std::make_unique<Session>(Database::open(desk.t.file("test.db")), 0);
        session->setUser(UserStruct::autoAdmin());
        session->reloadSetup();
        MainWindow window(std::move(session));
        QList<QUrl> opened;
        window.openUrl = [&](const QUrl &url) {
            opened << url;
            return true;
        };
        showDesk(window);

        int closed = 0;
        QTimer closer;
        closer.setInterval(20);
        connect(&closer, &QTimer::timeout, [&] {
            if (QWidget *modal = QApplication::activeModalWidget()) {
                ++closed;
                modal->close();
            }
        });
        closer.start();

        QStringList names;
        for (const DeskCommand &command : MainCommands::commands())
            if (command.place != DeskCommand::Button && command.name != "m2Exit")
                names << command.name;
        names << "cmdSearch" << "cmdCheckIn" << "cmdCheckOut" << "cmdSwapRoom" << "cmdSynch";
        for (const QString &name : names) {
            QAction *action = window.menuAction(name);
            if (action && !action->isVisible())
                continue;
            const int before = closed + opened.size() + sink.asked.size() + sink.shown.size();
            if (action)
                action->trigger();
            else
                window.button(name)->click();
            QVERIFY2(closed + opened.size() + sink.asked.size() + sink.shown.size() > before, qPrintable(name));
            for (QWidget *w : QApplication::topLevelWidgets())
                QVERIFY2(w == &window || !w->isVisible() || w->inherits("QMenu"),
                         qPrintable(name + " left " + w->metaObject()->className()));
        }
        QVERIFY(closed >= 25);
        QVERIFY(window.isVisible());
    }

    void theCalendarAnswersTheKeyboard()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(smallDesk(t));
        showDesk(window);
        CalendarView *view = window.calendarView();
        CalendarModel *model = window.calendarModel();
        view->setFocus();
        const QDate from = window.fromDate();
        view->setCurrentIndex(model->index(2, 3));

        QTest::keyClick(view, Qt::Key_PageDown);
        QCOMPARE(window.fromDate(), from.addDays(7));
        QCOMPARE(view->currentIndex(), model->index(2, 3));
        QTest::keyClick(view, Qt::Key_PageUp);
        QTest::keyClick(view, Qt::Key_PageUp);
        QCOMPARE(window.fromDate(), from.addDays(-7));

        // Arrows move within the days shown, and past the last day move the calendar.
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(view->currentIndex(), model->index(2, 4));
        const int last = model->columnCount() - 1;
        view->setCurrentIndex(model->index(2, last));
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(window.fromDate(), from.addDays(-6));
        QCOMPARE(view->currentIndex(), model->index(2, last));
        view->setCurrentIndex(model->index(2, 0));
        QTest::keyClick(view, Qt::Key_Left);
        QCOMPARE(window.fromDate(), from.addDays(-7));

        QTest::keyClick(view, Qt::Key_Home);
        QCOMPARE(window.fromDate(), QDate::currentDate().addDays(-7));
        QCOMPARE(view->currentIndex(), model->index(2, 7));

        // Enter opens the booking under the cursor; on a free night it says there is none.
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(sink.shownIds(), QList<int>{2286});
        int opened = 0;
        QTimer::singleShot(0, [&] {
            if (QWidget *modal = QApplication::activeModalWidget()) {
                ++opened;
                modal->close();
            }
        });
        view->setCurrentIndex(model->index(1, 3));
        QTest::keyClick(view, Qt::Key_Enter);
        QCOMPARE(opened, 1);
        QCOMPARE(sink.shownIds(), QList<int>{2286});
    }

    void optionsAreForAdminOnly()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t, "mary"));
        RecordingSink sink;
        window.menuAction("m2Options")->trigger();
        QCOMPARE(sink.shownIds(), QList<int>{5100});
    }

    void languageChangeRetranslatesOpenWindows()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t));
        window.show();
        window.initialise();
        QCOMPARE(window.button("cmdToday")->text(), QString("&Today"));
        LanguageDialog::applyLanguage(SpanishLanguage);
        QCOMPARE(window.button("cmdToday")->text(), QString("&Hoy"));
        QCOMPARE(window.menuAction("m2Options")->text(), QString("Opciones"));
        LanguageDialog::applyLanguage(EnglishLanguage);
        QCOMPARE(window.button("cmdToday")->text(), QString("&Today"));
    }

    void aWriteComesBackToTheCalendarThroughOneRoad()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t));
        showDesk(window);
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

    void theTickRunsInTheBackgroundButNotUnderADialog()
    {
        TestDatabase t;
        MainWindow window(smallDesk(t));
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
        MainWindow window(smallDesk(t));
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

    void closeEmptyClosesTheAccountsThatHoldNothing()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(smallDesk(t));
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

#include "shell/screens/calendarview.h"
#include "shell/screens/eventdialog.h"
#include "shell/screens/languagedialog.h"
#include "shell/screens/logindialogs.h"
#include "shell/screens/mainwindow.h"
#include "shell/screens/settingsdialogs.h"
#include "shell/strings.h"
#include "support/testdatabase.h"
#include "../deskfixture.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
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
    void calendarModelPassesTheModelTester()
    {
        TestDatabase t;
        auto session = makeSession(t);
        session->reloadSetup();
        CalendarModel model(*session);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QDate from = QDate::currentDate().addDays(-7);
        model.drawCalendar(from, 20);
        QCOMPARE(model.rowCount(), 4);
        QCOMPARE(model.columnCount(), 20);
        const QModelIndex arrival = model.index(1, 2);
        QCOMPARE(arrival.data().toString(), QString("2+1\nSmi"));
        QCOMPARE(arrival.data(Qt::BackgroundRole).value<QColor>(), QColor(85, 185, 255));
        QCOMPARE(arrival.data(CalendarModel::RoomIdRole).toInt(), 2);
        QCOMPARE(model.index(0, 2).data(Qt::BackgroundRole).value<QColor>(), QColor(Qt::white));
        QCOMPARE(model.headerData(0, Qt::Vertical).toString(), QString("Room 1"));
        QCOMPARE(model.headerData(0, Qt::Vertical, Qt::ToolTipRole).toString(), QString("Double"));
        QCOMPARE(model.headerData(7, Qt::Horizontal, Qt::ForegroundRole).value<QColor>(), QColor(205, 60, 100));
        QCOMPARE(model.headerData(2, Qt::Horizontal, CalendarModel::BandTextRole + 2).toString(),
                 QString::number(from.addDays(2).day()));
        model.drawCalendar(from.addDays(7), 5);
        QCOMPARE(model.columnCount(), 5);
    }

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
        QCOMPARE(sink.titles, QStringList{"Please select a booking"});
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

    void statusListSelectsTheCodeOrTheFirst()
    {
        TestDatabase t;
        StatusColours colours;
        colours.load(t.db());
        QComboBox combo;
        fillStatusList(&combo, colours, "S");
        QCOMPARE(combo.count(), 7);
        QCOMPARE(combo.currentText(), QString("Paid"));
        fillStatusList(&combo, colours, "Z");
        QCOMPARE(combo.currentIndex(), 0);
        QCOMPARE(combo.currentData().toString(), QString("C"));
    }

    void optionsAreForAdminOnly()
    {
        TestDatabase t;
        MainWindow window(makeSession(t, "mary"));
        RecordingSink sink;
        window.menuAction("m2Options")->trigger();
        QCOMPARE(sink.titles, QStringList{"Permission denied."});
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

    void colourPickerCancelKeepsSaveAndRestoreStore()
    {
        TestDatabase t;
        auto session = makeSession(t);
        session->reloadSetup();
        {
            ColourPickerDialog dialog(*session);
            QCOMPARE(dialog.statusList()->currentData().toString(), QString("C"));
            dialog.slider(0)->setValue(10);
            QCOMPARE(int(dialog.pending()[0].Red), 10);
            dialog.reject();
        }
        QCOMPARE(int(session->statusColours().find("C")->Red), 85);
        QCOMPARE(t.db().scalar("select Red from status where Status = 'C'").toInt(), 85);

        RecordingSink sink;
        ColourPickerDialog dialog(*session);
        QSignalSpy changed(&dialog, &ColourPickerDialog::coloursChanged);
        dialog.statusList()->setCurrentIndex(4);   // "S"
        dialog.slider(2)->setValue(7);
        sink.answers = {false};
        dialog.save();
        QCOMPARE(t.db().scalar("select Blue from status where Status = 'S'").toInt(), 130);
        sink.answers = {true};
        dialog.save();
        QCOMPARE(t.db().scalar("select Blue from status where Status = 'S'").toInt(), 7);
        QCOMPARE(int(session->statusColours().find("S")->Blue), 7);
        QCOMPARE(changed.count(), 1);

        ColourPickerDialog again(*session);
        sink.answers = {true};
        again.restore();
        QCOMPARE(t.db().scalar("select Blue from status where Status = 'S'").toInt(), 130);
        QCOMPARE(int(again.pending()[4].Blue), 130);
        QCOMPARE(sink.asked, (QStringList{"Save these colours", "Save these colours", "Restore defaults?"}));
    }

    void loginDialogRefusesThenBinds()
    {
        TestDatabase t;
        RecordingSink sink;
        LoginDialog dialog(t.db(), 0);
        dialog.bbidEdit()->setText("9999");
        dialog.passwordEdit()->setText("pw");
        dialog.accept();
        QVERIFY(!dialog.loginOK());
        QCOMPARE(sink.titles, QStringList{"Incorrect BBID"});
        dialog.bbidEdit()->setText("12345");
        dialog.passwordEdit()->setText("");
        dialog.accept();
        QCOMPARE(sink.titles.last(), QString("Valid password required"));
        dialog.passwordEdit()->setText("p\"w");
        dialog.accept();
        QVERIFY(dialog.loginOK());
        QCOMPARE(t.db().scalar("select BBID from bbsetup").toInt(), 12345);
    }

    void passwordDialogKeepsAskingOnAWrongPassword()
    {
        TestDatabase t;
        t.db().execute("insert into bbsetup (BBID, Password, WVPassword) values(12345, 'pw', '')");
        t.db().execute("insert into vmuser values(4, 'mary', 'Mary1', 0)");
        RecordingSink sink;
        PasswordDialog dialog(t.db());
        QVERIFY(dialog.isRequired());
        QCOMPARE(dialog.userList()->itemText(0), QString("admin"));
        dialog.userList()->setCurrentIndex(1);
        dialog.passwordEdit()->setText("mary1");
        dialog.accept();
        QVERIFY(!dialog.getUser());
        QCOMPARE(sink.titles, QStringList{"Incorrect Password"});
        dialog.passwordEdit()->setText("Mary1");
        dialog.accept();
        QVERIFY(dialog.getUser());
        QCOMPARE(dialog.getUser()->UserName, QString("mary"));
    }

    void eventDialogEditsAndChecks()
    {
        TestDatabase t;
        const QDate day(2026, 5, 4);
        EventData e;
        e.EventIndex = 3;
        e.FromDate = day;
        e.ToDate = day.addDays(2);
        e.EventNote = "Market";
        e.update(t.db());
        RecordingSink sink;
        EventDialog edit(t.db(), day.addDays(1), 3, &e);
        QVERIFY(edit.isUpdate());
        QVERIFY(!edit.deleteButton()->isHidden());
        QCOMPARE(edit.fromEdit()->date(), day);
        edit.toEdit()->setDate(day.addDays(4));
        edit.accept();
        QCOMPARE(edit.result(), int(QDialog::Accepted));
        QCOMPARE(t.db().scalar("select ToDate from event").toString(), QString("2026-05-08"));

        EventDialog add(t.db(), day.addDays(3), 3, nullptr);
        QVERIFY(!add.isUpdate());
        QVERIFY(add.deleteButton()->isHidden());
        add.textEdit()->setPlainText("Fair");
        add.accept();
        QCOMPARE(sink.titles, QStringList{"Overlapping event dates"});
        QCOMPARE(t.db().scalar("select count(*) from event").toInt(), 1);

        sink.answers = {true};
        EventDialog remove(t.db(), day, 3, &e);
        remove.deleteEvent();
        QCOMPARE(t.db().scalar("select count(*) from event").toInt(), 0);
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

    void tickDoesNothingWhileTheWindowIsNotActive()
    {
        TestDatabase t;
        MainWindow window(makeSession(t));
        QCOMPARE(window.tick(), Ticker::Skipped);
    }
};

QTEST_MAIN(TestDesk)
#include "test_desk.moc"

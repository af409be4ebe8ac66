#include "bookings/screens/reminderbar.h"
#include "desk/screens/mainwindow.h"
#include "shell/config.h"
#include "shell/deskfixture.h"
#include "shell/screens/calendarlegend.h"
#include "shell/screens/calendarview.h"
#include "shell/screens/dialogmessagesink.h"
#include "shell/screens/languagedialog.h"
#include "shell/strings.h"
#include "support/guitestmain.h"
#include "support/testdatabase.h"

#include <QApplication>
#include <QDateEdit>
#include <QDialog>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QToolTip>
#include <QtTest>

using namespace fenlark;
using namespace deskfixture;

namespace {

const QDate Today = QDate::currentDate();

// Four rooms; the window opens a week before today, so today is column 7.
std::unique_ptr<Session> makeSession(TestDatabase &t)
{
    addRoomType(t.db(), 1, "Double");
    for (int r = 1; r <= 4; ++r)
        addRoom(t.db(), r, QString("Room %1").arg(r));
    writeConfig("AutoSynch", "N");
    auto session = std::make_unique<Session>(Database::open(t.file("test.db")), 0);
    session->setUser(UserStruct::autoAdmin());
    return session;
}

// A provisional booking whose hold ran out an hour ago.
qint32 expiredHold(Database &db, qint32 room, const QString &first, const QString &surname, QDate arrival)
{
    const qint32 id = addBooking(db, room, addClient(db, first, surname), arrival, 2, "P");
    db.execute("update booking set ReservedUntil = ? where BBBookingID = ?",
               {sqlDateTime(QDateTime::currentDateTime().addSecs(-3600)), id});
    return id;
}

struct OpenDesk {
    TestDatabase t;
    MainWindow window{makeSession(t)};
    std::vector<std::pair<qint32, qint32>> opened;

    OpenDesk()
    {
        window.setBookingScreen([this](qint32 b, qint32 r) { opened.emplace_back(b, r); });
        window.resize(1100, 650);
        window.show();
        window.initialise();
    }
    Database &db() { return window.session().db(); }
    ReminderBar &bar() { return *window.reminderBar(); }
    QRect inWindow(QWidget *w) { return QRect(w->mapTo(&window, QPoint(0, 0)), w->size()); }
};

QString shownDate(QDate date)
{
    return deskLocale().toString(date, "ddd dd MMM yyyy");
}

} // namespace

class TestReceptionDesk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { LanguageDialog::applyLanguage(EnglishLanguage); }

    void aReminderNamesTheGuestBesideTheCalendarAndLeavesItsClicksAlone()
    {
        OpenDesk desk;
        QVERIFY(desk.bar().isHidden());
        const qint32 id = expiredHold(desk.db(), 3, "Hugo", "Ramos", Today.addDays(3));
        QCOMPARE(desk.window.tick(), Ticker::AutoSynchOff);
        QVERIFY(desk.bar().isVisible());
        QVERIFY(desk.bar().lblReminder->text().startsWith("Booking Reminder - Hugo Ramos arriving " + shownDate(Today.addDays(3))));
        QVERIFY(!QApplication::activeModalWidget());
        CalendarView *view = desk.window.calendarView();
        QTRY_VERIFY(!desk.inWindow(&desk.bar()).intersects(desk.inWindow(view)));

        // The click the receptionist was making lands on the calendar.
        const QModelIndex cell = desk.window.calendarModel()->index(1, 10);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(cell).center());
        QCOMPARE(view->currentIndex(), cell);
        QVERIFY(view->selectionModel()->isSelected(cell));

        // Looked at: it does not come back at the next ticks.
        QTest::mouseClick(desk.bar().cmdView, Qt::LeftButton);
        QCOMPARE(desk.opened, (std::vector<std::pair<qint32, qint32>>{{id, 3}}));
        QVERIFY(desk.bar().isHidden());
        desk.window.tick();
        desk.window.tick();
        QVERIFY(desk.bar().isHidden());

        // Changed since: it is due again.
        desk.db().execute("update booking set Notes = 'calls back at six' where BBBookingID = ?", {id});
        desk.window.tick();
        QVERIFY(desk.bar().isVisible());
        QCOMPARE(desk.bar().current()->BBBookingID, id);
    }

    void notNowPostponesAndTheNextReminderTakesItsPlace()
    {
        OpenDesk desk;
        const qint32 first = expiredHold(desk.db(), 2, "Hugo", "Ramos", Today.addDays(1));
        const qint32 second = expiredHold(desk.db(), 4, "Ana", "Nunez", Today.addDays(5));
        desk.db().execute("delete from dblog");
        desk.window.tick();
        QCOMPARE(desk.bar().current()->BBBookingID, first);
        QVERIFY(desk.bar().lblReminder->text().endsWith("(1 more waiting)"));

        QTest::mouseClick(desk.bar().cmdNotNow, Qt::LeftButton);
        const QDateTime hold = dateTimeFromSql(desk.db().scalar("select ReservedUntil from booking where BBBookingID = ?", {first}));
        QVERIFY(qAbs(hold.secsTo(QDateTime::currentDateTime().addSecs(4 * 3600))) < 60);
        QCOMPARE(desk.db().scalar("select count(*) from dblog where TableName = 'booking' and bbtableId = ?", {first}).toInt(), 1);
        QCOMPARE(desk.bar().current()->BBBookingID, second);
        QVERIFY(desk.bar().lblReminder->text().contains("Ana Nunez"));
        QVERIFY(!desk.bar().lblReminder->text().contains("more waiting"));
        QVERIFY(desk.opened.empty());

        QTest::mouseClick(desk.bar().cmdNotNow, Qt::LeftButton);
        QVERIFY(desk.bar().isHidden());
    }

    void aReminderInSpanishSpeaksSpanish()
    {
        OpenDesk desk;
        expiredHold(desk.db(), 1, "Hugo", "Ramos", QDate(2026, 12, 4));
        desk.window.tick();
        LanguageDialog::applyLanguage(SpanishLanguage);
        QVERIFY(desk.bar().lblReminder->text().startsWith("Recordatorio de reserva - Hugo Ramos llega el vie 04 dic 2026"));
        QCOMPARE(desk.bar().cmdView->text(), QString("Ver la reserva"));
        QCOMPARE(desk.bar().cmdNotNow->text(), QString("Ahora no"));
    }

    void theBookingPanelNamesItsDatesInTheDesksLanguage()
    {
        OpenDesk desk;
        LanguageDialog::applyLanguage(SpanishLanguage);
        desk.window.inDateEdit()->setDate(QDate(2026, 12, 4));
        desk.window.findChild<QDateEdit *>("dpLeaving")->setDate(QDate(2026, 12, 7));
        QCOMPARE(desk.window.nightsEdit()->text(), QString("3"));
        QCOMPARE(desk.window.inDateEdit()->text(), QString("vie 04 dic 2026"));
        QCOMPARE(desk.window.findChild<QDateEdit *>("dpLeaving")->text(), QString("lun 07 dic 2026"));
        QCOMPARE(desk.window.findChild<QLabel *>("lblOut")->text(), QString("lun 07 dic 2026"));
        QCOMPARE(desk.window.findChild<QDateEdit *>("dpFrom")->text(), deskLocale().toString(desk.window.fromDate(), "ddd dd MMM yyyy"));
    }

    void todaysColumnIsMarkedFromTheHeaderDown()
    {
        OpenDesk desk;
        const qint32 c = addClient(desk.db(), "Anna", "Smith");
        addBooking(desk.db(), 2, c, Today.addDays(-1), 3, "C");
        desk.window.button("cmdRefresh")->click();
        CalendarModel *model = desk.window.calendarModel();
        for (int column = 0; column < model->columnCount(); ++column) {
            QCOMPARE(model->index(0, column).data(CalendarModel::TodayRole).toBool(), column == 7);
            QCOMPARE(model->headerData(column, Qt::Horizontal, CalendarModel::TodayRole).toBool(), column == 7);
        }

        CalendarView *view = desk.window.calendarView();
        QTRY_VERIFY(view->isVisible());
        const QImage grid = view->viewport()->grab().toImage();
        const QRect todayFree = view->visualRect(model->index(0, 7));
        const QRect otherFree = view->visualRect(model->index(0, 9));
        const QRect todayBooked = view->visualRect(model->index(1, 7));
        const QColor mark(205, 60, 100);
        QCOMPARE(grid.pixelColor(todayFree.left(), todayFree.center().y()), mark);
        QCOMPARE(grid.pixelColor(todayBooked.left(), todayBooked.center().y()), mark);
        QVERIFY(grid.pixelColor(todayFree.center() + QPoint(0, todayFree.height() / 3)) != QColor(Qt::white));
        QCOMPARE(grid.pixelColor(otherFree.center() + QPoint(0, otherFree.height() / 3)), QColor(Qt::white));
        // A booking keeps its status colour inside the frame.
        QCOMPARE(grid.pixelColor(todayBooked.center() + QPoint(todayBooked.width() / 3, todayBooked.height() / 3)),
                 model->index(1, 7).data(Qt::BackgroundRole).value<QColor>());
    }

    void theLegendNamesEveryColourOfTheCalendarAndFollowsThem()
    {
        OpenDesk desk;
        CalendarLegend *legend = desk.window.calendarLegend();
        const StatusColours &colours = desk.window.session().statusColours();
        const auto &entries = legend->entries();
        QCOMPARE(entries.size(), colours.list().size() + 3);
        for (const Status &status : colours.list()) {
            auto *swatch = legend->findChild<QLabel *>("legendSwatch" + status.Code);
            QVERIFY2(swatch, qPrintable(status.Code));
            QCOMPARE(swatch->palette().color(QPalette::Window), QColor(status.Red, status.Green, status.Blue));
            QCOMPARE(legend->findChild<QLabel *>("legendText" + status.Code)->text(), status.Description);
        }
        QCOMPARE(legend->findChild<QLabel *>("legendTextI")->text(), QString("Checked in"));
        QCOMPARE(legend->findChild<QLabel *>("legendSwatchK")->palette().color(QPalette::Window), QColor(255, 255, 215));
        QCOMPARE(legend->findChild<QLabel *>("legendText")->text(), QString("Today"));
        QVERIFY(legend->isVisible());
        QVERIFY(!desk.inWindow(legend).intersects(desk.inWindow(desk.window.calendarView())));

        // An edited colour and another language show at once.
        std::vector<Status> edited = colours.list();
        edited[0].Red = 10;
        edited[0].Green = 20;
        edited[0].Blue = 30;
        StatusColours::save(desk.db(), edited);
        desk.window.session().loadStatusColours();
        desk.window.drawCalendar();
        QCOMPARE(legend->findChild<QLabel *>("legendSwatch" + edited[0].Code)->palette().color(QPalette::Window), QColor(10, 20, 30));
        LanguageDialog::applyLanguage(SpanishLanguage);
        QCOMPARE(legend->findChild<QLabel *>("legendTextC")->text(), QString("Confirmada"));
        QCOMPARE(legend->findChild<QLabel *>("legendTextI")->text(), QString("Ha llegado"));
        QCOMPARE(legend->findChild<QLabel *>("legendText")->text(), QString("Hoy"));
    }

    void aBookingsHintTellsGuestDatesHeadsStatusTotalAndBookingId()
    {
        OpenDesk desk;
        const qint32 c = addClient(desk.db(), "Anna", "Smith");
        const qint32 id = addBooking(desk.db(), 2, c, Today.addDays(2), 3, "C", 2, 1, "I");
        for (int night = 0; night < 3; ++night)
            desk.db().execute("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values(?, ?, ?, ?)",
                              {sqlDate(Today.addDays(2 + night)), id, 2, 120.5});
        // A room cancelled from the booking keeps its nightly rates, not charged.
        desk.db().execute("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values(?, ?, ?, ?)",
                          {sqlDate(Today.addDays(2)), id, 1, 99.0});
        const qint32 one = addBooking(desk.db(), 3, c, Today.addDays(1), 1, "P", 1);
        desk.window.button("cmdRefresh")->click();

        const QString expected = QString("Anna Smith\nBooking ID: %1\n%2 to %3, 3 nights\n2 adults, 1 Child\nChecked in\nTotal: 361.50")
                                     .arg(id)
                                     .arg(shownDate(Today.addDays(2)), shownDate(Today.addDays(5)));
        CalendarView *view = desk.window.calendarView();
        const QModelIndex cell = desk.window.calendarModel()->index(1, 10);
        QCOMPARE(cell.data(Qt::ToolTipRole).toString(), expected);
        QHelpEvent help(QEvent::ToolTip, view->visualRect(cell).center(), view->viewport()->mapToGlobal(view->visualRect(cell).center()));
        QApplication::sendEvent(view->viewport(), &help);
        QTRY_COMPARE(QToolTip::text(), expected);
        QToolTip::hideText();

        QVERIFY(desk.window.calendarModel()->index(2, 8).data(Qt::ToolTipRole).toString().contains(
            QString("Booking ID: %1\n%2 to %3, 1 night\n1 adult\nProvisional\nTotal: 0.00").arg(one).arg(shownDate(Today.addDays(1)), shownDate(Today.addDays(2)))));
        QVERIFY(desk.window.calendarModel()->index(0, 10).data(Qt::ToolTipRole).isNull());

        LanguageDialog::applyLanguage(SpanishLanguage);
        const QString spanish = cell.data(Qt::ToolTipRole).toString();
        QVERIFY(spanish.contains(QString("Nº de reserva: %1").arg(id)));
        QVERIFY(spanish.contains(shownDate(Today.addDays(2)) + " a " + shownDate(Today.addDays(5)) + ", 3 noches"));
        QVERIFY(spanish.contains("Ha llegado"));
    }

    // The window's focus widget is where the keyboard goes whenever the window is
    // active; the offscreen platform does not hand activation back by itself.
    void theKeyboardGoesBackToTheCalendarWhenADialogCloses()
    {
        OpenDesk desk;
        CalendarView *view = desk.window.calendarView();
        QLineEdit *nights = desk.window.nightsEdit();
        desk.window.setBookingScreen([&desk](qint32, qint32) {
            QDialog editor(&desk.window);
            auto *box = new QLineEdit(&editor);
            QTimer::singleShot(0, &editor, [&] {
                box->setFocus();
                editor.accept();
            });
            editor.exec();
        });
        addBooking(desk.db(), 1, addClient(desk.db(), "Anna", "Smith"), Today, 2);
        desk.window.button("cmdRefresh")->click();

        // A screen opened from the desk.
        nights->setFocus();
        view->setCurrentIndex(desk.window.calendarModel()->index(0, 7));
        QTest::mouseClick(desk.window.button("cmdView"), Qt::LeftButton);
        QCOMPARE(desk.window.focusWidget(), view);

        // A message box; and a screen that sends the keyboard elsewhere on purpose
        // after its message ("How many nights is the booking for?") keeps it there.
        DialogMessageSink boxes;
        messages::setSink(&boxes);
        const auto closeTheBox = [] {
            QTimer::singleShot(0, [] {
                if (auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                    box->accept();
            });
        };
        nights->setFocus();
        view->setCurrentIndex(desk.window.calendarModel()->index(3, 7));
        closeTheBox();
        QTest::mouseClick(desk.window.button("cmdView"), Qt::LeftButton);   // "No booking selected."
        QCOMPARE(desk.window.focusWidget(), view);
        nights->clear();
        closeTheBox();
        desk.window.checkRooms();
        messages::setSink(nullptr);
        QCOMPARE(desk.window.focusWidget(), nights);

        // A menu or a date popup is no dialog: the keyboard stays where it was.
        QDateEdit *inDate = desk.window.inDateEdit();
        inDate->setFocus();
        QMenu menu(&desk.window);
        menu.addAction("x");
        QTimer::singleShot(0, &menu, [&] { menu.close(); });
        menu.exec(desk.window.mapToGlobal(QPoint(10, 10)));
        QCOMPARE(desk.window.focusWidget(), inDate);
    }
};

FENLARK_GUI_TEST_MAIN(TestReceptionDesk)
#include "test_receptiondesk.moc"

#include "shell/screens/calendarview.h"
#include "shell/screens/eventdialog.h"
#include "shell/screens/guard.h"
#include "shell/screens/logindialogs.h"
#include "shell/screens/settingsdialogs.h"
#include "shell/session.h"
#include "shell/deskfixture.h"
#include "support/guitestmain.h"
#include "support/testdatabase.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>

using namespace fenlark;
using namespace deskfixture;

class TestShellScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void calendarModelPassesTheModelTester()
    {
        TestDatabase t;
        auto session = smallDesk(t);
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

    void colourPickerCancelKeepsSaveAndRestoreStore()
    {
        TestDatabase t;
        auto session = smallDesk(t);
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
        QCOMPARE(sink.askedIds(), (QList<int>{5130, 5130, 5132}));
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
        QCOMPARE(sink.shownIds(), QList<int>{5104});
        dialog.bbidEdit()->setText("12345");
        dialog.passwordEdit()->setText("");
        dialog.accept();
        QCOMPARE(sink.lastShownId(), 5106);
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
        QCOMPARE(sink.shownIds(), QList<int>{5127});
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
        QCOMPARE(sink.shownIds(), QList<int>{5110});
        QCOMPARE(t.db().scalar("select count(*) from event").toInt(), 1);

        sink.answers = {true};
        EventDialog remove(t.db(), day, 3, &e);
        remove.deleteEvent();
        QCOMPARE(t.db().scalar("select count(*) from event").toInt(), 0);
    }

    // As when another program holds the database: the save fails, the desk says
    // so, logs it, and the dialog stays open with nothing written.
    void aFailingSaveLeavesTheEventDialogOpen()
    {
        TestDatabase t;
        RecordingSink sink;
        t.db().execute("create trigger injected_failure before insert on event begin select raise(abort, 'database is locked'); end");
        EventDialog add(t.db(), QDate(2026, 5, 4), 1, nullptr);
        add.show();
        add.textEdit()->setPlainText("Fair");
        const int before = guardedFailures();
        QTest::mouseClick(add.findChild<QPushButton *>(QStringLiteral("cmdOK")), Qt::LeftButton);
        QCOMPARE(guardedFailures(), before + 1);
        QCOMPARE(sink.lastShownId(), 5033);
        QVERIFY(sink.shown.last().text.contains("database is locked"));
        QVERIFY(add.isVisible());
        QCOMPARE(t.db().scalar("select count(*) from event").toInt(), 0);
        QCOMPARE(t.db().transactionDepth(), 0);
    }
};

FENLARK_GUI_TEST_MAIN(TestShellScreens)
#include "test_shellscreens.moc"

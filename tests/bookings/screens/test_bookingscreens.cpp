#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "bookings/screens/checkinout.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/doublebook.h"
#include "bookings/screens/viewbooking.h"
#include "bookings/screens/viewrooms.h"
#include "clients/clientrecords.h"
#include "clients/screens/sourcelist.h"
#include "shell/errorlog.h"
#include "support/databasedump.h"
#include "support/guitestmain.h"
#include "support/recordingsink.h"
#include "support/screenbooking.h"
#include "support/screendesk.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTableWidget>

using namespace fenlark;

namespace {

const QDate Arrival(2031, 7, 1);

qint32 addClient(Database &db, const QString &surname, const QString &email = {}, qint16 rateSheet = 0)
{
    Client client;
    client.Surname = surname;
    client.Email = email;
    client.BBRateSheetID = rateSheet;
    client.Active = QStringLiteral("Y");
    client.update(db);
    return client.BBClientID;
}

QString labelText(const QWidget &dialog, const char *name)
{
    return dialog.findChild<QLabel *>(QLatin1String(name))->text();
}

QSpinBox *countBox(ConfirmBooking &dialog, int row, int column)
{
    return qobject_cast<QSpinBox *>(dialog.gdRooms->cellWidget(row, column));
}

// The whole content of the tables a booking touches, to show that nothing changed.
QString bookingTables(Database &db)
{
    return dumpDatabase(db.connection());
}

void injectFailure(Database &db, const char *table)
{
    db.execute(QStringLiteral("create trigger injected_failure before insert on %1 begin select raise(abort, 'disk full'); end")
                   .arg(QLatin1String(table)));
}

} // namespace

class TestBookingScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void confirmBookingShowsThePriceItWillSave()
    {
        RecordingSink sink;
        ScreenDesk desk;
        ConfirmBooking dialog(*desk.session, desk.rates, {1, 2}, Arrival, 3);
        QCOMPARE(dialog.gdRooms->rowCount(), 2);
        auto *rate = qobject_cast<QComboBox *>(dialog.gdRooms->cellWidget(0, ConfirmBooking::ColRate));
        QCOMPARE(rate->currentIndex(), 1);   // the room's default rate, not "No rate selected"
        QCOMPARE(countBox(dialog, 1, ConfirmBooking::ColAdults)->value(), 2);

        const QString before = dialog.lblTotal->text();
        QVERIFY(dialog.gdRooms->item(1, ConfirmBooking::ColStayTotal)->text().toDouble() > 0);
        qobject_cast<QComboBox *>(dialog.gdRooms->cellWidget(1, ConfirmBooking::ColRate))->setCurrentIndex(0);
        QCOMPARE(dialog.gdRooms->item(1, ConfirmBooking::ColStayTotal)->text(), QStringLiteral("0.00"));
        QVERIFY(dialog.lblTotal->text() != before);
        countBox(dialog, 0, ConfirmBooking::ColAdults)->setValue(1);
        countBox(dialog, 0, ConfirmBooking::ColChild1)->setValue(1);
        const QString shown = dialog.gdRooms->item(0, ConfirmBooking::ColStayTotal)->text();

        dialog.clientSearch->txtSurname->setText(QStringLiteral("Heron"));
        dialog.cmdOK();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        double saved = 0;
        for (const DailyRate &night : DailyRate::forLeg(desk.db(), dialog.saved().BBBookingID, 1))
            saved += night.RoomRate;
        QCOMPARE(QString::number(saved, 'f', 2), shown);
        QVERIFY(dialog.lblTotal->text().contains(QString::number(dialog.saved().total, 'f', 2)));
        QVERIFY(desk.published.bookings().contains(dialog.saved().BBBookingID));
    }

    void confirmBookingRefusesWithoutANameAndWritesNothing()
    {
        RecordingSink sink;
        ScreenDesk desk;
        ConfirmBooking dialog(*desk.session, desk.rates, {1, 2}, Arrival, 3);
        const QString before = bookingTables(desk.db());
        dialog.cmdOK();
        QCOMPARE(sink.lastShownId(), 5802);
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QCOMPARE(bookingTables(desk.db()), before);
        QCOMPARE(desk.publications, 0);
    }

    void limitsAskWithNoAsDefaultAndNoWritesNothing()
    {
        RecordingSink sink;
        ScreenDesk desk;
        ConfirmBooking dialog(*desk.session, desk.rates, {1}, QDate(2020, 1, 10), 2);
        dialog.clientSearch->txtSurname->setText(QStringLiteral("Heron"));
        countBox(dialog, 0, ConfirmBooking::ColAdults)->setValue(99);
        const QString before = bookingTables(desk.db());

        sink.answers = {false};
        dialog.cmdOK();
        QCOMPARE(sink.askedIds(), QList<int>{5970});
        QVERIFY(sink.asked.last().defaultNo);
        QCOMPARE(bookingTables(desk.db()), before);

        sink.answers = {true, false};   // over the limit: yes; in the past: no
        dialog.cmdOK();
        QCOMPARE(sink.askedIds().mid(1), (QList<int>{5970, 5972}));
        QVERIFY(sink.asked.last().defaultNo);
        QCOMPARE(bookingTables(desk.db()), before);

        sink.answers = {true, true};
        dialog.cmdOK();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
    }

    void aFailingStatementLeavesTheNewBookingScreenOpenAndNothingWritten()
    {
        RecordingSink sink;
        ScreenDesk desk;
        injectFailure(desk.db(), "dailyrate");
        ConfirmBooking dialog(*desk.session, desk.rates, {1, 2}, Arrival, 3);
        dialog.show();
        dialog.clientSearch->txtSurname->setText(QStringLiteral("Heron"));
        const QString before = bookingTables(desk.db());
        click(dialog, "cmdOK");
        QCOMPARE(sink.lastShownId(), 5033);
        QVERIFY(sink.shown.last().text.contains(QStringLiteral("disk full")));
        QVERIFY(dialog.isVisible());
        QCOMPARE(bookingTables(desk.db()), before);
        QCOMPARE(desk.db().transactionDepth(), 0);
        QFile log(ErrorLog::path());
        QVERIFY(log.open(QIODevice::ReadOnly));
        QVERIFY(log.readAll().contains("disk full"));
    }

    void editorGuardsAndSaves()
    {
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {1, 2});
        QVERIFY(id > 0);

        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        QVERIFY(!editor.isDirty());
        QCOMPARE(labelText(editor, "lblBookingID"), QString::number(id));
        QVERIFY(editor.guard());

        editor.dpTo->setDate(Arrival.addDays(4));
        QVERIFY(editor.isDirty());
        QVERIFY(editor.datesChanged());
        QVERIFY(!editor.guard());
        QCOMPARE(sink.lastShownId(), 5914);

        sink.answer = true;   // change all legs; look at the rates
        desk.published = Changes();
        QList<qint32> ratesOpened;
        editor.choosers.rates = [&ratesOpened](QWidget *, qint32 booking) {
            ratesOpened << booking;
            return false;
        };
        QVERIFY(editor.cmdSave());
        QCOMPARE(ratesOpened, QList<qint32>{id});
        QVERIFY(desk.published.bookings().contains(id));
        QVERIFY(!editor.isDirty());
        Booking head;
        QVERIFY(head.fetch(desk.db(), id));
        QCOMPARE(head.ToDate, Arrival.addDays(4));
        QCOMPARE(DailyRate::forLeg(desk.db(), id, 2).size(), size_t(4));

        editor.ckCheckedIn->setChecked(true);
        QVERIFY(!editor.cmdSave());
        QVERIFY(!editor.ckCheckedIn->isChecked());
        QCOMPARE(sink.lastShownId(), 5819);

        editor.txtnoadults->setText(QStringLiteral("3"));
        QVERIFY(editor.headCountChanged());
        QVERIFY(!editor.guard());

        QVERIFY(!editor.load(id, 9));
        QCOMPARE(sink.lastShownId(), 5827);
    }

    void editorRefusesCommissionOutsideAHundredAndTextAsAmount_data()
    {
        QTest::addColumn<QString>("commission");
        QTest::addColumn<int>("refusal");
        QTest::newRow("250 %") << QStringLiteral("250") << 5985;
        QTest::newRow("grouping that is not") << QStringLiteral("1,2,3") << 5991;
    }

    void editorRefusesCommissionOutsideAHundredAndTextAsAmount()
    {
        QFETCH(QString, commission);
        QFETCH(int, refusal);
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {1});
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        const QString before = bookingTables(desk.db());
        editor.txtAgentComm->setText(commission);
        QVERIFY(!editor.cmdSave());
        QCOMPARE(sink.lastShownId(), refusal);
        QCOMPARE(bookingTables(desk.db()), before);
    }

    void anUnknownStatusSurvivesASave()
    {
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {1});
        desk.db().execute(QStringLiteral("update booking set Status = 'X' where BBBookingID = ?"), {id});
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        QCOMPARE(editor.cboStatus->currentData().toString(), QStringLiteral("X"));
        editor.txtNotes->setPlainText(QStringLiteral("late arrival"));
        QVERIFY(editor.cmdSave());
        QCOMPARE(desk.db().scalar(QStringLiteral("select Status from booking where BBBookingID = ?"), {id}).toString(),
                 QStringLiteral("X"));
    }

    void aFailingStatementLeavesTheEditorOpenOnSaveAndSplit()
    {
        RecordingSink sink;
        sink.answer = true;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {1, 2});
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        editor.show();
        injectFailure(desk.db(), "booking");   // the split makes a new head first
        const QString before = bookingTables(desk.db());
        click(editor, "cmdSplit");
        QCOMPARE(sink.lastShownId(), 5033);
        QVERIFY(editor.isVisible());
        QCOMPARE(bookingTables(desk.db()), before);

        desk.db().execute(QStringLiteral("drop trigger injected_failure"));
        desk.db().execute(QStringLiteral("create trigger injected_failure before update on guest begin "
                                         "select raise(abort, 'disk full'); end"));
        editor.dpTo->setDate(Arrival.addDays(5));
        sink.clear();
        click(editor, "cmdSave");
        QCOMPARE(sink.lastShownId(), 5033);
        QVERIFY(editor.isVisible());
        QCOMPARE(bookingTables(desk.db()), before);
        QCOMPARE(desk.db().transactionDepth(), 0);
    }

    void reservedNeedsTheRightAndUnavailableClearsAdults()
    {
        RecordingSink sink;
        ScreenDesk desk(5, false);
        const qint32 id = bookRooms(desk, {1, 2});
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 2));
        const int before = editor.cboStatus->currentIndex();
        editor.cboStatus->setCurrentIndex(editor.cboStatus->findData(QStringLiteral("R")));
        QCOMPARE(editor.cboStatus->currentIndex(), before);
        QCOMPARE(sink.lastShownId(), 5910);

        editor.cboStatus->setCurrentIndex(editor.cboStatus->findData(QStringLiteral("U")));
        QCOMPARE(editor.txtnoadults->text(), QStringLiteral("0"));
        QVERIFY(editor.isDirty());
    }

    void clientButtonsChangeRemoveAndCopyEmail()
    {
        RecordingSink sink;
        ScreenDesk desk;
        Database &db = desk.db();
        const qint32 id = bookRooms(desk, {1, 2});
        const qint32 teal = addClient(db, QStringLiteral("Teal"), QStringLiteral("teal@example.org"), 99);
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        editor.choosers.client = [teal](QWidget *) { return teal; };
        sink.clear();

        editor.cmdMadeByChange();
        QVERIFY(editor.isDirty());
        QCOMPARE(editor.edit().MadeBy, teal);
        QCOMPARE(labelText(editor, "outMadeBy"), QStringLiteral("Teal"));
        QCOMPARE(sink.shownIds(), (QList<int>{5927, 5930}));
        QVERIFY(sink.shown[1].text.contains(QStringLiteral("99 Ratesheet not found!")));

        auto *remove = editor.findChild<QPushButton *>(QStringLiteral("cmdGuest2del"));
        QVERIFY(!remove->isEnabled());
        editor.cmdGuest2Change();
        QCOMPARE(editor.edit().BBClient2ID, teal);
        QVERIFY(remove->isEnabled());
        sink.answer = false;
        editor.cmdGuest2del();
        QCOMPARE(sink.asked.last().id, 5935);
        QVERIFY(sink.asked.last().text.contains(QStringLiteral("Teal")));
        QVERIFY(sink.asked.last().defaultNo);
        QCOMPARE(editor.edit().BBClient2ID, teal);

        editor.cmdGuest2Email();
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("teal@example.org"));
        QCOMPARE(sink.lastShownId(), 5940);
        editor.cmdGuest1Email();   // the booking's guest has no address
        QCOMPARE(sink.lastShownId(), 5938);

        QVERIFY(editor.cmdSave());
        QCOMPARE(loadBookingEdit(db, id, 1)->BBClient2ID, teal);
        QCOMPARE(loadBookingEdit(db, id, 1)->MadeBy, teal);
        sink.answer = true;
        editor.cmdGuest2del();
        QCOMPARE(editor.edit().BBClient2ID, 0);
        QVERIFY(editor.isDirty());
    }

    void doubleBookingsHoldTheDeskUntilRepairedOrLeft()
    {
        RecordingSink sink;
        ScreenDesk desk;
        Database &db = desk.db();
        const OpenBooking nothing = [](qint32, qint32) {};

        QVERIFY(DoubleBook::check(*desk.session, nothing, true));
        QVERIFY(sink.shown.isEmpty());   // at start-up, all clear says nothing
        QVERIFY(DoubleBook::check(*desk.session, nothing, false));
        QCOMPARE(sink.lastShownId(), 5948);

        const qint32 first = bookRooms(desk, {1, 2});
        const qint32 second = bookRooms(desk, {3, 4}, QStringLiteral("Egret"));
        QVERIFY(first > 0 && second > 0);
        // As a synchronisation might leave it: the same rooms, the same nights.
        db.execute("update guest set bbroomid = bbroomid - 2 where bbbookingid = ?", {second});

        // Leaving from the list ends the program.
        DoubleBook leave(*desk.session, nothing);
        QTimer::singleShot(0, &leave, [&leave] { leave.cmdExit(); });
        QVERIFY(!leave.initialise(true));
        QCOMPARE(leave.gdDouble->rowCount(), 2);
        QVERIFY(leave.gdDouble->isColumnHidden(6));

        // A double-click opens the editor on that booking and room; once the clash
        // is mended, "Check Again" lets the desk go on.
        std::vector<std::pair<qint32, qint32>> opened;
        DoubleBook mend(*desk.session, [&](qint32 booking, qint32 room) {
            opened.emplace_back(booking, room);
            db.execute("delete from guest where bbbookingid = ?", {second});
        });
        QTimer::singleShot(0, &mend, [&] {
            const int row = mend.gdDouble->item(0, 0)->text().toInt() == second ? 0 : 1;
            mend.openRow(row);
            mend.cmdRefresh();
        });
        QVERIFY(mend.initialise(true));
        QCOMPARE(opened.size(), size_t(1));
        QCOMPARE(opened.front().first, second);
        QCOMPARE(sink.lastShownId(), 5948);
    }
};

FENLARK_GUI_TEST_MAIN(TestBookingScreens)
#include "test_bookingscreens.moc"

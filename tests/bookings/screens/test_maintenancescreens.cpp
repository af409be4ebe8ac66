// The screens that keep bookings, driven offscreen: add room, change rooms, the
// room swap, cancelling from the editor and restoring from the list, the search,
// occupancy, the quick quote and the rates view.
#include "bookings/bookinglistmodels.h"
#include "bookings/bookingrecords.h"
#include "bookings/ratesgridmodel.h"
#include "bookings/screens/addroom.h"
#include "bookings/screens/bookingsearchdialog.h"
#include "bookings/screens/cancellations.h"
#include "bookings/screens/changerooms.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/occupancydialog.h"
#include "bookings/screens/quickquotedialog.h"
#include "bookings/screens/roomswap.h"
#include "bookings/screens/viewbooking.h"
#include "bookings/screens/viewrates.h"
#include "shell/security.h"
#include "support/givenreason.h"
#include "support/guitestmain.h"
#include "support/recordingsink.h"
#include "support/screenbooking.h"
#include "support/screendesk.h"

#include <QAbstractItemModelTester>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>

using namespace fenlark;

namespace {

const QDate Arrival(2031, 7, 1);

int count(Database &db, const QString &sql, const QVariantList &values = {})
{
    return db.scalar(sql, values).toInt();
}

// A person's double-click: the first click presses the cell, the second is the double-click.
void doubleClick(QTableView *view, const QModelIndex &index)
{
    const QPoint at = view->visualRect(index).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
}

} // namespace

class TestMaintenanceScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addRoomListsTheFreeRoomsAndAddsTheChosenOne()
    {
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {1, 2});
        QVERIFY(bookRooms(desk, {3}, QStringLiteral("Crane")) > 0);
        AddRoom dialog(*desk.session, desk.rates, id, 1);
        QVERIFY(dialog.initialise());
        QStringList rooms;
        for (int i = 0; i < dialog.cboRooms->count(); ++i)
            rooms << dialog.cboRooms->itemText(i);
        QVERIFY(!rooms.contains("Room 1") && !rooms.contains("Room 2") && !rooms.contains("Room 3"));
        QCOMPARE(rooms.first(), QString("Cottage 4"));
        QVERIFY(dialog.cboRateCode->count() > 1);
        QCOMPARE(dialog.cboRateCode->currentIndex(), 1);
        QCOMPARE(dialog.outClient->text(), QString("Heron"));

        // Boxes left empty are told; No to the question writes nothing.
        for (QLineEdit *box : {dialog.txtnoadults, dialog.txtchild1, dialog.txtChild2})
            box->clear();
        dialog.cmdOK();
        QCOMPARE(sink.lastShownId(), 6513);
        dialog.txtnoadults->setText("3");
        sink.answers = {false};
        dialog.cmdOK();
        QCOMPARE(sink.askedIds(), QList<int>{6515});
        QCOMPARE(count(desk.db(), "select count(*) from guest where BBBookingID = ?", {id}), 2);

        dialog.cboRooms->setCurrentIndex(dialog.cboRooms->findText("Room 5"));
        sink.answer = true;
        dialog.cmdOK();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.newRoomId(), 5);
        QCOMPARE(count(desk.db(), "select NoAdults from guest where BBBookingID = ? and BBRoomID = 5", {id}), 3);
        QVERIFY(desk.published.bookings().contains(id));
        QVERIFY(desk.session->calendar().roomIsBooked(Arrival, 5));
    }

    void theRoomSwapFillsTwoSlotsInTurnAndSwapsWhenTheyFit()
    {
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 ash = bookRooms(desk, {5}, QStringLiteral("Ash"));
        const qint32 birch = bookRooms(desk, {6}, QStringLiteral("Birch"));
        desk.session->calendar().fillCache(desk.db(), Arrival, Arrival.addDays(5));
        RoomSwapDialog dialog(*desk.session);
        dialog.show();
        dialog.dpDate->setDate(Arrival.addDays(1));
        QCOMPARE(dialog.lstRooms->count(), 2);
        QCOMPARE(dialog.lstRooms->item(0)->text(), QString("Room 5 (Ash)"));
        QCOMPARE(dialog.lblMessage->text(), QString("Two rooms must be selected."));
        QVERIFY(!dialog.cmdSwapButton->isEnabled());

        const auto clickRow = [&dialog](int row) {
            QListWidget *list = dialog.lstRooms;
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
        };
        clickRow(0);
        QCOMPARE(dialog.lblRoom1->text(), QString("Room 5 (Ash)"));
        clickRow(0);
        QCOMPARE(dialog.lblMessage->text(), QString("Same room selected. Cannot swap."));
        QVERIFY(!dialog.cmdSwapButton->isEnabled());
        clickRow(1);
        QCOMPARE(dialog.lblRoom1->text(), QString("Room 6 (Birch)"));
        QVERIFY(dialog.lblMessage->text().isEmpty());
        QVERIFY(dialog.cmdSwapButton->isEnabled());

        click(dialog, "cmdSwap");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(count(desk.db(), "select BBRoomID from guest where BBBookingID = ?", {ash}), 6);
        QCOMPARE(count(desk.db(), "select BBRoomID from guest where BBBookingID = ?", {birch}), 5);
        QVERIFY(desk.published.bookings().contains(ash) && desk.published.bookings().contains(birch));
        QCOMPARE(desk.session->calendar().find(Arrival, 5)->BBBookingID, birch);
    }

    void theEditorCancelsTheBookingOrARoomAfterTheQuestionAndTheReason()
    {
        RecordingSink sink;
        ScreenDesk desk;
        GivenReason reason(QStringLiteral("Flight cancelled"));
        const qint32 id = bookRooms(desk, {1, 2});
        desk.session->calendar().fillCache(desk.db(), Arrival, Arrival.addDays(5));
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 2));
        sink.answer = false;
        click(editor, "cmdDeleteRoom");
        QCOMPARE(sink.askedIds(), QList<int>{6408});
        QVERIFY(sink.asked.last().defaultNo);
        QCOMPARE(count(desk.db(), "select count(*) from guest where BBBookingID = ?", {id}), 2);

        sink.answer = true;
        click(editor, "cmdDeleteRoom");
        QCOMPARE(editor.result(), int(QDialog::Accepted));
        QCOMPARE(count(desk.db(), "select count(*) from guest where BBBookingID = ?", {id}), 1);
        QVERIFY(!desk.session->calendar().roomIsBooked(Arrival, 2));
        QVERIFY(desk.session->calendar().roomIsBooked(Arrival, 1));

        ViewBooking again(*desk.session, desk.rates);
        QVERIFY(again.load(id, 1));
        sink.clear();
        click(again, "cmdDelete");
        QCOMPARE(sink.askedIds(), QList<int>{6404});
        QCOMPARE(count(desk.db(), "select count(*) from booking where BBBookingID = ?", {id}), 0);
        QVERIFY(!desk.session->calendar().roomIsBooked(Arrival, 1));
        QCOMPARE(desk.db().scalar("select Notes from audit order by rowid desc limit 1").toString(),
                 QString("Booking (ID %1) cancelled. (Flight cancelled)").arg(id));
    }

    void theCancellationsListFiltersAndRestoresOnADoubleClick()
    {
        RecordingSink sink;
        ScreenDesk desk;
        GivenReason reason(QStringLiteral("storm"));
        const qint32 id = bookRooms(desk, {1, 2}, QStringLiteral("Quillfeather"));
        desk.session->calendar().fillCache(desk.db(), Arrival, Arrival.addDays(5));
        sink.answer = true;
        ViewBooking editor(*desk.session, desk.rates);
        QVERIFY(editor.load(id, 1));
        editor.cmdDelete();

        Cancellations dialog(*desk.session, desk.rates);
        QAbstractItemModelTester tester(dialog.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        dialog.show();
        dialog.fill();
        QVERIFY(dialog.model()->rowCount() >= 2);
        dialog.txtSearch->setText("quill");
        QCOMPARE(dialog.model()->rowCount(), 2);
        QCOMPARE(dialog.model()->index(0, CancellationsModel::ArrivalColumn).data().toString(), QString("2031-07-01"));
        QVERIFY(dialog.gdBookings->isColumnHidden(CancellationsModel::GuestIdColumn));

        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        sink.clear();
        sink.answers = {false};
        doubleClick(dialog.gdBookings, dialog.model()->index(0, CancellationsModel::RoomColumn));
        QCOMPARE(sink.askedIds(), QList<int>{6502});
        QCOMPARE(count(desk.db(), "select count(*) from booking where BBBookingID = ?", {id}), 0);

        const qint32 room = dialog.model()->row(0).BBRoomID;
        sink.clear();
        dialog.restoreRow(0);
        QCOMPARE(sink.shownIds(), (QList<int>{6504, 6506}));
        QVERIFY(sink.shown.last().text.contains(room == 1 ? "Room 2" : "Room 1"));
        QCOMPARE(dialog.model()->rowCount(), 1);
        QVERIFY(desk.session->calendar().roomIsBooked(Arrival, room));
    }

    void theSearchFindsOpensAndMovesTheCalendar()
    {
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {3, 7}, QStringLiteral("Ostrowska"));
        QList<std::pair<qint32, qint32>> opened;
        QList<QDate> moved;
        BookingSearchDialog dialog(
            *desk.session, [&opened](qint32 booking, qint32 room) { opened << std::pair{booking, room}; },
            [&moved](QDate from) { moved << from; });
        QAbstractItemModelTester tester(dialog.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        dialog.show();
        click(dialog, "cmdSearch");
        QCOMPARE(sink.lastShownId(), 6442);

        dialog.txtSurname->setText("ostrow");
        dialog.txtFirstName->setText("");
        click(dialog, "cmdSearch");
        QCOMPARE(dialog.model()->rowCount(), 2);
        QCOMPARE(dialog.model()->index(0, BookingSearchModel::RoomColumn).data().toString(), QString("Room 3"));
        QCOMPARE(dialog.model()->index(0, BookingSearchModel::BookingColumn).data().toInt(), id);
        QVERIFY(dialog.gdBookings->isColumnHidden(BookingSearchModel::RoomIdColumn));
        QVERIFY(!dialog.cmdMoveButton->isEnabled());

        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        doubleClick(dialog.gdBookings, dialog.model()->index(1, BookingSearchModel::GuestColumn));
        QCOMPARE(opened, (QList<std::pair<qint32, qint32>>{{id, 7}}));

        dialog.gdBookings->selectRow(0);
        QVERIFY(dialog.cmdMoveButton->isEnabled());
        click(dialog, "cmdMove");
        QCOMPARE(moved, QList<QDate>{Arrival.addDays(-3)});
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
    }

    void occupancyShowsTheFiguresTheGaugeAndANightByNightChart()
    {
        RecordingSink sink;
        ScreenDesk desk;
        QVERIFY(bookRooms(desk, {1, 2}, QStringLiteral("Full"), Arrival, 2) > 0);
        OccupancyDialog dialog(*desk.session, desk.rates);
        QCOMPARE(dialog.dpStart->date().day(), 1);
        dialog.dpStart->setDate(Arrival);
        dialog.udBeds->setValue(4);
        QCOMPARE(dialog.dpEnd->date(), Arrival.addDays(3));
        for (int i = 2; i < dialog.lstRooms->count(); ++i)
            dialog.lstRooms->item(i)->setCheckState(Qt::Unchecked);
        click(dialog, "cmdCalc2");
        QCOMPARE(dialog.lblAvailable->text(), QString("8"));
        QCOMPARE(dialog.lblSold->text(), QString("4"));
        QCOMPARE(dialog.lblPercent->text(), QString("50.0%"));
        QCOMPARE(dialog.pbGauge->value(), 50);
        QCOMPARE(dialog.series->count(), 4);
        QCOMPARE(dialog.series->at(0).y(), 100.0);
        QCOMPARE(dialog.series->at(3).y(), 0.0);

        click(dialog, "cmdCalc");
        QCOMPARE(dialog.lblSold->text(), QString("8"));
    }

    void theQuickQuotePricesTheStayAndCopiesIt()
    {
        RecordingSink sink;
        ScreenDesk desk;
        QuickQuoteDialog dialog(*desk.session, desk.rates, Arrival, 3);
        QCOMPARE(dialog.dpTo->date(), Arrival.addDays(3));
        QVERIFY(dialog.quote());
        QVERIFY(dialog.txtRates->toPlainText().startsWith("Standard Double x 3 Available"));

        // Dates alone change nothing until Refresh.
        const QString shown = dialog.txtRates->toPlainText();
        dialog.dpTo->setDate(Arrival);
        QCOMPARE(dialog.txtRates->toPlainText(), shown);
        click(dialog, "cmdRefresh");
        QCOMPARE(sink.lastShownId(), 6469);
        QVERIFY(dialog.txtRates->toPlainText().isEmpty());
        QVERIFY(!dialog.findChild<QPushButton *>("cmdCopy")->isEnabled());

        dialog.dpTo->setDate(Arrival.addDays(1));
        dialog.cboRateSheet->setCurrentIndex(dialog.cboRateSheet->findText("AGENT"));
        QVERIFY(dialog.quote());
        QCOMPARE(dialog.quote()->request.BBRateSheetID, 1);
        click(dialog, "cmdCopy");
        QVERIFY(QGuiApplication::clipboard()->text().startsWith("Arrival: "));
        QCOMPARE(sink.lastShownId(), 6566);
    }

    void theRatesViewTakesTypedAmountsAndSavesOnOK()
    {
        RecordingSink sink;
        ScreenDesk desk;
        const qint32 id = bookRooms(desk, {1, 2});
        ViewRates dialog(*desk.session, desk.rates, id);
        QVERIFY(dialog.initialise());
        QAbstractItemModelTester tester(dialog.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        RatesGridModel *model = dialog.model();
        QCOMPARE(model->rowCount(), 2);
        QCOMPARE(model->columnCount(), 5);
        QVERIFY(model->index(0, RatesGridModel::RoomColumn).data().toString().startsWith("Room 1\n2 Adults, 0 Children"));
        QVERIFY(!(model->flags(model->index(0, RatesGridModel::RoomColumn)) & Qt::ItemIsEditable));
        QCOMPARE(dialog.cboRateSheet->currentText(), QString("RACK"));

        QVERIFY(!model->setData(model->index(0, 3), "12abc"));
        QCOMPARE(sink.lastShownId(), 5991);
        QVERIFY(model->setData(model->index(0, 3), "123.456"));
        QCOMPARE(model->index(0, 3).data().toString(), QString("123.46"));

        sink.clear();
        click(dialog, "cmdCopyRight");
        QCOMPARE(sink.lastShownId(), 6581);
        dialog.gdRates->setCurrentIndex(model->index(0, 3));
        click(dialog, "cmdCopyRight");
        QCOMPARE(model->index(0, 4).data().toString(), QString("123.46"));
        QCOMPARE(dialog.lblTotal->text(), QString::number(dialog.rates().total(), 'f', 2));

        click(dialog, "cmdOK");
        QVERIFY(dialog.ok());
        QCOMPARE(desk.db().scalar("select RoomRate from dailyrate where BBBookingID = ? and BBRoomID = 1 and CalDate = ?",
                                  {id, Arrival.addDays(2).toString(Qt::ISODate)})
                     .toDouble(),
                 123.46);
        QVERIFY(desk.published.bookings().contains(id));
    }
};

FENLARK_GUI_TEST_MAIN(TestMaintenanceScreens)
#include "test_maintenancescreens.moc"

#include "bookings/bookingrecords.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/viewbooking.h"
#include "shell/propertygenerator.h"
#include "shell/screens/mainwindow.h"
#include "shell/session.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QComboBox>
#include <QCheckBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

using namespace fenlark;

namespace {

const QDate Arrival(2031, 7, 1);

std::unique_ptr<Session> demoSession(TestDatabase &t, qint32 userId = 0, bool canReserve = true)
{
    PropertyGenerator(PropertyGenerator::demo()).generate(t.db());
    auto session = std::make_unique<Session>(Database::open(t.file("test.db")), 0);
    session->refreshBBSetup();
    session->reloadSetup();
    UserStruct user = UserStruct::autoAdmin();
    user.UserID = userId;
    user.UserName = userId ? QStringLiteral("mary") : QStringLiteral("admin");
    user.CancelBooking = canReserve;
    session->setUser(user);
    return session;
}

qint32 bookTwoRooms(MainWindow &window)
{
    ConfirmBooking dialog(window, {1, 2}, Arrival, 3);
    dialog.clientSearch->txtSurname->setText(QStringLiteral("Heron"));
    dialog.cmdOK();
    return dialog.BBBookingID();
}

} // namespace

class TestBookingScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void confirmBookingSavesThroughTheCore()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(demoSession(t));
        ConfirmBooking dialog(window, {1, 2}, Arrival, 3);
        QCOMPARE(dialog.gdRooms->rowCount(), 2);
        QVERIFY(dialog.gdRooms->isColumnHidden(0));
        auto *rate = qobject_cast<QComboBox *>(dialog.gdRooms->cellWidget(0, 2));
        QVERIFY(rate);
        QCOMPARE(rate->itemText(0), QStringLiteral("No rate selected"));
        QVERIFY(rate->count() > 1);
        QCOMPARE(rate->currentIndex(), 1);
        QCOMPARE(qobject_cast<QSpinBox *>(dialog.gdRooms->cellWidget(1, 3))->value(), 2);

        const int bookings = window.session().db().scalar("select count(*) from booking").toInt();
        dialog.cmdOK();
        QCOMPARE(sink.shown.last().title, QStringLiteral("Name cannot be blank."));
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QCOMPARE(window.session().db().scalar("select count(*) from booking").toInt(), bookings);

        rate->setCurrentIndex(0);
        dialog.clientSearch->txtSurname->setText(QStringLiteral("Heron"));
        dialog.cmdOK();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QVERIFY(dialog.BBBookingID() > 0);
        QCOMPARE(dialog.firstRoomId(), 1);
        QCOMPARE(Guest::legsOf(window.session().db(), dialog.BBBookingID()).size(), size_t(2));
        QCOMPARE(DailyRate::forLeg(window.session().db(), dialog.BBBookingID(), 1).front().RoomRate, 0.0);
        QVERIFY(window.session().calendar().roomIsBooked(Arrival.addDays(2), 2));
    }

    void editorGuardsAndSaves()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(demoSession(t));
        const qint32 id = bookTwoRooms(window);
        QVERIFY(id > 0);

        ViewBooking editor(window);
        QVERIFY(editor.load(id, 1));
        QVERIFY(!editor.isDirty());
        QVERIFY(editor.guard());

        editor.dpTo->setDate(Arrival.addDays(4));
        QVERIFY(editor.isDirty());
        QVERIFY(editor.datesChanged());
        QVERIFY(!editor.guard());
        QCOMPARE(sink.shown.last().title, QStringLiteral("Data was changed"));

        sink.answer = true;   // change all legs; look at the rates
        QVERIFY(editor.cmdSave());
        QVERIFY(!editor.isDirty());
        QVERIFY(editor.guard());
        Booking head;
        QVERIFY(head.fetch(window.session().db(), id));
        QCOMPARE(head.ToDate, Arrival.addDays(4));
        QCOMPARE(DailyRate::forLeg(window.session().db(), id, 2).size(), size_t(4));

        editor.ckCheckedIn->setChecked(true);
        QVERIFY(!editor.cmdSave());
        QVERIFY(!editor.ckCheckedIn->isChecked());
        QCOMPARE(sink.shown.last().title, QStringLiteral("Cannot Check In/Out before Arrival"));

        editor.txtnoadults->setText(QStringLiteral("3"));
        QVERIFY(editor.headCountChanged());
        QVERIFY(!editor.guard());

        QVERIFY(!editor.load(id, 9));
        QCOMPARE(sink.shown.last().title, QStringLiteral("Could not find booking details"));
    }

    void reservedNeedsTheRightAndUnavailableClearsAdults()
    {
        TestDatabase t;
        RecordingSink sink;
        MainWindow window(demoSession(t, 5, false));
        const qint32 id = bookTwoRooms(window);
        ViewBooking editor(window);
        QVERIFY(editor.load(id, 2));
        const int before = editor.cboStatus->currentIndex();
        editor.cboStatus->setCurrentIndex(editor.cboStatus->findData(QStringLiteral("R")));
        QCOMPARE(editor.cboStatus->currentIndex(), before);
        QCOMPARE(sink.shown.last().title, QStringLiteral("User not authorised"));

        editor.cboStatus->setCurrentIndex(editor.cboStatus->findData(QStringLiteral("U")));
        QCOMPARE(editor.txtnoadults->text(), QStringLiteral("0"));
        QVERIFY(editor.isDirty());
    }
};

QTEST_MAIN(TestBookingScreens)
#include "test_bookingscreens.moc"

#include "accounts/payments.h"
#include "bookings/screens/viewbooking.h"
#include "rates/ratedata.h"
#include "accounts/screens/accountform.h"
#include "accounts/screens/accountsearchdialogs.h"
#include "accounts/screens/clientaccounts.h"
#include "accounts/screens/clientstatement.h"
#include "accounts/screens/extrasdialogs.h"
#include "accounts/screens/ledgerdialogs.h"
#include "accounts/screens/paymentdialogs.h"
#include "shell/session.h"
#include "support/givenreason.h"
#include "support/moneyfixture.h"
#include "support/recordingsink.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

// A property with one client's two-room booking (2 nights at 100 a room) on its
// account, and a desk session on it.
struct Desk {
    TestDatabase t;
    qint32 client = 0;
    BookingMade booking;
    std::unique_ptr<Session> session;

    Desk()
    {
        setUpProperty(t.db());
        client = addClient(t.db(), "Heron", "021 555", "heron@example.org");
        booking = addBooking(t.db(), client, {1, 2}, Arrival, 2, 100);
        session = std::make_unique<Session>(Database::open(t.file("test.db")), 0);
        session->reloadSetup();
        UserStruct user = clerk();
        user.ExtrasDelete = true;
        session->setUser(user);
    }
    Database &db() { return session->db(); }
};

QStringList rowTexts(QTableView *view, int column)
{
    QStringList texts;
    for (int r = 0; r < view->model()->rowCount(); ++r)
        texts << view->model()->index(r, column).data().toString();
    return texts;
}

} // namespace

class TestAccountScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anExtraAddedFromTheBookingEditorGoesOnTheRoomsAccount()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        const RateData rates = RateData::load(d.db());
        ViewBooking editor(*d.session, rates);
        QVERIFY(editor.load(d.booking.booking, 2));
        qint32 extrasOf = 0;
        editor.moneyScreens.extras = [&](QWidget *parent, qint32 guest) {
            extrasOf = guest;
            Extras extras(*d.session, guest, parent);
            extras.extraForm = [&](QWidget *p, qint32 leg, qint32 extra) {
                ExtraForm form(*d.session, leg, extra, p);
                if (!form.load())
                    return false;
                form.cboStock->setCurrentIndex(form.cboStock->findText("Wine"));
                form.txtQty->setText("1");
                form.txtPrice->setText("180");
                form.opGuestAccount->setChecked(true);   // on the room's own account
                form.cmdSave();
                return form.result() == QDialog::Accepted;
            };
            extras.cmdAdd();
        };
        QVERIFY(editor.findChild<QPushButton *>("cmdExtra")->isEnabled());
        editor.cmdExtra();
        QCOMPARE(extrasOf, d.booking.legs[1]);
        // The editor now knows the room bills on an account of its own.
        QVERIFY(editor.edit().legAccountId != d.booking.account);
        QVERIFY(!editor.findChild<QLabel *>("lblDifferentAccount")->isHidden());
        QVERIFY(sink.shown.isEmpty());

        // No extras on a reserved booking.
        d.db().execute("update booking set status = 'R'");
        ViewBooking reserved(*d.session, rates);
        QVERIFY(reserved.load(d.booking.booking, 1));
        reserved.moneyScreens.extras = [&](QWidget *, qint32 guest) { extrasOf = guest; };
        extrasOf = 0;
        reserved.cmdExtra();
        QCOMPARE(extrasOf, 0);
        QCOMPARE(sink.shown.last().id, 6655);
    }

    void theAccountScreenShowsItsItemsAndTotals()
    {
        Desk d;
        RecordingSink sink;
        addExtraRow(d.db(), d.booking.legs[1], d.booking.account, 2, 180);
        NewPayment paid;
        paid.accountId = d.booking.account;
        paid.amountText = "1000";
        QVERIFY(addPayment(d.db(), paid, clerk()));

        AccountForm form(*d.session, d.booking.account);
        QAbstractItemModelTester tester(form.gdItems->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(form.reload());
        QCOMPARE(form.windowTitle(), QStringLiteral("Invoice Account ID %1").arg(d.booking.account));
        QCOMPARE(form.lblInvoiceToName->text(), QString("Heron"));
        QCOMPARE(rowTexts(form.gdItems, 2), (QStringList{"* Heron", "2 x Wine"}));
        QCOMPARE(rowTexts(form.gdItems, 4), (QStringList{QString::number(d.booking.booking), ""}));
        QCOMPARE(rowTexts(form.gdItems, 5), (QStringList{"", "Room 2"}));
        QCOMPARE(form.lblAccommodationTotal->text(), QString("Accom: 400.00"));
        QCOMPARE(form.lblExtrasTotal->text(), QString("Extras: 360.00"));
        QCOMPARE(form.lblPaymentsTotal->text(), QString("Payments: 1000.00"));
        QCOMPARE(form.lblBalance->text(), QString("O/S: -240.00"));   // paid above the charges
        QVERIFY(form.lblStatus->text().isEmpty());
        QCOMPARE(form.cmdOpenCloseButton->text(), QString("Close"));
        QVERIFY(!form.cmdProformaOpen->isVisibleTo(&form));   // no document printer installed
        QVERIFY(!form.cmdInvoiceToButton->isVisibleTo(&form));   // no client editor installed
        QVERIFY(sink.shown.isEmpty());
    }

    void aPaymentTakenOnTheAccountScreenSettlesItAndOffersTheInvoice()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        AccountForm form(*d.session, d.booking.account);
        ScriptedPrompter prompter({"100"});
        form.prompter = &prompter;
        QVERIFY(form.reload());
        QString startType;
        form.payments = [&](QWidget *parent, qint32 account) {
            Payments list(*d.session, account, parent);
            QAbstractItemModelTester tester(list.gdPayment->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
            list.paymentForm = [&](QWidget *p, qint32 payment) {
                PaymentForm entry(*d.session, account, payment, p);
                if (!entry.load())
                    return false;
                startType = entry.cboPaymentType->currentText();
                entry.txtAmount->setText("0.00");
                entry.cmdSave();   // refused: the form stays
                entry.txtAmount->setText("400");
                entry.txtReference->setText("card");
                entry.cmdSave();
                return entry.result() == QDialog::Accepted;
            };
            list.cmdAddPayment();
            QCOMPARE(list.lblTotal->text(), QString("Total Payments: 400.00"));
        };
        form.cmdPayments();
        QCOMPARE(startType, QString("Credit Card"));
        QCOMPARE(sink.shownIds(), QList<int>{6623});
        // Paid to the cent: the screen offered the invoice and made it.
        QCOMPARE(sink.askedIds(), QList<int>{6799});
        QCOMPARE(form.txtInvoice->text(), QString("100"));
        QCOMPARE(form.lblStatus->text(), QString("- Account is Closed -"));
        QCOMPARE(form.lblBalance->text(), QString("O/S: 0.00"));
    }

    void anInvoiceThenAReopenMakesACreditNote()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        AccountForm form(*d.session, d.booking.account);
        ScriptedPrompter prompter({"abc", "500"});
        form.prompter = &prompter;
        QVERIFY(form.reload());
        form.cmdInvoice();
        QCOMPARE(prompter.refused, QList<int>{6683});
        QCOMPARE(form.txtInvoice->text(), QString("500"));
        QCOMPARE(form.cmdOpenCloseButton->text(), QString("Open"));
        QVERIFY(!form.cmdInvoiceButton->isEnabled());   // re-printing needs a document printer

        form.cmdOpenClose();
        QCOMPARE(sink.askedIds(), (QList<int>{6790, 6614}));
        QVERIFY(form.txtInvoice->text().isEmpty());
        QVERIFY(form.lblStatus->text().isEmpty());
        QCOMPARE(d.db().scalar("select count(*) from creditnote").toInt(), 1);
        QCOMPARE(d.db().scalar("select sum(amount) from clienttran").toDouble(), 0.0);

        // With a printer installed the invoice is printed once made, and an
        // invoiced account offers the re-print.
        QStringList printed;
        form.hooks.printDocument = [&](Session &, QWidget *, const QString &type, qint32) { printed << type; };
        form.cmdInvoice();
        QCOMPARE(form.txtInvoice->text(), QString("501"));
        QCOMPARE(printed, QStringList{"I"});
        sink.answer = false;
        form.cmdInvoice();   // "new invoice required?" No, then "re-print only?" No
        QCOMPARE(printed, QStringList{"I"});
        QCOMPARE(sink.asked.last().id, 6796);
    }

    void anExtraAddedForARoomShowsOnItsListAndCanBeDeletedWithAReason()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        GivenReason reason;
        Extras extras(*d.session, d.booking.legs[0]);
        QAbstractItemModelTester tester(extras.gdExtras->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(extras.lblHeading->text(), QStringLiteral("Guest Extras. Default A/C ID: %1 - Heron").arg(d.booking.account));
        bool startsOnMain = false, specialHidden = false;
        QString offeredPrice;
        extras.extraForm = [&](QWidget *parent, qint32 guest, qint32 extra) {
            ExtraForm form(*d.session, guest, extra, parent);
            if (!form.load())
                return false;
            startsOnMain = form.opMainAccount->isChecked();
            specialHidden = form.frmSpecialAccount->isHidden();
            form.cmdSave();   // no stock chosen
            form.cboStock->setCurrentIndex(form.cboStock->findText("Wine"));
            QFocusEvent focusIn(QEvent::FocusIn);
            QApplication::sendEvent(form.txtPrice, &focusIn);
            offeredPrice = form.txtPrice->text();
            form.txtQty->setText("-1");
            form.cmdSave();   // a minus sign in the quantity
            form.txtQty->setText("2");
            form.cmdSave();
            return form.result() == QDialog::Accepted;
        };
        extras.cmdDelete();   // nothing to delete yet
        extras.cmdAdd();
        QVERIFY2(startsOnMain, "a room on its booking's account starts on the main account");
        QVERIFY(specialHidden);
        QCOMPARE(offeredPrice, QString("180.00"));   // the item's price is offered
        QCOMPARE(sink.shownIds(), (QList<int>{6734, 6662, 6653}));
        QCOMPARE(rowTexts(extras.gdExtras, 5), QStringList{"360.00"});
        QCOMPARE(extras.lblTotal->text(), QString("Total: 360.00"));

        extras.gdExtras->clearSelection();
        extras.cmdDelete();
        QCOMPARE(sink.shown.last().id, 6736);
        extras.gdExtras->selectRow(0);
        extras.cmdDelete();
        QCOMPARE(sink.asked.last().id, 6740);
        QCOMPARE(extras.gdExtras->model()->rowCount(), 0);
        QVERIFY(d.db().scalar("select notes from audit").toString().endsWith("(broken glass)"));
    }

};

QTEST_MAIN(TestAccountScreens)
#include "test_accountscreens.moc"

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

QList<int> ids(const QList<UserMessage> &messages)
{
    QList<int> list;
    for (const UserMessage &m : messages)
        list << m.id;
    return list;
}

void doubleClickRow(QTableView *view, int row)
{
    view->selectRow(row);
    Q_EMIT view->doubleClicked(view->model()->index(row, 0));
}

class FakeReason : public ReasonPrompt {
public:
    FakeReason() { SecurityAudit::setPrompt(this); }
    ~FakeReason() override { SecurityAudit::setPrompt(nullptr); }
    std::optional<QString> askReason(const QString &, const QString &) override { return answer; }
    std::optional<QString> answer = QStringLiteral("broken glass");
};

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

    void theEditorOffersPaidOnceTheAccountIsSettled()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        const RateData rates = RateData::load(d.db());
        ViewBooking editor(*d.session, rates);
        QVERIFY(editor.load(d.booking.booking, 1));
        qint32 opened = 0;
        editor.moneyScreens.account = [&](QWidget *, qint32 account) {
            opened = account;
            NewPayment paid;
            paid.accountId = account;
            paid.amountText = "400";
            QVERIFY(addPayment(d.db(), paid, clerk()));
        };
        editor.cmdAccount();
        QCOMPARE(opened, d.booking.account);
        QCOMPARE(ids(sink.asked), QList<int>{6636});
        QCOMPARE(editor.cboStatus->currentData().toString(), QString("S"));
        QVERIFY(editor.isDirty());
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
        QCOMPARE(ids(sink.shown), QList<int>{6623});
        // Paid to the cent: the screen offered the invoice and made it.
        QCOMPARE(ids(sink.asked), QList<int>{6799});
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
        QCOMPARE(ids(sink.asked), (QList<int>{6790, 6614}));
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

    void closingByHandAndMovingAnItemNeedAnOpenAccount()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        AccountForm form(*d.session, d.booking.account);
        QVERIFY(form.reload());
        bool moverOpened = false;
        form.moveItem = [&](QWidget *, const AccountItem &) {
            moverOpened = true;
            return std::optional<qint32>();
        };
        form.cmdOpenClose();
        QCOMPARE(form.lblStatus->text(), QString("- Account is Closed -"));
        QVERIFY(!form.cmdInvoiceButton->isEnabled());
        form.openItem(0);
        QVERIFY(!moverOpened);
        QCOMPARE(sink.shown.last().id, 6709);
    }

    void movingTheLastItemAwayClosesTheScreen()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        AccountForm form(*d.session, d.booking.account);
        QVERIFY(form.reload());
        QString itemText;
        bool otherAccountsOffered = true;
        form.moveItem = [&](QWidget *parent, const AccountItem &item) -> std::optional<qint32> {
            ClientAccounts mover(*d.session, d.booking.account, {AccountItemRef::Booking, item.id}, parent);
            itemText = mover.lblItem->text();
            otherAccountsOffered = mover.cmdAccountChangeButton->isEnabled();
            mover.cmdNewAccount();
            return mover.newAccountChosen() ? std::optional<qint32>(mover.newAccountID()) : std::nullopt;
        };
        form.openItem(0);
        QVERIFY(itemText.startsWith(QStringLiteral("BkID %1").arg(d.booking.booking)));
        QVERIFY(!otherAccountsOffered);   // the client has no other open account
        QCOMPARE(ids(sink.asked), QList<int>{6768});
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QCOMPARE(d.db().scalar("select status from account where bbaccountid = ?", {d.booking.account}).toString(), QString("C"));
    }

    void theCardLinkGoesToTheClipboard()
    {
        Desk d;
        RecordingSink sink;
        AccountForm form(*d.session, d.booking.account);
        QVERIFY(form.reload());
        form.cmdCreditCard();
        QCOMPARE(sink.shown.last().id, 6691);   // not synchronised yet
        d.db().execute("update booking set bookingid = 4711");
        form.cmdCreditCard();
        QCOMPARE(sink.shown.last().id, 6616);
        QVERIFY(QApplication::clipboard()->text().endsWith("/moorgate/paymoorgate?bbid=20001&bookingid=4711"));
    }

    void theReferenceIsSavedFromTheScreen()
    {
        Desk d;
        RecordingSink sink;
        AccountForm form(*d.session, d.booking.account);
        QVERIFY(form.reload());
        form.txtReference->setText("Wedding party");
        form.cmdSaveReference();
        QCOMPARE(sink.shown.last().id, 6618);
        QCOMPARE(d.db().scalar("select reference from account where bbaccountid = ?", {d.booking.account}).toString(),
                 QString("Wedding party"));
    }

    void anExtraAddedForARoomShowsOnItsListAndCanBeDeletedWithAReason()
    {
        Desk d;
        RecordingSink sink;
        sink.answer = true;
        FakeReason reason;
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
        QCOMPARE(ids(sink.shown), (QList<int>{6734, 6662, 6653}));
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

    void anExtraOnAClosedAccountCannotBeChangedFromTheList()
    {
        Desk d;
        RecordingSink sink;
        addExtraRow(d.db(), d.booking.legs[0], d.booking.account, 1, 10);
        d.db().execute("update account set status = 'C'");
        Extras extras(*d.session, d.booking.legs[0]);
        bool formOpened = false;
        extras.extraForm = [&](QWidget *, qint32, qint32) { return formOpened = true; };
        doubleClickRow(extras.gdExtras, 0);
        QVERIFY(!formOpened);
        QCOMPARE(sink.shown.last().id, 6738);
        extras.gdExtras->selectRow(0);
        extras.cmdDelete();
        QCOMPARE(sink.shown.last().id, 6640);
    }

    void theExtraFormOffersANewRoomAccountWhenTheMainOneIsClosed()
    {
        Desk d;
        RecordingSink sink;
        d.db().execute("update account set status = 'C'");
        ExtraForm form(*d.session, d.booking.legs[0], 0);
        QVERIFY(form.load());
        QVERIFY(!form.opMainAccount->isEnabled());
        QVERIFY(form.opGuestAccount->isChecked());
        QVERIFY(form.opGuestAccount->text().contains("a new account"));
        form.cboStock->setCurrentIndex(0);
        form.txtQty->setText("1");
        form.txtPrice->setText("12.50");
        form.cmdSave();
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QVERIFY(d.db().scalar("select bbaccountid from guest where bbguestid = ?", {d.booking.legs[0]}).toInt() != d.booking.account);
    }

    void aPaymentFromTheLedgerIsAllocatedToAnAccount()
    {
        Desk d;
        RecordingSink sink;
        ClientTranForm entry(*d.session, d.client);
        QVERIFY(!entry.txtVAT->isHidden());
        entry.cboTranType->setCurrentText("PMT");
        QVERIFY(entry.txtVAT->isHidden());
        QVERIFY(!entry.cboPaymentType->isHidden());
        entry.txtAmount->setText("150");
        entry.cmdSave();
        QVERIFY(entry.NewData());
        const qint32 payment = d.db().scalar("select bbpaymentid from payment").toInt();

        PaymentTranEdit edit(*d.session, d.client, payment);
        QVERIFY(edit.load());
        QCOMPARE(edit.cboAccounts->count(), 2);
        QCOMPARE(edit.cboAccounts->currentData().toInt(), 0);
        QCOMPARE(edit.lblAmount->text(), QString("150.00"));
        edit.cboAccounts->setCurrentIndex(1);
        edit.cmdSave();
        QVERIFY(edit.dataChanged());
        QCOMPARE(d.db().scalar("select bbaccountid from payment").toInt(), d.booking.account);
    }

    void theLedgerSearchListsWhatItFinds()
    {
        Desk d;
        RecordingSink sink;
        LedgerEntry journal;
        journal.clientId = d.client;
        journal.tranType = "JNL";
        journal.date = QDate(2031, 2, 1);
        journal.amountText = "25";
        journal.reference = "Fix";
        QVERIFY(addLedgerEntry(d.db(), journal, clerk(), VatRules()));
        ClientTranSearch search;
        search.cboTranType->setCurrentText("JNL");
        search.ckStart->setChecked(true);
        search.dpStart->setDate(QDate(2031, 1, 1));
        const auto rows = searchLedger(d.db(), search.search());
        QCOMPARE(rows->size(), std::size_t(1));
        ClientTranList list;
        QAbstractItemModelTester tester(list.gdTransactions->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        qint32 edited = 0;
        list.editClient = [&](QWidget *, qint32 client) { edited = client; };
        list.setRows(*rows);
        QCOMPARE(rowTexts(list.gdTransactions, 4), QStringList{QStringLiteral("(%1) Heron").arg(d.client)});
        doubleClickRow(list.gdTransactions, 0);
        QCOMPARE(edited, d.client);
    }

    void theAccountsListOpensAnAccountAndSaysWhenNothingIsFound()
    {
        Desk d;
        RecordingSink sink;
        AccountSearch search;
        search.txtSurname->setText("her");
        AccountsList list(*d.session, search.criteria());
        QAbstractItemModelTester tester(list.gdAccounts->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(list.load());
        QCOMPARE(rowTexts(list.gdAccounts, 3), QStringList{"Uninvoiced"});
        qint32 opened = 0;
        list.openAccount = [&](QWidget *, qint32 account) { opened = account; };
        doubleClickRow(list.gdAccounts, 0);
        QCOMPARE(opened, d.booking.account);

        search.cboStatus->setCurrentIndex(1);
        AccountsList none(*d.session, search.criteria());
        QVERIFY(!none.load());
        QCOMPARE(sink.shown.last().id, 6694);
    }

    void theStatementGoesToTheClipboardAndAWorkbook()
    {
        Desk d;
        RecordingSink sink;
        QVERIFY(ClientStatement::initialise(*d.session, d.client, [](const QString &) { return true; }).isEmpty());
        QCOMPARE(sink.shown.last().id, 6703);
        NewPayment paid;
        paid.accountId = d.booking.account;
        paid.amountText = "100";
        QVERIFY(addPayment(d.db(), paid, clerk()));
        const QString path = ClientStatement::initialise(*d.session, d.client, [](const QString &) { return false; });
        QVERIFY(QFileInfo::exists(path));
        QCOMPARE(sink.shown.last().id, 6771);   // no program opened it: the desk says where it is
        QVERIFY(QApplication::clipboard()->text().startsWith("Statement for: Heron"));
    }
};

QTEST_MAIN(TestAccountScreens)
#include "test_accountscreens.moc"

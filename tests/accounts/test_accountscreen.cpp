// The account screen's data, the account search and moving items between accounts.
#include "accounts/accountmoves.h"
#include "accounts/accountsearch.h"
#include "accounts/accountview.h"
#include "accounts/payments.h"
#include "shell/changelog.h"
#include "support/moneyfixture.h"

#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

QString statusOf(Database &db, qint32 account)
{
    return db.scalar("select status from account where bbaccountid = ?", {account}).toString();
}

qint32 paymentOn(Database &db, qint32 account, const QString &amount)
{
    NewPayment p;
    p.accountId = account;
    p.amountText = amount;
    return addPayment(db, p, clerk())->payment.BBPaymentID;
}

double everything(Database &db)
{
    double total = 0;
    QSqlQuery q = db.query("select bbaccountid from account");
    while (q.next())
        total += Account::getBalanceOnAccount(db, q.value(0).toInt());
    return total - db.scalar("select coalesce(sum(amount), 0) from payment where bbaccountid = 0").toDouble();
}

} // namespace

class TestAccountScreen : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSummaryListsBookingsThenExtrasWithTheirTotals()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade late = addBooking(t.db(), client, {2}, Arrival.addDays(5), 1, 80);
        const BookingMade early = addBooking(t.db(), client, {1, 3}, Arrival, 2, 100, late.account);
        addExtraRow(t.db(), early.legs[1], late.account, 2.5, 20, Water, Arrival);
        paymentOn(t.db(), late.account, "500");
        const auto summary = loadAccountSummary(t.db(), late.account);
        QVERIFY(summary);
        QCOMPARE(summary->invoiceToName, QString("Heron"));
        QCOMPARE(summary->items.size(), std::size_t(3));
        QCOMPARE(summary->items[0].id, early.booking);
        QCOMPARE(summary->items[0].kindCode(), QString("B"));
        QCOMPARE(summary->items[0].description, QString("* Heron"));
        QCOMPARE(summary->items[0].amount, 400.0);
        QCOMPARE(summary->items[1].id, late.booking);
        QCOMPARE(summary->items[2].kindCode(), QString("X"));
        QCOMPARE(summary->items[2].description, QString("2.5 x Water"));
        QCOMPARE(summary->items[2].room, QString("Room 3"));
        QCOMPARE(summary->accommodation, 480.0);
        QCOMPARE(summary->extras, 50.0);
        QCOMPARE(summary->payments, 500.0);
        QCOMPARE(summary->balance(), 30.0);
        QVERIFY(!loadAccountSummary(t.db(), 999));
    }

    void anAccountWhoseClientWasDeletedStillShowsItsMoney()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        t.db().execute("delete from client");
        const auto summary = loadAccountSummary(t.db(), b.account);
        QVERIFY(summary->invoiceToMissing);
        QCOMPARE(summary->invoiceToName, QStringLiteral("Unknown client - ID %1").arg(client));
        QCOMPARE(summary->items.size(), std::size_t(1));
        QCOMPARE(summary->accommodation, 200.0);
    }

    void theReferenceIsSavedEvenOnAClosedAccount()
    {
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        t.db().execute("update account set status = 'C' where bbaccountid = ?", {b.account});
        QVERIFY(saveAccountReference(t.db(), b.account, "PO 7781"));
        QCOMPARE(t.db().scalar("select reference from account where bbaccountid = ?", {b.account}).toString(), QString("PO 7781"));
    }

    void theCardLinkNeedsClientDetailsAndASynchronisedBooking()
    {
        PropertyDatabase t;
        const qint32 bare = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), bare, {1}, Arrival, 2, 100);
        QCOMPARE(cardPaymentLink(t.db(), b.account, "http://srv", 20001).refusal().id(), 6687);
        t.db().execute("update client set phoneno = '021', email = 'h@example.org'");
        const qint32 empty = createAccount(t.db(), bare);
        QCOMPARE(cardPaymentLink(t.db(), empty, "http://srv", 20001).refusal().id(), 6689);
        QCOMPARE(cardPaymentLink(t.db(), b.account, "http://srv", 20001).refusal().id(), 6691);
        t.db().execute("update booking set bookingid = 8812");
        QCOMPARE(*cardPaymentLink(t.db(), b.account, "https://srv:8642", 20001),
                 QString("https://srv:8642/moorgate/paymoorgate?bbid=20001&bookingid=8812"));
    }

    void theSearchCombinesItsFields()
    {
        PropertyDatabase t;
        const qint32 heron = addClient(t.db(), "Heron");
        const qint32 acme = addClient(t.db(), "Acme");
        const BookingMade early = addBooking(t.db(), heron, {1}, Arrival, 2, 100);
        const BookingMade late = addBooking(t.db(), heron, {2}, Arrival.addDays(30), 2, 100);
        const BookingMade other = addBooking(t.db(), acme, {3}, Arrival, 2, 100);
        t.db().execute("update account set status = 'C', reference = 'Group 5' where bbaccountid = ?", {late.account});

        AccountSearchCriteria all;
        auto rows = searchAccounts(t.db(), all);
        QCOMPARE(rows->size(), std::size_t(3));
        QCOMPARE(rows->front().accountId, other.account);   // newest first
        QCOMPARE(rows->front().client, QStringLiteral("(%1) Acme").arg(acme));

        AccountSearchCriteria bySurname;
        bySurname.surname = "her";
        QCOMPARE(searchAccounts(t.db(), bySurname)->size(), std::size_t(2));
        bySurname.status = "O";
        QCOMPARE(searchAccounts(t.db(), bySurname)->front().accountId, early.account);
        AccountSearchCriteria byReference;
        byReference.reference = "Group";
        QCOMPARE(searchAccounts(t.db(), byReference)->front().statusName(), QString("Closed"));
        AccountSearchCriteria upTo;
        upTo.upTo = Arrival.addDays(1);
        upTo.clientId = heron;
        QCOMPARE(searchAccounts(t.db(), upTo)->size(), std::size_t(1));
        AccountSearchCriteria none;
        none.accountId = "12x";
        QCOMPARE(searchAccounts(t.db(), none).refusal().id(), 6692);
        none.accountId = "999";
        QVERIFY(searchAccounts(t.db(), none)->empty());
    }

    void movingABookingTakesOnlyItsExtrasOnTheOldAccount()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const BookingMade stays = addBooking(t.db(), client, {2}, Arrival, 2, 100, b.account);
        const qint32 special = createAccount(t.db(), client);
        const qint32 target = createAccount(t.db(), client);
        const qint32 follows = addExtraRow(t.db(), b.legs[0], b.account, 1, 10);
        const qint32 keeps = addExtraRow(t.db(), b.legs[0], special, 1, 10);
        const double before = everything(t.db());
        const auto moved = moveItem(t.db(), {AccountItemRef::Booking, b.booking}, target);
        QVERIFY(moved);
        QVERIFY(moved->bookings().contains(b.booking));
        QCOMPARE(t.db().scalar("select bbaccountid from extra where bbextraid = ?", {follows}).toInt(), target);
        QCOMPARE(t.db().scalar("select bbaccountid from extra where bbextraid = ?", {keeps}).toInt(), special);
        QCOMPARE(statusOf(t.db(), b.account), QString("O"));   // it still holds the other booking
        QCOMPARE(everything(t.db()), before);
        Q_UNUSED(stays);
    }

    void movingTheLastItemClosesTheAccountAndTakesItsPayments()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const qint32 payment = paymentOn(t.db(), b.account, "75");
        const double before = everything(t.db());
        const auto moved = moveItemToNewAccount(t.db(), {AccountItemRef::Booking, b.booking});
        QVERIFY(moved);
        QCOMPARE(statusOf(t.db(), b.account), QString("C"));
        QCOMPARE(t.db().scalar("select bbaccountid from payment where bbpaymentid = ?", {payment}).toInt(), moved->accountId);
        QCOMPARE(t.db().scalar("select invoiceto from account where bbaccountid = ?", {moved->accountId}).toInt(), client);
        QCOMPARE(everything(t.db()), before);
    }

    void movingToAnotherClientUsesItsOnlyOpenAccountOrAsksBetweenSeveral()
    {
        PropertyDatabase t;
        const qint32 heron = addClient(t.db(), "Heron");
        const qint32 acme = addClient(t.db(), "Acme");
        const BookingMade b = addBooking(t.db(), heron, {1}, Arrival, 2, 100);
        const qint32 extra = addExtraRow(t.db(), b.legs[0], b.account, 1, 10);

        auto first = moveItemToClient(t.db(), {AccountItemRef::Extra, extra}, acme);
        QVERIFY(first && first->choices.empty());
        const qint32 acmeAccount = first->moved.accountId;
        QCOMPARE(t.db().scalar("select invoiceto from account where bbaccountid = ?", {acmeAccount}).toInt(), acme);
        QCOMPARE(t.db().scalar("select bbaccountid from guest where bbguestid = ?", {b.legs[0]}).toInt(), acmeAccount);

        auto again = moveItemToClient(t.db(), {AccountItemRef::Booking, b.booking}, acme);
        QCOMPARE(again->moved.accountId, acmeAccount);
        createAccount(t.db(), acme);
        const BookingMade other = addBooking(t.db(), heron, {2}, Arrival, 1, 100);
        auto several = moveItemToClient(t.db(), {AccountItemRef::Booking, other.booking}, acme);
        QCOMPARE(several->moved.accountId, 0);
        QCOMPARE(several->choices.size(), std::size_t(2));
        QCOMPARE(several->choices.front().items.size(), 2);   // the booking and the extra moved there
        QCOMPARE(t.db().scalar("select bbaccountid from booking where bbbookingid = ?", {other.booking}).toInt(), other.account);
    }

    void movesThatCannotBeMadeAreRefusedAndWriteNothing()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const qint32 closed = createAccount(t.db(), client);
        t.db().execute("update account set status = 'C' where bbaccountid = ?", {closed});
        t.db().execute("delete from dblog");
        const AccountItemRef booking{AccountItemRef::Booking, b.booking};
        QCOMPARE(moveItem(t.db(), booking, closed).refusal().id(), 6710);
        QCOMPARE(moveItem(t.db(), booking, b.account).refusal().id(), 6711);
        QCOMPARE(moveItem(t.db(), booking, 999).refusal().id(), 6621);
        QCOMPARE(moveItem(t.db(), {AccountItemRef::Extra, 999}, b.account).refusal().id(), 6707);
        QCOMPARE(moveItemToClient(t.db(), booking, 999).refusal().id(), 5005);
        t.db().execute("update account set status = 'C' where bbaccountid = ?", {b.account});
        QCOMPARE(moveItemToNewAccount(t.db(), booking).refusal().id(), 6709);
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), 2);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

};

QTEST_GUILESS_MAIN(TestAccountScreen)
#include "test_accountscreen.moc"

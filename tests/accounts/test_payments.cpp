#include "accounts/accountview.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "shell/changelog.h"
#include "support/moneyfixture.h"

#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

NewPayment payment(qint32 account, const QString &amount, const QString &reference = QStringLiteral("EFT"))
{
    NewPayment p;
    p.accountId = account;
    p.paymentDate = QDate(2031, 6, 20);
    p.amountText = amount;
    p.reference = reference;
    return p;
}

} // namespace

class TestPayments : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPaymentHasALedgerTwinDatedTheDayItWasKeyedIn()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const auto written = addPayment(t.db(), payment(b.account, "150.00"), clerk());
        QVERIFY(written);
        QCOMPARE(written->payment.PaymentDate, QDate(2031, 6, 20));
        const auto twin = written->payment.getClientTran(t.db());
        QVERIFY(twin);
        QCOMPARE(twin->BBClientID, client);
        QCOMPARE(twin->TranType, QString("PMT"));
        QCOMPARE(twin->Amount, -150.0);
        QCOMPARE(twin->VAT, 0.0);
        QCOMPARE(twin->TranDate, QDate::currentDate());
        QCOMPARE(auditNotes(t.db()), QStringList{QStringLiteral("New payment added (A/C ID %1)").arg(b.account)});
        QCOMPARE(Account::getBalanceOnAccount(t.db(), b.account), 50.0);
    }

    void amountsAsPeopleTypeThemAreTaken_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<double>("twin");
        QTest::newRow("a refund is a debit in the ledger") << "-20" << false << 20.0;
        QTest::newRow("a thousands separator is ignored") << "1,250.50" << false << -1250.5;
        QTest::newRow("a closed account still takes payments") << "200" << true << -200.0;
    }
    void amountsAsPeopleTypeThemAreTaken()
    {
        QFETCH(QString, typed);
        QFETCH(bool, closed);
        QFETCH(double, twin);
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        if (closed)
            t.db().execute("update account set status = 'C', invoiceno = 5 where bbaccountid = ?", {b.account});
        const auto written = addPayment(t.db(), payment(b.account, typed), clerk());
        QVERIFY(written);
        QCOMPARE(written->payment.Amount, -twin);
        QCOMPARE(written->twin.Amount, twin);
    }

    void badPaymentsAreRefusedAndWriteNothing_data()
    {
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("knownAccount");
        QTest::addColumn<bool>("knownClient");
        QTest::addColumn<int>("refusal");

        QTest::newRow("empty") << "" << "2" << true << true << 6623;
        QTest::newRow("zero") << "0.00" << "2" << true << true << 6623;
        QTest::newRow("text") << "fifty" << "2" << true << true << 6620;
        QTest::newRow("comma decimal in English") << "50,5" << "2" << true << true << 6620;
        QTest::newRow("unknown type") << "50" << "9" << true << true << 6625;
        QTest::newRow("missing account") << "50" << "2" << false << true << 6621;
        QTest::newRow("client deleted by the server") << "50" << "2" << true << false << 5005;
    }
    void badPaymentsAreRefusedAndWriteNothing()
    {
        QFETCH(QString, amount);
        QFETCH(QString, type);
        QFETCH(bool, knownAccount);
        QFETCH(bool, knownClient);
        QFETCH(int, refusal);
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        if (!knownClient)
            t.db().execute("delete from client where bbclientid = ?", {client});
        t.db().execute("delete from dblog");
        NewPayment p = payment(knownAccount ? b.account : 999, amount);
        p.paymentType = type;
        const auto written = addPayment(t.db(), p, clerk());
        QVERIFY(!written);
        QCOMPARE(written.refusal().id(), refusal);
        QCOMPARE(t.db().scalar("select count(*) from payment").toInt(), 0);
        QCOMPARE(t.db().scalar("select count(*) from clienttran").toInt(), 0);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void editingAPaymentChangesOnlyItsReferenceInBothTables()
    {
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        const auto written = addPayment(t.db(), payment(b.account, "80", "old"), clerk());
        QVERIFY(changePaymentReference(t.db(), written->payment.BBPaymentID, "new", clerk()));
        Payment p;
        p.fetch(t.db(), written->payment.BBPaymentID);
        QCOMPARE(p.Reference, QString("new"));
        QCOMPARE(p.Amount, 80.0);
        QCOMPARE(p.getClientTran(t.db())->Reference, QString("new"));
        QCOMPARE(auditNotes(t.db()).last(),
                 QStringLiteral("Payment change for A/C %1 (Old Ref: 'old' changed to 'new')").arg(b.account));
        QCOMPARE(changePaymentReference(t.db(), 999, "x", clerk()).refusal().id(), 6627);
    }

    void allocationOffersTheClientsOpenAccountsAndKeepsTheTwin()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade first = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const BookingMade second = addBooking(t.db(), client, {2}, Arrival, 1, 50);
        t.db().execute("update account set reference = 'Group' where bbaccountid = ?", {second.account});
        const qint32 stranger = addBooking(t.db(), addClient(t.db(), "Other"), {3}, Arrival, 1, 50).account;
        const auto written = addPayment(t.db(), payment(first.account, "60", "r1"), clerk());
        const qint32 id = written->payment.BBPaymentID;

        const auto choices = allocationChoices(t.db(), client, written->payment);
        QCOMPARE(choices.size(), std::size_t(3));
        QCOMPARE(choices[0].accountId, 0);
        QCOMPARE(choices[1].accountId, second.account);
        QCOMPARE(choices[1].text, QStringLiteral("A/C ID %1 (Group) O/S = 50.00").arg(second.account));
        QCOMPARE(choices[2].text, QStringLiteral("A/C ID %1 O/S = 140.00").arg(first.account));

        QCOMPARE(allocatePayment(t.db(), id, stranger, "r1", clerk()).refusal().id(), 6629);
        QCOMPARE(*allocatePayment(t.db(), id, first.account, " r1 ", clerk()), false);
        QCOMPARE(*allocatePayment(t.db(), id, second.account, "r2", clerk()), true);
        Payment p;
        p.fetch(t.db(), id);
        QCOMPARE(p.BBAccountID, second.account);
        QCOMPARE(p.getClientTran(t.db())->Reference, QString("r2"));
        QCOMPARE(p.getClientTran(t.db())->Amount, -60.0);
        QCOMPARE(auditNotes(t.db()).last(),
                 QStringLiteral("Payment ID %1 changed. (Ref changed from 'r1' to 'r2', Account ID changed from %2 to %3)")
                     .arg(id)
                     .arg(first.account)
                     .arg(second.account));
        QVERIFY(*allocatePayment(t.db(), id, 0, "r2", clerk()));
        QCOMPARE(auditNotes(t.db()).last(),
                 QStringLiteral("Payment ID %1 changed. (Account ID changed from %2 to 0)").arg(id).arg(second.account));
    }

    void aClosedAccountOfThePaymentStaysOnItsList()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const auto written = addPayment(t.db(), payment(b.account, "60"), clerk());
        t.db().execute("update account set status = 'C' where bbaccountid = ?", {b.account});
        const auto choices = allocationChoices(t.db(), client, written->payment);
        QCOMPARE(choices.size(), std::size_t(2));
        QCOMPARE(choices.back().accountId, b.account);
    }

    void anotherInvoiceToClientTakesThePaymentTwins()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const qint32 company = addClient(t.db(), "Acme");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        QVERIFY(addPayment(t.db(), payment(b.account, "60"), clerk()));
        QVERIFY(addPayment(t.db(), payment(b.account, "40"), clerk()));
        QCOMPARE(clientBalance(t.db(), client), -100.0);
        const auto changed = changeInvoiceTo(t.db(), b.account, company);
        QVERIFY(changed);
        QVERIFY(changed->bookings().contains(b.booking));
        QCOMPARE(clientBalance(t.db(), client), 0.0);
        QCOMPARE(clientBalance(t.db(), company), -100.0);
        QCOMPARE(t.db().scalar("select invoiceto from account where bbaccountid = ?", {b.account}).toInt(), company);
        QCOMPARE(changeInvoiceTo(t.db(), b.account, 999).refusal().id(), 5005);
    }
};

QTEST_GUILESS_MAIN(TestPayments)
#include "test_payments.moc"

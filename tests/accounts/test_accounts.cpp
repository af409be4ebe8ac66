#include "accounts/accountrecords.h"
#include "accounts/accounts.h"
#include "accounts/accountvalidator.h"
#include "accounts/extraqueries.h"
#include "bookings/bookingrecords.h"
#include "shell/changelog.h"
#include "support/recordingsink.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

qint32 openAccount(Database &db, qint32 client, const QString &status = "O")
{
    Account a;
    a.InvoiceTo = client;
    a.Status = status;
    a.VatCode = 1;
    a.update(db);
    return a.BBAccountID;
}

qint32 addExtra(Database &db, qint32 guest, qint32 account, const QDate &date, double qty = 1, double price = 10)
{
    Extra e;
    e.BBGuestID = guest;
    e.BBAccountID = account;
    e.ExtraDate = date;
    e.Qty = qty;
    e.Price = price;
    e.update(db);
    return e.BBExtraID;
}

qint32 addPayment(Database &db, qint32 account, double amount, const QDate &date = QDate(2026, 1, 1))
{
    Payment p;
    p.BBAccountID = account;
    p.Amount = amount;
    p.PaymentDate = date;
    p.update(db);
    return p.BBPaymentID;
}

QString statusOf(Database &db, qint32 account)
{
    return db.scalar("select status from account where bbaccountid = ?", {account}).toString();
}

qint32 guestAccount(Database &db, qint32 guest)
{
    return db.scalar("select bbaccountid from guest where bbguestid = ?", {guest}).toInt();
}

int paymentsOn(Database &db, qint32 account)
{
    return db.scalar("select count(*) from payment where bbaccountid = ?", {account}).toInt();
}

// Client 1's booking on account B: two rooms (10 and 11), two nights at 100 and
// 120 per room, and a split account S of the same client with a payment of 30.
struct SplitRoom {
    explicit SplitRoom(Database &db)
    {
        B = openAccount(db, 1);
        S = openAccount(db, 1);
        booking.FromDate = QDate(2026, 7, 1);
        booking.ToDate = QDate(2026, 7, 3);
        booking.MadeBy = 1;
        booking.BBAccountID = B;
        booking.update(db);
        for (qint32 room : {10, 11}) {
            Guest g;
            g.BBBookingID = booking.BBBookingID;
            g.BBRoomID = room;
            g.update(db);
            legs.push_back(g.BBGuestID);
            for (int n = 0; n < 2; ++n) {
                DailyRate r;
                r.CalDate = booking.FromDate.addDays(n);
                r.BBBookingID = booking.BBBookingID;
                r.BBRoomID = room;
                r.RoomRate = n == 0 ? 100 : 120;
                r.update(db);
            }
        }
        payment = addPayment(db, S, 30);
    }
    void giveRoomOwnAccount(Database &db, int leg, qint32 account)
    {
        db.execute("update guest set bbaccountid = ? where bbguestid = ?", {account, legs[leg]});
    }
    qint32 B = 0, S = 0, payment = 0;
    Booking booking;
    std::vector<qint32> legs;
};

} // namespace

class TestAccounts : public QObject {
    Q_OBJECT

    std::unique_ptr<RecordingSink> m_sink;

private Q_SLOTS:
    void init() { m_sink = std::make_unique<RecordingSink>(); }
    void cleanup()
    {
        QVERIFY2(m_sink->shown.isEmpty() && m_sink->asked.isEmpty(), "accounts and the validator show no messages");
        m_sink.reset();
    }

    void openAccountIsReusedOnlyWhenItIsTheOnlyOne()
    {
        TestDatabase t;
        openAccount(t.db(), 3, "C");
        const qint32 first = getOpenAccount(t.db(), 3);
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), 2);
        QCOMPARE(getOpenAccount(t.db(), 3), first);
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), 2);

        const qint32 second = openAccount(t.db(), 3);
        const qint32 third = getOpenAccount(t.db(), 3);
        QVERIFY(third != first && third != second);
        QCOMPARE(t.db().scalar("select count(*) from account where invoiceto = 3 and status = 'O'").toInt(), 3);
        QVERIFY(Account::fetchAccounts(t.db(), first, 3));
        QVERIFY(!Account::fetchAccounts(t.db(), first, 4));
    }

    void balanceSumsRoomsExtrasLessPayments()
    {
        TestDatabase t;
        QCOMPARE(Account::getBalanceOnAccount(t.db(), 99), 0.0);
        SplitRoom s(t.db());
        QCOMPARE(Account::getBalanceOnAccount(t.db(), s.B), 440.0);
        // A room billed elsewhere still counts on its booking's account.
        s.giveRoomOwnAccount(t.db(), 1, s.S);
        QCOMPARE(Account::getBalanceOnAccount(t.db(), s.B), 440.0);
        addExtra(t.db(), s.legs[0], s.B, QDate(2026, 7, 1), 3, 2.5);
        addPayment(t.db(), s.B, 100.25);
        QCOMPARE(Account::getBalanceOnAccount(t.db(), s.B), 440.0 + 7.5 - 100.25);
        QCOMPARE(Account::getBalanceOnAccount(t.db(), s.S), -30.0);
        // A booking without nightly rates adds nothing.
        DailyRate::deleteBooking(t.db(), s.booking.BBBookingID);
        QCOMPARE(Account::getBalanceOnAccount(t.db(), s.B), 7.5 - 100.25);
    }

    void validateAccountLeavesAnAccountWithItemsAlone()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        addExtra(t.db(), s.legs[0], s.S, QDate(2026, 7, 1));
        t.db().execute("delete from dblog");
        AccountValidator().validateAccount(t.db(), s.S, s.B);
        QCOMPARE(statusOf(t.db(), s.S), QString("O"));
        QCOMPARE(paymentsOn(t.db(), s.S), 1);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void validateAccountClosesAnEmptyAccountAndMovesItsPayments()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        t.db().execute("delete from dblog");
        AccountValidator().validateAccount(t.db(), s.S, s.B);
        QCOMPARE(statusOf(t.db(), s.S), QString("C"));
        QCOMPARE(paymentsOn(t.db(), s.S), 0);
        QCOMPARE(paymentsOn(t.db(), s.B), 1);
        QCOMPARE(t.db().scalar("select logtype from dblog where tablename = 'account' and bbtableid = ?", {s.S}).toString(), QString("U"));
        QCOMPARE(t.db().scalar("select logtype from dblog where tablename = 'payment' and bbtableid = ?", {s.payment}).toString(),
                 QString("U"));
    }

    void validateAccountOfAMissingAccountWritesNothing()
    {
        TestDatabase t;
        AccountValidator().validateAccount(t.db(), 321, 5);
        AccountValidator().validateAccount(t.db(), 0, 5);
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), 0);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void roomLosingItsLastExtraReturnsToTheBooking()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        s.giveRoomOwnAccount(t.db(), 0, s.S);
        AccountValidator().validateGuestAccount(t.db(), s.legs[0]);
        QCOMPARE(guestAccount(t.db(), s.legs[0]), 0);
        QCOMPARE(statusOf(t.db(), s.S), QString("C"));
        QCOMPARE(paymentsOn(t.db(), s.B), 1);
    }

    void roomWithoutExtrasOrOwnAccountIsLeftAlone()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        t.db().execute("delete from dblog");
        AccountValidator().validateGuestAccount(t.db(), s.legs[0]);
        AccountValidator().validateGuestAccount(t.db(), 9999);
        QCOMPARE(ChangeLog::count(t.db()), 0);
        QCOMPARE(statusOf(t.db(), s.S), QString("O"));
    }

    void roomWithOneExtra_data()
    {
        QTest::addColumn<QString>("extraOn");      // "B", "S" or "E" (a third account)
        QTest::addColumn<QString>("ownBefore");    // "", "S" or "E"
        QTest::addColumn<QString>("ownAfter");
        QTest::addColumn<bool>("splitClosed");
        QTest::addColumn<QString>("paymentsTo");   // where S's payment ends up
        QTest::newRow("extra on the booking's account, no own account") << "B" << "" << "" << false << "S";
        QTest::newRow("extra on the booking's account, own account S") << "B" << "S" << "" << true << "B";
        QTest::newRow("extra elsewhere, no own account") << "E" << "" << "E" << false << "S";
        QTest::newRow("extra on the own account already") << "S" << "S" << "S" << false << "S";
        QTest::newRow("extra moved to another account") << "E" << "S" << "E" << true << "E";
    }

    void roomWithOneExtra()
    {
        QFETCH(QString, extraOn);
        QFETCH(QString, ownBefore);
        QFETCH(QString, ownAfter);
        QFETCH(bool, splitClosed);
        QFETCH(QString, paymentsTo);
        TestDatabase t;
        SplitRoom s(t.db());
        const qint32 E = openAccount(t.db(), 2);
        const auto account = [&](const QString &name) -> qint32 {
            return name == "B" ? s.B : name == "S" ? s.S : name == "E" ? E : 0;
        };
        s.giveRoomOwnAccount(t.db(), 0, account(ownBefore));
        addExtra(t.db(), s.legs[0], account(extraOn), QDate(2026, 7, 1));
        AccountValidator().validateGuestAccount(t.db(), s.legs[0]);
        QCOMPARE(guestAccount(t.db(), s.legs[0]), account(ownAfter));
        QCOMPARE(statusOf(t.db(), s.S), QString(splitClosed ? "C" : "O"));
        QCOMPARE(paymentsOn(t.db(), account(paymentsTo)), 1);
        QCOMPARE(guestAccount(t.db(), s.legs[1]), 0);
    }

    void roomWithSeveralExtras()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        const qint32 E = openAccount(t.db(), 2);
        // No own account: nothing to decide.
        addExtra(t.db(), s.legs[0], E, QDate(2026, 7, 2));
        addExtra(t.db(), s.legs[0], s.B, QDate(2026, 7, 2));
        AccountValidator().validateGuestAccount(t.db(), s.legs[0]);
        QCOMPARE(guestAccount(t.db(), s.legs[0]), 0);

        // Own account still holding one of the extras: kept.
        s.giveRoomOwnAccount(t.db(), 0, s.S);
        const qint32 onSplit = addExtra(t.db(), s.legs[0], s.S, QDate(2026, 7, 2));
        AccountValidator().validateGuestAccount(t.db(), s.legs[0]);
        QCOMPARE(guestAccount(t.db(), s.legs[0]), s.S);
        QCOMPARE(statusOf(t.db(), s.S), QString("O"));

        // None left on it: the room follows its earliest extra (by date, then as entered).
        t.db().execute("update extra set bbaccountid = ? where bbextraid = ?", {s.B, onSplit});
        addExtra(t.db(), s.legs[0], s.B, QDate(2026, 6, 30));
        t.db().execute("update extra set extradate = '2026-06-29' where bbaccountid = ? and bbextraid = (select min(bbextraid) from extra)",
                       {E});
        AccountValidator().validateGuestAccount(t.db(), s.legs[0]);
        QCOMPARE(guestAccount(t.db(), s.legs[0]), E);
        QCOMPARE(statusOf(t.db(), s.S), QString("C"));
        QCOMPARE(paymentsOn(t.db(), E), 1);
    }

    void bookingMovedToAnotherAccountTakesItsExtrasAlong()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        const qint32 old = s.B;
        const qint32 oldPayment = addPayment(t.db(), old, 50);
        addExtra(t.db(), s.legs[0], old, QDate(2026, 7, 1));
        addExtra(t.db(), s.legs[1], old, QDate(2026, 7, 1));
        const qint32 elsewhere = addExtra(t.db(), s.legs[1], s.S, QDate(2026, 7, 2));
        const qint32 otherBooking = addExtra(t.db(), 999, old, QDate(2026, 7, 2));
        const qint32 fresh = openAccount(t.db(), 1);
        s.booking.BBAccountID = fresh;
        s.booking.update(t.db());

        AccountValidator().validateBooking(t.db(), s.booking, old);
        QCOMPARE(t.db().scalar("select count(*) from extra where bbaccountid = ?", {fresh}).toInt(), 2);
        QCOMPARE(t.db().scalar("select bbaccountid from extra where bbextraid = ?", {elsewhere}).toInt(), s.S);
        // Room 0 has only extras on the booking's account; room 1 has two extras and no own account.
        QCOMPARE(guestAccount(t.db(), s.legs[0]), 0);
        QCOMPARE(guestAccount(t.db(), s.legs[1]), 0);
        // An extra of another booking's room keeps the old account open.
        QCOMPARE(t.db().scalar("select bbaccountid from extra where bbextraid = ?", {otherBooking}).toInt(), old);
        QCOMPARE(statusOf(t.db(), old), QString("O"));
        QCOMPARE(t.db().scalar("select bbaccountid from payment where bbpaymentid = ?", {oldPayment}).toInt(), old);

        t.db().execute("delete from extra where bbextraid = ?", {otherBooking});
        AccountValidator().validateBooking(t.db(), s.booking, old);
        QCOMPARE(statusOf(t.db(), old), QString("C"));
        QCOMPARE(t.db().scalar("select bbaccountid from payment where bbpaymentid = ?", {oldPayment}).toInt(), fresh);
        QCOMPARE(statusOf(t.db(), s.S), QString("O"));
    }

    void bookingWhoseAccountRowIsMissingChangesNothing()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        t.db().execute("delete from account where bbaccountid = ?", {s.B});
        t.db().execute("delete from dblog");
        const int accounts = t.db().scalar("select count(*) from account").toInt();
        Booking moved = s.booking;
        moved.BBAccountID = s.S;
        AccountValidator().validateBooking(t.db(), moved, s.B);
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), accounts);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void emptyAccountsOfAClientCloseAndKeepTheirCredit()
    {
        TestDatabase t;
        SplitRoom s(t.db());
        const qint32 empty = openAccount(t.db(), 1);
        const qint32 otherClient = openAccount(t.db(), 2);
        AccountValidator().closeEmptyAccountsForClient(t.db(), 1);
        QCOMPARE(statusOf(t.db(), s.B), QString("O"));
        QCOMPARE(statusOf(t.db(), s.S), QString("C"));
        QCOMPARE(statusOf(t.db(), empty), QString("C"));
        QCOMPARE(statusOf(t.db(), otherClient), QString("O"));
        QCOMPARE(paymentsOn(t.db(), s.S), 1);
        QCOMPARE(Account::getBalanceOnAccount(t.db(), s.S), -30.0);

        AccountValidator().closeAllEmptyAccounts(t.db());
        QCOMPARE(statusOf(t.db(), otherClient), QString("C"));
        QCOMPARE(statusOf(t.db(), s.B), QString("O"));
    }

};

QTEST_GUILESS_MAIN(TestAccounts)
#include "test_accounts.moc"

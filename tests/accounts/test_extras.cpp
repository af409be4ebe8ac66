#include "accounts/accountrefusals.h"
#include "accounts/extras.h"
#include "accounts/vat.h"
#include "shell/changelog.h"
#include "support/moneyfixture.h"

#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

ExtraInput newExtra(qint32 guest, const QString &qty = "2", const QString &price = "180", bool onRoom = false)
{
    ExtraInput input;
    input.guestId = guest;
    input.date = Arrival;
    input.stockId = Wine;
    input.qtyText = qty;
    input.priceText = price;
    input.onRoomAccount = onRoom;
    return input;
}

qint32 roomAccount(Database &db, qint32 guest)
{
    return db.scalar("select bbaccountid from guest where bbguestid = ?", {guest}).toInt();
}

QString statusOf(Database &db, qint32 account)
{
    return db.scalar("select status from account where bbaccountid = ?", {account}).toString();
}

UserStruct mayDelete()
{
    UserStruct user = clerk();
    user.ExtrasDelete = true;
    return user;
}

} // namespace

class TestExtras : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void vatIsTheRatesShareOfAPriceRoundedPerLine_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<double>("amount");
        QTest::addColumn<double>("vat");

        QTest::newRow("whole") << 14.0 << 114.0 << 14.0;
        QTest::newRow("negative keeps its sign") << 14.0 << -114.0 << -14.0;
        QTest::newRow("zero rate") << 0.0 << 114.0 << 0.0;
        QTest::newRow("small line") << 14.0 << 0.05 << 0.01;
        QTest::newRow("tie goes to even") << 25.0 << 0.625 << 0.12;
        QTest::newRow("negative tie goes to even") << 25.0 << -0.625 << -0.12;
        QTest::newRow("fifteen percent") << 15.0 << 100.0 << 13.04;
    }
    void vatIsTheRatesShareOfAPriceRoundedPerLine()
    {
        QFETCH(double, rate);
        QFETCH(double, amount);
        QFETCH(double, vat);
        VatCode code;
        code.Code = 1;
        code.VATRate = rate;
        QCOMPARE(calculateVAT(code, amount), vat);
    }

    void vatRulesFollowTheVatNumber()
    {
        PropertyDatabase t;
        VatRules rules = VatRules::load(t.db());
        QVERIFY(rules.isVat());
        QCOMPARE(rules.lineVAT(1, 114), 14.0);
        QCOMPARE(rules.lineVAT(7, 114), 0.0);
        t.db().execute("update bbsetup set vatno = ''");
        QCOMPARE(VatRules::load(t.db()).lineVAT(1, 114), 0.0);
    }

    void extrasFromTheServerTakeTheRoomsOrTheBookingsAccount()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1, 2}, Arrival, 2, 100);
        const qint32 split = createAccount(t.db(), client);
        const qint32 onFirst = addExtraRow(t.db(), b.legs[0], 0, 1, 10);
        const qint32 onSecond = addExtraRow(t.db(), b.legs[1], 0, 1, 10);
        // The second room bills on its own account: only its extra goes there.
        Extra::updateExtraWithAccount(t.db(), b.booking, b.account, b.legs[1], split);
        Extra e;
        e.fetch(t.db(), onSecond);
        QCOMPARE(e.BBAccountID, split);
        e.fetch(t.db(), onFirst);
        QCOMPARE(e.BBAccountID, 0);
        // On the booking's account, every waiting extra of the booking goes there.
        Extra::updateExtraWithAccount(t.db(), b.booking, b.account, b.legs[0], b.account);
        e.fetch(t.db(), onFirst);
        QCOMPARE(e.BBAccountID, b.account);
    }

    void anExtraOffTheRoomsAccountIsDifferent()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const qint32 other = createAccount(t.db(), client);
        const qint32 extra = addExtraRow(t.db(), b.legs[0], b.account, 1, 10);
        QVERIFY(!Extra::hasDifferentExtras(t.db(), b.legs[0]));
        t.db().execute("update extra set bbaccountid = ? where bbextraid = ?", {other, extra});
        QVERIFY(Extra::hasDifferentExtras(t.db(), b.legs[0]));
        t.db().execute("update guest set bbaccountid = ? where bbguestid = ?", {other, b.legs[0]});
        QVERIFY(!Extra::hasDifferentExtras(t.db(), b.legs[0]));
    }

    void anExtraOnTheMainAccountIsSavedAndTheRoomStaysOnIt()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const auto saved = saveExtra(t.db(), newExtra(b.legs[0], "2", "-35.50"), clerk());
        QVERIFY(saved);
        QCOMPARE(saved->extra.BBAccountID, b.account);
        QCOMPARE(saved->extra.Price, -35.5);   // a refund line
        QCOMPARE(saved->extra.Qty, 2.0);
        QCOMPARE(roomAccount(t.db(), b.legs[0]), 0);
        QVERIFY(saved->changes.bookings().contains(b.booking));
        QVERIFY(auditNotes(t.db()).isEmpty());
    }

    void theGuestAccountOptionSplitsTheRoomOntoANewAccount()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const auto saved = saveExtra(t.db(), newExtra(b.legs[0], "1", "180", true), clerk());
        QVERIFY(saved);
        QVERIFY(saved->extra.BBAccountID != b.account);
        QCOMPARE(roomAccount(t.db(), b.legs[0]), saved->extra.BBAccountID);

        // Moving the room's only extra back to the main account returns the
        // room to it and closes the split account.
        ExtraInput back = newExtra(b.legs[0], "1", "180", false);
        back.extraId = saved->extra.BBExtraID;
        QVERIFY(saveExtra(t.db(), back, clerk()));
        QCOMPARE(roomAccount(t.db(), b.legs[0]), 0);
        QCOMPARE(statusOf(t.db(), saved->extra.BBAccountID), QString("C"));
    }

    void aClosedMainAccountGivesTheRoomANewAccount()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        t.db().execute("update account set status = 'C' where bbaccountid = ?", {b.account});
        auto accounts = extraAccounts(t.db(), b.legs[0]);
        QVERIFY(accounts && accounts->newRoomAccount && !accounts->mainOpen());
        QCOMPARE(t.db().scalar("select count(*) from account").toInt(), 1);   // nothing made by looking

        QCOMPARE(saveExtra(t.db(), newExtra(b.legs[0]), clerk()).refusal().id(), 6640);
        const auto saved = saveExtra(t.db(), newExtra(b.legs[0], "1", "180", true), clerk());
        QVERIFY(saved);
        QVERIFY(saved->extra.BBAccountID != b.account);
        QCOMPARE(roomAccount(t.db(), b.legs[0]), saved->extra.BBAccountID);
        QCOMPARE(statusOf(t.db(), saved->extra.BBAccountID), QString("O"));
        QCOMPARE(t.db().scalar("select invoiceto from account where bbaccountid = ?", {saved->extra.BBAccountID}).toInt(), client);
    }

    void anExtraOnAnAccountClosedMeanwhileIsRefused()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const BookingMade b = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        const auto saved = saveExtra(t.db(), newExtra(b.legs[0]), clerk());
        QVERIFY(saved);
        t.db().execute("update account set status = 'C' where bbaccountid = ?", {b.account});
        t.db().execute("delete from dblog");
        ExtraInput change = newExtra(b.legs[0], "3");
        change.extraId = saved->extra.BBExtraID;
        QCOMPARE(saveExtra(t.db(), change, clerk()).refusal().id(), 6640);
        QCOMPARE(deleteExtra(t.db(), saved->extra.BBExtraID, "spilt", mayDelete()).refusal().id(), 6640);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void badExtrasAreRefusedInTheFormsOrder_data()
    {
        QTest::addColumn<int>("stock");
        QTest::addColumn<QString>("qty");
        QTest::addColumn<QString>("price");
        QTest::addColumn<int>("refusal");

        QTest::newRow("no stock") << 0 << "1" << "10" << 6662;
        QTest::newRow("unknown stock") << 99 << "1" << "10" << 6662;
        QTest::newRow("no quantity") << 1 << "" << "" << 6664;
        QTest::newRow("no price") << 1 << "1" << " " << 6666;
        QTest::newRow("minus in the quantity") << 1 << "-1" << "10" << 6653;
        QTest::newRow("zero quantity") << 1 << "0" << "10" << 6653;
        QTest::newRow("quantity as text") << 1 << "two" << "10" << 6620;
        QTest::newRow("comma decimal price") << 1 << "1" << "12,5" << 6620;
    }
    void badExtrasAreRefusedInTheFormsOrder()
    {
        QFETCH(int, stock);
        QFETCH(QString, qty);
        QFETCH(QString, price);
        QFETCH(int, refusal);
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        ExtraInput input = newExtra(b.legs[0], qty, price);
        input.stockId = stock;
        t.db().execute("delete from dblog");
        QCOMPARE(saveExtra(t.db(), input, clerk()).refusal().id(), refusal);
        QCOMPARE(t.db().scalar("select count(*) from extra").toInt(), 0);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void changingAnExtraLeavesAnAuditLine()
    {
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        const auto saved = saveExtra(t.db(), newExtra(b.legs[0], "1", "180"), clerk());
        ExtraInput change = newExtra(b.legs[0], "2", "175");
        change.extraId = saved->extra.BBExtraID;
        QVERIFY(saveExtra(t.db(), change, clerk()));
        QCOMPARE(auditNotes(t.db()),
                 QStringList{QStringLiteral("Extra changed from 1 x Wine (180.00) to 2 x Wine (175.00) (Account ID %1)").arg(b.account)});
        // Saving it unchanged adds nothing.
        QVERIFY(saveExtra(t.db(), change, clerk()));
        QCOMPARE(auditNotes(t.db()).size(), 1);
    }

    void deletingAnExtraAsksForTheRightAndAReasonAndReturnsTheRoom()
    {
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        const auto saved = saveExtra(t.db(), newExtra(b.legs[0], "2", "180", true), clerk());
        const qint32 split = saved->extra.BBAccountID;
        QCOMPARE(deleteExtra(t.db(), saved->extra.BBExtraID, "broken", clerk()).refusal().id(), 5100);
        QCOMPARE(deleteExtra(t.db(), saved->extra.BBExtraID, " ", mayDelete()).refusal().id(), 6660);
        QCOMPARE(deleteExtra(t.db(), 999, "broken", mayDelete()).refusal().id(), 6658);

        QVERIFY(deleteExtra(t.db(), saved->extra.BBExtraID, "broken", mayDelete()));
        QCOMPARE(t.db().scalar("select count(*) from extra").toInt(), 0);
        QCOMPARE(t.db().scalar("select logtype from dblog where tablename = 'extra'").toString(), QString("D"));
        QCOMPARE(auditNotes(t.db()), QStringList{QStringLiteral("Extra Deleted. A/C ID %1: 2 x Wine @ 180.00 (broken)").arg(split)});
        QCOMPARE(roomAccount(t.db(), b.legs[0]), 0);
        QCOMPARE(statusOf(t.db(), split), QString("C"));
    }

    void theRoomsListShowsItemsAndTheirAccountsState()
    {
        PropertyDatabase t;
        const BookingMade b = addBooking(t.db(), addClient(t.db(), "Heron"), {1}, Arrival, 2, 100);
        addExtraRow(t.db(), b.legs[0], b.account, 2, 180, Wine, Arrival.addDays(1));
        addExtraRow(t.db(), b.legs[0], b.account, 3, 20, 77, Arrival);
        const std::vector<ExtraRow> rows = extrasOfRoom(t.db(), b.legs[0]);
        QCOMPARE(rows.size(), std::size_t(2));
        QCOMPARE(rows[0].stockName, QString());   // unknown item: empty description
        QCOMPARE(rows[1].stockName, QString("Wine"));
        QCOMPARE(rows[1].total(), 360.0);
        QVERIFY(rows[1].accountOpen);
        QCOMPARE(defaultAccountOf(t.db(), b.legs[0]), b.account);
        QVERIFY(canAddExtras(t.db()));
        t.db().execute("update stock set active = 'N'");
        QCOMPARE(canAddExtras(t.db()).refusal().id(), 6656);
    }
};

QTEST_GUILESS_MAIN(TestExtras)
#include "test_extras.moc"

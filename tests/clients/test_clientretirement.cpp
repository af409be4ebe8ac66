#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientaccounts.h"
#include "clients/clientrecords.h"
#include "clients/clientretirement.h"
#include "clients/clientsearch.h"
#include "shell/changelog.h"
#include "shell/security.h"
#include "support/clientfixture.h"
#include "support/databasedump.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

class Answer : public RetireQuestions {
public:
    explicit Answer(bool yes = true) : m_yes(yes) {}
    bool readyToRetire() override
    {
        ++asked;
        return m_yes;
    }
    int asked = 0;

private:
    bool m_yes;
};

qint32 addAccount(Database &db, qint32 invoiceTo)
{
    Account a;
    a.InvoiceTo = invoiceTo;
    a.Status = "O";
    a.update(db);
    return a.BBAccountID;
}

qint32 addBooking(Database &db, qint32 madeBy, qint32 account)
{
    Booking b;
    b.BookingType = "P";
    b.FromDate = QDate(2026, 3, 1);
    b.ToDate = QDate(2026, 3, 3);
    b.MadeBy = madeBy;
    b.BBAccountID = account;
    b.update(db);
    return b.BBBookingID;
}

qint32 addLeg(Database &db, qint32 booking, qint32 room, qint32 client, qint32 client2 = 0)
{
    Guest g;
    g.BBBookingID = booking;
    g.BBRoomID = room;
    g.BBClientID = client;
    g.BBClient2ID = client2;
    g.update(db);
    return g.BBGuestID;
}

qint32 addTran(Database &db, qint32 client, const QString &type, double amount)
{
    ClientTran t;
    t.BBClientID = client;
    t.TranType = type;
    t.TranDate = QDate(2026, 3, 3);
    t.Amount = amount;
    t.update(db);
    return t.BBClientTranID;
}

int count(Database &db, const QString &sql, const QVariantList &values)
{
    return db.scalar(sql, values).toInt();
}

// Everything a retirement could touch, to compare before and after a refusal.
QString snapshot(Database &db)
{
    return dumpDatabase(db.connection());
}

UserStruct desk()
{
    UserStruct user;
    user.UserName = "Thandi";
    return user;
}

// Pat Old (to retire) and Pat New (the replacement), with Pat Other beside them:
//   booking 1, made by Old on Old's account: room 1 with Old, room 2 with Other and Old as second guest;
//   booking 2, made by Other on Other's account: room 3 with Other and Old as second guest;
//   booking 3, made by New: room 4 with New.
// Old's ledger: invoice 300, payment -100; New's: journal 50.
struct Property {
    explicit Property(Database &db)
    {
        oldId = addPerson(db, "Pat", "Old");
        newId = addPerson(db, "Pat", "New");
        otherId = addPerson(db, "Pat", "Other");
        oldAccount = addAccount(db, oldId);
        otherAccount = addAccount(db, otherId);
        booking1 = addBooking(db, oldId, oldAccount);
        leg1 = addLeg(db, booking1, 1, oldId);
        leg2 = addLeg(db, booking1, 2, otherId, oldId);
        booking2 = addBooking(db, otherId, otherAccount);
        leg3 = addLeg(db, booking2, 3, otherId, oldId);
        booking3 = addBooking(db, newId, addAccount(db, newId));
        addLeg(db, booking3, 4, newId);
        invoice = addTran(db, oldId, "INV", 300);
        payment = addTran(db, oldId, "PMT", -100);
        addTran(db, newId, "JNL", 50);
        ClientExtra fax;
        fax.BBClientID = oldId;
        fax.FieldType = "F";
        fax.FieldValue = "021 555 0199";
        fax.update(db);
        ChangeLog::clearLog(db, "booking", booking3);
    }
    qint32 oldId, newId, otherId, oldAccount, otherAccount, booking1, booking2, booking3, leg1, leg2, leg3, invoice, payment;
};

} // namespace

class TestClientRetirement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingOfTheRetiredClientFollowsTheReplacement()
    {
        TestDatabase t;
        Database &db = t.db();
        Property p(db);
        const double together = ledgerBalance(db, p.oldId) + ledgerBalance(db, p.newId);
        Answer yes;
        const auto result = retireClient(db, desk(), p.oldId, p.newId, yes);
        QVERIFY(result.ok());
        QVERIFY(result->retired);
        QCOMPARE(yes.asked, 1);
        QCOMPARE(result->counts.bookings, 1);
        QCOMPARE(result->counts.guests, 1);
        QCOMPARE(result->counts.secondGuests, 2);
        QCOMPARE(result->counts.accounts, 1);
        QCOMPARE(result->counts.ledger, 2);
        QVERIFY(result->changes.everythingChanged());

        // Nothing points at the retired client any more.
        for (const char *sql : {"select count(*) from booking where madeby = ?", "select count(*) from guest where bbclientid = ?",
                                "select count(*) from guest where bbclient2id = ?", "select count(*) from account where invoiceto = ?",
                                "select count(*) from clienttran where bbclientid = ?"})
            QCOMPARE(count(db, QString::fromLatin1(sql), {p.oldId}), 0);
        QCOMPARE(count(db, "select madeby from booking where bbbookingid = ?", {p.booking1}), p.newId);
        QCOMPARE(count(db, "select invoiceto from account where bbaccountid = ?", {p.oldAccount}), p.newId);
        // A room where the client was only the second guest keeps its first guest.
        QCOMPARE(count(db, "select bbclientid from guest where bbguestid = ?", {p.leg3}), p.otherId);
        QCOMPARE(count(db, "select bbclient2id from guest where bbguestid = ?", {p.leg3}), p.newId);
        QCOMPARE(count(db, "select bbclientid from guest where bbguestid = ?", {p.leg2}), p.otherId);
        QCOMPARE(count(db, "select madeby from booking where bbbookingid = ?", {p.booking2}), p.otherId);
        QCOMPARE(ledgerBalance(db, p.newId), together);
        QCOMPARE(ledgerBalance(db, p.oldId), 0.0);

        // The retired client stays, with its extras, but the search no longer finds it.
        Client old;
        QVERIFY(old.fetch(db, p.oldId));
        QCOMPARE(old.Active, QString("N"));
        QCOMPARE(count(db, "select count(*) from clientextra where bbclientid = ?", {p.oldId}), 1);
        QCOMPARE(searchClientIds(db, {"", "Old", "", ""}), std::vector<qint32>{});
        QCOMPARE(searchClientIds(db, {"", "", "", QString::number(p.oldId)}), std::vector<qint32>{});
        QCOMPARE(searchClientIds(db, {"", "New", "", ""}), std::vector<qint32>{p.newId});

        // Every row moved is on its way to the server; what did not move is not.
        const auto logged = [&](const QString &table, qint32 key) {
            return db.scalar("select logtype from dblog where tablename = ? and bbtableid = ?", {table, key}).toString();
        };
        QCOMPARE(logged("booking", p.booking1), QString("U"));
        QCOMPARE(logged("guest", p.leg1), QString("U"));
        QCOMPARE(logged("guest", p.leg3), QString("U"));
        QCOMPARE(logged("account", p.oldAccount), QString("U"));
        QCOMPARE(logged("clienttran", p.invoice), QString("U"));
        QCOMPARE(logged("clienttran", p.payment), QString("U"));
        QCOMPARE(logged("client", p.oldId), QString("U"));
        QCOMPARE(logged("booking", p.booking3), QString());

        QCOMPARE(db.scalar("select UserName from audit").toString(), QString("Thandi"));
        QCOMPARE(db.scalar("select Notes from audit").toString(),
                 QString("Client ID (%1) retired and replaced with Client ID (%2) (Client Retired)").arg(p.oldId).arg(p.newId));
    }

    void clientWithNothingRetiresCleanly()
    {
        TestDatabase t;
        const qint32 lonely = addPerson(t.db(), "Pat", "Lonely");
        const qint32 keeper = addPerson(t.db(), "Pat", "Keeper");
        Answer yes;
        const auto result = retireClient(t.db(), desk(), lonely, keeper, yes);
        QVERIFY(result->retired);
        QCOMPARE(result->counts.bookings + result->counts.guests + result->counts.secondGuests + result->counts.accounts +
                     result->counts.ledger,
                 0);
        QCOMPARE(t.db().scalar("select active from client where bbclientid = ?", {lonely}).toString(), QString("N"));
        QCOMPARE(t.db().scalar("select count(*) from audit").toInt(), 1);
    }

    void refusedBeforeTheQuestionWritingNothing_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("into");
        QTest::addColumn<int>("refusal");
        QTest::newRow("nothing chosen to retire") << "none" << "new" << 6955;
        QTest::newRow("no replacement chosen") << "old" << "none" << 6955;
        QTest::newRow("the same client") << "old" << "old" << 6957;
        QTest::newRow("replacement deleted meanwhile") << "old" << "missing" << 6953;
        QTest::newRow("client deleted meanwhile") << "missing" << "new" << 6953;
        QTest::newRow("into a retired client") << "old" << "retired" << 6963;
    }

    void refusedBeforeTheQuestionWritingNothing()
    {
        QFETCH(QString, from);
        QFETCH(QString, into);
        QFETCH(int, refusal);
        TestDatabase t;
        Property p(t.db());
        const qint32 retired = addPerson(t.db(), "Pat", "Gone", {}, "N");
        const QHash<QString, qint32> keys{{"none", 0}, {"old", p.oldId}, {"new", p.newId}, {"missing", 999}, {"retired", retired}};
        const QString before = snapshot(t.db());
        Answer yes;
        const auto result = retireClient(t.db(), desk(), keys[from], keys[into], yes);
        QVERIFY(!result);
        QCOMPARE(result.refusal().id(), refusal);
        QCOMPARE(yes.asked, 0);
        QCOMPARE(snapshot(t.db()), before);
    }

    void answeringNoWritesNothing()
    {
        TestDatabase t;
        Property p(t.db());
        const QString before = snapshot(t.db());
        Answer no(false);
        const auto result = retireClient(t.db(), desk(), p.oldId, p.newId, no);
        QVERIFY(result.ok());
        QVERIFY(!result->retired);
        QCOMPARE(no.asked, 1);
        QCOMPARE(snapshot(t.db()), before);
    }

    void displayOfAChosenClient()
    {
        Client person;
        person.ClientType = "I";
        person.FirstName = "Sam";
        person.Surname = "Smith";
        person.Company = "Acme";
        person.PhoneNo = "021 555";
        QCOMPARE(retireDisplayName(person), QString("Sam Smith - 021 555"));
        person.ClientType = "T";
        QCOMPARE(retireDisplayName(person), QString("Acme - 021 555"));
    }
};

QTEST_GUILESS_MAIN(TestClientRetirement)
#include "test_clientretirement.moc"

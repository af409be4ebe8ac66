#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clienteditor.h"
#include "clients/clientrecords.h"
#include "clients/companylookup.h"
#include "shell/changelog.h"
#include "support/clientfixture.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

class Answers : public ClientSaveQuestions {
public:
    bool addAsNewClient() override
    {
        asked << "new";
        return newClient;
    }
    bool happyWithDetails() override
    {
        asked << "happy";
        return happy;
    }
    bool newClient = false;
    bool happy = true;
    QStringList asked;
};

qint32 addExtra(Database &db, qint32 client, const QString &type, const QString &value)
{
    ClientExtra e;
    e.BBClientID = client;
    e.FieldType = type;
    e.FieldValue = value;
    e.update(db);
    return e.BBClientExtraID;
}

// type=value of the client's stored extras, by key.
QStringList storedExtras(Database &db, qint32 client)
{
    QStringList rows;
    QSqlQuery q = db.query("select fieldtype, fieldvalue from clientextra where bbclientid = ? order by bbclientextraid", {client});
    while (q.next())
        rows << q.value(0).toString() + "=" + q.value(1).toString();
    return rows;
}

int clientCount(Database &db)
{
    return db.scalar("select count(*) from client").toInt();
}

QString logOf(Database &db, const QString &table, qint32 key)
{
    return db.scalar("select logtype from dblog where tablename = ? and bbtableid = ?", {table, key}).toString();
}

} // namespace

class TestClientEditor : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newClientQuestion_data()
    {
        QTest::addColumn<QString>("surname");
        QTest::addColumn<QString>("company");
        QTest::addColumn<bool>("answerNew");
        QTest::addColumn<QStringList>("asked");
        QTest::addColumn<bool>("madeNew");

        // Stored: surname "Smith", company "Acme".
        QTest::newRow("surname replaced, No updates in place") << "Jones" << "Acme" << false << QStringList{"new"} << false;
        QTest::newRow("surname replaced, Yes makes a new client") << "Jones" << "Acme" << true << QStringList{"new"} << true;
        QTest::newRow("company replaced asks") << "Smith" << "Beta" << true << QStringList{"new"} << true;
        QTest::newRow("surname cleared does not ask") << "" << "Acme" << true << QStringList{} << false;
        QTest::newRow("company cleared does not ask") << "Smith" << "" << true << QStringList{} << false;
        QTest::newRow("surname only recased asks") << "SMITH" << "Acme" << false << QStringList{"new"} << false;
        QTest::newRow("blanks around the same surname do not ask") << " Smith " << "Acme" << true << QStringList{} << false;
        QTest::newRow("nothing changed does not ask") << "Smith" << "Acme" << true << QStringList{} << false;
    }

    void newClientQuestion()
    {
        QFETCH(QString, surname);
        QFETCH(QString, company);
        QFETCH(bool, answerNew);
        QFETCH(QStringList, asked);
        QFETCH(bool, madeNew);

        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sam", "Smith", "Acme");
        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        editor.client().Surname = surname;
        editor.client().Company = company;
        editor.client().FirstName = "Samuel";
        Answers answers;
        answers.newClient = answerNew;
        const auto outcome = editor.save(answers);
        QVERIFY(outcome.ok());
        QVERIFY(outcome->saved);
        QCOMPARE(answers.asked, asked);
        QCOMPARE(outcome->madeNew, madeNew);
        QCOMPARE(outcome->NewClientID != id, madeNew);
        QCOMPARE(clientCount(t.db()), madeNew ? 2 : 1);

        Client stored;
        QVERIFY(stored.fetch(t.db(), id));
        QCOMPARE(stored.FirstName, madeNew ? QString("Sam") : QString("Samuel"));
        Client saved;
        QVERIFY(saved.fetch(t.db(), outcome->NewClientID));
        QCOMPARE(saved.Surname, surname);
        QCOMPARE(outcome->changes.clients(), QSet<qint32>{outcome->NewClientID});
        if (madeNew) {
            // A client split off is new in every way: its own stamp, made here, active.
            QCOMPARE(saved.CreatedOn, QString("P"));
            QCOMPARE(saved.Active, QString("Y"));
            QVERIFY(saved.DateCreated.date() == QDate::currentDate());
        } else {
            QCOMPARE(saved.CreatedOn, QString("C"));
            QCOMPARE(saved.DateCreated, QDateTime(QDate(2020, 5, 1), QTime(8, 0)));
        }
    }

    void newClientAsksWhetherTheDetailsAreRight()
    {
        TestDatabase t;
        ClientEditor editor(t.db());
        QVERIFY(editor.open(0));
        QCOMPARE(editor.caption(), QString("Add new client."));
        QCOMPARE(editor.client().ClientType, QString("I"));
        editor.client().Surname = "Ngozi";
        editor.extras().push_back({0, "C", "082 555 0101"});

        Answers no;
        no.happy = false;
        const auto declined = editor.save(no);
        QVERIFY(declined.ok());
        QVERIFY(!declined->saved);
        QCOMPARE(no.asked, QStringList{"happy"});
        QCOMPARE(clientCount(t.db()), 0);
        QCOMPARE(ChangeLog::count(t.db()), 0);

        Answers yes;
        const auto saved = editor.save(yes);
        QVERIFY(saved->saved);
        QVERIFY(saved->madeNew);
        QCOMPARE(saved->FullName, QString("Ngozi"));
        QCOMPARE(saved->ShortName, QString("Ngo"));
        Client c;
        QVERIFY(c.fetch(t.db(), saved->NewClientID));
        QCOMPARE(c.CreatedOn, QString("P"));
        QCOMPARE(c.Active, QString("Y"));
        QCOMPARE(storedExtras(t.db(), c.BBClientID), QStringList{"C=082 555 0101"});
        QCOMPARE(logOf(t.db(), "client", c.BBClientID), QString("U"));
    }

    void extrasSaveAsADiffOfTheGrid()
    {
        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sam", "Smith");
        const qint32 phone = addExtra(t.db(), id, "P", "021 555 0100");
        const qint32 fax = addExtra(t.db(), id, "F", "021 555 0199");
        const qint32 passport = addExtra(t.db(), id, "I", "A1234567");
        const qint32 unlisted = addExtra(t.db(), id, "X", "not in the sort table");
        const qint32 other = addPerson(t.db(), "Ann", "Jones");
        const qint32 othersCell = addExtra(t.db(), other, "C", "083 000 0000");
        ChangeLog::clearLog(t.db(), "clientextra", phone);
        ChangeLog::clearLog(t.db(), "clientextra", passport);

        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        // Shown in the order of the sort table; the unlisted type is not shown.
        QCOMPARE(editor.extras(), (std::vector<ClientExtraRow>{{phone, "P", "021 555 0100"},
                                                               {fax, "F", "021 555 0199"},
                                                               {passport, "I", "A1234567"}}));
        editor.extras()[0].FieldValue = "021 555 0111";   // changed: updated under its key
        editor.extras()[1].FieldValue = "   ";            // emptied: deleted
        editor.extras().push_back({0, "N", "Zambian"});   // added: inserted
        editor.extras().push_back({othersCell, "C", "084"}); // a key not of this client: a new row
        editor.extras().push_back({0, "O", ""});          // added but left empty: nothing
        Answers answers;
        QVERIFY(editor.save(answers)->saved);

        QCOMPARE(storedExtras(t.db(), id), QStringList({"P=021 555 0111", "I=A1234567", "N=Zambian", "C=084"}));
        QCOMPARE(logOf(t.db(), "clientextra", phone), QString("U"));
        QCOMPARE(logOf(t.db(), "clientextra", passport), QString()); // unchanged rows are not written again
        QCOMPARE(logOf(t.db(), "clientextra", fax), QString("D"));
        QCOMPARE(logOf(t.db(), "clientextra", unlisted), QString("D"));
        QCOMPARE(storedExtras(t.db(), other), QStringList{"C=083 000 0000"});
        // The editor now shows what is stored.
        QCOMPARE(editor.extras().size(), std::size_t(4));
        QVERIFY(editor.extras()[0].BBClientExtraID == phone);
    }

    void newClientFromAChangedOneGetsTheGridAsNewExtras()
    {
        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sam", "Smith");
        const qint32 phone = addExtra(t.db(), id, "P", "021 555 0100");
        addExtra(t.db(), id, "F", "021 555 0199");
        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        editor.client().Surname = "Smythe";
        editor.extras()[0].FieldValue = "021 555 0222";
        editor.extras().erase(editor.extras().begin() + 1);
        Answers answers;
        answers.newClient = true;
        const auto outcome = editor.save(answers);
        QVERIFY(outcome->madeNew);
        QCOMPARE(storedExtras(t.db(), outcome->NewClientID), QStringList{"P=021 555 0222"});
        QCOMPARE(storedExtras(t.db(), id), QStringList({"P=021 555 0100", "F=021 555 0199"}));
        QCOMPARE(t.db().scalar("select bbclientid from clientextra where bbclientextraid = ?", {phone}).toInt(), id);
    }

    void openingClosesTheClientsEmptyOpenAccounts()
    {
        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sam", "Smith");
        Account empty;
        empty.InvoiceTo = id;
        empty.Status = "O";
        empty.update(t.db());
        Account used;
        used.InvoiceTo = id;
        used.Status = "O";
        used.update(t.db());
        Booking b;
        b.MadeBy = id;
        b.BBAccountID = used.BBAccountID;
        b.update(t.db());
        Account othersEmpty;
        othersEmpty.InvoiceTo = addPerson(t.db(), "Ann", "Jones");
        othersEmpty.Status = "O";
        othersEmpty.update(t.db());

        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        const auto status = [&](qint32 account) {
            return t.db().scalar("select status from account where bbaccountid = ?", {account}).toString();
        };
        QCOMPARE(status(empty.BBAccountID), QString("C"));
        QCOMPARE(status(used.BBAccountID), QString("O"));
        QCOMPARE(status(othersEmpty.BBAccountID), QString("O"));
    }

    void retiredClientOpensByKeyWithItsCaption()
    {
        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sid", "Smith", {}, "N");
        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        QVERIFY(editor.isRetired());
        QCOMPARE(editor.caption(), QString("Client Details (ID %1) - Retired").arg(id));
        QVERIFY(editor.open(addPerson(t.db(), "Ann", "Jones")));
        QCOMPARE(editor.caption().endsWith(" - Retired"), false);
    }

    void missingClientIsRefusedOnOpeningAndOnSaving()
    {
        TestDatabase t;
        ClientEditor editor(t.db());
        const Outcome opened = editor.open(404);
        QVERIFY(!opened);
        QCOMPARE(opened.refusal().id(), 6903);
        editor.client().Surname = "Ghost";
        Answers answers;
        const auto saved = editor.save(answers);
        QVERIFY(!saved);
        QCOMPARE(saved.refusal().id(), 6949);
        QCOMPARE(clientCount(t.db()), 0);

        // Removed by a synchronisation while it was open here.
        const qint32 id = addPerson(t.db(), "Sam", "Smith");
        addExtra(t.db(), id, "P", "1");
        QVERIFY(editor.open(id));
        t.db().execute("delete from client where bbclientid = ?", {id});
        editor.client().FirstName = "Samuel";
        const int logRows = ChangeLog::count(t.db());
        QCOMPARE(editor.save(answers).refusal().id(), 6949);
        QCOMPARE(clientCount(t.db()), 0);
        QCOMPARE(ChangeLog::count(t.db()), logRows);
    }

    void overLongTextIsRefusedAndNothingWritten_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("extra value of 10,000 characters") << "extra";
        QTest::newRow("surname") << "Surname";
        QTest::newRow("e-mail") << "Email";
    }

    void overLongTextIsRefusedAndNothingWritten()
    {
        QFETCH(QString, field);
        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sam", "Smith");
        const qint32 phone = addExtra(t.db(), id, "P", "1");
        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        const QString huge(field == "extra" ? 10000 : MaxClientTextLength + 1, QChar('x'));
        editor.client().FirstName = "Changed";
        if (field == "extra")
            editor.extras()[0].FieldValue = huge;
        else if (field == "Surname")
            editor.client().Surname = huge;
        else
            editor.client().Email = huge;
        const int logRows = ChangeLog::count(t.db());
        Answers answers;
        answers.newClient = true;
        const auto saved = editor.save(answers);
        QVERIFY(!saved);
        QCOMPARE(saved.refusal().id(), 6946);
        QVERIFY(saved.refusal().text().contains(QString::number(huge.size())));
        QVERIFY(answers.asked.isEmpty());
        QCOMPARE(ChangeLog::count(t.db()), logRows);
        QCOMPARE(t.db().scalar("select firstname from client where bbclientid = ?", {id}).toString(), QString("Sam"));
        QCOMPARE(t.db().scalar("select fieldvalue from clientextra where bbclientextraid = ?", {phone}).toString(), QString("1"));

        // Exactly at the limit is fine, and the notes have none.
        editor.client().Surname = QString(MaxClientTextLength, QChar('s'));
        editor.client().Email.clear();
        editor.extras()[0].FieldValue = QString(MaxClientTextLength, QChar('9'));
        editor.client().Notes = huge;
        QVERIFY(editor.save(answers)->saved);
    }

    void namesWithQuotesWildcardsAndOtherAlphabetsKeepEveryCharacter()
    {
        TestDatabase t;
        ClientEditor editor(t.db());
        QVERIFY(editor.open(0));
        editor.client().Title = "Dr";
        editor.client().FirstName = "Siobhán \"Shiv\"";
        editor.client().Surname = "O'Brien_100%";
        editor.client().Company = "Ωmega Τουρισμός; drop table client;--";
        editor.extras().push_back({0, "O", "Jürgen's 50% \"share\""});
        Answers answers;
        const auto saved = editor.save(answers);
        QVERIFY(saved->saved);
        ClientEditor reopened(t.db());
        QVERIFY(reopened.open(saved->NewClientID));
        QCOMPARE(reopened.client().FirstName, QString("Siobhán \"Shiv\""));
        QCOMPARE(reopened.client().Surname, QString("O'Brien_100%"));
        QCOMPARE(reopened.client().Company, QString("Ωmega Τουρισμός; drop table client;--"));
        QCOMPARE(reopened.extras().front().FieldValue, QString("Jürgen's 50% \"share\""));
        QCOMPARE(saved->FullName, QString("Dr Siobhán \"Shiv\" O'Brien_100% @ Ωmega Τουρισμός; drop table client;--"));
    }

    void unknownExtraTypeIsRefused()
    {
        TestDatabase t;
        ClientEditor editor(t.db());
        QVERIFY(editor.open(0));
        editor.extras().push_back({0, "Z", "value"});
        Answers answers;
        QCOMPARE(editor.save(answers).refusal().id(), 6948);
        QCOMPARE(clientCount(t.db()), 0);
        // An empty row of any type is simply left out.
        editor.extras().back().FieldValue.clear();
        QVERIFY(editor.save(answers)->saved);
    }

    void companyTakenOverSaysWhenTheRateSheetMoves()
    {
        TestDatabase t;
        ClientEditor editor(t.db());
        QVERIFY(editor.open(0));
        editor.client().BBRateSheetID = 3;
        CompanyDetails acme{"Acme", "021 555", "1 Main Rd", "Cape Town", "4123456789", 3};
        QVERIFY(!editor.takeCompany(acme));
        acme.BBRateSheetID = 5;
        QVERIFY(editor.takeCompany(acme));
        QCOMPARE(editor.client().BBRateSheetID, qint16(5));
        QCOMPARE(editor.client().Add2, QString("Cape Town"));
        QCOMPARE(editor.client().VatNo, QString("4123456789"));
        QCOMPARE(editor.client().PhoneNo, QString("021 555"));
    }

    void malformedEmailOrVatNumberWarns_data()
    {
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("vat");
        QTest::addColumn<int>("warnings");
        QTest::newRow("both good") << "sam@example.org" << "GB 123 4567 89" << 0;
        QTest::newRow("both empty") << "" << "" << 0;
        QTest::newRow("two addresses") << "sam@example.org; accounts@acme.co.za" << "4123456789" << 0;
        QTest::newRow("no at sign") << "sam.example.org" << "" << 1;
        QTest::newRow("no domain dot") << "sam@localhost" << "" << 1;
        QTest::newRow("two at signs") << "sam@@example.org" << "" << 1;
        QTest::newRow("vat of words") << "" << "N/A" << 1;
        QTest::newRow("vat with symbols") << "" << "41234#6789" << 1;
        QTest::newRow("vat too short") << "" << "123" << 1;
        QTest::newRow("both wrong") << "x@" << "abc" << 2;
    }

    void malformedEmailOrVatNumberWarns()
    {
        QFETCH(QString, email);
        QFETCH(QString, vat);
        QFETCH(int, warnings);
        Client c;
        c.Email = email;
        c.VatNo = vat;
        QCOMPARE(clientDetailWarnings(c).size(), warnings);
    }

    void failingWriteMidwayLeavesTheClientAsItWas()
    {
        TestDatabase t;
        const qint32 id = addPerson(t.db(), "Sam", "Smith");
        addExtra(t.db(), id, "P", "1");
        t.db().execute("create trigger fail_extra before insert on clientextra when new.FieldValue = 'boom' "
                       "begin select raise(abort, 'disk full'); end");
        ClientEditor editor(t.db());
        QVERIFY(editor.open(id));
        editor.client().FirstName = "Samuel";
        editor.extras()[0].FieldValue.clear();
        editor.extras().push_back({0, "F", "boom"});
        const int logRows = ChangeLog::count(t.db());
        Answers answers;
        QVERIFY_THROWS_EXCEPTION(DatabaseError, (void)editor.save(answers));
        QCOMPARE(t.db().transactionDepth(), 0);
        QCOMPARE(t.db().scalar("select firstname from client where bbclientid = ?", {id}).toString(), QString("Sam"));
        QCOMPARE(storedExtras(t.db(), id), QStringList{"P=1"});
        QCOMPARE(ChangeLog::count(t.db()), logRows);
    }
};

QTEST_GUILESS_MAIN(TestClientEditor)
#include "test_clienteditor.moc"

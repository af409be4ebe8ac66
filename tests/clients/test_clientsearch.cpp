#include "clients/clientrecords.h"
#include "clients/clientsearch.h"
#include "clients/clientsearchmodel.h"
#include "support/testdatabase.h"

#include <QAbstractItemModelTester>
#include <QtTest>

using namespace fenlark;

namespace {

qint32 addClient(Database &db, const QString &type, const QString &first, const QString &surname, const QString &company,
                 const QString &phone = {}, const QString &email = {}, const QString &active = "Y")
{
    Client c;
    c.ClientType = type;
    c.FirstName = first;
    c.Surname = surname;
    c.Company = company;
    c.PhoneNo = phone;
    c.Email = email;
    c.Active = active;
    c.update(db);
    return c.BBClientID;
}

QList<qint32> ids(Database &db, const ClientSearchCriteria &criteria)
{
    QList<qint32> found;
    for (const ClientSearchRow &row : searchClients(db, criteria))
        found << row.BBClientID;
    return found;
}

// Sam Smith (1), Ann Smyth (2), Acme Travel (3), retired Sid Smith (4),
// Bob Smith of Acme (5), Samuel Jones (6).
struct People {
    explicit People(Database &db)
    {
        sam = addClient(db, "I", "Sam", "Smith", "", "555", "sam@x");
        ann = addClient(db, "I", "Ann", "Smyth", "", "", "ann@x");
        acme = addClient(db, "T", "", "", "Acme Travel", "021", "info@acme");
        retired = addClient(db, "I", "Sid", "Smith", "", "", "", "N");
        bob = addClient(db, "I", "Bob", "Smith", "Acme", "", "bob@acme");
        samuel = addClient(db, "I", "Samuel", "Jones", "");
    }
    qint32 sam, ann, acme, retired, bob, samuel;
};

} // namespace

class TestClientSearch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void combinationsAndOrder()
    {
        TestDatabase t;
        People p(t.db());
        QCOMPARE(ids(t.db(), {"", "sm", "", ""}), (QList<qint32>{p.bob, p.ann, p.sam}));
        QCOMPARE(ids(t.db(), {"", "SMITH", "", ""}), (QList<qint32>{p.bob, p.sam}));
        QCOMPARE(ids(t.db(), {"sam", "", "", ""}), (QList<qint32>{p.samuel, p.sam}));
        QCOMPARE(ids(t.db(), {"sam", "s", "", ""}), (QList<qint32>{p.sam}));
        QCOMPARE(ids(t.db(), {"", "smith", "acme", ""}), (QList<qint32>{p.bob}));
        QCOMPARE(ids(t.db(), {"", "", "acme", ""}), (QList<qint32>{p.bob, p.acme}));
        QCOMPARE(ids(t.db(), {"", "", "", QString::number(p.ann)}), (QList<qint32>{p.ann}));
        QCOMPARE(ids(t.db(), {"", "smith", "", QString::number(p.ann)}), QList<qint32>{});
        // A prefix, not a part anywhere in the name.
        QCOMPARE(ids(t.db(), {"", "mith", "", ""}), QList<qint32>{});
    }

    void retiredClientIsNeverFound()
    {
        TestDatabase t;
        People p(t.db());
        QVERIFY(!ids(t.db(), {"", "smith", "", ""}).contains(p.retired));
        QVERIFY(!ids(t.db(), {"sid", "", "", ""}).contains(p.retired));
        QCOMPARE(ids(t.db(), {"", "", "", QString::number(p.retired)}), QList<qint32>{});
    }

    void emptyBoxesRunNoQuery()
    {
        QVERIFY(clientSearchStatement({}).sql.isEmpty());
        QVERIFY(ClientSearchCriteria{}.isEmpty());
        TestDatabase t;
        People p(t.db());
        QVERIFY(searchClients(t.db(), {}).empty());
    }

    void badIdBoxFindsNothingWithoutError_data()
    {
        QTest::addColumn<QString>("idBox");
        QTest::newRow("letters") << "12a";
        QTest::newRow("beyond 32 bits") << "4294967297";
        QTest::newRow("just beyond the top") << "2147483648";
        QTest::newRow("quote") << "1'";
        QTest::newRow("statement") << "1 or 1=1";
    }

    void badIdBoxFindsNothingWithoutError()
    {
        QFETCH(QString, idBox);
        TestDatabase t;
        People p(t.db());
        QVERIFY(searchClients(t.db(), {"", "smith", "", idBox}).empty());
        QVERIFY(searchClients(t.db(), {"", "", "", idBox}).empty());
    }

    void rowTexts_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("phone");
        QTest::addColumn<QString>("company");
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("text");
        QTest::newRow("individual with everything hides the e-mail") << "I" << "555" << "Acme" << "s@x" << "Sam Smith - 555 / Acme";
        QTest::newRow("individual without company shows the e-mail") << "I" << "555" << "" << "s@x" << "Sam Smith - 555 / s@x";
        QTest::newRow("individual, name only") << "I" << "" << "" << "" << "Sam Smith";
        QTest::newRow("individual, company only") << "I" << "" << "Acme" << "" << "Sam Smith / Acme";
        QTest::newRow("company with everything") << "C" << "555" << "Acme" << "s@x" << "Acme - 555 / s@x";
        QTest::newRow("travel agent, no phone") << "T" << "" << "Acme" << "s@x" << "Acme / s@x";
        QTest::newRow("tour operator, bare") << "O" << "" << "Acme" << "" << "Acme";
        QTest::newRow("unknown type is not an individual") << "" << "" << "Acme" << "" << "Acme";
    }

    void rowTexts()
    {
        QFETCH(QString, type);
        QFETCH(QString, phone);
        QFETCH(QString, company);
        QFETCH(QString, email);
        QFETCH(QString, text);
        ClientSearchRow row;
        row.ClientType = type;
        row.FirstName = "Sam";
        row.Surname = "Smith";
        row.Company = company;
        row.PhoneNo = phone;
        row.Email = email;
        QCOMPARE(row.text(), text);
        QCOMPARE(row.shortName(), QString("Smi"));
        row.FirstName = "";
        if (type == "I")
            QCOMPARE(row.text().left(5), QString("Smith"));
    }

    void typedTextIsBoundAndWildcardsWork()
    {
        TestDatabase t;
        const qint32 obrien = addClient(t.db(), "I", "Pat", "O'Brien", "");
        const qint32 quoted = addClient(t.db(), "I", "Al", "\"Big\" Al", "");
        const qint32 percent = addClient(t.db(), "C", "", "", "100% Tours");
        const qint32 under = addClient(t.db(), "C", "", "", "A_B Ltd");
        const qint32 aXb = addClient(t.db(), "C", "", "", "AXB Ltd");
        const QString longName = QString(3000, QChar('L'));
        const qint32 longOne = addClient(t.db(), "I", "", longName, "");
        const qint32 cyrillic = addClient(t.db(), "I", QString::fromUtf8("Мария"), QString::fromUtf8("Иванова"), "");
        const qint32 han = addClient(t.db(), "I", "", QString::fromUtf8("王小明"), "");

        QCOMPARE(ids(t.db(), {"", "o'b", "", ""}), QList<qint32>{obrien});
        QCOMPARE(ids(t.db(), {"", "\"big", "", ""}), QList<qint32>{quoted});
        QCOMPARE(ids(t.db(), {"", "\"", "", ""}), QList<qint32>{quoted});
        QCOMPARE(ids(t.db(), {"", "'", "", ""}), QList<qint32>{});
        // "%" and "_" keep acting as wildcards.
        QCOMPARE(ids(t.db(), {"", "", "100%", ""}), QList<qint32>{percent});
        QCOMPARE(ids(t.db(), {"", "", "a_b", ""}), (QList<qint32>{aXb, under}));
        QCOMPARE(ids(t.db(), {"", "", "%tours", ""}), QList<qint32>{percent});
        QCOMPARE(ids(t.db(), {"", longName.left(2500), "", ""}), QList<qint32>{longOne});
        QCOMPARE(ids(t.db(), {"", longName + "x", "", ""}), QList<qint32>{});
        QCOMPARE(ids(t.db(), {QString::fromUtf8("Мар"), QString::fromUtf8("Ив"), "", ""}), QList<qint32>{cyrillic});
        QCOMPARE(ids(t.db(), {"", QString::fromUtf8("王"), "", ""}), QList<qint32>{han});
        const auto rows = searchClients(t.db(), {"", QString::fromUtf8("王"), "", ""});
        QCOMPARE(rows.front().shortName(), QString::fromUtf8("王小明"));
        // The table is still whole after all that.
        QCOMPARE(t.db().scalar("select count(*) from client").toInt(), 8);
    }

    // Stored name, what is typed, and whether it is found; in the box given.
    void namesAreFoundWhateverTheirCaseInEveryAlphabet_data()
    {
        QTest::addColumn<int>("box");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("found");
        const auto u = [](const char *text) { return QString::fromUtf8(text); };
        QTest::newRow("Spanish surname, small letters typed") << 1 << u("Ñúñez") << u("ñú") << true;
        QTest::newRow("Spanish surname, capitals typed") << 1 << u("ñúñez") << u("ÑÚÑ") << true;
        QTest::newRow("French first name") << 0 << u("Émile") << u("émile") << true;
        QTest::newRow("first name stored in capitals") << 0 << u("ÉMILE") << u("Émi") << true;
        QTest::newRow("decomposed accent in the stored name") << 0 << u("E\u0301mile") << u("émi") << true;
        QTest::newRow("decomposed accent typed") << 0 << u("Émile") << u("e\u0301m") << true;
        QTest::newRow("German") << 1 << u("Müller") << u("MÜL") << true;
        QTest::newRow("Cyrillic") << 1 << u("Иванова") << u("иван") << true;
        QTest::newRow("Greek") << 1 << u("Σοφία") << u("σοφ") << true;
        QTest::newRow("company") << 2 << u("Ñandú Tours") << u("ñandú t") << true;
        QTest::newRow("ASCII as before") << 1 << u("Smith") << u("SMI") << true;
        QTest::newRow("wildcard between folded letters") << 1 << u("Ñúñez") << u("ñ_ñ") << true;
        // Case is folded, accents are not dropped.
        QTest::newRow("accent still counts") << 0 << u("Émile") << u("emi") << false;
        QTest::newRow("still a prefix") << 1 << u("Ñúñez") << u("úñ") << false;
    }

    void namesAreFoundWhateverTheirCaseInEveryAlphabet()
    {
        QFETCH(int, box);
        QFETCH(QString, stored);
        QFETCH(QString, typed);
        QFETCH(bool, found);
        TestDatabase t;
        QString names[3];
        names[box] = stored;
        const qint32 id = addClient(t.db(), box == 2 ? "C" : "I", names[0], names[1], names[2]);
        addClient(t.db(), "I", "Other", "Other", "Other");
        ClientSearchCriteria criteria;
        QString *boxes[] = {&criteria.firstName, &criteria.surname, &criteria.company};
        *boxes[box] = typed;
        QCOMPARE(ids(t.db(), criteria), found ? QList<qint32>{id} : QList<qint32>{});
    }

    // Whoever writes the client (the record, plain SQL as the synchronisation
    // writes), the folded names follow: renamed, retired, back, deleted.
    void foldedNamesFollowEveryWriteOfAClient()
    {
        TestDatabase t;
        const qint32 id = addClient(t.db(), "I", "Ana", QString::fromUtf8("Ñúñez"), "");
        const ClientSearchCriteria nunez{"", QString::fromUtf8("ñúñ"), "", ""};
        const ClientSearchCriteria oliveira{"", "oli", "", ""};
        QCOMPARE(ids(t.db(), nunez), QList<qint32>{id});

        Client client;
        QVERIFY(client.fetch(t.db(), id));
        client.Surname = QString::fromUtf8("OLIVEIRA");
        client.update(t.db());
        QCOMPARE(ids(t.db(), nunez), QList<qint32>{});
        QCOMPARE(ids(t.db(), oliveira), QList<qint32>{id});

        t.db().execute("update client set Active = 'N' where BBClientID = ?", {id});
        QCOMPARE(ids(t.db(), oliveira), QList<qint32>{});
        t.db().execute("update client set Active = 'Y', Surname = ? where BBClientID = ?", {QString::fromUtf8("Ñúñez"), id});
        QCOMPARE(ids(t.db(), nunez), QList<qint32>{id});

        t.db().execute("insert into client (BBClientID, Surname, Active) values (900, ?, 'Y')", {QString::fromUtf8("ÑÚÑO")});
        QCOMPARE(ids(t.db(), nunez), (QList<qint32>{900, id}));
        t.db().execute("delete from client where BBClientID = ?", {id});
        QCOMPARE(ids(t.db(), nunez), QList<qint32>{900});
        QCOMPARE(t.db().scalar("select count(*) from clientfold").toInt(), 1);
    }

    void prefixSearchUsesTheFoldedNameIndexes_data()
    {
        QTest::addColumn<int>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("index");
        QTest::newRow("first name") << 0 << "abc" << "clientfold_firstname";
        QTest::newRow("surname") << 1 << "abc" << "clientfold_surname";
        QTest::newRow("company") << 2 << "abc" << "clientfold_company";
        QTest::newRow("surname beyond ASCII") << 1 << QString::fromUtf8("ÑÚ") << "clientfold_surname";
        QTest::newRow("wildcard after the prefix") << 1 << "a_c" << "clientfold_surname";
    }

    void prefixSearchUsesTheFoldedNameIndexes()
    {
        QFETCH(int, box);
        QFETCH(QString, typed);
        QFETCH(QString, index);
        TestDatabase t;
        for (int i = 0; i < 50; ++i)
            addClient(t.db(), "I", QString("F%1").arg(i), QString("S%1").arg(i), QString("C%1").arg(i));
        ClientSearchCriteria criteria;
        QString *boxes[] = {&criteria.firstName, &criteria.surname, &criteria.company};
        *boxes[box] = typed;
        const ClientSearchStatement statement = clientSearchStatement(criteria);
        QSqlQuery plan = t.db().query("explain query plan " + statement.sql, statement.values);
        QString details;
        while (plan.next())
            details += plan.value(3).toString() + "\n";
        // The index is used, and covers the query: no client row is read.
        QVERIFY2(details.contains("USING COVERING INDEX " + index), qPrintable(details));
        QVERIFY2(!details.contains("SCAN"), qPrintable(details));
    }

    void tidyNameRaisesOnlyTheFirstLetter()
    {
        QCOMPARE(tidyName("sam"), QString("Sam"));
        QCOMPARE(tidyName("mcDONALD"), QString("McDONALD"));
        QCOMPARE(tidyName(""), QString(""));
        QCOMPARE(tidyName(QString::fromUtf8("élodie")), QString::fromUtf8("Élodie"));
    }

    void modelReadsRowsBeyondTheFirstPage()
    {
        TestDatabase t;
        for (int i = 0; i < 200; ++i)
            addClient(t.db(), "I", "Ann", QString("Lee%1").arg(i), "", QString::number(i));
        ClientSearchModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.search(t.db(), {"", "lee", "", ""});
        QCOMPARE(model.rowCount(), 200);
        QCOMPARE(model.index(199, 1).data().toString(), QString("Ann Lee0 - 0"));
        QCOMPARE(model.index(0, 1).data().toString(), QString("Ann Lee199 - 199"));
        QCOMPARE(model.index(130, 2).data().toString(), QString("Lee"));
        // A client deleted after the search keeps its line, without text.
        t.db().execute("delete from client where surname = 'Lee100'");
        QCOMPARE(model.index(99, 1).data().toString(), QString());
        QCOMPARE(model.index(99, 0).data().toInt(), model.clientId(99));
    }
};

QTEST_GUILESS_MAIN(TestClientSearch)
#include "test_clientsearch.moc"

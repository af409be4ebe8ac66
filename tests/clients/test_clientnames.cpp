#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "shell/changelog.h"
#include "shell/messages.h"
#include "shell/strings.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

namespace {

class RecordingSink : public MessageSink {
public:
    void show(const UserMessage &message) override { shown.push_back(message); }
    bool ask(const UserMessage &message) override
    {
        shown.push_back(message);
        return false;
    }
    std::vector<UserMessage> shown;
};

} // namespace

class TestClientNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { messages::setSink(nullptr); StringTable::instance().setLanguage(EnglishLanguage); }

    void fullName_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("surname");
        QTest::addColumn<QString>("company");
        QTest::addColumn<QString>("full");
        QTest::newRow("everything") << "Mr" << "Sam" << "Smith" << "Acme" << "Mr Sam Smith @ Acme";
        QTest::newRow("company only") << "" << "" << "" << "Acme" << "Acme";
        QTest::newRow("nothing") << "" << "" << "" << "" << "<Blank>";
        QTest::newRow("blanks only") << "  " << " " << "  " << "" << "<Blank>";
        QTest::newRow("first name without surname keeps its blank") << "" << "Jo" << "" << "X" << "Jo  @ X";
        QTest::newRow("title without first name leaves two blanks") << "Mr" << "" << "Smith" << "" << "Mr  Smith";
        QTest::newRow("surname alone") << "" << "" << "Smith" << "" << "Smith";
        QTest::newRow("parts are trimmed") << " Dr " << " Ann " << " Lee " << "" << "Dr Ann Lee";
        QTest::newRow("company is taken as it stands") << "" << "Ann" << "Lee" << " Acme " << "Ann Lee @  Acme ";
        QTest::newRow("non-Latin") << "" << QString::fromUtf8("Мария") << QString::fromUtf8("王") << ""
                                   << QString::fromUtf8("Мария 王");
    }

    void fullName()
    {
        QFETCH(QString, title);
        QFETCH(QString, first);
        QFETCH(QString, surname);
        QFETCH(QString, company);
        QFETCH(QString, full);
        QCOMPARE(clientName(title, first, surname, company), full);
        Client c;
        c.Title = title;
        c.FirstName = first;
        c.Surname = surname;
        c.Company = company;
        QCOMPARE(c.FullName(), full);
    }

    void displayAndShortName_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("surname");
        QTest::addColumn<QString>("company");
        QTest::addColumn<QString>("display");
        QTest::addColumn<QString>("shortName");
        QTest::newRow("surname first") << "Sam" << "Smith" << "Acme" << "Smith" << "Smi";
        QTest::newRow("short surname is not padded") << "" << "Li" << "" << "Li" << "Li";
        QTest::newRow("first name next") << "Jo" << "" << "X" << "Jo" << "Jo";
        QTest::newRow("company last") << "" << "" << "Acme" << "Acme" << "Acm";
        QTest::newRow("nothing") << "" << "" << "" << "???" << "???";
        QTest::newRow("non-Latin") << "" << QString::fromUtf8("Достоевский") << "" << QString::fromUtf8("Достоевский")
                                   << QString::fromUtf8("Дос");
    }

    void displayAndShortName()
    {
        QFETCH(QString, first);
        QFETCH(QString, surname);
        QFETCH(QString, company);
        QFETCH(QString, display);
        QFETCH(QString, shortName);
        QCOMPARE(getDisplayName(first, surname, company), display);
        QCOMPARE(getShortName(first, surname, company), shortName);
    }

    void missingClientIsNamedAndReported()
    {
        TestDatabase t;
        RecordingSink sink;
        messages::setSink(&sink);
        QCOMPARE(getClientName(t.db(), 42), QString("Unknown client - ID 42"));
        QCOMPARE(sink.shown.size(), std::size_t(1));
        QCOMPARE(sink.shown[0].kind, UserMessage::Critical);
        QCOMPARE(sink.shown[0].title, QString("Missing client information"));
        QCOMPARE(sink.shown[0].text, QString("Could not find client (42). Please call veldmoor to see why this might happen."));

        Client c;
        c.Title = "Ms";
        c.Surname = "O'Neil";
        c.update(t.db());
        QCOMPARE(getClientName(t.db(), c.BBClientID), QString("Ms  O'Neil"));
        QCOMPARE(sink.shown.size(), std::size_t(1));
    }

    void clientRoundTripsAsTyped()
    {
        TestDatabase t;
        Client c;
        c.ClientID = 12;
        c.DateCreated = QDateTime(QDate(2026, 1, 5), QTime(8, 30, 1));
        c.CreatedOn = "P";
        c.ClientType = "T";
        c.Title = "Dr";
        c.FirstName = QString::fromUtf8("Zoë \"Z\"");
        c.Surname = QString::fromUtf8("O'Brien 100% 王");
        c.Company = "Under_score & Co";
        c.PhoneNo = "+27 21 555";
        c.Email = "z@example.org";
        c.Notes = QString(20000, QChar('n')) + "\nline two";
        c.BBRateSheetID = 4;
        c.Add1 = "1 Long Rd";
        c.Add2 = QString::fromUtf8("Ελλάδα");
        c.VatNo = "VAT-9";
        c.Active = "Y";
        c.update(t.db());
        QCOMPARE(ChangeLog::entries(t.db()).front().TableName, QString("client"));
        Client back;
        QVERIFY(back.fetch(t.db(), c.BBClientID));
        for (const auto &col : Client::columns())
            QVERIFY2(recorddetail::toSql(back, col) == recorddetail::toSql(c, col), col.name);
    }

    void extrasAreReadInTheSortOrderAndUnsortedTypesHidden()
    {
        TestDatabase t;
        // An order of the test's own in place of the one the program ships.
        t.db().execute("delete from clientxsort");
        t.db().execute("insert into clientxsort (fieldtype, orderby) values ('F', 2), ('P', 1), ('N', 3)");
        const auto add = [&](const char *type, const char *value) {
            ClientExtra e;
            e.BBClientID = 5;
            e.FieldType = type;
            e.FieldValue = value;
            e.update(t.db());
            return e.BBClientExtraID;
        };
        add("N", "ZA");
        add("F", "021 2");
        add("P", "555 9");
        add("P", "555 1");
        add("X", "hidden");
        ClientExtra other;
        other.BBClientID = 6;
        other.FieldType = "P";
        other.FieldValue = "other client";
        other.update(t.db());
        QStringList seen;
        for (const ClientExtra &e : ClientExtra::forClient(t.db(), 5))
            seen << e.FieldType + ":" + e.FieldValue;
        QCOMPARE(seen, (QStringList{"P:555 1", "P:555 9", "F:021 2", "N:ZA"}));
        QCOMPARE(getClientExtra(t.db(), 5, "F"), QString("021 2"));
        QCOMPARE(getClientExtra(t.db(), 5, "X"), QString("hidden"));
        QCOMPARE(getClientExtra(t.db(), 5, "C"), QString());
        QCOMPARE(getClientExtra(t.db(), 5, "\"P\" or 1=1"), QString());
    }

    void deletingAClientsExtrasLogsEachDeletion()
    {
        TestDatabase t;
        std::vector<qint32> keys;
        for (const char *value : {"a", "b", "c"}) {
            ClientExtra e;
            e.BBClientID = 9;
            e.FieldType = "O";
            e.FieldValue = value;
            e.update(t.db());
            keys.push_back(e.BBClientExtraID);
        }
        ClientExtra kept;
        kept.BBClientID = 10;
        kept.FieldType = "O";
        kept.update(t.db());
        ClientExtra::deleteForClient(t.db(), 9);
        QCOMPARE(t.db().scalar("select count(*) from clientextra").toInt(), 1);
        for (qint32 key : keys)
            QCOMPARE(t.db().scalar("select logtype from dblog where tablename = 'clientextra' and bbtableid = ?", {key}).toString(),
                     QString("D"));
        QCOMPARE(t.db().scalar("select logtype from dblog where tablename = 'clientextra' and bbtableid = ?", {kept.BBClientExtraID})
                     .toString(),
                 QString("U"));
    }
};

QTEST_GUILESS_MAIN(TestClientNames)
#include "test_clientnames.moc"

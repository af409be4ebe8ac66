#include "shell/security.h"
#include "shell/setuprecords.h"
#include "support/testdatabase.h"
#include "deskfixture.h"

#include <QtTest>

using namespace fenlark;

namespace {

class FakePrompt : public ReasonPrompt {
public:
    std::optional<QString> answer;
    QString prompt, title;
    std::optional<QString> askReason(const QString &p, const QString &t) override
    {
        prompt = p;
        title = t;
        return answer;
    }
};

void setUpProperty(Database &db, const QString &password, const QString &wvPassword)
{
    BBSetup s;
    s.BBID = 12345;
    s.Password = password;
    s.WVPassword = wvPassword;
    s.update(db);
}

} // namespace

class TestSecurity : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void propertyLogOnChecksInOrder_data()
    {
        QTest::addColumn<QString>("bbid");
        QTest::addColumn<QString>("password");
        QTest::addColumn<int>("problem");
        QTest::addColumn<int>("message");
        QTest::newRow("letters") << "abc" << "" << int(PropertyLogin::BBIDNotNumeric) << 5102;
        QTest::newRow("empty") << "" << "pw" << int(PropertyLogin::BBIDNotNumeric) << 5102;
        QTest::newRow("decimal") << "12345.5" << "pw" << int(PropertyLogin::BBIDNotNumeric) << 5102;
        QTest::newRow("9999") << "9999" << "" << int(PropertyLogin::BBIDOutOfRange) << 5104;
        QTest::newRow("32768") << "32768" << "pw" << int(PropertyLogin::BBIDOutOfRange) << 5104;
        QTest::newRow("negative") << "-10000" << "pw" << int(PropertyLogin::BBIDOutOfRange) << 5104;
        QTest::newRow("no password") << "10000" << "" << int(PropertyLogin::PasswordEmpty) << 5106;
        QTest::newRow("lowest") << "10000" << "pw" << int(PropertyLogin::NoProblem) << 0;
        QTest::newRow("highest") << "32767" << "p\"w'" << int(PropertyLogin::NoProblem) << 0;
    }

    void propertyLogOnChecksInOrder()
    {
        QFETCH(QString, bbid);
        QFETCH(QString, password);
        QFETCH(int, problem);
        QFETCH(int, message);
        RecordingSink sink;
        PropertyLogin::Problem found = PropertyLogin::NoProblem;
        QCOMPARE(PropertyLogin::validate(bbid, password, &found), problem == PropertyLogin::NoProblem);
        QCOMPARE(int(found), problem);
        QCOMPARE(sink.shownIds(), message == 0 ? QList<int>() : QList<int>{message});
    }

    void bindingAnEmptyDatabaseCreatesTheSetupRow()
    {
        TestDatabase t;
        PropertyLogin::bindProperty(t.db(), 23456, "Se\"cret'");
        BBSetup s;
        QVERIFY(s.fetch(t.db()));
        QCOMPARE(int(s.BBID), 23456);
        QCOMPARE(s.Password, QString("Se\"cret'"));
        QCOMPARE(s.BBName, QString("Fetching..."));
        QCOMPARE(s.CurrencyCode, QString("ZAR"));
        PropertyLogin::bindProperty(t.db(), 23457, "other");
        QCOMPARE(t.db().scalar("select count(*) from bbsetup").toInt(), 1);
        QVERIFY(s.fetch(t.db()));
        QCOMPARE(s.BBName, QString("Fetching..."));
        QCOMPARE(int(s.BBID), 23457);
    }

    void userListPutsAdminFirstThenNamesAsPeopleSortThem()
    {
        TestDatabase t;
        QVERIFY(UserLogin::userList(t.db()).empty());
        t.db().execute("insert into vmuser values(7, 'Zed', 'z', 0)");
        t.db().execute("insert into vmuser values(3, 'bob', 'b', 0)");
        t.db().execute("insert into vmuser values(5, ?, 'e', 0)", {QString::fromUtf8("Émile")});
        t.db().execute("insert into vmuser values(9, 'Anne', 'a', 0)");
        const auto list = UserLogin::userList(t.db());
        QStringList names;
        for (const auto &[name, id] : list)
            names << name;
        QCOMPARE(names, QStringList({"admin", "Anne", "bob", QString::fromUtf8("Émile"), "Zed"}));
        QCOMPARE(list[0].second, 0);
        QCOMPARE(list[4].second, 7);
    }

    void adminOpensWithPasswordOrSecondPassword_data()
    {
        QTest::addColumn<QString>("wv");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("ok");
        QTest::newRow("server password") << "" << "Main\"pw" << true;
        QTest::newRow("wrong case") << "" << "main\"pw" << false;
        QTest::newRow("empty typed, empty second") << "" << "" << false;
        QTest::newRow("second password") << "desk2" << "desk2" << true;
        QTest::newRow("main still opens") << "desk2" << "Main\"pw" << true;
        QTest::newRow("prefix") << "desk2" << "desk" << false;
        QTest::newRow("longer") << "desk2" << "desk22" << false;
    }

    void adminOpensWithPasswordOrSecondPassword()
    {
        QFETCH(QString, wv);
        QFETCH(QString, typed);
        QFETCH(bool, ok);
        TestDatabase t;
        setUpProperty(t.db(), "Main\"pw", wv);
        const auto user = UserLogin::authenticate(t.db(), 0, typed);
        QCOMPARE(user.has_value(), ok);
        if (ok) {
            QCOMPARE(user->UserName, QString("admin"));
            QVERIFY(!user->CancelBooking);
            QVERIFY(isAllowed(*user, SecurityAction::AdminOnly));
        }
    }

    void userTakesTheRightsOfTheirGroup()
    {
        TestDatabase t;
        setUpProperty(t.db(), "pw", "");
        t.db().execute("insert into vmgroup values(2, 'Desk', 1, 0, 1, 0, 1)");
        t.db().execute("insert into vmuser values(5, 'mary', 'It''s \"me\"', 2)");
        t.db().execute("insert into vmuser values(6, 'nogroup', 'x', 0)");
        t.db().execute("insert into vmuser values(8, 'lostgroup', 'x', 99)");
        QVERIFY(!UserLogin::authenticate(t.db(), 5, "it's \"me\""));
        QVERIFY(!UserLogin::authenticate(t.db(), 5, "pw"));
        const auto mary = UserLogin::authenticate(t.db(), 5, "It's \"me\"");
        QVERIFY(mary);
        QCOMPARE(mary->UserID, 5);
        QCOMPARE(mary->UserName, QString("mary"));
        QVERIFY(mary->CancelBooking && !mary->CancelRoom && mary->RunReports && !mary->ExtrasDelete && mary->PaymentsDelete);
        for (qint32 id : {6, 8}) {
            const auto u = UserLogin::authenticate(t.db(), id, "x");
            QVERIFY(u);
            QVERIFY(!u->CancelBooking && !u->CancelRoom && !u->RunReports && !u->ExtrasDelete && !u->PaymentsDelete);
        }
        QVERIFY(!UserLogin::authenticate(t.db(), 42, "x"));
    }

    void permissionByActionAndByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("action");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("admin options") << "admin" << 0 << true;
        QTest::newRow("user options") << "mary" << 0 << false;
        QTest::newRow("cancel booking") << "mary" << 1 << true;
        QTest::newRow("cancel room") << "mary" << 2 << false;
        QTest::newRow("reports") << "mary" << 3 << true;
        QTest::newRow("extras") << "mary" << 4 << false;
        QTest::newRow("payments") << "mary" << 5 << true;
        QTest::newRow("Admin is not admin") << "Admin" << 2 << false;
        QTest::newRow("admin without rights") << "admin" << 4 << true;
    }

    void permissionByActionAndByName()
    {
        QFETCH(QString, name);
        QFETCH(int, action);
        QFETCH(bool, allowed);
        UserStruct u;
        u.UserName = name;
        if (name == "mary") {
            u.CancelBooking = true;
            u.RunReports = true;
            u.PaymentsDelete = true;
        }
        RecordingSink sink;
        QCOMPARE(checkPermission(u, SecurityAction(action)), !allowed);
        QCOMPARE(sink.shownIds(), allowed ? QList<int>() : QList<int>{5100});
    }

    void constantTimeCompareIsExact()
    {
        QVERIFY(passwordsEqual("", ""));
        QVERIFY(passwordsEqual("Ab\"c", "Ab\"c"));
        QVERIFY(!passwordsEqual("abc", "abC"));
        QVERIFY(!passwordsEqual("abc", QString("abc") + QChar(0)));
        QVERIFY(!passwordsEqual("abc", "ab"));
        QVERIFY(!passwordsEqual("", "a"));
        QVERIFY(passwordsEqual(QString::fromUtf8("ñandú"), QString::fromUtf8("ñandú")));
    }

    void auditNoteCarriesTheReasonInBrackets()
    {
        TestDatabase t;
        UserStruct u;
        u.UserName = "mary";
        SecurityAudit audit;
        audit.User(u);
        QCOMPARE(audit.note("  Booking ID 12 "), QString("Booking ID 12 ()"));
        audit.setReason("  Rooms swapped ");
        QCOMPARE(audit.note("Guest IDs 4/5"), QString("Guest IDs 4/5 (Rooms swapped)"));
        audit.addAudit(t.db(), "Guest IDs 4/5");
        QSqlQuery q = t.db().query("select auditdate, UserName, Notes from audit");
        QVERIFY(q.next());
        QCOMPARE(q.value(1).toString(), QString("mary"));
        QCOMPARE(q.value(2).toString(), QString("Guest IDs 4/5 (Rooms swapped)"));
        QVERIFY(dateTimeFromSql(q.value(0)).secsTo(QDateTime::currentDateTime()) < 60);
        QCOMPARE(t.db().scalar("select count(*) from dblog").toInt(), 0);
    }

    void enterReasonStopsOnCancelOrEmpty()
    {
        FakePrompt prompt;
        SecurityAudit::setPrompt(&prompt);
        SecurityAudit audit;
        prompt.answer = std::nullopt;
        QVERIFY(!audit.enterReason());
        QCOMPARE(prompt.prompt, QString("Enter reason:"));
        QCOMPARE(prompt.title, QString("Enter reason"));
        prompt.answer = QString("   ");
        QVERIFY(!audit.enterReason());
        prompt.answer = QString("  guest asked ");
        QVERIFY(audit.enterReason());
        QCOMPARE(audit.note("Booking (ID 3) cancelled."), QString("Booking (ID 3) cancelled. (guest asked)"));
        SecurityAudit::setPrompt(nullptr);
        QVERIFY(!audit.enterReason());
    }
};

QTEST_GUILESS_MAIN(TestSecurity)
#include "test_security.moc"

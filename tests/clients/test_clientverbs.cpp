// fenlarkctl's client verbs, run as a script runs them: a separate process on
// a database file, JSON on stdout, a refusal on stderr with a non-zero exit and
// nothing written.
#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "support/clientfixture.h"
#include "support/databasedump.h"
#include "support/ctlrun.h"
#include "support/testdatabase.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace fenlark;

namespace {

} // namespace

class TestClientVerbs : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;

    Database &db() { return m_t->db(); }

    CtlRun ctl(const QStringList &arguments) { return runCtl(m_t->home(), db().path(), arguments); }

    QString snapshot() { return dumpDatabaseFile(m_t->db().path()); }

private Q_SLOTS:
    void initTestCase()
    {
        FENLARK_REQUIRE_CTL();
    }

    void init() { m_t = std::make_unique<TestDatabase>(); }

    void retirePrintsWhatMovedAndRefusalsWriteNothing()
    {
        const qint32 old = addPerson(db(), "Pat", "Old");
        const qint32 keeper = addPerson(db(), "Pat", "Keeper");
        const qint32 gone = addPerson(db(), "Pat", "Gone", {}, "N");
        Account a;
        a.InvoiceTo = old;
        a.update(db());
        Booking b;
        b.MadeBy = old;
        b.BBAccountID = a.BBAccountID;
        b.update(db());
        Guest g;
        g.BBBookingID = b.BBBookingID;
        g.BBClientID = keeper;
        g.BBClient2ID = old;
        g.update(db());

        const QString before = snapshot();
        for (const QStringList &refused : {QStringList{"--from", QString::number(old), "--into", QString::number(old)},
                                           QStringList{"--from", QString::number(old), "--into", QString::number(gone)},
                                           QStringList{"--from", "999", "--into", QString::number(keeper)},
                                           QStringList{"--from", QString::number(old), "--into", "x"}}) {
            const CtlRun run = ctl(QStringList{"client", "retire"} + refused);
            QVERIFY2(run.exitCode != 0, qPrintable(refused.join(' ')));
            QVERIFY(!run.errors.isEmpty());
            QVERIFY(run.json.isEmpty());
        }
        QCOMPARE(ctl({"client", "retire", "--from", QString::number(old), "--into", QString::number(old)}).errors,
                 QString("fenlarkctl: You have chosen the same client. Choose different clients."));
        QCOMPARE(snapshot(), before);

        const CtlRun run = ctl({"client", "retire", "--from", QString::number(old), "--into", QString::number(keeper)});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.json.value("booking").toInt(), 1);
        QCOMPARE(run.json.value("guestSecond").toInt(), 1);
        QCOMPARE(run.json.value("account").toInt(), 1);
        QCOMPARE(db().scalar("select active from client where bbclientid = ?", {old}).toString(), QString("N"));
    }

    void editAndExtrasSaveWhatWasGivenAndOnlyThat()
    {
        const qint32 id = addPerson(db(), "Pat", "Smith");
        CtlRun run = ctl({"client", "extras", "--id", QString::number(id), "--set", "P=021 1", "--set", "P=021 2", "--set", "N=Kenyan"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.json.value("extras").toArray().size(), 3);
        run = ctl({"client", "extras", "--id", QString::number(id), "--set", "P=021 9", "--set", "N="});
        QCOMPARE(run.exitCode, 0);
        const QJsonArray extras = run.json.value("extras").toArray();
        QCOMPARE(extras.size(), 1);
        QCOMPARE(extras.at(0).toObject().value("FieldValue").toString(), QString("021 9"));

        // A changed surname stays the same client unless the script says otherwise.
        run = ctl({"client", "edit", "--id", QString::number(id), "--field", "Surname=Smythe", "--field", "Email=pat@"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.errors.contains("pat@"));
        QCOMPARE(run.json.value("madeNew").toBool(), false);
        run = ctl({"client", "edit", "--id", QString::number(id), "--as-new", "--field", "Surname=Smit"});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.json.value("madeNew").toBool());
        QCOMPARE(run.json.value("extras").toArray().size(), 1);
        QCOMPARE(db().scalar("select surname from client where bbclientid = ?", {id}).toString(), QString("Smythe"));

        const QString before = snapshot();
        const QString huge(10000, QChar('x'));
        for (const QStringList &refused : {QStringList{"extras", "--id", QString::number(id), "--set", "P=" + huge},
                                           QStringList{"extras", "--id", QString::number(id), "--set", "Q=1"},
                                           QStringList{"edit", "--id", QString::number(id), "--field", "Shoe=9"},
                                           QStringList{"edit", "--id", QString::number(id), "--field", "ClientType=X"},
                                           QStringList{"edit", "--id", QString::number(id), "--field", "BBRateSheetID=77"},
                                           QStringList{"edit", "--id", "404", "--field", "Surname=Nobody"}}) {
            run = ctl(QStringList{"client"} + refused);
            QVERIFY2(run.exitCode != 0, qPrintable(refused.join(' ').left(60)));
            QVERIFY(!run.errors.isEmpty());
        }
        QCOMPARE(snapshot(), before);
    }

    void historyCompaniesAndSources()
    {
        const qint32 id = addPerson(db(), "Pat", "Guest");
        Client company;
        company.ClientType = "C";
        company.Company = "Karoo Adventures";
        company.PhoneNo = "023";
        company.update(db());
        Booking b;
        b.BookingType = "P";
        b.Source = "Webb";
        b.FromDate = QDate(2026, 6, 1);
        b.ToDate = QDate(2026, 6, 3);
        b.update(db());
        Guest g;
        g.BBBookingID = b.BBBookingID;
        g.BBClientID = company.BBClientID;
        g.BBClient2ID = id;
        g.update(db());

        CtlRun run = ctl({"client", "history", "--id", QString::number(id)});
        QCOMPARE(run.exitCode, 0);
        const QJsonObject row = run.json.value("bookings").toArray().at(0).toObject();
        QCOMPARE(row.value("booking").toInt(), b.BBBookingID);
        QCOMPARE(row.value("nights").toInt(), 2);
        QVERIFY(row.value("total").isNull());

        const QJsonArray rows = ctl({"companies", "--prefix", "kar"}).document.array();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.at(0).toObject().value("PhoneNo").toString(), QString("023"));

        run = ctl({"sources", "--rename", "Webb", "--to", "Web"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.json.value("renamed").toInt(), 1);
        QCOMPARE(run.json.value("sources").toArray().at(0).toObject().value("source").toString(), QString("Web"));
        run = ctl({"sources", "--rename", "Web"});
        QVERIFY(run.exitCode != 0);
        QVERIFY(run.errors.contains("Please select the item that replaces Web"));
    }
};

QTEST_GUILESS_MAIN(TestClientVerbs)
#include "test_clientverbs.moc"

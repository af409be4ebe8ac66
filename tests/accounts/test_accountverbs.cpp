// fenlarkctl's money verbs, run as a script runs them: a separate process on a
// database file, JSON on stdout, a refusal on stderr with a non-zero exit and
// nothing written.
#include "support/databasedump.h"
#include "support/ctlrun.h"
#include "support/moneyfixture.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

} // namespace

class TestAccountVerbs : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDatabase> m_t;
    qint32 m_client = 0;
    BookingMade m_booking;

    CtlRun ctl(const QStringList &arguments) { return runCtl(m_t->home(), m_t->db().path(), arguments); }

    QString account() const { return QString::number(m_booking.account); }

    // What a refused verb must leave as it was.
    QString snapshot() { return dumpDatabaseFile(m_t->db().path()); }

private Q_SLOTS:
    void initTestCase()
    {
        FENLARK_REQUIRE_CTL();
    }

    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        setUpProperty(m_t->db());
        m_client = addClient(m_t->db(), "Heron");
        m_booking = addBooking(m_t->db(), m_client, {1, 2}, Arrival, 2, 100);
    }

    void aScriptTakesExtrasPaymentsAndInvoicesAnAccount()
    {
        const CtlRun extra = ctl({"extra", "add", "--account", account(), "--stock", "1", "--qty", "2", "--price", "180"});
        QCOMPARE(extra.exitCode, 0);
        QCOMPARE(extra.json.value("BBGuestID").toInt(), m_booking.legs[0]);
        QCOMPARE(extra.json.value("total").toDouble(), 360.0);

        const CtlRun onRoom = ctl({"extra", "add", "--account", account(), "--stock", "2", "--qty", "1", "--price", "20",
                                "--booking", QString::number(m_booking.booking), "--room", "2", "--date", "2031-07-02"});
        QCOMPARE(onRoom.exitCode, 0);
        QCOMPARE(onRoom.json.value("BBGuestID").toInt(), m_booking.legs[1]);
        QCOMPARE(ctl({"extra", "list", "--account", account()}).document.array().size(), 2);

        const CtlRun paid = ctl({"payment", "add", "--account", account(), "--amount", "1,000.00", "--type", "0", "--reference", "EFT"});
        QCOMPARE(paid.exitCode, 0);
        QCOMPARE(paid.json.value("ledger").toObject().value("Amount").toDouble(), -1000.0);

        const CtlRun shown = ctl({"account", "show", "--account", account()});
        QCOMPARE(shown.exitCode, 0);
        QCOMPARE(shown.json.value("accommodation").toDouble(), 400.0);
        QCOMPARE(shown.json.value("extras").toDouble(), 380.0);
        QCOMPARE(shown.json.value("payments").toDouble(), 1000.0);
        QCOMPARE(shown.json.value("outstanding").toDouble(), -220.0);

        const CtlRun badNumber = ctl({"invoice", "--account", account(), "--first-number", "12.7"});
        QVERIFY(badNumber.exitCode != 0);
        QVERIFY(badNumber.errors.contains("This does not look like a valid number greater than 0"));

        const CtlRun invoice = ctl({"invoice", "--account", account()});
        QCOMPARE(invoice.exitCode, 0);   // the refused try spent number 1: this one is 2, unasked
        QCOMPARE(invoice.json.value("InvoiceNo").toInt(), 2);
        QCOMPARE(invoice.json.value("Amount").toDouble(), 780.0);
        QCOMPARE(invoice.json.value("VAT").toDouble(), 93.33);   // 400 + 360 at 14%, the water zero-rated

        const CtlRun ledger = ctl({"ledger", "--client", QString::number(m_client)});
        QCOMPARE(ledger.exitCode, 0);
        QCOMPARE(ledger.json.value("balance").toDouble(), -220.0);

        const QString tsv = m_t->file("statement.tsv");
        const CtlRun statement = ctl({"statement", "--client", QString::number(m_client), "--out", tsv});
        QCOMPARE(statement.exitCode, 0);
        QCOMPARE(statement.json.value("balance").toDouble(), -220.0);
        QFile file(tsv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("Statement for: Heron"));

        const CtlRun reopened = ctl({"account", "reopen", "--account", account()});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.json.value("creditNote").toInt(), 1);
        const CtlRun proforma = ctl({"proforma", "--account", account(), "--first-number", "70"});
        QCOMPARE(proforma.json.value("ProformaNo").toInt(), 70);
    }

    void refusedVerbsSayWhyAndWriteNothing_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");

        QTest::newRow("amount as text") << QStringList{"payment", "add", "--amount", "abc"} << "is not an amount";
        QTest::newRow("zero amount") << QStringList{"payment", "add", "--amount", "0.00"} << "Please type in an amount.";
        QTest::newRow("comma decimal") << QStringList{"payment", "add", "--amount", "12,5"} << "is not an amount";
        QTest::newRow("minus in a quantity") << QStringList{"extra", "add", "--stock", "1", "--qty", "-1", "--price", "5"}
                                             << "The quantity must be more than 0";
        QTest::newRow("no stock") << QStringList{"extra", "add", "--stock", "0", "--qty", "1", "--price", "5"}
                                  << "Please type in a description.";
        QTest::newRow("extra on a closed account") << QStringList{"extra", "add", "--stock", "1", "--qty", "1", "--price", "5", "--close"}
                                                   << "The parent account is closed";
        QTest::newRow("move from a closed account") << QStringList{"account", "move", "--close", "--to-client", "CLIENT"}
                                                    << "Cannot move item. This account is closed.";
        QTest::newRow("reopen an open account") << QStringList{"account", "reopen"} << "is already open";
        QTest::newRow("unknown ledger type") << QStringList{"ledger", "add", "--type", "INV", "--amount", "5"}
                                             << "Unknown transaction type INV";
        QTest::newRow("empty statement") << QStringList{"statement", "--out", "STATEMENT"} << "No transactions to display";
    }
    void refusedVerbsSayWhyAndWriteNothing()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        if (arguments.removeAll("--close"))
            m_t->db().execute("update account set status = 'C'");
        const int at = arguments.indexOf("CLIENT");
        if (at >= 0)
            arguments[at] = QString::number(addClient(m_t->db(), "Other"));
        const int out = arguments.indexOf("STATEMENT");
        if (out >= 0)
            arguments[out] = m_t->file("empty.tsv");
        if (arguments.first() == "ledger" || arguments.first() == "statement")
            arguments << "--client" << QString::number(m_client);
        else if (arguments.at(1) == "move")
            arguments << "--booking" << QString::number(m_booking.booking);
        else
            arguments << "--account" << account();
        const QString before = snapshot();
        const CtlRun run = ctl(arguments);
        QVERIFY(run.exitCode != 0);
        QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
        QCOMPARE(snapshot(), before);
    }

    void paymentsMoveBetweenAccountsAndItemsBetweenClients()
    {
        const CtlRun paid = ctl({"payment", "add", "--account", account(), "--amount", "50"});
        const QString payment = QString::number(paid.json.value("payment").toObject().value("BBPaymentID").toInt());
        const CtlRun unallocated = ctl({"payment", "allocate", "--id", payment, "--account", "0"});
        QCOMPARE(unallocated.exitCode, 0);
        QVERIFY(unallocated.json.value("changed").toBool());
        QVERIFY(ctl({"payment", "allocate", "--id", payment, "--account", "999"}).exitCode != 0);

        const qint32 other = addClient(m_t->db(), "Acme");
        const CtlRun moved = ctl({"account", "move", "--booking", QString::number(m_booking.booking), "--to-client", QString::number(other)});
        QCOMPARE(moved.exitCode, 0);
        const qint32 target = moved.json.value("account").toInt();
        QCOMPARE(m_t->db().scalar("select invoiceto from account where bbaccountid = ?", {target}).toInt(), other);

        const CtlRun listed = ctl({"account", "list", "--client", QString::number(other), "--status", "O"});
        QCOMPARE(listed.document.array().size(), 1);
        QCOMPARE(ctl({"account", "list", "--status", "C"}).document.array().size(), 1);   // the emptied account closed

        const CtlRun journal = ctl({"ledger", "add", "--client", QString::number(m_client), "--type", "JNL", "--amount", "114", "--vat"});
        QCOMPARE(journal.exitCode, 0);
        QCOMPARE(journal.json.value("VAT").toDouble(), 14.0);
    }
};

QTEST_GUILESS_MAIN(TestAccountVerbs)
#include "test_accountverbs.moc"

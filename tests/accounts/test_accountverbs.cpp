// fenlarkctl's money verbs, run as a script runs them: a separate process on a
// database file, JSON on stdout, a refusal on stderr with a non-zero exit and
// nothing written.
#include "support/moneyfixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

struct Run {
    int exitCode = -1;
    QJsonDocument json;
    QString errors;
    QJsonObject object() const { return json.object(); }
};

const QDate Arrival(2031, 7, 1);

} // namespace

class TestAccountVerbs : public QObject {
    Q_OBJECT

    QString m_ctl;
    std::unique_ptr<TestDatabase> m_t;
    qint32 m_client = 0;
    BookingMade m_booking;

    Run ctl(QStringList arguments)
    {
        arguments << QStringLiteral("--home") << m_t->home() << QStringLiteral("--db") << m_t->db().path();
        QProcess process;
        process.start(m_ctl, arguments);
        process.waitForFinished(60000);
        Run run;
        run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        run.json = QJsonDocument::fromJson(process.readAllStandardOutput());
        run.errors = QString::fromUtf8(process.readAllStandardError()).trimmed();
        return run;
    }

    QString account() const { return QString::number(m_booking.account); }

    // What a refused verb must leave as it was.
    QString snapshot()
    {
        Database &db = m_t->db();
        QString text;
        for (const char *table : {"extra", "payment", "clienttran", "invoice", "invoiceitem", "creditnote", "account", "booking", "dblog"})
            text += db.scalar(QStringLiteral("select count(*) || '/' || coalesce(max(rowid), 0) from ") + QString::fromLatin1(table)).toString() + ';';
        return text + db.scalar("select group_concat(bbaccountid || status || invoiceno) from account").toString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_ctl = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../fenlarkctl"));
        if (!QFileInfo(m_ctl).isExecutable())
            QSKIP("fenlarkctl is not built beside the tests");
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
        const Run extra = ctl({"extra", "add", "--account", account(), "--stock", "1", "--qty", "2", "--price", "180"});
        QCOMPARE(extra.exitCode, 0);
        QCOMPARE(extra.object().value("BBAccountID").toInt(), m_booking.account);
        QCOMPARE(extra.object().value("BBGuestID").toInt(), m_booking.legs[0]);
        QCOMPARE(extra.object().value("total").toDouble(), 360.0);

        const Run onRoom = ctl({"extra", "add", "--account", account(), "--stock", "2", "--qty", "1", "--price", "20",
                                "--booking", QString::number(m_booking.booking), "--room", "2", "--date", "2031-07-02"});
        QCOMPARE(onRoom.exitCode, 0);
        QCOMPARE(onRoom.object().value("BBGuestID").toInt(), m_booking.legs[1]);
        QCOMPARE(ctl({"extra", "list", "--account", account()}).json.array().size(), 2);

        const Run paid = ctl({"payment", "add", "--account", account(), "--amount", "1,000.00", "--type", "0", "--reference", "EFT"});
        QCOMPARE(paid.exitCode, 0);
        QCOMPARE(paid.object().value("ledger").toObject().value("Amount").toDouble(), -1000.0);

        const Run shown = ctl({"account", "show", "--account", account()});
        QCOMPARE(shown.exitCode, 0);
        QCOMPARE(shown.object().value("accommodation").toDouble(), 400.0);
        QCOMPARE(shown.object().value("extras").toDouble(), 380.0);
        QCOMPARE(shown.object().value("payments").toDouble(), 1000.0);
        QCOMPARE(shown.object().value("outstanding").toDouble(), -220.0);
        QCOMPARE(shown.object().value("items").toArray().size(), 3);
        QCOMPARE(shown.object().value("statusName").toString(), QString("Uninvoiced"));

        const Run badNumber = ctl({"invoice", "--account", account(), "--first-number", "12.7"});
        QVERIFY(badNumber.exitCode != 0);
        QVERIFY(badNumber.errors.contains("This does not look like a valid number greater than 0"));
        QVERIFY(badNumber.errors.contains("--first-number"));

        const Run invoice = ctl({"invoice", "--account", account()});
        QCOMPARE(invoice.exitCode, 0);   // the refused try spent number 1: this one is 2, unasked
        QCOMPARE(invoice.object().value("InvoiceNo").toInt(), 2);
        QCOMPARE(invoice.object().value("Amount").toDouble(), 780.0);
        QCOMPARE(invoice.object().value("VAT").toDouble(), 93.33);   // 400 + 360 at 14%, the water zero-rated
        QCOMPARE(invoice.object().value("items").toArray().size(), 3);

        const Run ledger = ctl({"ledger", "--client", QString::number(m_client)});
        QCOMPARE(ledger.exitCode, 0);
        QCOMPARE(ledger.object().value("balance").toDouble(), -220.0);
        QCOMPARE(ledger.object().value("rows").toArray().size(), 2);

        const QString tsv = m_t->file("statement.tsv");
        const Run statement = ctl({"statement", "--client", QString::number(m_client), "--out", tsv});
        QCOMPARE(statement.exitCode, 0);
        QCOMPARE(statement.object().value("balance").toDouble(), -220.0);
        QFile file(tsv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("Statement for: Heron"));
        QCOMPARE(ctl({"statement", "--client", QString::number(m_client), "--out", m_t->file("s.xlsx")}).exitCode, 0);

        const Run reopened = ctl({"account", "reopen", "--account", account()});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.object().value("creditNote").toInt(), 1);
        const Run proforma = ctl({"proforma", "--account", account(), "--first-number", "70"});
        QCOMPARE(proforma.object().value("ProformaNo").toInt(), 70);
        QCOMPARE(proforma.object().value("Amount").toDouble(), 780.0);
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
        const Run run = ctl(arguments);
        QVERIFY(run.exitCode != 0);
        QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
        QCOMPARE(snapshot(), before);
    }

    void paymentsMoveBetweenAccountsAndItemsBetweenClients()
    {
        const Run paid = ctl({"payment", "add", "--account", account(), "--amount", "50"});
        const QString payment = QString::number(paid.object().value("payment").toObject().value("BBPaymentID").toInt());
        const Run unallocated = ctl({"payment", "allocate", "--id", payment, "--account", "0"});
        QCOMPARE(unallocated.exitCode, 0);
        QVERIFY(unallocated.object().value("changed").toBool());
        QCOMPARE(unallocated.object().value("payment").toObject().value("BBAccountID").toInt(), 0);
        QVERIFY(ctl({"payment", "allocate", "--id", payment, "--account", "999"}).exitCode != 0);

        const qint32 other = addClient(m_t->db(), "Acme");
        const Run moved = ctl({"account", "move", "--booking", QString::number(m_booking.booking), "--to-client", QString::number(other)});
        QCOMPARE(moved.exitCode, 0);
        const qint32 target = moved.object().value("account").toInt();
        QCOMPARE(m_t->db().scalar("select invoiceto from account where bbaccountid = ?", {target}).toInt(), other);

        const Run listed = ctl({"account", "list", "--client", QString::number(other), "--status", "O"});
        QCOMPARE(listed.json.array().size(), 1);
        QCOMPARE(ctl({"account", "list", "--status", "C"}).json.array().size(), 1);   // the emptied account closed

        const Run journal = ctl({"ledger", "add", "--client", QString::number(m_client), "--type", "JNL", "--amount", "114", "--vat"});
        QCOMPARE(journal.exitCode, 0);
        QCOMPARE(journal.object().value("VAT").toDouble(), 14.0);
    }
};

QTEST_GUILESS_MAIN(TestAccountVerbs)
#include "test_accountverbs.moc"

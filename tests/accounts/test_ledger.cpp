#include "accounts/ledger.h"
#include "accounts/vat.h"
#include "shell/changelog.h"
#include "support/moneyfixture.h"

#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

qint32 addRow(Database &db, qint32 client, double amount, const QString &type = QStringLiteral("JNL"), qint32 number = 0)
{
    ClientTran row;
    row.BBClientID = client;
    row.TranDate = QDate(2031, 1, 1);
    row.TranType = type;
    row.TranNo = number;
    row.Amount = amount;
    row.update(db);
    return row.BBClientTranID;
}

QList<bool> matchedFlags(Database &db, qint32 client)
{
    QList<bool> flags;
    for (const ClientTran &row : ledgerOf(db, client))
        flags << row.Matched;
    return flags;
}

LedgerEntry entry(qint32 client, const QString &type, const QString &amount, const QString &vat = {})
{
    LedgerEntry e;
    e.clientId = client;
    e.tranType = type;
    e.date = QDate(2031, 3, 4);
    e.reference = QStringLiteral("by hand");
    e.amountText = amount;
    e.vatText = vat;
    return e;
}

} // namespace

class TestLedger : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nextNumberStartsAfterTheLedgerWhenTheSeriesHasNoRow()
    {
        TestDatabase t;
        QCOMPARE(getNextNumber(t.db(), "JNL"), 1);
        QCOMPARE(getNextNumber(t.db(), "JNL"), 2);
        addRow(t.db(), 1, 10, "CRN", 57);
        addRow(t.db(), 1, 10, "CRN", 12);
        QCOMPARE(getNextNumber(t.db(), "CRN"), 58);
        QCOMPARE(lastNumber(t.db(), "CRN"), 58);
        // Numbering is local: nothing of it reaches the change log.
        QCOMPARE(t.db().scalar("select count(*) from dblog where tablename = 'trantype'").toInt(), 0);
    }

    void matchingMarksGroupsThatReturnTheBalanceToZero_data()
    {
        QTest::addColumn<QList<double>>("amounts");
        QTest::addColumn<QList<bool>>("matched");

        QTest::newRow("newest row takes no part") << QList<double>{100, -60, -40, 50} << QList<bool>{true, true, true, false};
        QTest::newRow("settling row waits for a later one") << QList<double>{100, -60, -40} << QList<bool>{false, false, false};
        QTest::newRow("one row") << QList<double>{100} << QList<bool>{false};
        QTest::newRow("floating-point dust") << QList<double>{0.1, 0.2, -0.3, 5} << QList<bool>{true, true, true, false};
        QTest::newRow("groups reset the sum") << QList<double>{50, -50, 20, -10, 30, 1}
                                               << QList<bool>{true, true, false, false, false, false};
        QTest::newRow("an unpaid invoice between keeps a payment apart")
            << QList<double>{100, 80, -100, 7} << QList<bool>{false, false, false, false};
        QTest::newRow("half a cent is not zero") << QList<double>{100, -99.99, -0.005, 1} << QList<bool>{false, false, false, false};
    }
    void matchingMarksGroupsThatReturnTheBalanceToZero()
    {
        QFETCH(QList<double>, amounts);
        QFETCH(QList<bool>, matched);
        TestDatabase t;
        addRow(t.db(), 9, 1);   // another client's row changes nothing
        for (double amount : amounts)
            addRow(t.db(), 1, amount);
        matchTransactions(t.db(), 1);
        QCOMPARE(matchedFlags(t.db(), 1), matched);
        QCOMPARE(matchedFlags(t.db(), 9), QList<bool>{false});
    }

    void matchingClearsFlagsThatNoLongerHold()
    {
        TestDatabase t;
        const qint32 first = addRow(t.db(), 1, 100);
        addRow(t.db(), 1, -100);
        addRow(t.db(), 1, 5);
        matchTransactions(t.db(), 1);
        QCOMPARE(matchedFlags(t.db(), 1), (QList<bool>{true, true, false}));
        t.db().execute("update clienttran set amount = 90 where bbclienttranid = ?", {first});
        t.db().execute("delete from dblog");
        matchTransactions(t.db(), 1);
        QCOMPARE(matchedFlags(t.db(), 1), (QList<bool>{false, false, false}));
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void manualEntriesTakeTheirSignFromTheirType_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("stored");

        QTest::newRow("journal") << "JNL" << "25.50" << 25.50;
        QTest::newRow("negative journal stays negative") << "JNL" << "-25" << -25.0;
        QTest::newRow("credit note") << "CRN" << "40" << -40.0;
        QTest::newRow("negative credit note turns positive") << "CRN" << "-40" << 40.0;
        QTest::newRow("payment") << "PMT" << "1,000.00" << -1000.0;
    }
    void manualEntriesTakeTheirSignFromTheirType()
    {
        QFETCH(QString, type);
        QFETCH(QString, typed);
        QFETCH(double, stored);
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const auto written = addLedgerEntry(t.db(), entry(client, type, typed), clerk(), VatRules::load(t.db()));
        QVERIFY(written);
        QCOMPARE(written->row.Amount, stored);
        QCOMPARE(written->row.TranDate, QDate(2031, 3, 4));
        QCOMPARE(clientBalance(t.db(), client), stored);
    }

    void manualPaymentIsAPaymentOnNoAccountWithItsTwin()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const auto written = addLedgerEntry(t.db(), entry(client, "PMT", "300"), clerk(), VatRules::load(t.db()));
        QVERIFY(written);
        Payment payment;
        QVERIFY(payment.fetch(t.db(), written->paymentId));
        QCOMPARE(payment.BBAccountID, 0);
        QCOMPARE(payment.Amount, 300.0);
        QCOMPARE(payment.CreateUser, QString("mary"));
        QCOMPARE(written->row.TranNo, payment.BBPaymentID);
        QCOMPARE(written->row.VAT, 0.0);
    }

    void manualVatIsComputedNotTaken()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const VatRules vat = VatRules::load(t.db());
        auto journal = addLedgerEntry(t.db(), entry(client, "JNL", "114", "5"), clerk(), vat);
        QVERIFY(journal);
        QCOMPARE(journal->row.VAT, 14.0);
        auto credit = addLedgerEntry(t.db(), entry(client, "CRN", "114", "14"), clerk(), vat);
        QCOMPARE(credit->row.VAT, -14.0);
        auto noVat = addLedgerEntry(t.db(), entry(client, "JNL", "114"), clerk(), vat);
        QCOMPARE(noVat->row.VAT, 0.0);
        auto payment = addLedgerEntry(t.db(), entry(client, "PMT", "114", "14"), clerk(), vat);
        QCOMPARE(payment->row.VAT, 0.0);
    }

    void manualVatIsZeroWithoutAVatNumber()
    {
        PropertyDatabase t(false);
        const qint32 client = addClient(t.db(), "Heron");
        auto journal = addLedgerEntry(t.db(), entry(client, "JNL", "114", "14"), clerk(), VatRules::load(t.db()));
        QCOMPARE(journal->row.VAT, 0.0);
    }

    void badManualEntriesAreRefusedAndWriteNothing_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("vat");
        QTest::addColumn<bool>("knownClient");
        QTest::addColumn<int>("refusal");

        QTest::newRow("empty amount") << "JNL" << "" << "" << true << 6603;
        QTest::newRow("zero amount") << "JNL" << "0.00" << "" << true << 6603;
        QTest::newRow("amount as text") << "JNL" << "ten" << "" << true << 6603;
        QTest::newRow("vat of the other sign") << "JNL" << "100" << "-14" << true << 6606;
        QTest::newRow("unreadable vat") << "JNL" << "100" << "x" << true << 6620;
        QTest::newRow("unknown type") << "INV" << "100" << "" << true << 6602;
        QTest::newRow("client deleted meanwhile") << "PMT" << "100" << "" << false << 5005;
    }
    void badManualEntriesAreRefusedAndWriteNothing()
    {
        QFETCH(QString, type);
        QFETCH(QString, amount);
        QFETCH(QString, vat);
        QFETCH(bool, knownClient);
        QFETCH(int, refusal);
        PropertyDatabase t;
        const qint32 client = knownClient ? addClient(t.db(), "Heron") : 404;
        t.db().execute("delete from dblog");
        const auto written = addLedgerEntry(t.db(), entry(client, type, amount, vat), clerk(), VatRules::load(t.db()));
        QVERIFY(!written);
        QCOMPARE(written.refusal().id(), refusal);
        QCOMPARE(t.db().scalar("select count(*) from clienttran").toInt(), 0);
        QCOMPARE(t.db().scalar("select count(*) from payment").toInt(), 0);
        QCOMPARE(ChangeLog::count(t.db()), 0);
    }

    void searchFiltersAndOrdersNewestFirst()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Heron");
        const VatRules vat = VatRules::load(t.db());
        LedgerEntry early = entry(client, "PMT", "100");
        early.date = QDate(2031, 1, 5);
        early.reference = "EFT 1";
        QVERIFY(addLedgerEntry(t.db(), early, clerk(), vat));
        LedgerEntry late = entry(client, "JNL", "100");
        late.date = QDate(2031, 2, 5);
        late.reference = "Adjust";
        QVERIFY(addLedgerEntry(t.db(), late, clerk(), vat));

        LedgerSearch all;
        auto rows = searchLedger(t.db(), all);
        QCOMPARE(rows->size(), std::size_t(2));
        QCOMPARE(rows->front().tran.TranType, QString("JNL"));
        QCOMPARE(rows->front().client, QStringLiteral("(%1) Heron").arg(client));

        LedgerSearch byAmount;
        byAmount.amount = "-100";   // a payment of 100 is stored as -100
        rows = searchLedger(t.db(), byAmount);
        QCOMPARE(rows->size(), std::size_t(1));
        QCOMPARE(rows->front().tran.TranType, QString("PMT"));

        LedgerSearch byDates;
        byDates.start = QDate(2031, 2, 1);
        byDates.end = QDate(2031, 2, 28);
        byDates.reference = "adj";
        QCOMPARE(searchLedger(t.db(), byDates)->size(), std::size_t(1));

        LedgerSearch none;
        none.tranType = "CRN";
        QVERIFY(searchLedger(t.db(), none)->empty());
    }

    void searchRefusesWhatItCannotRead()
    {
        TestDatabase t;
        LedgerSearch backwards;
        backwards.start = QDate(2031, 2, 1);
        backwards.end = QDate(2031, 1, 1);
        QCOMPARE(searchLedger(t.db(), backwards).refusal().id(), 6610);
        LedgerSearch number;
        number.tranNo = "seven";
        QCOMPARE(searchLedger(t.db(), number).refusal().id(), 6608);
        LedgerSearch amount;
        amount.amount = "12,5";
        QCOMPARE(searchLedger(t.db(), amount).refusal().id(), 6620);
    }
};

QTEST_GUILESS_MAIN(TestLedger)
#include "test_ledger.moc"

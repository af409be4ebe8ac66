#include "support/moneysimulation.h"

#include <QtTest>

// Random sequences of money operations keep every amount in agreement. CI runs
// a few fixed seeds; FENLARK_MONEY_SEEDS=N and FENLARK_MONEY_STEPS=M run seeds
// 1..N with M steps each (the benchmark run uses more).
class TestMoneyInvariants : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void randomOperationsKeepAccountsLedgerAndInvoicesInAgreement_data()
    {
        QTest::addColumn<unsigned>("seed");
        const int seeds = qEnvironmentVariableIntValue("FENLARK_MONEY_SEEDS");
        for (unsigned seed = 1; seed <= (seeds > 0 ? unsigned(seeds) : 3u); ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void randomOperationsKeepAccountsLedgerAndInvoicesInAgreement()
    {
        QFETCH(unsigned, seed);
        const int steps = qEnvironmentVariableIntValue("FENLARK_MONEY_STEPS");
        const moneysim::Outcome outcome = moneysim::simulate(seed, steps > 0 ? steps : 250);
        if (outcome.failure)
            QFAIL(qPrintable(outcome.failure->report()));
        qInfo("%s", qPrintable(outcome.summary()));
        // Most operations went through: the game is not all refusals.
        QVERIFY2(outcome.refused < outcome.stepsRun / 2, qPrintable(QStringLiteral("%1 of %2 refused").arg(outcome.refused).arg(outcome.stepsRun)));
    }
};

QTEST_GUILESS_MAIN(TestMoneyInvariants)
#include "test_moneyinvariants.moc"

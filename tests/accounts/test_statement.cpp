#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "accounts/statement.h"
#include "support/moneyfixture.h"

#include <QFile>
#include <QProcess>
#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

// A client with an invoice of a 2-night stay at 100 and a wine at 180, and a
// payment of 150 after it.
struct Owing {
    TestDatabase t;
    qint32 client = 0;
    BookingMade booking;
    Owing()
    {
        setUpProperty(t.db());
        client = addClient(t.db(), "Heron");
        booking = addBooking(t.db(), client, {1}, Arrival, 2, 100);
        addExtraRow(t.db(), booking.legs[0], booking.account, 1, 180, Wine, Arrival.addDays(1));
        ScriptedPrompter prompter({"42"});
        (void)makeInvoice(t.db(), booking.account, clerk(), prompter, VatRules::load(t.db()));
        NewPayment p;
        p.accountId = booking.account;
        p.amountText = "150";
        p.reference = "EFT";
        (void)addPayment(t.db(), p, clerk());
    }
    Database &db() { return t.db(); }
};

// The text of one part of an .xlsx package.
QByteArray partOf(const QString &workbook, const QString &part)
{
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), {QStringLiteral("-p"), workbook, part});
    unzip.waitForFinished();
    return unzip.readAllStandardOutput();
}

} // namespace

class TestStatement : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anInvoiceIsShownByItsItemsAndTheTotalRunsToTheBalance()
    {
        Owing o;
        const auto statement = buildStatement(o.db(), o.client);
        QVERIFY(statement);
        QCOMPARE(statement->lines.size(), std::size_t(3));
        const StatementLine &stay = statement->lines[0];
        QCOMPARE(stay.type, QString("INV"));
        QCOMPARE(stay.tranNo, 42);
        QCOMPARE(stay.reference, QStringLiteral("(Bk ID %1) Heron").arg(o.booking.booking));
        QCOMPARE(stay.date, Arrival);
        QCOMPARE(stay.debit(), 200.0);
        QCOMPARE(statement->lines[1].reference, QString("Wine"));
        QCOMPARE(statement->lines[1].total, 380.0);
        const StatementLine &paid = statement->lines[2];
        QCOMPARE(paid.type, QString("PMT"));
        QCOMPARE(paid.credit(), 150.0);
        QCOMPARE(statement->balance(), 230.0);
        QCOMPARE(statement->balance(), clientBalance(o.db(), o.client));
        QCOMPARE(statement->title(), QStringLiteral("Statement for: Heron (%1)").arg(o.client));
    }

    void settledRowsLeaveOnlyTheNewest()
    {
        Owing o;
        NewPayment rest;
        rest.accountId = o.booking.account;
        rest.amountText = "230";
        QVERIFY(addPayment(o.db(), rest, clerk()));
        // The settling payment is the newest row: it is still shown.
        auto statement = buildStatement(o.db(), o.client);
        QCOMPARE(statement->lines.size(), std::size_t(4));
        LedgerEntry journal;
        journal.clientId = o.client;
        journal.tranType = "JNL";
        journal.date = QDate::currentDate();
        journal.amountText = "5";
        QVERIFY(addLedgerEntry(o.db(), journal, clerk(), VatRules()));
        statement = buildStatement(o.db(), o.client);
        QCOMPARE(statement->lines.size(), std::size_t(1));
        QCOMPARE(statement->balance(), 5.0);
    }

    void aClientWithoutRowsHasNoStatement()
    {
        PropertyDatabase t;
        const qint32 client = addClient(t.db(), "Quiet");
        QCOMPARE(buildStatement(t.db(), client).refusal().id(), 6703);
        QCOMPARE(buildStatement(t.db(), 999).refusal().id(), 5005);
    }

    void theTextHasTheTitleHeadingsAndOneLinePerEntry()
    {
        Owing o;
        const QStringList lines = statementText(*buildStatement(o.db(), o.client)).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 5);
        QCOMPARE(lines[0], QStringLiteral("Statement for: Heron (%1)").arg(o.client));
        QCOMPARE(lines[1], QString("Date\tType\tTran No.\tReference\tDR Amount\tCR Amount\tTotal"));
        QCOMPARE(lines[2], QStringLiteral("2031-07-01\tINV\t42\t(Bk ID %1) Heron\t200.00\t\t200.00").arg(o.booking.booking));
        QCOMPARE(lines[4].section('\t', 5), QString("150.00\t230.00"));
    }

    void theWorkbookHoldsDatesAmountsAndSubtotalsWithTheirValues()
    {
        Owing o;
        const QString path = o.t.file("statement.xlsx");
        QVERIFY(writeStatementWorkbook(*buildStatement(o.db(), o.client), path));
        const QByteArray sheet = partOf(path, "xl/worksheets/sheet1.xml");
        QVERIFY2(!sheet.isEmpty(), "the workbook is a zip package with a sheet");
        QVERIFY(sheet.contains("<f>SUBTOTAL(9,E3:E6)</f><v>380</v>"));
        QVERIFY(sheet.contains("<f>SUBTOTAL(9,F3:F6)</f><v>150</v>"));
        QVERIFY(sheet.contains("<selection activeCell=\"A4\""));
        const QByteArray styles = partOf(path, "xl/styles.xml");
        QVERIFY(styles.contains("formatCode=\"yyyy-mm-dd\""));
        QVERIFY(styles.contains("#,##0.00"));
    }

    void aWorkbookThatCannotBeWrittenIsRefused()
    {
        Owing o;
        const auto written = writeStatementWorkbook(*buildStatement(o.db(), o.client), o.t.file("no/such/folder/s.xlsx"));
        QCOMPARE(written.refusal().id(), 6705);
    }
};

QTEST_GUILESS_MAIN(TestStatement)
#include "test_statement.moc"

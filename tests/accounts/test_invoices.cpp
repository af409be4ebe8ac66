#include "accounts/invoices.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "shell/changelog.h"
#include "support/moneyfixture.h"

#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

struct Invoiced {
    TestDatabase t;
    qint32 client = 0;
    BookingMade booking;
    Invoiced(double rate = 114, int nights = 1)
    {
        setUpProperty(t.db());
        client = addClient(t.db(), "Heron");
        booking = addBooking(t.db(), client, {1}, Arrival, nights, rate);
    }
    Database &db() { return t.db(); }
    Result<std::optional<InvoiceMade>> invoice(FirstNumberPrompter &prompter)
    {
        return makeInvoice(db(), booking.account, clerk(), prompter, VatRules::load(db()));
    }
    Account account()
    {
        Account a;
        a.fetch(db(), booking.account);
        return a;
    }
};

QList<double> ledgerAmounts(Database &db, qint32 client)
{
    QList<double> amounts;
    for (const ClientTran &row : ledgerOf(db, client))
        amounts << row.Amount;
    return amounts;
}

} // namespace

class TestInvoices : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstInvoiceCarriesTheNumberTypedAndTheNextFollows()
    {
        Invoiced f;
        ScriptedPrompter prompter({"1000"});
        auto made = f.invoice(prompter);
        QVERIFY(made && *made);
        QCOMPARE((*made)->invoice.InvoiceNo, 1000);
        QCOMPARE(prompter.asked, 1);
        const BookingMade next = addBooking(f.db(), f.client, {2}, Arrival, 1, 50);
        auto second = makeInvoice(f.db(), next.account, clerk(), prompter, VatRules::load(f.db()));
        QCOMPARE((*second)->invoice.InvoiceNo, 1001);
        QCOMPARE(prompter.asked, 1);
    }

    void wrongFirstNumbersAreRefusedAndAskedAgain()
    {
        Invoiced f;
        ScriptedPrompter prompter({"0", "-5", "abc", "12.7", " 17 "});
        auto made = f.invoice(prompter);
        QCOMPARE((*made)->invoice.InvoiceNo, 17);
        QCOMPARE(prompter.refused, (QList<int>{6683, 6683, 6683, 6683}));
        QCOMPARE(lastNumber(f.db(), "INV"), 17);
    }

    void cancellingTheFirstNumberStopsAndTheNextTryTakesTwo()
    {
        Invoiced f;
        ScriptedPrompter cancel;
        auto made = f.invoice(cancel);
        QVERIFY(made);
        QVERIFY(!*made);
        QCOMPARE(f.db().scalar("select count(*) from invoice").toInt(), 0);
        QCOMPARE(f.account().Status, QString("O"));
        ScriptedPrompter never;
        auto again = f.invoice(never);
        QCOMPARE((*again)->invoice.InvoiceNo, 2);
        QCOMPARE(never.asked, 0);
    }

    void anInvoiceFreezesTheAccountInItsItemsAndTheLedger()
    {
        Invoiced f;
        addExtraRow(f.db(), f.booking.legs[0], f.booking.account, 1, 114, Wine, Arrival.addDays(1));
        addExtraRow(f.db(), f.booking.legs[0], f.booking.account, 3, 20, Water, Arrival);
        ScriptedPrompter prompter({"1"});
        auto made = f.invoice(prompter);
        const Invoice &invoice = (*made)->invoice;
        QCOMPARE(invoice.Amount, 114.0 + 114.0 + 60.0);
        QCOMPARE(invoice.VAT, 28.0);   // the water is zero-rated
        QCOMPARE(invoice.BBClientID, f.client);
        QCOMPARE(invoice.CreateUser, QString("mary"));

        const std::vector<InvoiceItem> items = InvoiceItem::forInvoice(f.db(), invoice.BBInvoiceID);
        QCOMPARE(items.size(), std::size_t(3));
        QCOMPARE(items[0].itemType, QString("B"));
        QCOMPARE(items[0].Description, QStringLiteral("(Bk ID %1) Heron").arg(f.booking.booking));
        QCOMPARE(items[0].ItemDate, QString("2031-07-01"));
        QCOMPARE(items[0].VatCode, qint16(1));
        QCOMPARE(items[1].Description, QString("Water"));
        QCOMPARE(items[1].VatCode, qint16(2));
        QCOMPARE(items[2].Description, QString("Wine"));

        ClientTran row;
        QVERIFY(row.fetchByTranNo(f.db(), "INV", 1));
        QCOMPARE(row.Amount, invoice.Amount);
        QCOMPARE(row.VAT, invoice.VAT);
        QCOMPARE(row.BBClientID, f.client);
        QCOMPARE(row.TranDate, QDate::currentDate());
        QCOMPARE(f.account().Status, QString("C"));
        QCOMPARE(f.account().InvoiceNo, 1);
        for (const char *table : {"invoice", "invoiceitem", "clienttran", "account"})
            QVERIFY2(f.db().scalar("select count(*) from dblog where tablename = ?", {QString::fromLatin1(table)}).toInt() > 0, table);
    }

    void vatIsRoundedPerLineBeforeAdding()
    {
        Invoiced f(0.05, 1);
        addExtraRow(f.db(), f.booking.legs[0], f.booking.account, 1, 0.05);
        ScriptedPrompter prompter({"1", "1"});
        QCOMPARE((*f.invoice(prompter))->invoice.VAT, 0.02);

        Invoiced single(0.10, 1);
        QCOMPARE((*single.invoice(prompter))->invoice.VAT, 0.01);
    }

    void aPropertyWithoutAVatNumberChargesNoVat()
    {
        Invoiced f;
        f.db().execute("update bbsetup set vatno = ''");
        ScriptedPrompter prompter({"1"});
        QCOMPARE((*f.invoice(prompter))->invoice.VAT, 0.0);
    }

    void invoicesAreRefusedWhereTheyCannotBeMade()
    {
        Invoiced f;
        ScriptedPrompter prompter({"1"});
        const qint32 empty = createAccount(f.db(), f.client);
        QCOMPARE(makeInvoice(f.db(), empty, clerk(), prompter, VatRules()).refusal().id(), 6676);
        QCOMPARE(makeInvoice(f.db(), 999, clerk(), prompter, VatRules()).refusal().id(), 6621);
        f.db().execute("update account set status = 'C' where bbaccountid = ?", {f.booking.account});
        QCOMPARE(f.invoice(prompter).refusal().id(), 6674);
        f.db().execute("update account set status = 'O' where bbaccountid = ?", {f.booking.account});
        f.db().execute("delete from client");
        QCOMPARE(f.invoice(prompter).refusal().id(), 5005);
        QCOMPARE(prompter.asked, 0);
        QCOMPARE(f.db().scalar("select count(*) from invoice").toInt(), 0);
    }

    void reopeningReversesTheInvoiceExactly()
    {
        Invoiced f(114.57, 2);
        ScriptedPrompter prompter({"10"});
        const Invoice first = (*f.invoice(prompter))->invoice;
        auto reopened = reopenAccount(f.db(), f.booking.account, clerk());
        QVERIFY(reopened);
        QVERIFY(!reopened->invoiceMissing);
        QCOMPARE(reopened->creditNoteNo, 1);
        CreditNote note;
        QVERIFY(note.fetchByNumber(f.db(), 1));
        QCOMPARE(note.InvoiceNo, 10);
        ClientTran crn;
        QVERIFY(crn.fetchByTranNo(f.db(), "CRN", 1));
        QCOMPARE(crn.Amount, -first.Amount);
        QCOMPARE(crn.VAT, -first.VAT);
        QCOMPARE(crn.Reference, QString("Reverse Inv 10"));
        QCOMPARE(f.account().Status, QString("O"));
        QCOMPARE(f.account().InvoiceNo, 0);

        // Invoicing again without changes: +X, -X, +X and a new number.
        const Invoice second = (*f.invoice(prompter))->invoice;
        QCOMPARE(second.InvoiceNo, 11);
        QCOMPARE(ledgerAmounts(f.db(), f.client), (QList<double>{first.Amount, -first.Amount, first.Amount}));
        Invoice kept;
        QVERIFY(kept.fetchByNumber(f.db(), 10));
        QCOMPARE(kept.Amount, first.Amount);
    }

    void reopeningWithoutAnInvoiceMakesNoCreditNote()
    {
        Invoiced f;
        QVERIFY(closeAccount(f.db(), f.booking.account));
        QCOMPARE(closeAccount(f.db(), f.booking.account).refusal().id(), 6673);
        auto reopened = reopenAccount(f.db(), f.booking.account, clerk());
        QCOMPARE(reopened->creditNoteNo, 0);
        QCOMPARE(f.db().scalar("select count(*) from creditnote").toInt(), 0);
        QCOMPARE(f.db().scalar("select count(*) from clienttran").toInt(), 0);
        QCOMPARE(reopenAccount(f.db(), f.booking.account, clerk()).refusal().id(), 6671);
    }

    void reopeningAfterTheInvoiceWentMissingSaysSoAndStillOpens()
    {
        Invoiced f;
        ScriptedPrompter prompter({"1"});
        QVERIFY(f.invoice(prompter));
        f.db().execute("delete from invoice");
        auto reopened = reopenAccount(f.db(), f.booking.account, clerk());
        QVERIFY(reopened->invoiceMissing);
        QCOMPARE(reopened->creditNoteNo, 0);
        QCOMPARE(f.account().Status, QString("O"));
        QCOMPARE(invoiceDataMissing().id(), 6679);
    }

    void aProformaKeepsItsOwnNumberAndWritesNoMoney()
    {
        Invoiced f;
        ScriptedPrompter prompter({"500", "7"});
        auto proforma = makeProforma(f.db(), f.booking.account, prompter, VatRules::load(f.db()));
        QCOMPARE((*proforma)->number, 500);
        QVERIFY(!(*proforma)->existing);
        QCOMPARE((*proforma)->draft.amount, 114.0);
        QCOMPARE((*proforma)->draft.vat, 14.0);
        QCOMPARE(f.account().ProformaNo, 500);
        QCOMPARE(f.db().scalar("select count(*) from clienttran").toInt(), 0);
        auto again = makeProforma(f.db(), f.booking.account, prompter, VatRules::load(f.db()));
        QCOMPARE((*again)->number, 500);
        QVERIFY((*again)->existing);
        // A pro forma after an invoice keeps its own series.
        QCOMPARE((*f.invoice(prompter))->invoice.InvoiceNo, 7);
        QCOMPARE(f.account().ProformaNo, 500);
    }

    void anAccountPaidToTheCentOffersItsInvoice()
    {
        Invoiced f(100, 2);
        QVERIFY(!isSettledInFull(f.db(), f.booking.account));
        NewPayment part;
        part.accountId = f.booking.account;
        part.amountText = "150";
        QVERIFY(addPayment(f.db(), part, clerk()));
        QVERIFY(!isSettledInFull(f.db(), f.booking.account));
        part.amountText = "50";
        QVERIFY(addPayment(f.db(), part, clerk()));
        QVERIFY(isSettledInFull(f.db(), f.booking.account));
        ScriptedPrompter prompter({"1"});
        QVERIFY(f.invoice(prompter));
        QVERIFY(!isSettledInFull(f.db(), f.booking.account));
    }

    void nothingIsWrittenWhenAnotherDeskClosedTheAccountDuringTheQuestion()
    {
        Invoiced f;
        // Another desk closes the account while the first-number question waits.
        class ClosingPrompter : public FirstNumberPrompter {
        public:
            ClosingPrompter(Database &db, qint32 account) : m_db(db), m_account(account) {}
            std::optional<QString> askFirstNumber(const QString &, const QString &) override
            {
                m_db.execute("update account set status = 'C' where bbaccountid = ?", {m_account});
                return QStringLiteral("5");
            }
            void refuseFirstNumber(const Refusal &) override {}

        private:
            Database &m_db;
            qint32 m_account;
        } closing(f.db(), f.booking.account);
        QCOMPARE(f.invoice(closing).refusal().id(), 6674);
        QCOMPARE(f.db().scalar("select count(*) from invoice").toInt(), 0);
        QCOMPARE(f.db().scalar("select count(*) from clienttran").toInt(), 0);
        QCOMPARE(lastNumber(f.db(), "INV"), 0);
    }
};

QTEST_GUILESS_MAIN(TestInvoices)
#include "test_invoices.moc"

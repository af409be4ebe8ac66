// Invoices, pro formas and credit notes: what the document says, and the workbook
// made from Fenlark's own template (checked in its XML and, once, in LibreOffice).
#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "ooxmlfixtures.h"
#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "reports/accountsdocument.h"
#include "reports/invoiceprint.h"
#include "reports/pdfconverter.h"
#include "reports/xlsxtemplate.h"
#include "shell/config.h"
#include "shell/preferences.h"
#include "support/testdatabase.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QtTest>

using namespace fenlark;
using namespace fixtures;

namespace {

// A booking of the account: one leg per room (room, adults, children, reference),
// every night at rate.
qint32 addBooking(Database &db, qint32 account, qint32 client, const QDate &from, int nights,
                  const std::vector<std::tuple<qint32, int, int, QString>> &legs, double rate)
{
    db.execute("insert into booking (FromDate, ToDate, MadeBy, BBAccountID, Status) values (?,?,?,?,'C')",
               {sqlDate(from), sqlDate(from.addDays(nights)), client, account});
    const qint32 booking = db.scalar("select max(BBBookingID) from booking").toInt();
    for (const auto &[room, adults, children, reference] : legs) {
        db.execute("insert into guest (BBBookingID, BBRoomID, BBClientID, NoAdults, Child1, Reference) values (?,?,?,?,?,?)",
                   {booking, room, client, adults, children, reference});
        for (int n = 0; n < nights; ++n)
            db.execute("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values (?,?,?,?)",
                       {sqlDate(from.addDays(n)), booking, room, rate});
    }
    return booking;
}

void addRoom(Database &db, int id)
{
    db.execute("insert into room (BBRoomID, RoomName, OrderBy) values (?,?,?)", {id, QStringLiteral("Room %1").arg(id), id});
}

} // namespace

class TestAccountsDocuments : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_t;
    RateData m_rates;
    qint32 m_client = 0, m_account = 0, m_one = 0, m_three = 0;

    Database &db() { return m_t->db(); }

    // Account 1 of Ms Jo Smith: a one-night booking (room 1, one adult) and a
    // three-night booking (room 2: two adults, one child, reference ABC-9; room 3),
    // all at 100 a night; two extras in room 2 and one in room 1; a payment of 250.
    void seed()
    {
        db().execute("insert into bbsetup (BBID, CurrencyCode) values (20001, 'ZAR')");
        for (int i = 1; i <= 3; ++i)
            addRoom(db(), i);
        db().execute("insert into stock (BBStockID, StockName) values (5, 'Wine & <Cheese>')");
        db().execute("insert into client (BBClientID, Title, FirstName, Surname, Add1, Add2, PhoneNo, Email, VatNo, Active) "
                     "values (1, 'Ms', 'Jo', 'Smith', '12 Long Street', 'Cape Town', '021 555 0199', 'jo@example.org', '4001', 'Y')");
        db().execute("insert into account (BBAccountID, InvoiceTo, Status, Reference, ProformaNo) values (1, 1, 'O', 'ACC-1', 7)");
        m_client = m_account = 1;
        m_one = addBooking(db(), m_account, m_client, QDate(2026, 7, 1), 1, {{1, 1, 0, ""}}, 100);
        m_three = addBooking(db(), m_account, m_client, QDate(2026, 7, 10), 3, {{2, 2, 1, "ABC-9"}, {3, 2, 0, ""}}, 100);
        const QString legs = "(select bbguestid from guest where bbbookingid = ? and bbroomid = ?)";
        for (const QVariantList &extra : {QVariantList{m_three, 2, "2026-07-11", 2, 45.5}, QVariantList{m_three, 2, "2026-07-12", 1, 20},
                                          QVariantList{m_one, 1, "2026-07-01", 1, 30}})
            db().execute("insert into extra (BBAccountID, BBStockID, BBGuestID, ExtraDate, Qty, Price) values (1, 5, " + legs + ",?,?,?)",
                         extra);
        db().execute("insert into payment (BBAccountID, PaymentDate, Amount, Reference, PaymentType) "
                     "values (1, '2026-06-05', 250, 'EFT 77', '0')");
    }

    // The account invoiced as number 42 on 2026-07-14 with the given booking amounts.
    qint32 invoice(double oneAmount, double threeAmount)
    {
        db().execute("insert into invoice (BBInvoiceID, InvoiceNo, BBClientID, BBAccountID, CreateDate) "
                     "values (1, 42, 1, 1, '2026-07-14 09:30:00')");
        const QString item = "insert into invoiceitem (BBInvoiceID, itemType, ItemID, ItemDate, Description, Qty, Price) values (1,?,?,?,?,?,?)";
        db().execute(item, {"B", m_one, "", "(Bk ID 1) Smith", 1, oneAmount});
        db().execute(item, {"B", m_three, "", "(Bk ID 2) Smith", 1, threeAmount});
        for (const qint32 id : {1, 2, 3})
            db().execute("insert into invoiceitem (BBInvoiceID, itemType, ItemID, ItemDate, Description, Qty, Price) "
                         "select 1, 'X', BBExtraID, ExtraDate, 'Wine & <Cheese>', Qty, Price from extra where BBExtraID = ?", {id});
        db().execute("update account set invoiceno = 42, status = 'C' where bbaccountid = ?", {m_account});
        return 1;
    }

    static QString documentDateText()
    {
        return QLocale(QLocale::English, QLocale::UnitedKingdom).toString(QDate::currentDate(), "dd MMM yy");
    }

    AccountsDocument build(DocumentType type, qint32 number)
    {
        Result<AccountsDocument> doc = AccountsDocument::build(db(), m_rates, type, m_account, number);
        if (!doc)
            qFatal("%s", qPrintable(doc.refusal().text()));
        return *doc;
    }

    QString written(const AccountsDocument &doc)
    {
        Result<QString> path = InvoicePrint(0).makeInvoice(doc);
        if (!path)
            qFatal("%s", qPrintable(path.refusal().text()));
        return *path;
    }

private Q_SLOTS:
    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        seed();
    }

    void proFormaDescribesTheLiveAccount()
    {
        const AccountsDocument doc = build(DocumentType::ProForma, 7);
        QCOMPARE(doc.documentDate(), QDate::currentDate());
        QCOMPARE(doc.accountReference(), QString("ACC-1"));
        QVERIFY(!doc.fromLiveData());
        const auto &rooms = doc.accommodation();
        QCOMPARE(rooms.size(), std::size_t(3));
        QCOMPARE(rooms[0].heading, QString("Ms Jo Smith / 01 Jul 26 - 02 Jul 26 (Bk ID 1)"));
        QCOMPARE(rooms[0].line1, QString("  1 Adult x 1 night @ R100.00 per night."));
        QCOMPARE(rooms[0].line2, QString("Manual rates: Room 1"));
        QCOMPARE(rooms[0].line3, QString());
        QCOMPARE(rooms[1].line1, QString("  2 Adults, 1 Child x 3 nights @ R100.00 per night."));
        QCOMPARE(rooms[1].line3, QString("  Ref: ABC-9"));
        QCOMPARE(rooms[1].amount, 300.0);
        QCOMPARE(rooms[2].line1, QString("  2 Adults x 3 nights @ R100.00 per night."));
        const auto &extras = doc.extras();
        QCOMPARE(extras.size(), std::size_t(3));
        QCOMPARE(extras[0].heading, QString("Room 1 (Bk ID 1)"));
        QCOMPARE(extras[1].heading, QString("Room 2 (Bk ID 2)"));
        QCOMPARE(extras[1].line1, QString("  11 Jul - 2 x R45.50 Wine & <Cheese>"));
        QCOMPARE(extras[1].amount, 91.0);
        QCOMPARE(doc.payments().size(), std::size_t(1));
        QCOMPARE(doc.payments()[0].heading, QString("05 June 2026"));
        QCOMPARE(doc.payments()[0].amount, -250.0);
        QCOMPARE(doc.total(), 100 + 300 + 300 + 30 + 91 + 20 - 250.0);

        setPreference(db(), "PAYREF", "1");
        QCOMPARE(build(DocumentType::ProForma, 7).payments()[0].heading, QString("05 June 2026 - EFT 77"));
    }

    void reprintedInvoiceTotalsToItsStoredItemsOnItsOwnDate()
    {
        invoice(100, 660);   // the three-night booking was invoiced at 660, not the 600 it costs now
        db().execute("update dailyrate set roomrate = 500 where bbbookingid = ?", {m_one});
        const AccountsDocument doc = build(DocumentType::Invoice, 42);
        QCOMPARE(doc.documentDate(), QDate(2026, 7, 14));
        QVERIFY(!doc.fromLiveData());
        const auto &rooms = doc.accommodation();
        QCOMPARE(rooms.size(), std::size_t(3));
        QCOMPARE(rooms[0].amount, 100.0);
        QCOMPARE(rooms[0].line1, QString("  1 Adult x 1 night @ R100.00 per night."));
        QCOMPARE(rooms[1].amount + rooms[2].amount, 660.0);
        QCOMPARE(rooms[1].amount, 330.0);
        QCOMPARE(rooms[1].line1, QString("  2 Adults, 1 Child x 3 nights @ R110.00 per night."));
        QCOMPARE(doc.extras().size(), std::size_t(3));
        QCOMPARE(doc.total(), 100 + 660 + 30 + 91 + 20 - 250.0);
    }

    void invoiceWhoseRowsAreLostPrintsTheLiveAccountAndSaysSo()
    {
        db().execute("update account set invoiceno = 42 where bbaccountid = ?", {m_account});
        const AccountsDocument doc = build(DocumentType::Invoice, 42);
        QVERIFY(doc.fromLiveData());
        QCOMPARE(doc.total(), build(DocumentType::ProForma, 7).total());
        const auto sheet = parsed(partOf(written(doc), "xl/worksheets/sheet1.xml"));
        QVERIFY(cellShows(sheet, "A11").contains("stored items were not found"));
    }

    void creditNoteNegatesTheInvoiceAndShowsItsAccountsPayments()
    {
        invoice(100, 600);
        db().execute("insert into creditnote (CreditNoteNo, InvoiceNo, CreateDate) values (3, 42, '2026-08-02 10:00:00')");
        Result<AccountsDocument> doc = AccountsDocument::build(db(), m_rates, DocumentType::CreditNote, 0, 3);
        QVERIFY(doc.ok());
        QCOMPARE(doc->documentNo(), 3);
        QCOMPARE(doc->documentDate(), QDate(2026, 8, 2));
        QCOMPARE(doc->accountId(), m_account);
        QCOMPARE(doc->accommodation()[1].amount, -300.0);
        QCOMPARE(doc->extras()[0].amount, -91.0);
        QCOMPARE(doc->payments()[0].amount, -250.0);
        QCOMPARE(doc->total(), -(100 + 600 + 30 + 91 + 20) - 250.0);
    }

    void missingClientOrCreditNoteIsRefused()
    {
        Result<AccountsDocument> note = AccountsDocument::build(db(), m_rates, DocumentType::CreditNote, m_account, 99);
        QCOMPARE(note.refusal().id(), 6814);
        db().execute("delete from client");
        Result<AccountsDocument> doc = AccountsDocument::build(db(), m_rates, DocumentType::ProForma, m_account, 7);
        QCOMPARE(doc.refusal().id(), 6813);
    }

    void workbookHoldsEveryLineWithRowsInsertedAndSumsRewritten()
    {
        // Twelve more rooms than the template's line area holds.
        std::vector<std::tuple<qint32, int, int, QString>> legs;
        for (int room = 4; room <= 15; ++room) {
            addRoom(db(), room);
            legs.emplace_back(room, 1, 0, "");
        }
        addBooking(db(), m_account, m_client, QDate(2026, 9, 1), 2, legs, 50);
        const AccountsDocument doc = build(DocumentType::ProForma, 7);
        const QString path = written(doc);
        QCOMPARE(QFileInfo(path).fileName(), QString("Pro000007.xlsx"));
        QCOMPARE(QFileInfo(path).dir().path(), m_t->file("invoices"));

        const auto sheet = parsed(partOf(path, "xl/worksheets/sheet1.xml"));
        QCOMPARE(cellShows(sheet, "A4"), QString("Ms Jo Smith"));
        QCOMPARE(cellShows(sheet, "A5"), QString("12 Long Street"));
        QCOMPARE(cellShows(sheet, "A7"), QString("021 555 0199"));
        QCOMPARE(cellShows(sheet, "E3"), documentDateText());
        QCOMPARE(cellShows(sheet, "E4"), QString("7"));
        QCOMPARE(cellShows(sheet, "E5"), QString("ACC-1"));
        QCOMPARE(cellShows(sheet, "A13"), QString("Accommodation"));
        QCOMPARE(cellShows(sheet, "A14"), doc.accommodation()[0].heading);
        QCOMPARE(cellShows(sheet, "E15"), QString("100"));
        // 15 rooms of 4 rows (one has a reference line too): rows 14 to 74.
        const int lastRoom = 14 + 14 * 4 + 1;
        QCOMPARE(cellShows(sheet, QString("A%1").arg(lastRoom).toLatin1().constData()), doc.accommodation()[14].heading);
        const int extrasRow = lastRoom + 4;
        QCOMPARE(cellShows(sheet, QString("A%1").arg(extrasRow).toLatin1().constData()), QString("Extras"));
        QCOMPARE(cellShows(sheet, QString("A%1").arg(extrasRow + 1).toLatin1().constData()), QString("Room 1 (Bk ID 1)"));
        QCOMPARE(cellShows(sheet, QString("A%1").arg(extrasRow + 3).toLatin1().constData()), QString("Room 2 (Bk ID 2)"));
        // Headings are bold, lines keep the template's style.
        const int plain = cellIn(sheet, "A14").attribute("s").as_int();
        QVERIFY(cellIn(sheet, "A13").attribute("s").as_int() != plain);
        QCOMPARE(cellIn(sheet, QString("A%1").arg(extrasRow).toLatin1().constData()).attribute("s").as_int(),
                 cellIn(sheet, "A13").attribute("s").as_int());

        // The payments sit above the moved VMDeposit row, the total sums everything.
        const auto book = parsed(partOf(path, "xl/workbook.xml"));
        const pugi::xml_node names = book.document_element().child("definedNames");
        const CellRef deposit = parseCellRef(QString(names.find_child_by_attribute("name", "VMDeposit").child_value()).section('!', 1));
        const QByteArray paymentCell = QString("B%1").arg(deposit.row - 1).toLatin1();
        QCOMPARE(cellShows(sheet, paymentCell.constData()), QString("05 June 2026"));
        QCOMPARE(cellShows(sheet, QString("A%1").arg(deposit.row - 2).toLatin1().constData()), QString("Payments Made:"));
        const QByteArray totalCell = QString("E%1").arg(deposit.row + 1).toLatin1();
        QCOMPARE(cellShows(sheet, totalCell.constData()), QString("=SUM(E15:E%1)").arg(deposit.row));
        QCOMPARE(QString(names.find_child_by_attribute("name", "AccomTotal").child_value()),
                 QString("Invoice!$E$15:$E$%1").arg(lastRoom + 1));
    }

    void documentWithoutExtrasOrPaymentsHasNeitherHeading()
    {
        db().execute("delete from extra");
        db().execute("delete from payment");
        const auto sheet = parsed(partOf(written(build(DocumentType::ProForma, 7)), "xl/worksheets/sheet1.xml"));
        QString everything;
        for (const pugi::xpath_node &t : sheet.select_nodes("//is/t"))
            everything += QString::fromUtf8(t.node().child_value()) + "|";
        QVERIFY(!everything.contains("Extras|"));
        QVERIFY(!everything.contains("Payments Made:"));
        QCOMPARE(cellShows(sheet, "E34"), QString("=SUM(E15:E33)"));
    }

    void templateWithoutEndUsesRowThirty()
    {
        const AccountsDocument doc = build(DocumentType::ProForma, 7);
        const QByteArray withEnd = partOf(written(doc), "xl/worksheets/sheet1.xml");
        auto shipped = OoxmlPackage::open(m_t->file("proforma.xlsx"));
        QVERIFY(shipped.ok());
        QByteArray book = shipped->bytes("xl/workbook.xml");
        book.replace("<definedName name=\"End\">Invoice!$A$30</definedName>", "");
        QVERIFY(!book.contains("\"End\""));
        shipped->setBytes("xl/workbook.xml", book);
        save(*shipped, m_t->file("proforma.xlsx"));
        QCOMPARE(partOf(written(doc), "xl/worksheets/sheet1.xml"), withEnd);
    }

    void templateWithoutLineOrDepositCellIsRefusedAndNothingIsWritten_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("lines") << "VMInvLine";
        QTest::newRow("payments") << "VMDeposit";
    }
    void templateWithoutLineOrDepositCellIsRefusedAndNothingIsWritten()
    {
        QFETCH(QString, name);
        const AccountsDocument doc = build(DocumentType::ProForma, 7);
        InvoicePrint printer(0);
        const QString templatePath = printer.templatePath(DocumentType::ProForma);
        auto shipped = OoxmlPackage::open(templatePath);
        QByteArray book = shipped->bytes("xl/workbook.xml");
        book.replace(QString("name=\"%1\"").arg(name).toLatin1(), "name=\"Something\"");
        shipped->setBytes("xl/workbook.xml", book);
        save(*shipped, templatePath);
        QFile file(templatePath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray before = file.readAll();
        file.close();

        Result<QString> path = printer.makeInvoice(doc);
        QVERIFY(!path.ok());
        QCOMPARE(path.refusal().id(), 6811);
        QVERIFY(path.refusal().text().contains(name));
        QVERIFY(!QFile::exists(m_t->file("invoices/Pro000007.xlsx")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
    }

    void filesAreNamedByTypeAndNumberInTheConfiguredFolder()
    {
        const InvoicePrint printer(0);
        QCOMPARE(QFileInfo(*printer.documentPath(DocumentType::Invoice, 42)).fileName(), QString("Inv000042.xlsx"));
        QCOMPARE(QFileInfo(*printer.documentPath(DocumentType::CreditNote, 42)).fileName(), QString("Cre000042.xlsx"));
        writeConfig("InvoiceDir2", "elsewhere");
        QDir(m_t->home()).mkpath("elsewhere");
        QCOMPARE(*InvoicePrint(2).documentPath(DocumentType::ProForma, 7), m_t->file("elsewhere/Pro000007.xlsx"));
        QVERIFY(!InvoicePrint(2).docExists(DocumentType::ProForma, 7));

        writeConfig("InvoiceDir3", "/nowhere/at/all");
        const Result<QString> missing = InvoicePrint(3).documentPath(DocumentType::Invoice, 1);
        QCOMPARE(missing.refusal().id(), 6820);
        QVERIFY(missing.refusal().text().contains("InvoiceDir3=/nowhere/at/all"));
    }

    void missingTemplateOutsideTheHomeFolderIsRefused()
    {
        QDir(m_t->home()).mkpath("templates");
        writeConfig("TemplateDir", m_t->file("templates"));
        const Result<QString> path = InvoicePrint(0).makeInvoice(build(DocumentType::ProForma, 7));
        QCOMPARE(path.refusal().id(), 6818);
        QCOMPARE(path.refusal().title(), QString("Could not find ") + QDir::toNativeSeparators(m_t->file("templates/proforma.xlsx")));
        QCOMPARE(QDir(m_t->file("invoices")).entryList(QDir::Files), QStringList());
    }

    void documentOpenInLibreOfficeIsNotOverwritten()
    {
        const AccountsDocument doc = build(DocumentType::ProForma, 7);
        const QString path = written(doc);
        QFile lock(m_t->file("invoices/.~lock.Pro000007.xlsx#"));
        QVERIFY(lock.open(QIODevice::WriteOnly));
        lock.close();
        QFile::resize(path, 10);
        const Result<QString> again = InvoicePrint(0).makeInvoice(doc);
        QCOMPARE(again.refusal().id(), 6807);
        QCOMPARE(QFileInfo(path).size(), 10);
    }

    void libreOfficeOpensTheWorkbookWithItsTotalsWorkedOut()
    {
        if (libreOfficeProgram().isEmpty())
            QSKIP("LibreOffice is not installed");
        const QString path = written(build(DocumentType::ProForma, 7));
        QTemporaryDir profile;
        QProcess soffice;
        soffice.start(libreOfficeProgram(), {"-env:UserInstallation=file://" + profile.path(), "--headless", "--convert-to",
                                             "csv", "--outdir", m_t->home(), path});
        QVERIFY(soffice.waitForFinished(120000));
        QFile csv(m_t->file("Pro000007.csv"));
        QVERIFY(csv.open(QIODevice::ReadOnly));
        const QStringList rows = QString::fromUtf8(csv.readAll()).split('\n');
        QCOMPARE(rows.value(3), QString("Ms Jo Smith,,,Pro forma No:,7"));
        QVERIFY(rows.contains("\"  2 Adults, 1 Child x 3 nights @ R100.00 per night.\",,,,300"));
        QVERIFY(rows.contains(",05 June 2026,,,-250"));
        QVERIFY(rows.contains(",,,Total due:,591"));
    }
};

QTEST_GUILESS_MAIN(TestAccountsDocuments)
#include "test_accountsdocuments.moc"

// Booking letters: the bookmarks' values, the letters written from Fenlark's own
// templates (and a property's .dotx), the text summary and the PDF copy.
#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "ooxmlfixtures.h"
#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "rates/roomrates.h"
#include "reports/documenttext.h"
#include "reports/pdfconverter.h"
#include "reports/printbooking.h"
#include "shell/config.h"
#include "shell/strings.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;
using namespace fixtures;

class TestBookingLetters : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_t;
    RateData m_rates;
    qint32 m_booking = 0, m_maker = 0, m_account = 0;

    Database &db() { return m_t->db(); }

    // Booking of Mr Sipho O'Neil & Sons: rooms 3, 1 and 2 (drawn in that order) for two
    // nights from Friday 3 July 2026; room 1 (two adults, one child) holds a second
    // guest; extras of wine; a deposit of 150 and a payment of 200.
    void seed()
    {
        db().execute("insert into bbsetup (BBID, CurrencyCode) values (20001, 'ZAR')");
        db().execute("insert into room (BBRoomID, RoomName, OrderBy) values (1, 'Garden', 2), (2, 'Loft', 3), (3, 'Suite', 1)");
        db().execute("insert into stock (BBStockID, StockName) values (9, 'Wine')");
        db().execute("insert into client (BBClientID, Title, FirstName, Surname, Company, Email, PhoneNo, Active) values "
                     "(1, 'Mr', 'Sipho', 'O''Neil', 'O''Neil & <Sons>', 'sipho@example.org', '082 555 0101', 'Y'), "
                     "(2, 'Mr', 'Lerato', 'Dube', '', '', '082 555 0101', 'Y')");
        db().execute("insert into account (BBAccountID, InvoiceTo, Status) values (1, 1, 'O')");
        db().execute("insert into booking (BBBookingID, FromDate, ToDate, MadeBy, BBAccountID, Status, Deposit, Source, Notes) "
                     "values (1, '2026-07-03', '2026-07-05', 1, 1, 'C', 150, 'Website', 'Late arrival & <quiet> room')");
        m_maker = m_account = m_booking = 1;
        // room, adults, children, reference, second guest, rate
        for (const QVariantList &leg : {QVariantList{1, 2, 1, "REF-1", 2, 100}, QVariantList{2, 1, 0, "", 0, 80},
                                        QVariantList{3, 2, 0, "REF-3", 0, 120.5}}) {
            db().execute("insert into guest (BBBookingID, BBClientID, BBRoomID, NoAdults, Child1, Reference, BBClient2ID) "
                         "values (1, 1, ?, ?, ?, ?, ?)", leg.mid(0, 5));
            for (const char *night : {"2026-07-03", "2026-07-04"})
                db().execute("insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values (?, 1, ?, ?)",
                             {night, leg[0], leg[5]});
        }
        db().execute("insert into payment (BBAccountID, Amount, PaymentDate) values (1, 200, '2026-06-01')");
    }

    void addWine(double qty, double price, const QDate &date)
    {
        db().execute("insert into extra (BBGuestID, BBAccountID, BBStockID, Qty, Price, ExtraDate) "
                     "values ((select bbguestid from guest where bbroomid = 1), 1, 9, ?, ?, ?)", {qty, price, sqlDate(date)});
    }

    QHash<QString, QString> bookmarks(LetterKind kind, qint32 room = 0)
    {
        auto values = letterBookmarks(db(), m_rates, kind, m_booking, room);
        if (!values)
            qFatal("%s", qPrintable(values.refusal().text()));
        return *values;
    }

private Q_SLOTS:
    void init()
    {
        StringTable::instance().setLanguage(EnglishLanguage);
        m_t = std::make_unique<TestDatabase>();
        seed();
    }

    void confirmationListsEveryRoomGuestReferenceAndExtra()
    {
        addWine(2, 45, QDate(2026, 7, 4));
        addWine(1, 30, QDate(2026, 7, 3));
        const auto v = bookmarks(LetterKind::Confirmation);
        QCOMPARE(v.value("Rooms"), QString("Manual rates x 2 Adults @ R120.50 per night\n"
                                           "Manual rates x 2 Adults, 1 Child @ R100.00 per night\n"
                                           "Manual rates x 1 Adult @ R80.00 per night\n"
                                           "Total - R601.00"));
        QCOMPARE(v.value("GuestNames"), QString("Mr Sipho O'Neil @ O'Neil & <Sons>\nMr Sipho O'Neil @ O'Neil & <Sons>\n"
                                                "Mr Lerato Dube\nMr Sipho O'Neil @ O'Neil & <Sons>\n"));
        QCOMPARE(v.value("References"), QString("REF-3\nREF-1\n\n"));
        QCOMPARE(v.value("Extras"), QString("Wine\n1 x Wine @ R30.00\nWine\n2 x Wine @ R45.00\n\nTotal - R120.00"));
        QCOMPARE(v.value("Total"), QString("601.00"));
        QCOMPARE(v.value("Deposit"), QString("150.00"));
        QCOMPARE(v.value("TotalPayments"), QString("200.00"));
        QCOMPARE(v.value("Balance"), QString("521.00"));
        QCOMPARE(v.value("NoRooms"), QString("3"));
        QCOMPARE(v.value("TotGuests"), QString("6"));
        QCOMPARE(v.value("NoNights"), QString("2"));
        QCOMPARE(v.value("Arrival"), QString("Fri 03 July 2026"));
        QCOMPARE(v.value("MadeBy"), QString("Mr Sipho O'Neil"));
        QCOMPARE(v.value("BookingID"), QString::number(m_booking));
    }

    void confirmationWithoutExtrasReadsJustAZeroTotal()
    {
        QCOMPARE(bookmarks(LetterKind::Confirmation).value("Extras"), QString("\nTotal - R0.00"));
    }

    void registrationDescribesOneRoomAndLeavesExtrasOutOfTheBalance()
    {
        addWine(1, 30, QDate(2026, 7, 3));
        db().execute("insert into clientextra (BBClientID, FieldType, FieldValue) values (?, 'N', 'South African')", {m_maker});
        const auto v = bookmarks(LetterKind::Registration, 3);
        QCOMPARE(v.value("RoomName"), QString("Suite"));
        QCOMPARE(v.value("RoomTotal"), QString("241.00"));
        QCOMPARE(v.value("RoomRate"), QString("120.50"));
        QCOMPARE(v.value("RateCode"), QString("Manual rates"));
        QCOMPARE(v.value("GuestName"), QString("Mr Sipho O'Neil"));
        QCOMPARE(v.value("GuestCompany"), QString("O'Neil & <Sons>"));
        QCOMPARE(v.value("Nationality"), QString("South African"));
        QCOMPARE(v.value("NoGuests"), QString("2"));
        QCOMPARE(v.value("Reference"), QString("REF-3"));
        QCOMPARE(v.value("Balance"), QString("401.00"));
    }

    void rateNamesAreReadWithoutThePrices()
    {
        db().execute("insert into roomtype (BBRTID, RTName) values (4, 'Double & Twin')");
        db().execute("insert into rtmealplan (BBMealPlanRC, BBRTID, BBMealPlanID) values (8, 4, 2)");
        db().execute("insert into ratecode (BBRateID, Source, SourceID) values (31, 'R', 8)");
        db().execute("insert into package (BBPackageID, PackageCode) values (6, 'Winter <3>')");
        db().execute("insert into ratecode (BBRateID, Source, SourceID) values (32, 'K', 6)");
        db().execute("update guest set bbrateid = 31 where bbroomid = 3");
        db().execute("update guest set bbrateid = 32 where bbroomid = 1");
        const RateData names = loadRateNames(db());
        const RateData whole = RateData::load(db());
        for (const qint32 rate : {0, 31, 32, 99})
            QCOMPARE(getRateName(names, rate), getRateName(whole, rate));
        auto values = letterBookmarks(db(), names, LetterKind::Registration, m_booking, 3);
        QCOMPARE(values->value("RateCode"), getRateName(whole, 31));
        QVERIFY(values->value("RateCode").startsWith("Double & Twin - "));
        values = letterBookmarks(db(), names, LetterKind::Confirmation, m_booking, 0);
        QVERIFY(values->value("Rooms").contains("Winter <3> x 2 Adults, 1 Child @ R100.00 per night"));
    }

    void missingBookingOrGuestIsRefusedAndNothingIsWritten()
    {
        PrintBooking printer(db(), m_rates, 0);
        Result<PrintedLetter> letter = printer.printLetter(LetterKind::Confirmation, 999, 0);
        QCOMPARE(letter.refusal().id(), 2294);
        letter = printer.printLetter(LetterKind::Registration, m_booking, 7);
        QCOMPARE(letter.refusal().id(), 1964);
        QCOMPARE(QDir(m_t->file("letters")).entryList(QDir::Files), QStringList());
        QCOMPARE(printer.printSummary(999).refusal().id(), 1904);
    }

    void threeRoomRegistrationWritesOneLetterPerRoomTheShownRoomFirst()
    {
        PrintBooking printer(db(), m_rates, 0);
        QCOMPARE(printer.otherRooms(m_booking, 1), (std::vector<qint32>{3, 2}));
        QStringList texts;
        for (const qint32 room : {1, 3, 2}) {
            Result<PrintedLetter> letter = printer.printLetter(LetterKind::Registration, m_booking, room);
            QVERIFY(letter.ok());
            QVERIFY(letter->email.isEmpty());
            texts << documentText(partOf(letter->path, "word/document.xml"));
        }
        QCOMPARE(QDir(m_t->file("letters")).entryList(QDir::Files).size(), 3);
        QVERIFY(texts[0].contains("Room: Garden"));
        QVERIFY(texts[1].contains("Room: Suite"));
        QVERIFY(texts[2].contains("Room: Loft"));
        QVERIFY(!texts[0].contains(QString::fromUtf8("«")));
    }

    void confirmationLetterFromTheShippedTemplateCarriesTheValuesAndTheEmail()
    {
        PrintBooking printer(db(), m_rates, 0);
        Result<PrintedLetter> letter = printer.printLetter(LetterKind::Confirmation, m_booking, 0);
        QVERIFY(letter.ok());
        QCOMPARE(letter->email, QString("sipho@example.org"));
        QCOMPARE(QFileInfo(letter->path).fileName(), QString("Confirmation%1.docx").arg(m_booking, 6, 10, QChar('0')));
        const QString text = documentText(partOf(letter->path, "word/document.xml"));
        QVERIFY(text.contains("Arrival: Fri 03 July 2026"));
        QVERIFY(text.contains("Notes: Late arrival & <quiet> room"));
        QVERIFY(text.contains("Dear Mr O'Neil,"));
        QVERIFY(text.contains("Manual rates x 2 Adults @ R120.50 per night\n"));
        QVERIFY(!text.contains(QString::fromUtf8("«")));
        QVERIFY(documentText(partOf(letter->path, "word/footer1.xml")).contains(QString::number(m_booking)));
    }

    void spanishTemplateIsFilledThroughItsTranslatedBookmarks()
    {
        StringTable::instance().setLanguage(SpanishLanguage);
        Result<PrintedLetter> letter = PrintBooking(db(), m_rates, 0).printLetter(LetterKind::Confirmation, m_booking, 0);
        StringTable::instance().setLanguage(EnglishLanguage);
        QVERIFY(letter.ok());
        const QString text = documentText(partOf(letter->path, "word/document.xml"));
        QVERIFY(text.contains("Llegada: vie 03 julio 2026") || text.contains(QString::fromUtf8("Llegada: vie. 03 julio 2026")));
        QVERIFY(text.contains("x 2 adultos, 1 niño @ R100.00 por noche"));
        QVERIFY(!text.contains(QString::fromUtf8("«")));
    }

    void propertysDotxTemplateIsUsedAndSavedAsADocument()
    {
        OoxmlPackage dotx = documentPackage(QStringLiteral("<w:p><w:r><w:t xml:space=\"preserve\">Total: </w:t></w:r>"
                                                           "<w:bookmarkStart w:id=\"0\" w:name=\"Total\"/><w:bookmarkEnd w:id=\"0\"/></w:p>"),
                                            {}, {}, true);
        save(dotx, m_t->file("Confirmation2.dotx"));
        PrintBooking printer(db(), m_rates, 2);
        QCOMPARE(printer.templatePath(LetterKind::Confirmation), m_t->file("Confirmation2.dotx"));
        Result<PrintedLetter> letter = printer.printLetter(LetterKind::Confirmation, m_booking, 0);
        QVERIFY(letter.ok());
        QVERIFY(letter->path.startsWith(m_t->file("letters2")));
        QVERIFY(partOf(letter->path, "[Content_Types].xml").contains("document.main+xml"));
        QCOMPARE(documentText(partOf(letter->path, "word/document.xml")), QString("Total: 601.00"));
    }

    void templateMissingFromThePropertysFolderIsRefused()
    {
        QDir(m_t->home()).mkpath("own");
        writeConfig("TemplateDir", m_t->file("own"));
        const Result<PrintedLetter> letter = PrintBooking(db(), m_rates, 0).printLetter(LetterKind::Registration, m_booking, 1);
        QCOMPARE(letter.refusal().id(), 1929);
        QVERIFY(letter.refusal().text().endsWith(QDir::toNativeSeparators(m_t->file("own/Registration.docx"))));
    }

    void summaryTellsTheBookingLineByLine()
    {
        addWine(1, 30, QDate(2026, 7, 3));
        db().execute("update guest set bbaccountid = 99 where bbroomid = 2");
        Result<QString> path = PrintBooking(db(), m_rates, 0).printSummary(m_booking);
        QVERIFY(path.ok());
        QCOMPARE(*path, m_t->file("VMWordPad.txt"));
        QFile file(*path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
        QCOMPARE(lines.mid(0, 14), (QStringList{QString("Booking ID: %1  VMID: 0").arg(m_booking), "", "Source: Website", "",
                                                "Made By: Mr Sipho O'Neil @ O'Neil & <Sons>",
                                                "Invoice To: Mr Sipho O'Neil @ O'Neil & <Sons>", "Status: Confirmed",
                                                "Accomm: 601.00", "Extras: 30.00",
                                                "Receipts: 200.00, last payment: Mon 01 Jun 2026", "Balance O/S: 431.00",
                                                "Pro forma No.: 0", "", "Arriving: 03 Fri Jul 2026"}));
        QVERIFY(lines.contains("Late arrival & <quiet> room"));
        QVERIFY(lines.contains("2 Adults, 0 Children in Suite  Mr Sipho O'Neil"));
        QVERIFY(lines.contains("1 Adult, 0 Children in Loft  Mr Sipho O'Neil (Invoiced to guest)"));
        QVERIFY(lines.contains("2 Adults, 1 Child in Garden  Mr Sipho O'Neil"));
    }

    void pdfCopyNeedsLibreOfficeAndLeavesNothingHalfMade()
    {
        Result<PrintedLetter> letter = PrintBooking(db(), m_rates, 0).printLetter(LetterKind::Confirmation, m_booking, 0);
        QVERIFY(letter.ok());
        const QString pdf = QString(letter->path).replace(".docx", ".pdf");

        Progress unwatched;
        qputenv("FENLARK_SOFFICE", m_t->file("no-such-program").toLocal8Bit());
        Result<QString> copy = convertToPdf(letter->path, unwatched);
        QCOMPARE(copy.refusal().id(), 6830);
        qputenv("FENLARK_SOFFICE", "/bin/false");
        copy = convertToPdf(letter->path, unwatched);
        QCOMPARE(copy.refusal().id(), 6832);
        // A conversion that hangs is stopped from its watcher at once.
        const QString hanging = m_t->file("hanging-office");
        QFile script(hanging);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nsleep 60\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("FENLARK_SOFFICE", hanging.toLocal8Bit());
        int asked = 0;
        Progress stopAtOnce([&](qint64, qint64, const QString &) { return ++asked < 2; });
        copy = convertToPdf(letter->path, stopAtOnce);
        QCOMPARE(copy.refusal().id(), 6852);
        QCOMPARE(asked, 2);
        QVERIFY(!QFile::exists(pdf));
        QCOMPARE(QDir(m_t->file("letters")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QFileInfo(letter->path).fileName()});
        qunsetenv("FENLARK_SOFFICE");

        if (libreOfficeProgram().isEmpty())
            QSKIP("LibreOffice is not installed");
        copy = convertToPdf(letter->path, unwatched);
        QVERIFY2(copy.ok(), qPrintable(copy.ok() ? QString() : copy.refusal().text()));
        QCOMPARE(*copy, pdf);
        QFile file(pdf);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.read(5) == "%PDF-");
    }
};

QTEST_GUILESS_MAIN(TestBookingLetters)
#include "test_bookingletters.moc"

// Documents on the generated property: an invoice of a 3-room,
// 14-night booking with 20 extras made from the template and saved as .xlsx, and a
// Registration letter. Each iteration does what the desk does on a click: reads the
// rate names, gathers the document, fills the template and writes the file.
#include "generatedproperty.h"

#include "accounts/accountrecords.h"
#include "bookings/bookingrecords.h"
#include "rates/ratedata.h"
#include "reports/documenttext.h"
#include "reports/accountsdocument.h"
#include "reports/invoiceprint.h"
#include "reports/printbooking.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

using namespace fenlark;

namespace {

struct Invoiced {
    qint32 account = 0;
    qint32 booking = 0;
    qint32 room = 0;
};

// A fresh 3-room, 14-night booking with 20 extras and two payments, invoiced as 900001.
Invoiced invoicedBooking(Database &db)
{
    static Invoiced made = [&db] {
        Invoiced out;
        const qint32 client = db.scalar(QStringLiteral("select min(bbclientid) from client")).toInt();
        Account account;
        account.InvoiceTo = client;
        account.Status = QStringLiteral("C");
        account.Reference = QStringLiteral("BENCH");
        account.update(db);
        out.account = account.BBAccountID;
        Booking booking;
        booking.FromDate = QDate(2030, 3, 1);
        booking.ToDate = booking.FromDate.addDays(14);
        booking.MadeBy = client;
        booking.BBAccountID = out.account;
        booking.Status = QStringLiteral("C");
        booking.update(db);
        out.booking = booking.BBBookingID;
        const qint32 stock = db.scalar(QStringLiteral("select min(bbstockid) from stock")).toInt();
        QSqlQuery rooms = db.query(QStringLiteral("select bbroomid from room order by orderby limit 3"));
        std::vector<qint32> roomIds;
        while (rooms.next())
            roomIds.push_back(rooms.value(0).toInt());
        out.room = roomIds.front();
        std::vector<qint32> legs;
        for (const qint32 room : roomIds) {
            Guest leg;
            leg.BBBookingID = booking.BBBookingID;
            leg.BBRoomID = room;
            leg.BBClientID = client;
            leg.NoAdults = 2;
            leg.Reference = QStringLiteral("R-%1").arg(room);
            leg.update(db);
            legs.push_back(leg.BBGuestID);
            for (int night = 0; night < 14; ++night) {
                DailyRate rate;
                rate.CalDate = booking.FromDate.addDays(night);
                rate.BBBookingID = booking.BBBookingID;
                rate.BBRoomID = room;
                rate.RoomRate = 850 + night;
                rate.update(db);
            }
        }
        for (int i = 0; i < 20; ++i) {
            Extra extra;
            extra.BBGuestID = legs[static_cast<std::size_t>(i % 3)];
            extra.BBAccountID = out.account;
            extra.BBStockID = stock;
            extra.ExtraDate = booking.FromDate.addDays(i % 14);
            extra.Qty = 1 + i % 3;
            extra.Price = 35.5;
            extra.update(db);
        }
        for (const double amount : {5000.0, 2500.0}) {
            Payment payment;
            payment.BBAccountID = out.account;
            payment.Amount = amount;
            payment.PaymentDate = QDate(2030, 2, 1);
            payment.update(db);
        }
        Invoice invoice;
        invoice.InvoiceNo = 900001;
        invoice.BBClientID = client;
        invoice.BBAccountID = out.account;
        invoice.CreateDate = QDateTime(QDate(2030, 3, 15), QTime(10, 0));
        invoice.update(db);
        InvoiceItem bookingItem;
        bookingItem.BBInvoiceID = invoice.BBInvoiceID;
        bookingItem.itemType = QStringLiteral("B");
        bookingItem.ItemID = booking.BBBookingID;
        bookingItem.Qty = 1;
        bookingItem.Price = db.scalar(QStringLiteral("select sum(roomrate) from dailyrate where bbbookingid = ?"),
                                      {booking.BBBookingID}).toDouble();
        bookingItem.update(db);
        QSqlQuery extras = db.query(QStringLiteral("select bbextraid, extradate, qty, price from extra where bbaccountid = ?"),
                                    {out.account});
        std::vector<InvoiceItem> items;
        while (extras.next()) {
            InvoiceItem item;
            item.BBInvoiceID = invoice.BBInvoiceID;
            item.itemType = QStringLiteral("X");
            item.ItemID = extras.value(0).toInt();
            item.ItemDate = extras.value(1).toString();
            item.Description = QStringLiteral("Wine");
            item.Qty = extras.value(2).toDouble();
            item.Price = extras.value(3).toDouble();
            items.push_back(item);
        }
        for (InvoiceItem &item : items)
            item.update(db);
        db.execute(QStringLiteral("update account set invoiceno = 900001 where bbaccountid = ?"), {out.account});
        return out;
    }();
    return made;
}

Database &database()
{
    static std::unique_ptr<Database> db = Database::open(bench::generatedProperty());
    return *db;
}

void BM_InvoiceFromTemplateToXlsx(benchmark::State &state)
{
    Database &db = database();
    const Invoiced invoiced = invoicedBooking(db);
    const InvoicePrint printer(0);
    for (auto _ : state) {
        const RateData rates = loadRateNames(db);
        Result<AccountsDocument> doc = AccountsDocument::build(db, rates, DocumentType::Invoice, invoiced.account, 900001);
        Result<QString> path = printer.makeInvoice(*doc);
        if (!path)
            state.SkipWithError(qPrintable(path.refusal().text()));
        benchmark::DoNotOptimize(path);
    }
}
BENCHMARK(BM_InvoiceFromTemplateToXlsx)->Unit(benchmark::kMillisecond);

void BM_RegistrationLetter(benchmark::State &state)
{
    Database &db = database();
    const Invoiced invoiced = invoicedBooking(db);
    for (auto _ : state) {
        const RateData rates = loadRateNames(db);
        PrintBooking printer(db, rates, 0);
        Result<PrintedLetter> letter = printer.printLetter(LetterKind::Registration, invoiced.booking, invoiced.room);
        if (!letter)
            state.SkipWithError(qPrintable(letter.refusal().text()));
        benchmark::DoNotOptimize(letter);
    }
}
BENCHMARK(BM_RegistrationLetter)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

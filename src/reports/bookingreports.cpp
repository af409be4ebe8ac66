// The reports over bookings: Booking Summary, Arrivals/Departures, In-House, Marketing.
#include "reports/reportbuilders.h"
#include "reports/reportlookups.h"
#include "reports/reporttable.h"
#include "shell/database.h"
#include "shell/money.h"
#include "shell/stayoverlap.h"
#include "shell/strings.h"

#include <QHash>

namespace fenlark {

namespace {

QString toText()
{
    return getString(1688, QStringLiteral(" to "));
}

// "01/03/2026", or "01/03/2026 to 07/03/2026" for a span of days.
QString daysText(const QDate &from, const QDate &to)
{
    return from == to ? titleDate(from) : titleDate(from) + toText() + titleDate(to);
}

qint64 legKey(qint32 bookingId, qint32 roomId)
{
    return (static_cast<qint64>(bookingId) << 32) | static_cast<quint32>(roomId);
}

struct NightsTotal {
    double total = 0;
    int count = 0;
};

// The nightly rates within the dates of every leg that stays then, by leg.
QHash<qint64, NightsTotal> ratesWithin(Database &db, const QDate &from, const QDate &to)
{
    QHash<qint64, NightsTotal> rates;
    QSqlQuery q = db.query(QStringLiteral("select d.BBBookingID, d.BBRoomID, sum(d.RoomRate), count(*) "
                                          "from booking b join dailyrate d on d.BBBookingID = b.BBBookingID "
                                          "where ") + stayOverlapSql(QStringLiteral("b"))
                               + QStringLiteral(" and d.CalDate >= ? and d.CalDate <= ? group by d.BBBookingID, d.BBRoomID"),
                           stayOverlapValues(from, to) << sqlDate(from) << sqlDate(to));
    while (q.next())
        rates.insert(legKey(q.value(0).toInt(), q.value(1).toInt()), {q.value(2).toDouble(), q.value(3).toInt()});
    return rates;
}

// A sum per key from a two-column query.
QHash<qint32, double> sumsBy(Database &db, const QString &sql, const QVariantList &values)
{
    QHash<qint32, double> sums;
    QSqlQuery q = db.query(sql, values);
    while (q.next())
        sums.insert(q.value(0).toInt(), q.value(1).toDouble());
    return sums;
}

} // namespace

ReportSheet bookingSummary(Database &db, const ReportCriteria &criteria)
{
    enum {
        BookingId = 1, ArriveDate, LastNight, MadeBy, GuestName, Adults, Children, AvgRate, Nights, Commission,
        RoomName, InvoiceNo, ProForma, Type, VMID, Source, BookingDate, Status, PaidToDate, AppliedRate, Currency,
        ExRate, Company, Revenue, Nett
    };
    ReportSheet sheet;
    sheet.setTitle(getString(6231, QStringLiteral("Bookings Report from ")) + titleDate(criteria.from) + toText() +
                   titleDate(criteria.to));
    sheet.setOrientation(ReportSheet::Landscape);
    ReportTable table(sheet, 3,
                      {reportColumn(6253, "Booking ID", ColumnKind::Number),
                       reportColumn(6254, "Arrive Date", ColumnKind::Date),
                       reportColumn(6255, "Last Night", ColumnKind::Date),
                       reportColumn(6256, "Made By"),
                       reportColumn(6257, "Guest Name"),
                       reportColumn(6258, "Adults", ColumnKind::Number, true),
                       reportColumn(6259, "Children", ColumnKind::Number, true),
                       reportColumn(6260, "Avg Rate", ColumnKind::Money),
                       reportColumn(6261, "Nights", ColumnKind::Number, true),
                       reportColumn(6262, "Commission", ColumnKind::Money, true),
                       reportColumn(6263, "Room Name"),
                       reportColumn(6264, "Inv. No.", ColumnKind::Number),
                       reportColumn(6265, "Pro Forma", ColumnKind::Number),
                       reportColumn(6266, "Type"),
                       reportColumn(6267, "VMID", ColumnKind::Number),
                       reportColumn(6268, "Source"),
                       reportColumn(6269, "Booking Date", ColumnKind::DateTime),
                       reportColumn(6270, "Status"),
                       reportColumn(6271, "PaidToDate", ColumnKind::Money),
                       reportColumn(6272, "Applied Rate"),
                       reportColumn(6273, "Currency"),
                       reportColumn(6274, "Ex.Rate", ColumnKind::Number),
                       reportColumn(6275, "Company"),
                       reportColumn(6276, "Revenue", ColumnKind::Money, true),
                       reportColumn(6277, "Nett", ColumnKind::Money, true)});

    const QHash<qint64, NightsTotal> rates = ratesWithin(db, criteria.from, criteria.to);
    const QHash<qint32, double> extras =
        sumsBy(db, QStringLiteral("select BBGuestID, sum(Qty * Price) from extra where ExtraDate >= ? and ExtraDate <= ? "
                                  "group by BBGuestID"),
               {sqlDate(criteria.from), sqlDate(criteria.to)});
    const QHash<qint32, double> payments =
        sumsBy(db, QStringLiteral("select BBAccountID, sum(Amount) from payment group by BBAccountID"), {});
    const StatusNames statuses(db);
    RateNames rateNames(db);
    const QDate endOfRange = criteria.to.addDays(1);

    QSqlQuery q = db.query(
        QStringLiteral("select b.BBBookingID, b.BookingID, b.BookingType, b.BookingDate, b.FromDate, b.ToDate, b.Status, "
                       "b.AgentComm, b.Source, b.CurrencyCode, b.ExchangeRate, g.BBGuestID, g.BBRoomID, g.BBRateID, "
                       "g.NoAdults, g.Child1 + g.Child2, c.Title, c.FirstName, c.Surname, c.Company, "
                       "m.Title, m.FirstName, m.Surname, m.Company, r.RoomName, a.BBAccountID, a.InvoiceNo, a.ProformaNo "
                       "from booking b join guest g on g.BBBookingID = b.BBBookingID "
                       "left join client c on c.BBClientID = g.BBClientID "
                       "left join client m on m.BBClientID = b.MadeBy "
                       "left join room r on r.BBRoomID = g.BBRoomID "
                       "left join account a on a.BBAccountID = "
                       "(case when g.BBAccountID > 0 then g.BBAccountID else b.BBAccountID end) "
                       "where ") + stayOverlapSql(QStringLiteral("b")) + QStringLiteral(" order by b.FromDate, b.BBBookingID, g.BBGuestID"),
        stayOverlapValues(criteria.from, criteria.to));
    while (q.next()) {
        const qint32 bookingId = q.value(0).toInt();
        const QDate from = sqlDay(q.value(4));
        const QDate to = sqlDay(q.value(5));
        const qint32 roomId = q.value(12).toInt();
        const NightsTotal nights = rates.value(legKey(bookingId, roomId));
        const double accommodation = nights.total;
        const double revenue = accommodation + extras.value(q.value(11).toInt());
        const double commission = roundMoney(accommodation * q.value(7).toDouble() / 100.0);
        const qint32 accountId = q.value(25).toInt();

        table.addRow();
        table.number(BookingId, bookingId);
        table.date(ArriveDate, from);
        table.date(LastNight, to.addDays(-1));
        table.text(MadeBy, clientNameAt(q, 20));
        table.text(GuestName, clientNameAt(q, 16));
        table.number(Adults, q.value(14).toInt());
        table.number(Children, q.value(15).toInt());
        table.number(AvgRate, nights.count > 0 ? nights.total / nights.count : 0.0);
        table.number(Nights, std::max<qint64>(0, std::max(from, criteria.from).daysTo(std::min(to, endOfRange))));
        table.number(Commission, commission);
        table.text(RoomName, q.value(24).toString());
        if (q.value(26).toInt() > 0)
            table.number(InvoiceNo, q.value(26).toInt());
        if (q.value(27).toInt() > 0)
            table.number(ProForma, q.value(27).toInt());
        table.text(Type, bookingTypeGroup(q.value(2).toString()));
        if (q.value(1).toInt() > 0)
            table.number(VMID, q.value(1).toInt());
        table.text(Source, q.value(8).toString());
        table.dateTime(BookingDate, sqlDay(q.value(3)), sqlTime(q.value(3)));
        table.text(Status, statuses.name(q.value(6).toString()));
        table.number(PaidToDate, accountId > 0 ? payments.value(accountId) : 0.0);
        table.text(AppliedRate, rateNames.name(q.value(13).toInt()));
        table.text(Currency, q.value(9).toString());
        table.number(ExRate, q.value(10).toDouble());
        table.text(Company, q.value(19).toString());
        table.number(Revenue, revenue);
        table.number(Nett, revenue - commission);
    }
    table.finish(true);
    return sheet;
}

namespace {

// One part of the Arrivals/Departures report: the legs whose stay begins (or
// ends) within the dates, in the rooms' order.
int stayEndTable(Database &db, ReportSheet &sheet, int titleRow, const QString &title, const char *dateColumn,
                 const ReportCriteria &criteria)
{
    enum { RoomName = 1, GuestName, NoGuests, BookingId, Nights, Additional, PhoneNo, Notes };
    sheet.setHeadline(titleRow, title);
    ReportTable table(sheet, titleRow + 2,
                      {reportColumn(6263, "Room Name"), reportColumn(6257, "Guest Name"),
                       reportColumn(6299, "No Guests", ColumnKind::Number),
                       reportColumn(6300, "BookingID", ColumnKind::Number),
                       reportColumn(6261, "Nights", ColumnKind::Number), reportColumn(6301, "Additional"),
                       reportColumn(6290, "Phone No"), reportColumn(6302, "Notes", ColumnKind::Notes)});
    QSqlQuery q = db.query(
        QStringLiteral("select r.RoomName, c.Title, c.FirstName, c.Surname, c.Company, "
                       "g.NoAdults + g.Child1 + g.Child2, b.BBBookingID, b.FromDate, b.ToDate, "
                       "s.Title, s.FirstName, s.Surname, s.Company, c.PhoneNo, b.Notes "
                       "from booking b join guest g on g.BBBookingID = b.BBBookingID "
                       "left join client c on c.BBClientID = g.BBClientID "
                       "left join client s on g.BBClient2ID > 0 and s.BBClientID = g.BBClient2ID "
                       "left join room r on r.BBRoomID = g.BBRoomID "
                       "where b.%1 >= ? and b.%1 <= ? order by r.OrderBy, b.FromDate, b.BBBookingID")
            .arg(QLatin1String(dateColumn)),
        {sqlDate(criteria.from), sqlDate(criteria.to)});
    while (q.next()) {
        table.addRow();
        table.text(RoomName, q.value(0).toString());
        table.text(GuestName, clientNameAt(q, 1));
        table.number(NoGuests, q.value(5).toInt());
        table.number(BookingId, q.value(6).toInt());
        table.number(Nights, sqlDay(q.value(7)).daysTo(sqlDay(q.value(8))));
        table.text(Additional, clientNameAt(q, 9));
        table.text(PhoneNo, q.value(13).toString());
        table.text(Notes, q.value(14).toString());
    }
    return table.finish(false);
}

} // namespace

ReportSheet arrivalsDepartures(Database &db, const ReportCriteria &criteria)
{
    ReportSheet sheet;
    const QString days = daysText(criteria.from, criteria.to);
    sheet.setTitle(getString(6233, QStringLiteral("Arrivals for ")) + days);
    const int next = stayEndTable(db, sheet, 1, sheet.title(), "FromDate", criteria);
    stayEndTable(db, sheet, next + 1, getString(6234, QStringLiteral("Departures for ")) + days, "ToDate", criteria);
    return sheet;
}

ReportSheet inHouseReport(Database &db, const ReportCriteria &criteria)
{
    enum { RoomName = 1, GuestName, Status, NoGuests, BookingId, Arrival, Departure, RateCode, Notes };
    ReportSheet sheet;
    sheet.setTitle(getString(6235, QStringLiteral("In-House - ")) + titleDate(criteria.from));
    ReportTable table(sheet, 3,
                      {reportColumn(6263, "Room Name"), reportColumn(6257, "Guest Name"), reportColumn(6270, "Status"),
                       reportColumn(6299, "No Guests", ColumnKind::Number),
                       reportColumn(6300, "BookingID", ColumnKind::Number),
                       reportColumn(6303, "Arrival", ColumnKind::Date),
                       reportColumn(6304, "Departure", ColumnKind::Date), reportColumn(6305, "Rate Code"),
                       reportColumn(6302, "Notes", ColumnKind::Notes)});
    const StatusNames statuses(db);
    RateNames rateNames(db);
    QSqlQuery q = db.query(
        QStringLiteral("select r.RoomName, c.Title, c.FirstName, c.Surname, c.Company, b.Status, "
                       "g.NoAdults + g.Child1 + g.Child2, b.BBBookingID, b.FromDate, b.ToDate, g.BBRateID, b.Notes "
                       "from booking b join guest g on g.BBBookingID = b.BBBookingID "
                       "left join client c on c.BBClientID = g.BBClientID "
                       "left join room r on r.BBRoomID = g.BBRoomID "
                       "where b.FromDate <= ? and b.ToDate >= ? order by r.OrderBy, b.FromDate, b.BBBookingID"),
        {sqlDate(criteria.from), sqlDate(criteria.from)});
    while (q.next()) {
        table.addRow();
        table.text(RoomName, q.value(0).toString());
        table.text(GuestName, clientNameAt(q, 1));
        table.text(Status, statuses.name(q.value(5).toString()));
        table.number(NoGuests, q.value(6).toInt());
        table.number(BookingId, q.value(7).toInt());
        table.date(Arrival, sqlDay(q.value(8)));
        table.date(Departure, sqlDay(q.value(9)));
        table.text(RateCode, rateNames.name(q.value(10).toInt()));
        table.text(Notes, q.value(11).toString());
    }
    table.finish(false);
    return sheet;
}

ReportSheet marketingReport(Database &db, const ReportCriteria &criteria)
{
    enum { Source = 1, BookingId, BookingDate, ArriveDate, LastNight, MadeBy, Company, Accomm, Commission, Nett };
    ReportSheet sheet;
    sheet.setTitle(getString(6241, QStringLiteral("Marketing Report from ")) + titleDate(criteria.from) + toText() +
                   titleDate(criteria.to));
    sheet.setOrientation(ReportSheet::Landscape);
    ReportTable table(sheet, 3,
                      {reportColumn(6268, "Source"), reportColumn(6253, "Booking ID", ColumnKind::Number),
                       reportColumn(6269, "Booking Date", ColumnKind::DateTime),
                       reportColumn(6254, "Arrive Date", ColumnKind::Date),
                       reportColumn(6255, "Last Night", ColumnKind::Date), reportColumn(6256, "Made By"),
                       reportColumn(6275, "Company"), reportColumn(6324, "Accomm", ColumnKind::Money, true),
                       reportColumn(6262, "Commission", ColumnKind::Money, true),
                       reportColumn(6277, "Nett", ColumnKind::Money, true)});
    QSqlQuery q = db.query(
        QStringLiteral("select b.Source, b.BBBookingID, b.BookingDate, b.FromDate, b.ToDate, "
                       "m.Title, m.FirstName, m.Surname, m.Company, b.AgentComm, "
                       "(select sum(d.RoomRate) from dailyrate d where d.BBBookingID = b.BBBookingID) "
                       "from booking b left join client m on m.BBClientID = b.MadeBy "
                       "where b.FromDate >= ? and b.FromDate <= ? and length(trim(b.Source)) > 0 "
                       "order by b.Source collate nocase, b.FromDate, b.BBBookingID"),
        {sqlDate(criteria.from), sqlDate(criteria.to)});
    while (q.next()) {
        const double accommodation = q.value(10).toDouble();
        const double commission = roundMoney(accommodation * q.value(9).toDouble() / 100.0);
        table.addRow();
        table.text(Source, q.value(0).toString());
        table.number(BookingId, q.value(1).toInt());
        table.dateTime(BookingDate, sqlDay(q.value(2)), sqlTime(q.value(2)));
        table.date(ArriveDate, sqlDay(q.value(3)));
        table.date(LastNight, sqlDay(q.value(4)).addDays(-1));
        table.text(MadeBy, clientNameAt(q, 5));
        table.text(Company, q.value(8).toString());
        table.number(Accomm, accommodation);
        table.number(Commission, commission);
        table.number(Nett, accommodation - commission);
    }
    table.finish(true);
    return sheet;
}

} // namespace fenlark

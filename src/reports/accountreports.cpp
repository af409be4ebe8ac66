// The reports over accounts and their money: Extras, Outstanding Accounts, Payments.
#include "accounts/paymenttypes.h"
#include "reports/reportbuilders.h"
#include "reports/reportlookups.h"
#include "reports/reporttable.h"
#include "shell/database.h"
#include "shell/stayoverlap.h"
#include "shell/strings.h"

#include <QHash>

namespace fenlark {

namespace {

double sumOf(Database &db, const QString &sql, qint32 key)
{
    QSqlQuery &q = db.repeatedQuery(sql, {key});
    return q.next() ? q.value(0).toDouble() : 0.0;
}

} // namespace

ReportSheet extrasReport(Database &db, const ReportCriteria &criteria)
{
    enum { Date = 1, BookingId, Room, Description, Qty, Price, Amount, Total, AccountId, InvoiceTo, InvoiceNo, Currency, ExRate };
    ReportSheet sheet;
    sheet.setTitle(getString(6232, QStringLiteral("Extras Report for ")) + titleDate(criteria.from) +
                   getString(1688, QStringLiteral(" to ")) + titleDate(criteria.to));
    sheet.setOrientation(ReportSheet::Landscape);
    ReportTable table(sheet, 3,
                      {reportColumn(6250, "Date", ColumnKind::Date), reportColumn(6253, "Booking ID", ColumnKind::Number),
                       reportColumn(6278, "Room/Unit"), reportColumn(6279, "Description"),
                       reportColumn(6280, "Qty", ColumnKind::Number, true), reportColumn(6281, "Price", ColumnKind::Money),
                       reportColumn(6282, "Amount", ColumnKind::Money, true), reportColumn(6283, "Total", ColumnKind::Money),
                       reportColumn(6284, "Account ID", ColumnKind::Number), reportColumn(6285, "Invoice To"),
                       reportColumn(6286, "Invoice No", ColumnKind::Number), reportColumn(6273, "Currency"),
                       reportColumn(6274, "Ex.Rate", ColumnKind::Number)});
    // Left joins: an extra whose room, stock item or account has gone still counts.
    QSqlQuery q = db.query(
        QStringLiteral("select e.ExtraDate, g.BBBookingID, r.RoomName, s.StockName, e.Qty, e.Price, e.BBAccountID, "
                       "c.Title, c.FirstName, c.Surname, c.Company, a.InvoiceNo, b.CurrencyCode, b.ExchangeRate "
                       "from extra e left join guest g on g.BBGuestID = e.BBGuestID "
                       "left join room r on r.BBRoomID = g.BBRoomID left join stock s on s.BBStockID = e.BBStockID "
                       "left join account a on a.BBAccountID = e.BBAccountID "
                       "left join client c on c.BBClientID = a.InvoiceTo "
                       "left join booking b on b.BBBookingID = g.BBBookingID "
                       "where e.ExtraDate >= ? and e.ExtraDate <= ? order by e.ExtraDate, e.BBExtraID"),
        {sqlDate(criteria.from), sqlDate(criteria.to)});
    double running = 0;
    while (q.next()) {
        const double amount = q.value(4).toDouble() * q.value(5).toDouble();
        running += amount;
        table.addRow();
        table.date(Date, sqlDay(q.value(0)));
        if (!q.value(1).isNull())
            table.number(BookingId, q.value(1).toInt());
        table.text(Room, q.value(2).toString());
        table.text(Description, q.value(3).toString());
        table.number(Qty, q.value(4).toDouble());
        table.number(Price, q.value(5).toDouble());
        table.number(Amount, amount);
        table.number(Total, running);
        if (q.value(6).toInt() > 0)
            table.number(AccountId, q.value(6).toInt());
        table.text(InvoiceTo, clientNameAt(q, 7));
        if (q.value(11).toInt() > 0)
            table.number(InvoiceNo, q.value(11).toInt());
        table.text(Currency, q.value(12).toString());
        if (!q.value(13).isNull())
            table.number(ExRate, q.value(13).toDouble());
    }
    table.finish(true);
    return sheet;
}

ReportSheet outstandingAccounts(Database &db, const ReportCriteria &criteria)
{
    enum {
        AccountId = 1, InvoiceNo, ClientId, InvoiceTo, Company, PhoneNo, Email, BookingId, ArriveDate, LastNight, Accom,
        Extras, Payments, Outstanding, Guests, BookingNotes
    };
    ReportSheet sheet;
    sheet.setTitle(getString(6236, QStringLiteral("Outstanding Accounts from ")) + titleDate(criteria.from) +
                   getString(1688, QStringLiteral(" to ")) + titleDate(criteria.to));
    sheet.setOrientation(ReportSheet::Landscape);
    ReportTable table(sheet, 3,
                      {reportColumn(6284, "Account ID", ColumnKind::Number),
                       reportColumn(6306, "Invoice No.", ColumnKind::Number),
                       reportColumn(6297, "Client ID", ColumnKind::Number), reportColumn(6285, "Invoice To"),
                       reportColumn(6275, "Company"), reportColumn(6307, "Phone No."), reportColumn(6291, "Email"),
                       reportColumn(6253, "Booking ID", ColumnKind::Number),
                       reportColumn(6254, "Arrive Date", ColumnKind::Date),
                       reportColumn(6255, "Last Night", ColumnKind::Date),
                       reportColumn(6308, "Accom", ColumnKind::Money, true),
                       reportColumn(6309, "Extras", ColumnKind::Money, true),
                       reportColumn(6310, "Payments", ColumnKind::Money, true),
                       reportColumn(6311, "Outstanding", ColumnKind::Money, true), reportColumn(6312, "Guests"),
                       reportColumn(6313, "Booking Notes", ColumnKind::Notes)});

    // The accounts of bookings staying within the dates (neither out of service
    // nor paid) and of extras dated within them.
    std::vector<qint32> accounts;
    {
        QSqlQuery q = db.query(
            QStringLiteral("select BBAccountID from booking where ") + stayOverlapSql(QStringLiteral("booking"))
                + QStringLiteral(" and Status not in ('U','S') and BBAccountID > 0 "
                                 "union select BBAccountID from extra where ExtraDate >= ? and ExtraDate <= ? and BBAccountID > 0 "
                                 "order by 1"),
            stayOverlapValues(criteria.from, criteria.to) << sqlDate(criteria.from) << sqlDate(criteria.to));
        while (q.next())
            accounts.push_back(q.value(0).toInt());
    }

    const QString accountSql = QStringLiteral(
        "select a.InvoiceNo, a.InvoiceTo, c.Title, c.FirstName, c.Surname, c.Company, c.PhoneNo, c.Email "
        "from account a left join client c on c.BBClientID = a.InvoiceTo where a.BBAccountID = ?");
    // The account's first booking, else the first booking with a room billed to it.
    const QString firstBookingSqls[] = {
        QStringLiteral("select BBBookingID, FromDate, ToDate, Notes from booking where BBAccountID = ? "
                       "order by FromDate, BBBookingID limit 1"),
        QStringLiteral("select b.BBBookingID, b.FromDate, b.ToDate, b.Notes from booking b "
                       "join guest g on g.BBBookingID = b.BBBookingID where g.BBAccountID = ? "
                       "order by b.FromDate, b.BBBookingID limit 1"),
    };
    const QString guestsSql = QStringLiteral(
        "select c.Title, c.FirstName, c.Surname, c.Company from guest g join client c on c.BBClientID = g.BBClientID "
        "where g.BBBookingID = ? order by g.BBGuestID");
    const QString accomSql = QStringLiteral(
        "select sum(d.RoomRate) from booking b join guest g on g.BBBookingID = b.BBBookingID "
        "join dailyrate d on d.BBBookingID = g.BBBookingID and d.BBRoomID = g.BBRoomID where b.BBAccountID = ?");
    const QString extrasSql = QStringLiteral("select sum(Qty * Price) from extra where BBAccountID = ?");
    const QString paymentsSql = QStringLiteral("select sum(Amount) from payment where BBAccountID = ?");

    for (qint32 accountId : accounts) {
        table.addRow();
        table.number(AccountId, accountId);
        {
            QSqlQuery &q = db.repeatedQuery(accountSql, {accountId});
            if (q.next()) {
                if (q.value(0).toInt() > 0)
                    table.number(InvoiceNo, q.value(0).toInt());
                table.number(ClientId, q.value(1).toInt());
                table.text(InvoiceTo, clientNameAt(q, 2));
                table.text(Company, q.value(5).toString());
                table.text(PhoneNo, q.value(6).toString());
                table.text(Email, q.value(7).toString());
            }
        }
        qint32 bookingId = 0;
        for (const QString &sql : firstBookingSqls) {
            QSqlQuery &q = db.repeatedQuery(sql, {accountId});
            if (!q.next())
                continue;
            bookingId = q.value(0).toInt();
            table.number(BookingId, bookingId);
            table.date(ArriveDate, sqlDay(q.value(1)));
            table.date(LastNight, sqlDay(q.value(2)).addDays(-1));
            table.text(BookingNotes, q.value(3).toString());
            break;
        }
        if (bookingId > 0) {
            QStringList names;
            QSqlQuery &q = db.repeatedQuery(guestsSql, {bookingId});
            while (q.next()) {
                const QString name = clientNameAt(q, 0);
                if (!names.contains(name))
                    names << name;
            }
            table.text(Guests, names.join(QStringLiteral(", ")));
        }
        const double accommodation = sumOf(db, accomSql, accountId);
        const double extras = sumOf(db, extrasSql, accountId);
        const double payments = sumOf(db, paymentsSql, accountId);
        table.number(Accom, accommodation);
        table.number(Extras, extras);
        table.number(Payments, payments);
        table.number(Outstanding, accommodation + extras - payments);
    }
    table.finish(false);
    return sheet;
}

ReportSheet paymentsReport(Database &db, const ReportCriteria &criteria)
{
    enum { PaymentType = 1, PaymentDate, Reference, Amount, AccountId, InvoiceNo, RelatedBookings };
    ReportSheet sheet;
    const QString and_ = getString(6243, QStringLiteral(" and "));
    sheet.setTitle(getString(6242, QStringLiteral("Payments between ")) + titleDate(criteria.from) + and_ +
                   titleDate(criteria.to));
    sheet.setPlainTitle(getString(6244, QStringLiteral("Payments Report between ")) + titleDate(criteria.from) + and_ +
                        titleDate(criteria.to));
    sheet.setOrientation(ReportSheet::Landscape);
    ReportTable table(sheet, 3,
                      {reportColumn(6325, "Payment Type"), reportColumn(6326, "Payment Date", ColumnKind::Date),
                       reportColumn(6321, "Reference"), reportColumn(6282, "Amount", ColumnKind::Money, true),
                       reportColumn(6284, "Account ID", ColumnKind::Number),
                       reportColumn(6286, "Invoice No", ColumnKind::Number), reportColumn(6327, "Related Bookings")});
    QHash<qint32, QString> related;
    QSqlQuery q = db.query(QStringLiteral("select p.PaymentType, p.PaymentDate, p.Reference, p.Amount, p.BBAccountID, "
                                          "a.InvoiceNo from payment p left join account a on a.BBAccountID = p.BBAccountID "
                                          "where p.PaymentDate >= ? and p.PaymentDate <= ? "
                                          "order by p.PaymentType, p.PaymentDate, p.BBPaymentID"),
                           {sqlDate(criteria.from), sqlDate(criteria.to)});
    while (q.next()) {
        const qint32 accountId = q.value(4).toInt();
        table.addRow();
        table.text(PaymentType, paymentTypeName(q.value(0).toString()));
        table.date(PaymentDate, sqlDay(q.value(1)));
        table.text(Reference, q.value(2).toString());
        table.number(Amount, q.value(3).toDouble());
        if (accountId > 0) {
            table.number(AccountId, accountId);
            auto found = related.constFind(accountId);
            if (found == related.constEnd())
                found = related.insert(accountId, joinKeys(relatedBookings(db, accountId)));
            table.text(RelatedBookings, *found);
        }
        if (q.value(5).toInt() > 0)
            table.number(InvoiceNo, q.value(5).toInt());
    }
    table.finish(true);
    return sheet;
}

} // namespace fenlark

#include "clients/clienthistory.h"

#include "clients/clientrecords.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QLocale>
#include <QSqlQuery>

namespace fenlark {

namespace {

QString historyDate(const QDate &date)
{
    return deskLocale().toString(date, QStringLiteral("dd MMM yyyy"));
}

} // namespace

QStringList ClientHistoryRow::cells() const
{
    return {QString::number(BBBookingID), historyDate(FromDate), historyDate(ToDate), QString::number(nights()),
            total ? formatAmount(roundMoney(*total)) : QString()};
}

std::vector<ClientHistoryRow> clientHistory(Database &db, qint32 clientId)
{
    std::vector<ClientHistoryRow> rows;
    if (clientId < 1)
        return rows;
    // The bookings are gathered by one statement, so each is listed once however
    // many parts the client had in it; each part finds its rows by an index.
    QSqlQuery &q = db.repeatedQuery(
        QStringLiteral("select booking.bbbookingid, fromdate, todate, sum(roomrate) as total "
                       "from booking inner join guest on booking.bbbookingid = guest.bbbookingid "
                       "left join dailyrate on guest.bbbookingid = dailyrate.bbbookingid and guest.bbroomid = dailyrate.bbroomid "
                       "where booking.bbbookingid in ("
                       "select bbbookingid from booking where madeby = ? "
                       "union select booking.bbbookingid from booking, account "
                       "where booking.bbaccountid = account.bbaccountid and account.invoiceto = ? "
                       "union select bbbookingid from guest where bbclientid = ? "
                       "union select bbbookingid from guest where bbclient2id = ?) "
                       "group by booking.bbbookingid, fromdate, todate order by fromdate, booking.bbbookingid"),
        {clientId, clientId, clientId, clientId});
    while (q.next()) {
        ClientHistoryRow row;
        row.BBBookingID = q.value(0).toInt();
        row.FromDate = dateFromSql(q.value(1));
        row.ToDate = dateFromSql(q.value(2));
        if (!q.value(3).isNull())
            row.total = q.value(3).toDouble();
        rows.push_back(row);
    }
    q.finish();
    return rows;
}

QStringList clientHistoryHeadings()
{
    return {getString(5965, QStringLiteral("Booking ID")), getString(5956, QStringLiteral("Arrival")),
            getString(5865, QStringLiteral("Leaving")), getString(6969, QStringLiteral("No. Nights")),
            getString(6970, QStringLiteral("Total"))};
}

QString clientHistoryText(Database &db, qint32 clientId, const std::vector<ClientHistoryRow> &rows)
{
    Client client;
    QString title;
    if (clientId > 0 && client.fetch(db, clientId))
        title = fillArguments(getString(6972, QStringLiteral("Client History for (%1) %2")),
                              {QString::number(clientId), client.FullName()});
    else
        title = getString(6973, QStringLiteral("Unknown client"));
    QStringList headings = clientHistoryHeadings();
    headings[3] = getString(6971, QStringLiteral("No.Nights"));
    QStringList lines{title, QString(), headings.join(QLatin1Char('\t'))};
    for (const ClientHistoryRow &row : rows)
        lines << row.cells().join(QLatin1Char('\t'));
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

qint32 firstRoomOfBooking(Database &db, qint32 bookingId)
{
    return db.scalar(QStringLiteral("select bbroomid from guest where bbbookingid = ? order by bbguestid limit 1"), {bookingId})
        .toInt();
}

} // namespace fenlark

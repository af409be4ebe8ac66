#include "bookings/bookingdetails.h"

#include "clients/clientnames.h"
#include "rates/raterecords.h"
#include "shell/strings.h"

#include <QSqlQuery>

namespace fenlark {

std::optional<BookingDetails> loadBookingDetails(Database &db, qint32 bookingId)
{
    BookingDetails details;
    if (!details.head.fetch(db, bookingId))
        return std::nullopt;
    for (Guest &leg : Guest::legsOf(db, bookingId)) {
        LegDetails legDetails;
        legDetails.nights = DailyRate::forLeg(db, bookingId, leg.BBRoomID);
        legDetails.leg = std::move(leg);
        details.legs.push_back(std::move(legDetails));
    }
    Client client;
    if (client.fetch(db, details.head.MadeBy))
        details.madeBy = client;
    else
        details.problems << getString(5606, QStringLiteral("The client (%1) who made booking %2 could not be found."))
                                .arg(details.head.MadeBy)
                                .arg(bookingId);
    if (details.head.BBAccountID >= 1) {
        Account account;
        if (account.fetch(db, details.head.BBAccountID)) {
            details.account = account;
            details.balance = Account::getBalanceOnAccount(db, account.BBAccountID);
        } else {
            details.problems << getString(5607, QStringLiteral("The account (%1) of booking %2 could not be found."))
                                    .arg(details.head.BBAccountID)
                                    .arg(bookingId);
        }
    }
    return details;
}

std::vector<LegLine> legLines(Database &db, qint32 bookingId)
{
    std::vector<LegLine> lines;
    QSqlQuery q = db.query(QStringLiteral("select guest.bbroomid, room.roomname, client.title, client.firstname, "
                                          "client.surname, client.company, guest.noadults, guest.child1, guest.child2 "
                                          "from guest, room, client where guest.bbroomid = room.bbroomid "
                                          "and guest.bbclientid = client.bbclientid and guest.bbbookingid = ? "
                                          "order by room.orderby, room.bbroomid"),
                           {bookingId});
    while (q.next()) {
        LegLine line;
        line.BBRoomID = q.value(0).toInt();
        line.roomName = q.value(1).toString();
        line.guestName = clientName(q.value(2).toString(), q.value(3).toString(), q.value(4).toString(),
                                    q.value(5).toString());
        line.adults = static_cast<qint16>(q.value(6).toInt());
        line.child1 = static_cast<qint16>(q.value(7).toInt());
        line.child2 = static_cast<qint16>(q.value(8).toInt());
        lines.push_back(std::move(line));
    }
    return lines;
}

bool legHasGuest(Database &db, qint32 bookingId, qint32 roomId)
{
    return db.scalar(QStringLiteral("select count(*) from guest, client where guest.bbclientid = client.bbclientid "
                                    "and guest.bbbookingid = ? and guest.bbroomid = ?"),
                     {bookingId, roomId})
               .toInt()
           > 0;
}

QString rateSheetName(Database &db, qint32 rateSheetId)
{
    if (rateSheetId == 0)
        return getString(5921, QStringLiteral("DEFAULT"));
    RateSheet sheet;
    if (sheet.fetch(db, rateSheetId))
        return sheet.RateCode;
    return QString::number(rateSheetId) + getString(5922, QStringLiteral(" Ratesheet not found!"));
}

} // namespace fenlark

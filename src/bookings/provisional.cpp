#include "bookings/provisional.h"

#include "bookings/bookingrecords.h"
#include "shell/displaynames.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/refusal.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QLocale>
#include <QSqlQuery>

#include <vector>

namespace fenlark {

int Provisional::checkExpired(Database &db, ProvisionalHost &host, const QDateTime &now)
{
    struct Expired {
        qint32 id;
        QString text;
    };
    std::vector<Expired> expired;
    {
        QSqlQuery q = db.query(QStringLiteral(
            "select booking.BBBookingID, client.FirstName, client.Surname, client.Company, booking.FromDate "
            "from booking join client on booking.MadeBy = client.BBClientID "
            "where booking.Status = ? and booking.ReservedUntil < ? order by booking.BBBookingID"),
            {QStringLiteral("P"), sqlDateTime(now)});
        while (q.next()) {
            const QString name = clientName(QString(), fieldText(q.value(1)), fieldText(q.value(2)), QString());
            const QString when = QLocale().toString(dateFromSql(q.value(4)), QStringLiteral("ddd dd MMM yyyy"));
            expired.push_back({q.value(0).toInt(), name + getString(2300, QStringLiteral(" arriving ")) + when});
        }
    }
    for (const Expired &row : expired) {
        host.restoreWindow();
        UserMessage question = Refusal(1988, QStringLiteral("This is a reminder for one of your bookings. Do you want to "
                                                            "view it now and possibly make some changes?"),
                                       1989, QStringLiteral("Booking Reminder - "))
                                   .toMessage();
        question.kind = UserMessage::Question;
        question.title += row.text;
        const bool view = messages::sink().ask(question);
        if (view) {
            const qint32 room = db.scalar(QStringLiteral("select BBRoomID from guest where BBBookingID = ? order by BBGuestID"), {row.id}).toInt();
            host.openBooking(row.id, room);
        } else {
            Booking booking;
            if (booking.fetch(db, row.id)) {
                booking.ReservedUntil = now.addSecs(4 * 3600);
                booking.update(db);
            }
        }
    }
    return static_cast<int>(expired.size());
}

} // namespace fenlark

#include "bookings/bookingcodes.h"

#include "bookings/bookingrecords.h"
#include "shell/strings.h"

namespace fenlark {

QString bookingTypeName(const QString &code)
{
    if (code == bookingtype::Online)
        return getString(5600, QStringLiteral("veldmoor booking"));
    if (code == bookingtype::Desk)
        return getString(5601, QStringLiteral("PC Booking"));
    if (code == bookingtype::CellPhone)
        return getString(5602, QStringLiteral("Cell Phone Booking"));
    return getString(5603, QStringLiteral("Unknown booking type"));
}

QString bookingTypeGroupName(const QString &code)
{
    if (code == bookingtype::Online)
        return getString(5604, QStringLiteral("Online Booking"));
    return getString(5605, QStringLiteral("Off-line Booking"));
}

QString bookingStatusName(const QString &code)
{
    struct Name {
        const char *code;
        int id;
        const char *text;
    };
    static const Name names[] = {
        {"C", 2310, "Confirmed"},   {"O", 2311, "Outstanding Account"},       {"P", 2312, "Provisional"},
        {"R", 2313, "Reserved with Auto Expire"}, {"S", 2314, "Paid"},        {"U", 2315, "Unavailable"},
        {"W", 2316, "Waiting for deposit"},
    };
    for (const Name &n : names) {
        if (code == QLatin1String(n.code))
            return getString(n.id, QString::fromLatin1(n.text));
    }
    return code;
}

bool statusHasHold(const QString &code)
{
    return code == bookingstatus::Reserved || code == bookingstatus::Provisional;
}

std::vector<StatusEntry> statusList(Database &db)
{
    std::vector<StatusEntry> list;
    QSqlQuery q = db.query(QStringLiteral("select * from status order by orderby"));
    while (q.next()) {
        StatusEntry e;
        e.code = q.value(QStringLiteral("Status")).toString();
        const int nameId = q.value(QStringLiteral("languagecode")).toInt();
        const QString description = q.value(QStringLiteral("Description")).toString();
        e.name = nameId > 0 ? getString(nameId, description) : description;
        e.orderBy = q.value(QStringLiteral("OrderBy")).toInt();
        list.push_back(e);
    }
    return list;
}

void setUnavailable(Database &db, Booking &booking)
{
    Transaction transaction(db);
    booking.Status = bookingstatus::Unavailable;
    booking.update(db);
    for (Guest &leg : Guest::legsOf(db, booking.BBBookingID)) {
        if (leg.NoAdults != 0) {
            leg.NoAdults = 0;
            leg.update(db);
        }
    }
    DailyRate::deleteBooking(db, booking.BBBookingID);
    transaction.commit();
}

} // namespace fenlark

#include "clients/clientnames.h"
#include "reports/reportbuilders.h"
#include "reports/reportlookups.h"
#include "reports/reporttable.h"
#include "shell/database.h"
#include "shell/stayoverlap.h"
#include "shell/strings.h"

#include <QHash>

namespace fenlark {

namespace {

struct PrintRoom {
    qint32 BBRoomID = 0;
    QString name;
};

struct Stay {
    QDate from;
    QDate to;
    QString status;
    qint32 BBRoomID = 0;
    int adults = 0;
    int children = 0;
    QString label;   // surname, else company, else the display name
    QString fullName;
    QString phone;
};

std::vector<PrintRoom> roomsInOrder(Database &db)
{
    std::vector<PrintRoom> rooms;
    QSqlQuery q = db.query(QStringLiteral("select BBRoomID, RoomName from room order by OrderBy, BBRoomID"));
    while (q.next())
        rooms.push_back({q.value(0).toInt(), q.value(1).toString()});
    return rooms;
}

// Every leg staying a night within the dates, in the order of their bookings:
// where two share a room and night (a double booking) the first one shows.
std::vector<Stay> staysWithin(Database &db, const QDate &from, const QDate &to)
{
    std::vector<Stay> stays;
    QSqlQuery q = db.query(
        QStringLiteral("select b.FromDate, b.ToDate, b.Status, g.BBRoomID, g.NoAdults, g.Child1 + g.Child2, "
                       "c.Title, c.FirstName, c.Surname, c.Company, c.PhoneNo "
                       "from booking b join guest g on g.BBBookingID = b.BBBookingID "
                       "left join client c on c.BBClientID = g.BBClientID "
                       "where ") + stayOverlapSql(QStringLiteral("b")) + QStringLiteral(" order by b.BBBookingID, g.BBGuestID"),
        stayOverlapValues(from, to));
    while (q.next()) {
        Stay stay;
        stay.from = sqlDay(q.value(0));
        stay.to = sqlDay(q.value(1));
        stay.status = q.value(2).toString();
        stay.BBRoomID = q.value(3).toInt();
        stay.adults = q.value(4).toInt();
        stay.children = q.value(5).toInt();
        const QString title = q.value(6).toString();
        const QString first = q.value(7).toString();
        const QString surname = q.value(8).toString().trimmed();
        const QString company = q.value(9).toString().trimmed();
        stay.label = !surname.isEmpty() ? surname : !company.isEmpty() ? company : getDisplayName(first, surname, company);
        stay.fullName = clientName(title, first, surname, company);
        stay.phone = q.value(10).toString().trimmed();
        stays.push_back(stay);
    }
    return stays;
}

// What the calendar shows for the night: the heads on the night of arrival
// ("2+1 Smith"), the name alone on the others and for a room out of service.
QString nightText(const Stay &stay, const QDate &night)
{
    if (night != stay.from || stay.status == QLatin1String("U"))
        return stay.label;
    QString heads = QString::number(stay.adults);
    if (stay.children > 0)
        heads += QLatin1Char('+') + QString::number(stay.children);
    return heads + QLatin1Char(' ') + stay.label;
}

} // namespace

ReportSheet calendarPrintout(Database &db, const ReportCriteria &criteria)
{
    const bool landscape = criteria.orientation == QLatin1Char('L');
    const std::vector<PrintRoom> rooms = roomsInOrder(db);
    const std::vector<Stay> stays = staysWithin(db, criteria.from, criteria.to);
    const int days = static_cast<int>(criteria.from.daysTo(criteria.to)) + 1;

    QHash<qint32, int> roomIndex;
    for (int i = 0; i < static_cast<int>(rooms.size()); ++i)
        roomIndex.insert(rooms[static_cast<size_t>(i)].BBRoomID, i);
    // The text of each room and night, keyed by room index * days + day.
    QHash<qint64, QString> nights;
    for (const Stay &stay : stays) {
        const auto room = roomIndex.constFind(stay.BBRoomID);
        if (room == roomIndex.constEnd())
            continue;
        const QDate first = std::max(stay.from, criteria.from);
        const QDate last = std::min(stay.to.addDays(-1), criteria.to);
        for (QDate night = first; night <= last; night = night.addDays(1)) {
            const qint64 key = static_cast<qint64>(*room) * days + criteria.from.daysTo(night);
            if (!nights.contains(key))
                nights.insert(key, nightText(stay, night));
        }
    }

    ReportSheet sheet;
    sheet.setTitle(getString(6230, QStringLiteral("Calendar Printout for  ")) + titleDate(criteria.from) +
                   getString(1688, QStringLiteral(" to ")) + titleDate(criteria.to));
    sheet.setOrientation(landscape ? ReportSheet::Landscape : ReportSheet::Portrait);

    const int headingRow = 3;
    const QString corner = landscape ? getString(6251, QStringLiteral("Room")) : getString(6250, QStringLiteral("Date"));
    sheet.setText(headingRow, 1, corner);
    sheet.setBold(headingRow, 1);
    for (int i = 0; i < static_cast<int>(rooms.size()); ++i) {
        const int at = headingRow + 1 + i;
        if (landscape) {
            sheet.setText(at, 1, rooms[static_cast<size_t>(i)].name);
        } else {
            sheet.setText(headingRow, 2 + i, rooms[static_cast<size_t>(i)].name);
            sheet.setBold(headingRow, 2 + i);
        }
    }
    for (int d = 0; d < days; ++d) {
        const QDate day = criteria.from.addDays(d);
        if (landscape) {
            sheet.setDate(headingRow, 2 + d, day);
            sheet.setBold(headingRow, 2 + d);
        } else {
            sheet.setDate(headingRow + 1 + d, 1, day);
        }
    }
    for (auto it = nights.constBegin(); it != nights.constEnd(); ++it) {
        const int room = static_cast<int>(it.key() / days);
        const int day = static_cast<int>(it.key() % days);
        if (landscape)
            sheet.setText(headingRow + 1 + room, 2 + day, it.value());
        else
            sheet.setText(headingRow + 1 + day, 2 + room, it.value());
    }
    const int gridRows = landscape ? static_cast<int>(rooms.size()) : days;
    sheet.countDataRows(gridRows);

    // Under the grid, the guests' telephone numbers: a line per stay that has one.
    int row = headingRow + gridRows + 2;
    std::vector<const Stay *> withPhone;
    for (const Stay &stay : stays) {
        if (!stay.phone.isEmpty() && roomIndex.contains(stay.BBRoomID))
            withPhone.push_back(&stay);
    }
    std::stable_sort(withPhone.begin(), withPhone.end(), [&](const Stay *a, const Stay *b) {
        const int ra = roomIndex.value(a->BBRoomID);
        const int rb = roomIndex.value(b->BBRoomID);
        return ra != rb ? ra < rb : a->from < b->from;
    });
    if (!withPhone.empty()) {
        sheet.setLine(row, getString(6252, QStringLiteral("Guest Phone Number")));
        sheet.setBold(row, 1);
        for (const Stay *stay : withPhone) {
            sheet.setLine(++row, rooms[static_cast<size_t>(roomIndex.value(stay->BBRoomID))].name +
                                     QStringLiteral(": ") + stay->fullName + QStringLiteral(" - ") + stay->phone);
        }
    }
    return sheet;
}

} // namespace fenlark

#include "bookings/occupancy.h"

#include "bookings/bookingcodes.h"
#include "rates/ratedata.h"
#include "shell/database.h"
#include "shell/record.h"
#include "shell/stayoverlap.h"

#include <QHash>

#include <cmath>

namespace fenlark {

namespace {

// What a room offers each night by beds: its type's adults, or one for a room
// sold as a whole unit.
struct Capacity {
    int beds = 0;
    bool unit = false;
};

Capacity capacityOf(const RateData &rates, qint32 roomId)
{
    const Room *room = rates.room(roomId);
    const RoomTypeRates *type = room ? rates.roomType(room->BBRTID) : nullptr;
    if (!type)
        return {};
    if (type->rateScheme == 2)
        return {1, true};
    return {type->row.MaxAdults, false};
}

} // namespace

double OccupancyFigures::percent() const
{
    return available < 1 ? 0.0 : 100.0 * sold / available;
}

QString OccupancyFigures::percentText() const
{
    return QString::number(percent(), 'f', 1) + QLatin1Char('%');
}

int OccupancyFigures::gauge() const
{
    return std::min(100, static_cast<int>(std::lround(percent())));
}

Result<OccupancyFigures> occupancy(Database &db, const RateData &rates, const OccupancyRequest &request)
{
    if (request.rooms.empty())
        return Refusal(6450, QStringLiteral("There were no rooms found in your selection."), 6451, QStringLiteral("No rooms selected."));
    if (!request.from.isValid() || !request.to.isValid() || request.to < request.from)
        return Refusal(6452, QStringLiteral("Your End date is before your Start date."), 6453,
                       QStringLiteral("Error in date selection."));

    const qint64 first = request.from.toJulianDay();
    const qint64 days = request.to.toJulianDay() - first + 1;
    const int roomCount = static_cast<int>(request.rooms.size());
    QHash<qint32, int> column;
    for (int i = 0; i < roomCount; ++i)
        column.insert(request.rooms[static_cast<size_t>(i)], i);

    // One cell per night and room: -1 free, -2 out of service, else the adults sold.
    // The first leg read holds the night, as in a double booking only one counts.
    std::vector<int> cells(static_cast<size_t>(days * roomCount), -1);
    QVariantList values = stayOverlapValues(request.from, request.to);
    for (qint32 room : request.rooms)
        values << room;
    // The rooms are compared row by row, so that SQLite keeps to the dates (see
    // stayOverlapSql).
    QSqlQuery q = db.query(QStringLiteral("select booking.Status, guest.BBRoomID, guest.NoAdults, "
                                          "cast(julianday(booking.FromDate) + 0.5 as integer), "
                                          "cast(julianday(booking.ToDate) + 0.5 as integer) "
                                          "from booking join guest on booking.BBBookingID = guest.BBBookingID where ")
                               + stayOverlapSql(QStringLiteral("booking")) + QStringLiteral(" and +guest.BBRoomID in (")
                               + recorddetail::placeholders(roomCount) + QLatin1Char(')'),
                           values);
    while (q.next()) {
        if (q.value(3).isNull() || q.value(4).isNull())
            continue;
        const int at = column.value(q.value(1).toInt(), -1);
        if (at < 0)
            continue;
        const bool outOfService = q.value(0).toString() == bookingstatus::Unavailable;
        const int adults = std::max(0, q.value(2).toInt());
        const qint64 start = std::max<qint64>(q.value(3).toLongLong(), first) - first;
        const qint64 end = std::min<qint64>(q.value(4).toLongLong() - 1, first + days - 1) - first;
        for (qint64 night = start; night <= end; ++night) {
            int &cell = cells[static_cast<size_t>(night * roomCount + at)];
            if (cell == -1)
                cell = outOfService ? -2 : adults;
            else if (outOfService && cell >= 0)
                cell = -2;
        }
    }

    std::vector<Capacity> capacity;
    capacity.reserve(static_cast<size_t>(roomCount));
    for (qint32 room : request.rooms)
        capacity.push_back(capacityOf(rates, room));
    const bool beds = request.mode == OccupancyMode::Beds;

    OccupancyFigures figures;
    figures.nights.reserve(static_cast<size_t>(days));
    for (qint64 night = 0; night < days; ++night) {
        NightOccupancy tonight;
        tonight.date = QDate::fromJulianDay(first + night);
        for (int r = 0; r < roomCount; ++r) {
            const int cell = cells[static_cast<size_t>(night * roomCount + r)];
            if (cell == -2)
                continue;
            const Capacity &room = capacity[static_cast<size_t>(r)];
            tonight.available += beds && !room.unit ? room.beds : 1;
            if (cell >= 0)
                tonight.sold += beds && !room.unit ? cell : 1;
        }
        figures.available += tonight.available;
        figures.sold += tonight.sold;
        figures.nights.push_back(tonight);
    }
    return figures;
}

} // namespace fenlark

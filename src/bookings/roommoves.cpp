#include "bookings/roommoves.h"

#include "bookings/bookingcodes.h"
#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/calendar.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/displaynames.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "shell/stayoverlap.h"

#include <QSet>

namespace fenlark {

namespace {

QString roomNameOf(const RateData &rates, qint32 roomId)
{
    const Room *room = rates.room(roomId);
    return room ? room->RoomName : QString::number(roomId);
}

Refusal swapRefusal(int id, const QString &english)
{
    return Refusal(id, english, 6435, QStringLiteral("Room Swap"));
}

Refusal legGone()
{
    return Refusal(5825, QStringLiteral("Error: Could not find guest data. Call veldmoor (021 555 0108)."), 5824,
                   QStringLiteral("Data Error"));
}

struct SwapLeg {
    qint32 guestId = 0;
    qint32 bookingId = 0;
    qint32 roomId = 0;
    QDate from, to;
};

std::optional<SwapLeg> swapLeg(Database &db, qint32 guestId)
{
    QSqlQuery q = db.query(QStringLiteral("select guest.BBBookingID, guest.BBRoomID, booking.FromDate, booking.ToDate "
                                          "from guest join booking on booking.BBBookingID = guest.BBBookingID "
                                          "where guest.BBGuestID = ?"),
                           {guestId});
    if (!q.next())
        return std::nullopt;
    return SwapLeg{guestId, q.value(0).toInt(), q.value(1).toInt(), dateFromSql(q.value(2)), dateFromSql(q.value(3))};
}

// Whether the leg's stay fits in that room apart from the other leg.
bool fitsIn(Database &db, const SwapLeg &leg, const SwapLeg &other)
{
    return !db.scalar(QStringLiteral("select 1 from booking join guest on booking.BBBookingID = guest.BBBookingID "
                                     "where ") + stayOverlapSql(QStringLiteral("booking"))
                          + QStringLiteral(" and +guest.BBRoomID = ? and guest.BBGuestID <> ?"),
                      stayOverlapValues(leg.from, leg.to.addDays(-1)) << other.roomId << other.guestId)
                .isValid();
}

} // namespace

std::vector<qint32> fillFreeRooms(Database &db, Calendar &calendar, const std::vector<Room> &rooms, qint32 excludeRoomId,
                                  const QDate &from, const QDate &lastNight)
{
    std::vector<qint32> free;
    if (!from.isValid() || !lastNight.isValid() || lastNight < from)
        return free;
    calendar.fillCache(db, from, lastNight);
    for (const Room &room : rooms) {
        if (room.BBRoomID == excludeRoomId)
            continue;
        bool booked = false;
        for (QDate night = from; night <= lastNight && !booked; night = night.addDays(1))
            booked = calendar.roomIsBooked(night, room.BBRoomID);
        if (!booked)
            free.push_back(room.BBRoomID);
    }
    return free;
}

Result<std::vector<qint32>> roomsForChange(Database &db, Calendar &calendar, const std::vector<Room> &rooms, qint32 bookingId,
                                           qint32 roomId, const QDate &from, const QDate &to)
{
    QSet<qint32> otherLegs;
    for (const Guest &leg : Guest::legsOf(db, bookingId))
        if (leg.BBRoomID != roomId)
            otherLegs.insert(leg.BBRoomID);
    std::vector<qint32> offered;
    for (qint32 room : fillFreeRooms(db, calendar, rooms, roomId, from, to.addDays(-1)))
        if (!otherLegs.contains(room))
            offered.push_back(room);
    if (offered.empty())
        return Refusal(6430, QStringLiteral("Sorry, but there are no available rooms."), 6431,
                       QStringLiteral("Cannot change rooms. Fully Booked."));
    return offered;
}

RoomAdder::RoomAdder(Database &db, const RateData &rates, const UserStruct &user) : m_db(db), m_rates(rates), m_user(user) {}

Result<AddRoomOutcome> RoomAdder::add(const AddRoomRequest &request, StayQuestions &questions)
{
    Booking head;
    if (!head.fetch(m_db, request.BBBookingID))
        return Refusal(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)"), 5828,
                       QStringLiteral("Could not find booking details"));
    if (!m_rates.room(request.BBRoomID))
        return Refusal(5975, QStringLiteral("There is no room %1."), 5976, QStringLiteral("Unknown room")).arg(request.BBRoomID);
    if (request.adults < 0 || request.child1 < 0 || request.child2 < 0)
        return Refusal(5979, QStringLiteral("The number of people in %1 cannot be negative."), 5980,
                       QStringLiteral("Incorrect number of people"))
            .arg(roomNameOf(m_rates, request.BBRoomID));
    const qint32 clientId = request.BBClientID == 0 ? head.MadeBy : request.BBClientID;
    Client client;
    if (!client.fetch(m_db, clientId))
        return Refusal(5808, QStringLiteral("The client %1 could not be found."), 5809, QStringLiteral("Client not found")).arg(clientId);
    if (request.BBRateID != 0) {
        const std::vector<qint32> offered = getRoomRates(m_rates, head.FromDate, head.ToDate, request.BBRoomID);
        if (std::find(offered.begin(), offered.end(), request.BBRateID) == offered.end())
            return Refusal(5977, QStringLiteral("The rate %1 is not offered for %2 on these dates."), 5978,
                           QStringLiteral("Rate not offered"))
                .arg(request.BBRateID)
                .arg(roomNameOf(m_rates, request.BBRoomID));
    }
    const auto roomTaken = [&] {
        return !clashingBookings(m_db, request.BBRoomID, head.FromDate, head.ToDate).empty();
    };
    const Refusal taken = Refusal(5836, QStringLiteral("%1 has been taken for those dates since it was chosen. Pick the rooms again."),
                                  5837, QStringLiteral("Room no longer free"))
                              .arg(roomNameOf(m_rates, request.BBRoomID));
    if (roomTaken())
        return taken;
    const bool outOfService = head.Status == bookingstatus::Unavailable;
    if (!outOfService)
        if (Outcome asked = checkRoomLimits(m_rates, request.BBRoomID, request.adults, request.child1, request.child2, questions);
            !asked)
            return asked.refusal();

    Transaction transaction(m_db);
    // Asked again inside the write: another desk may have sold the room while the question was open.
    if (roomTaken())
        return taken;
    Guest leg;
    leg.BBBookingID = head.BBBookingID;
    leg.BBRoomID = request.BBRoomID;
    leg.BBClientID = clientId;
    leg.BBRateID = request.BBRateID;
    leg.NoAdults = outOfService ? 0 : request.adults;
    leg.Child1 = request.child1;
    leg.Child2 = request.child2;
    leg.update(m_db);
    DailyRate::remove(m_db, head.BBBookingID, request.BBRoomID);

    AddRoomOutcome outcome;
    if (!outOfService) {
        const StayPrice price = priceStay(m_rates, {request.BBRoomID, request.BBRateID, head.BBRateSheetID, head.FromDate,
                                                    head.ToDate, leg.NoAdults, leg.Child1, leg.Child2});
        for (const QDate &night : nightsOf(head.FromDate, head.ToDate)) {
            DailyRate rate;
            rate.CalDate = night;
            rate.BBBookingID = head.BBBookingID;
            rate.BBRoomID = request.BBRoomID;
            rate.RoomRate = roundMoney(price.nights.value(night));
            rate.update(m_db);
            outcome.total += rate.RoomRate;
        }
    }
    SecurityAudit audit;
    audit.User(m_user);
    audit.addAudit(m_db, QStringLiteral("Booking ID %1 New Room ID %2").arg(head.BBBookingID).arg(request.BBRoomID));
    // The nights travel with their head: it is the last row of the change log.
    ChangeLog::logUpdate(m_db, QStringLiteral("booking"), head.BBBookingID);
    transaction.commit();

    outcome.BBGuestID = leg.BBGuestID;
    outcome.BBClientID = clientId;
    outcome.adults = leg.NoAdults;
    outcome.total = roundMoney(outcome.total);
    outcome.changes.booking(head.BBBookingID).client(clientId);
    return outcome;
}

QString StayingLeg::text() const
{
    return roomName + QStringLiteral(" (") + client + QLatin1Char(')');
}

std::vector<StayingLeg> legsStaying(Database &db, const QDate &date)
{
    std::vector<StayingLeg> legs;
    QSqlQuery q = db.query(QStringLiteral("select guest.BBBookingID, guest.BBGuestID, room.BBRoomID, booking.FromDate, "
                                          "booking.ToDate, room.RoomName, client.Title, client.FirstName, client.Surname, "
                                          "client.Company from booking join guest on booking.BBBookingID = guest.BBBookingID "
                                          "join room on guest.BBRoomID = room.BBRoomID "
                                          "left join client on guest.BBClientID = client.BBClientID "
                                          "where ") + stayOverlapSql(QStringLiteral("booking"))
                               + QStringLiteral(" order by room.OrderBy, guest.BBGuestID"),
                           stayOverlapValues(date, date));
    while (q.next()) {
        StayingLeg leg;
        leg.BBBookingID = q.value(0).toInt();
        leg.BBGuestID = q.value(1).toInt();
        leg.BBRoomID = q.value(2).toInt();
        leg.fromDate = dateFromSql(q.value(3));
        leg.toDate = dateFromSql(q.value(4));
        leg.roomName = q.value(5).toString();
        leg.client = clientName(q.value(6).toString(), q.value(7).toString(), q.value(8).toString(), q.value(9).toString());
        legs.push_back(std::move(leg));
    }
    return legs;
}

RoomSwap::RoomSwap(Database &db, const UserStruct &user) : m_db(db), m_user(user) {}

Outcome RoomSwap::check(qint32 firstGuestId, qint32 secondGuestId) const
{
    if (firstGuestId == 0 || secondGuestId == 0)
        return swapRefusal(6432, QStringLiteral("Two rooms must be selected."));
    const std::optional<SwapLeg> first = swapLeg(m_db, firstGuestId);
    const std::optional<SwapLeg> second = swapLeg(m_db, secondGuestId);
    if (!first || !second)
        return legGone();
    if (firstGuestId == secondGuestId || first->roomId == second->roomId)
        return swapRefusal(6433, QStringLiteral("Same room selected. Cannot swap."));
    if (!fitsIn(m_db, *first, *second) || !fitsIn(m_db, *second, *first))
        return swapRefusal(6434, QStringLiteral("Cannot swap these rooms. Overlapping bookings."));
    return Done{};
}

Result<Changes> RoomSwap::swap(qint32 firstGuestId, qint32 secondGuestId)
{
    Transaction transaction(m_db);
    if (Outcome fits = check(firstGuestId, secondGuestId); !fits)
        return fits.refusal();
    const SwapLeg first = *swapLeg(m_db, firstGuestId);
    const SwapLeg second = *swapLeg(m_db, secondGuestId);
    if (first.bookingId != second.bookingId) {
        // Nights a cancelled leg left in the room a leg moves into are no one's.
        DailyRate::removeOrphans(m_db, first.bookingId, second.roomId);
        DailyRate::removeOrphans(m_db, second.bookingId, first.roomId);
    }

    // Each leg is read again as it is moved: one deleted meanwhile (by another
    // desk, or by the server) undoes the whole swap.
    for (const auto &[leg, room] : {std::pair{first, second.roomId}, std::pair{second, first.roomId}}) {
        Guest guest;
        if (!guest.fetch(m_db, leg.guestId))
            return legGone();
        guest.BBRoomID = room;
        guest.update(m_db);
    }
    // The bookings may be one and the same, so the first room's nights wait on
    // a room that does not exist while the second's move over.
    DailyRate::changeRoom(m_db, first.bookingId, first.roomId, -1);
    DailyRate::changeRoom(m_db, second.bookingId, second.roomId, first.roomId);
    DailyRate::changeRoom(m_db, first.bookingId, -1, second.roomId);

    ChangeLog::logUpdate(m_db, QStringLiteral("booking"), first.bookingId);
    if (second.bookingId != first.bookingId)
        ChangeLog::logUpdate(m_db, QStringLiteral("booking"), second.bookingId);
    ChangeLog::logUpdate(m_db, QStringLiteral("guest"), first.guestId);
    ChangeLog::logUpdate(m_db, QStringLiteral("guest"), second.guestId);

    SecurityAudit audit;
    audit.User(m_user);
    audit.setReason(QStringLiteral("Rooms swapped"));
    audit.addAudit(m_db, QStringLiteral("Guest IDs %1/%2").arg(first.guestId).arg(second.guestId));
    transaction.commit();

    Changes changes;
    changes.booking(first.bookingId).booking(second.bookingId);
    return changes;
}

} // namespace fenlark

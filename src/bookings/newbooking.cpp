#include "bookings/newbooking.h"

#include "accounts/accounts.h"
#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <QSet>

namespace fenlark {

namespace {

QString roomName(const RateData &rates, qint32 roomId)
{
    const Room *room = rates.room(roomId);
    return room ? room->RoomName : QString::number(roomId);
}

StayRequest stayOf(const NewBookingRequest &request, const NewBookingRoom &room, qint32 BBRateSheetID)
{
    return {room.BBRoomID, room.BBRateID, BBRateSheetID, request.FromDate, request.ToDate, room.NoAdults, room.Child1, room.Child2};
}

qint32 rateSheetOf(Database &db, qint32 clientId)
{
    return clientId == 0 ? 0 : db.scalar(QStringLiteral("select BBRateSheetID from client where BBClientID = ?"), {clientId}).toInt();
}

} // namespace

double calcDeposit(const BBSetup &setup, double total, int nights)
{
    if (setup.FullDeposit == QLatin1String("Y") && nights == 1)
        return total;
    return setup.DepositPct / 100.0 * total;
}

void tellRatesNotEntered()
{
    messages::inform(5800, QStringLiteral("Click 'View Daily Rates' to add room rates for this booking."), 5801,
                     QStringLiteral("Rates not yet entered."));
}

NewBookingQuote quoteNewBooking(Database &db, const RateData &rates, const NewBookingRequest &request)
{
    const qint32 BBRateSheetID = rateSheetOf(db, request.BBClientID);
    NewBookingQuote quote;
    for (const NewBookingRoom &room : request.rooms) {
        const StayPrice price = priceStay(rates, stayOf(request, room, BBRateSheetID));
        quote.roomTotals.push_back(price.total);
        quote.total += price.total;
    }
    quote.total = roundMoney(quote.total);
    return quote;
}

qint16 defaultAdults(const QString &defUserPreference)
{
    bool ok = false;
    const int adults = defUserPreference.trimmed().toInt(&ok);
    return ok && adults >= 0 && adults <= 999 ? static_cast<qint16>(adults) : qint16(2);
}

BookingWriter::BookingWriter(Database &db, const RateData &rates, const BBSetup &setup, const UserStruct &user)
    : m_db(db), m_rates(rates), m_setup(setup), m_user(user)
{
}

Outcome BookingWriter::validate(const NewBookingRequest &request) const
{
    if (request.BBClientID == 0
        && (request.title + request.firstName + request.surname + request.company).trimmed().isEmpty())
        return Refusal(5802, QStringLiteral("You haven't typed in any name."), 5803, QStringLiteral("Name cannot be blank."));
    if (request.rooms.empty())
        return Refusal(2276, QStringLiteral("You didn't pick a room."), 2277, QStringLiteral("No room selected"));
    if (nightCount(request.FromDate, request.ToDate) < 1)
        return Refusal(2278, QStringLiteral("The number of nights must be greater than zero."), 2279,
                       QStringLiteral("Type in a positive number of nights"));
    if (request.BBClientID != 0) {
        Client client;
        if (!client.fetch(m_db, request.BBClientID))
            return Refusal(5808, QStringLiteral("The client %1 could not be found."), 5809, QStringLiteral("Client not found"))
                .arg(request.BBClientID);
        if (client.Active == QLatin1String("N"))
            return Refusal(5974, QStringLiteral("The client %1 has been retired: book for the client it was merged into."),
                           5809, QStringLiteral("Client not found"))
                .arg(client.FullName());
    }
    QSet<qint32> seen;
    for (const NewBookingRoom &room : request.rooms) {
        if (!m_rates.room(room.BBRoomID))
            return Refusal(5975, QStringLiteral("There is no room %1."), 5976, QStringLiteral("Unknown room")).arg(room.BBRoomID);
        if (seen.contains(room.BBRoomID))
            return Refusal(5838, QStringLiteral("%1 is listed more than once: a booking holds one leg per room."), 5839,
                           QStringLiteral("Room listed twice"))
                .arg(roomName(m_rates, room.BBRoomID));
        seen.insert(room.BBRoomID);
        if (room.BBRateID != 0) {
            const std::vector<qint32> offered = getRoomRates(m_rates, request.FromDate, request.ToDate, room.BBRoomID);
            if (std::find(offered.begin(), offered.end(), room.BBRateID) == offered.end())
                return Refusal(5977, QStringLiteral("The rate %1 is not offered for %2 on these dates."), 5978,
                               QStringLiteral("Rate not offered"))
                    .arg(room.BBRateID)
                    .arg(roomName(m_rates, room.BBRoomID));
        }
        if (room.NoAdults < 0 || room.Child1 < 0 || room.Child2 < 0)
            return Refusal(5979, QStringLiteral("The number of people in %1 cannot be negative."), 5980,
                           QStringLiteral("Incorrect number of people"))
                .arg(roomName(m_rates, room.BBRoomID));
    }
    return roomsFree(request);
}

Outcome BookingWriter::roomsFree(const NewBookingRequest &request) const
{
    for (const NewBookingRoom &room : request.rooms) {
        if (!clashingBookings(m_db, room.BBRoomID, request.FromDate, request.ToDate).empty())
            return Refusal(5836, QStringLiteral("%1 has been taken for those dates since it was chosen. Pick the rooms again."),
                           5837, QStringLiteral("Room no longer free"))
                .arg(roomName(m_rates, room.BBRoomID));
    }
    return Done{};
}

Result<NewBookingResult> BookingWriter::save(const NewBookingRequest &request, StayQuestions &questions)
{
    if (Outcome valid = validate(request); !valid)
        return valid.refusal();
    for (const NewBookingRoom &room : request.rooms)
        if (Outcome asked = checkRoomLimits(m_rates, room.BBRoomID, room.NoAdults, room.Child1, room.Child2, questions); !asked)
            return asked.refusal();
    if (Outcome asked = checkStartDate(request.FromDate, questions); !asked)
        return asked.refusal();

    NewBookingResult result;
    Client client;
    Transaction transaction(m_db);
    // Another desk may have taken a room while the questions waited; under the
    // write lock the answer holds until the commit.
    if (Outcome free = roomsFree(request); !free)
        return free.refusal();

    Booking head;
    head.BookingID = 0;
    head.BookingType = QStringLiteral("P");
    head.BookingDate = QDateTime::currentDateTime();
    head.FromDate = request.FromDate;
    head.ToDate = request.ToDate;
    head.Status = QStringLiteral("W");

    if (request.BBClientID == 0) {
        client.DateCreated = head.BookingDate;
        client.CreatedOn = QStringLiteral("P");
        const bool companyOnly = (request.title + request.firstName + request.surname).trimmed().isEmpty();
        client.ClientType = companyOnly ? clienttype::Company : clienttype::Individual;
        client.Title = request.title.trimmed();
        client.FirstName = request.firstName.trimmed();
        client.Surname = request.surname.trimmed();
        client.Company = request.company.trimmed();
        client.Active = QStringLiteral("Y");
    } else {
        client.fetch(m_db, request.BBClientID);
    }
    head.BBRateSheetID = request.BBClientID == 0 ? 0 : client.BBRateSheetID;

    RateSheet sheet;
    head.CurrencyCode = sheet.fetch(m_db, head.BBRateSheetID) ? sheet.CurrencyCode : m_setup.CurrencyCode;
    head.ExchangeRate = 0;
    head.update(m_db);

    if (request.BBClientID == 0)
        client.update(m_db);
    head.MadeBy = client.BBClientID;
    result.BBClientID = client.BBClientID;
    result.clientName = client.FullName();

    const QList<QDate> nights = nightsOf(head.FromDate, head.ToDate);
    for (const NewBookingRoom &room : request.rooms) {
        Guest guest;
        guest.BBBookingID = head.BBBookingID;
        guest.BBRoomID = room.BBRoomID;
        guest.BBClientID = client.BBClientID;
        guest.BBRateID = room.BBRateID;
        guest.NoAdults = room.NoAdults;
        guest.Child1 = room.Child1;
        guest.Child2 = room.Child2;
        guest.update(m_db);
        result.legs.push_back({room.BBRoomID, guest.BBGuestID});

        const StayPrice price = priceStay(m_rates, stayOf(request, room, head.BBRateSheetID));
        for (const QDate &night : nights) {
            DailyRate rate;
            rate.CalDate = night;
            rate.BBBookingID = head.BBBookingID;
            rate.BBRoomID = room.BBRoomID;
            rate.RoomRate = roundMoney(price.nights.value(night));
            rate.update(m_db);
            result.total += rate.RoomRate;
        }
    }
    result.total = roundMoney(result.total);

    // The editor would make the account on first opening; making it here keeps
    // the head's last save after it, so the head stays the last change-log row.
    head.BBAccountID = getOpenAccount(m_db, client.BBClientID);
    head.Deposit = calcDeposit(m_setup, result.total, static_cast<int>(nights.size()));
    head.update(m_db);

    SecurityAudit audit;
    audit.User(m_user);
    audit.addAudit(m_db, QStringLiteral("New Booking ") + QString::number(head.BBBookingID));
    transaction.commit();

    result.BBBookingID = head.BBBookingID;
    result.BBAccountID = head.BBAccountID;
    result.firstRoomId = request.rooms.front().BBRoomID;
    result.deposit = head.Deposit;

    result.changes.booking(head.BBBookingID).client(client.BBClientID);
    return result;
}

} // namespace fenlark

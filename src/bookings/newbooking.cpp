#include "bookings/newbooking.h"

#include "accounts/accounts.h"
#include "bookings/bookingrecords.h"
#include "bookings/staydates.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "rates/raterecords.h"
#include "rates/ratescalculator.h"
#include "shell/calendar.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <QSet>

namespace fenlark {

namespace {

QString roomName(Database &db, qint32 roomId)
{
    Room room;
    return room.fetch(db, roomId) ? room.RoomName : QString::number(roomId);
}

} // namespace

double calcDeposit(const BBSetup &setup, double total, int nights)
{
    if (total == 0)
        messages::information(getString(5800, QStringLiteral("Click 'View Daily Rates' to add room rates for this booking.")),
                              getString(5801, QStringLiteral("Rates not yet entered.")));
    if (setup.FullDeposit == QLatin1String("Y") && nights == 1)
        return total;
    return setup.DepositPct / 100.0 * total;
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

bool BookingWriter::validate(const NewBookingRequest &request) const
{
    if (request.BBClientID == 0
        && (request.title + request.firstName + request.surname + request.company).trimmed().isEmpty()) {
        messages::critical(getString(5802, QStringLiteral("You haven't typed in any name.")),
                           getString(5803, QStringLiteral("Name cannot be blank.")));
        return false;
    }
    if (request.rooms.empty()) {
        messages::critical(getString(2276, QStringLiteral("You didn't pick a room.")),
                           getString(2277, QStringLiteral("No room selected")));
        return false;
    }
    if (nightCount(request.FromDate, request.ToDate) < 1) {
        messages::critical(getString(2278, QStringLiteral("The number of nights must be greater than zero.")),
                           getString(2279, QStringLiteral("Type in a positive number of nights")));
        return false;
    }
    QSet<qint32> seen;
    for (const NewBookingRoom &room : request.rooms) {
        if (seen.contains(room.BBRoomID)) {
            messages::critical(getString(5838, QStringLiteral("%1 is listed more than once: a booking holds one leg per room."))
                                   .arg(roomName(m_db, room.BBRoomID)),
                               getString(5839, QStringLiteral("Room listed twice")));
            return false;
        }
        seen.insert(room.BBRoomID);
        if (!clashingBookings(m_db, room.BBRoomID, request.FromDate, request.ToDate).empty()) {
            messages::critical(getString(5836, QStringLiteral("%1 has been taken for those dates since it was "
                                                              "chosen. Pick the rooms again."))
                                   .arg(roomName(m_db, room.BBRoomID)),
                               getString(5837, QStringLiteral("Room no longer free")));
            return false;
        }
    }
    return true;
}

std::optional<NewBookingResult> BookingWriter::save(const NewBookingRequest &request, Calendar *calendar)
{
    if (!validate(request))
        return std::nullopt;

    NewBookingResult result;
    Client client;
    Transaction transaction(m_db);

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
    } else if (!client.fetch(m_db, request.BBClientID)) {
        messages::critical(getString(5808, QStringLiteral("The client %1 could not be found.")).arg(request.BBClientID),
                           getString(5809, QStringLiteral("Client not found")));
        return std::nullopt;
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

        const StayPrice price = priceStay(m_rates, {room.BBRoomID, room.BBRateID, head.BBRateSheetID, head.FromDate,
                                                    head.ToDate, room.NoAdults, room.Child1, room.Child2});
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

    if (calendar) {
        calendar->cacheGuest(client.BBClientID, getShortName(client.FirstName, client.Surname, client.Company));
        for (const NewBookingRoom &room : request.rooms) {
            auto entry = std::make_shared<CalendarCache>();
            entry->BBBookingID = head.BBBookingID;
            entry->Status = head.Status;
            entry->Arrival = head.FromDate;
            entry->BBClientID = client.BBClientID;
            entry->NoAdults = room.NoAdults;
            entry->Children = static_cast<qint16>(room.Child1 + room.Child2);
            for (const QDate &night : nights)
                calendar->addCalEntry(night, room.BBRoomID, entry);
        }
    }
    return result;
}

} // namespace fenlark

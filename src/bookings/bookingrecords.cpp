#include "bookings/bookingrecords.h"

namespace fenlark {

const std::vector<Column<Booking>> &Booking::columns()
{
    static const std::vector<Column<Booking>> c = {
        {"BookingID", &Booking::BookingID},
        {"BookingType", &Booking::BookingType},
        {"BookingDate", &Booking::BookingDate},
        {"FromDate", &Booking::FromDate},
        {"ToDate", &Booking::ToDate},
        {"Status", &Booking::Status},
        {"MadeBy", &Booking::MadeBy},
        {"Deposit", &Booking::Deposit},
        {"BBRateSheetID", &Booking::BBRateSheetID},
        {"BBAccountID", &Booking::BBAccountID},
        {"AgentComm", &Booking::AgentComm},
        {"ExtBookingID", &Booking::ExtBookingID, true},
        {"Source", &Booking::Source},
        {"Notes", &Booking::Notes},
        {"ReservedUntil", &Booking::ReservedUntil},
        {"CurrencyCode", &Booking::CurrencyCode},
        {"ExchangeRate", &Booking::ExchangeRate},
    };
    return c;
}

const std::vector<Column<Guest>> &Guest::columns()
{
    static const std::vector<Column<Guest>> c = {
        {"GuestID", &Guest::GuestID},
        {"BBBookingID", &Guest::BBBookingID},
        {"BBRoomID", &Guest::BBRoomID},
        {"BBClientID", &Guest::BBClientID},
        {"NoAdults", &Guest::NoAdults},
        {"Child1", &Guest::Child1},
        {"Child2", &Guest::Child2},
        {"BBRateID", &Guest::BBRateID},
        {"BBClient2ID", &Guest::BBClient2ID},
        {"BBAccountID", &Guest::BBAccountID},
        {"Reference", &Guest::Reference},
        {"CheckInOut", &Guest::CheckInOut},
    };
    return c;
}

const std::vector<Column<DailyRate>> &DailyRate::columns()
{
    static const std::vector<Column<DailyRate>> c = {
        {"CalDate", &DailyRate::CalDate},
        {"BBBookingID", &DailyRate::BBBookingID},
        {"BBRoomID", &DailyRate::BBRoomID},
        {"RoomRate", &DailyRate::RoomRate},
    };
    return c;
}

} // namespace fenlark

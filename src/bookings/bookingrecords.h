#pragma once

#include "shell/record.h"

namespace fenlark {

// The head of a booking: one client, one span of dates, one or more legs.
class Booking : public LocalRecord<Booking> {
public:
    static constexpr const char *Table = "booking";
    static constexpr const char *Key = "BBBookingID";
    static constexpr auto keyMember() { return &Booking::BBBookingID; }
    static const std::vector<Column<Booking>> &columns();

    qint32 BBBookingID = 0;
    qint32 BookingID = 0;
    QString BookingType;
    QDateTime BookingDate;
    QDate FromDate;          // first night
    QDate ToDate;            // day of leaving
    QString Status;
    qint32 MadeBy = 0;
    double Deposit = 0;
    qint32 BBRateSheetID = 0;
    qint32 BBAccountID = 0;
    double AgentComm = 0;
    QString ExtBookingID;    // may be null
    QString Source;
    QString Notes;
    QDateTime ReservedUntil;
    QString CurrencyCode;
    double ExchangeRate = 0;
};

// One leg of a booking: one room for the whole span of its head.
class Guest : public LocalRecord<Guest> {
public:
    static constexpr const char *Table = "guest";
    static constexpr const char *Key = "BBGuestID";
    static constexpr auto keyMember() { return &Guest::BBGuestID; }
    static const std::vector<Column<Guest>> &columns();

    qint32 BBGuestID = 0;
    qint32 GuestID = 0;
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    qint32 BBClientID = 0;
    qint16 NoAdults = 0;
    qint16 Child1 = 0;
    qint16 Child2 = 0;
    qint32 BBRateID = 0;
    qint32 BBClient2ID = 0;
    qint32 BBAccountID = 0;
    QString Reference;
    QString CheckInOut;
};

// The rate of one night of one room of a booking.
class DailyRate : public UnloggedRecord<DailyRate> {
public:
    static constexpr const char *Table = "dailyrate";
    static const std::vector<Column<DailyRate>> &columns();

    QDate CalDate;
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    double RoomRate = 0;
};

} // namespace fenlark

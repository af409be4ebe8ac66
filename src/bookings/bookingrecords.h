#pragma once

#include "shell/record.h"


namespace fenlark {

// The hold placeholders of ReservedUntil. A head saved for the first time carries
// the empty date; every later save from the booking editor with a status other
// than "R" or "P" writes the day after it. The two are kept apart on purpose:
// the server tells a never-edited head from an edited one by them.
QDateTime reservedUntilNewHead();     // 1899-12-30 00:00:00
QDateTime reservedUntilEditorSave();  // 1899-12-31 00:00:00
// What the editor stores: the chosen hold for "R" and "P", the editor placeholder otherwise.
QDateTime reservedUntilForSave(const QString &status, const QDateTime &chosenHold);

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
    QDate ToDate;            // day of leaving, not a night
    QString Status;
    qint32 MadeBy = 0;
    double Deposit = 0;
    qint32 BBRateSheetID = 0;
    qint32 BBAccountID = 0;
    double AgentComm = 0;
    QString ExtBookingID;    // may be null
    QString Source;
    QString Notes;
    QDateTime ReservedUntil = reservedUntilNewHead();
    QString CurrencyCode;
    double ExchangeRate = 0;

    int nights() const;
};

// One leg of a booking: one room for the whole span of its head. A booking has
// at most one leg per room, so a leg is found by (BBBookingID, BBRoomID).
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
    qint32 BBRateID = 0;     // 0: manual rates
    qint32 BBClient2ID = 0;  // 0: no second guest
    qint32 BBAccountID = 0;  // 0: billed on the booking's account
    QString Reference;
    QString CheckInOut;      // "", "I" checked in, "K" checked out

    // Reads the leg of that room of that booking; false when it has none.
    bool fetchLeg(Database &db, qint32 bookingId, qint32 roomId);
    // Whether the booking already has a leg in that room other than exceptGuestId:
    // a writer that adds or moves a leg asks this first, as a booking holds at
    // most one leg per room.
    static bool legExists(Database &db, qint32 bookingId, qint32 roomId, qint32 exceptGuestId = 0);
    // The legs of a booking, in the order they were made.
    static std::vector<Guest> legsOf(Database &db, qint32 bookingId);
};

// The rate of one night of one room of a booking. The rows have no key of their
// own and travel to the server as part of their booking: an operation that
// removes rows marks the head as changed, one that only adds or moves rows does
// not (its caller saves the head, which logs it).
class DailyRate : public UnloggedRecord<DailyRate> {
public:
    static constexpr const char *Table = "dailyrate";
    static const std::vector<Column<DailyRate>> &columns();

    QDate CalDate;
    qint32 BBBookingID = 0;
    qint32 BBRoomID = 0;
    double RoomRate = 0;

    // Adds this night, its rate rounded to cents. Not logged.
    void update(Database &db) const;

    // Every night of the booking goes; logs "U" for the booking.
    static void deleteBooking(Database &db, qint32 bookingId);
    // Every night of one room of the booking goes; logs "U" for the booking.
    static void remove(Database &db, qint32 bookingId, qint32 roomId);
    // Not logged.
    static void changeRoom(Database &db, qint32 bookingId, qint32 oldRoomId, qint32 newRoomId);
    // Nights before date (date itself kept). Not logged.
    static void deleteBeforeDate(Database &db, qint32 bookingId, const QDate &date);
    // Nights from date on (date itself removed). Not logged.
    static void deleteAfterDate(Database &db, qint32 bookingId, const QDate &date);
    // Moves one room's nights to another head. Not logged.
    static void changeBookingID(Database &db, qint32 oldBookingId, qint32 newBookingId, qint32 roomId);
    // The nights of that booking and room that belong to no live leg (left by a
    // cancelled leg) go; a write that moves a leg into a room runs this first, so
    // a night never has two rates. Not logged: the caller's write logs the head.
    static int removeOrphans(Database &db, qint32 bookingId, qint32 roomId);
    // Average nightly rate of a leg; 0 when it has no nights.
    static double fetchAvgDailyRate(Database &db, qint32 guestId, qint32 bookingId);
    // The nights of one room of a booking, by date.
    static std::vector<DailyRate> forLeg(Database &db, qint32 bookingId, qint32 roomId);
};

} // namespace fenlark

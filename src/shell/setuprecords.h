#pragma once

#include "shell/record.h"

namespace fenlark {

// The property's settings: one row, downloaded from the server.
class BBSetup : public UnloggedRecord<BBSetup> {
public:
    static constexpr const char *Table = "bbsetup";
    static const std::vector<Column<BBSetup>> &columns();

    // Reads the one row; false when the table is empty.
    bool fetch(Database &db);
    static bool isSetupEmpty(Database &db);

    qint16 BBID = 0;
    QString BBName;
    QString Password;
    QString Contacts, Address, Directions;
    QString PhoneNo, Faxno, Cellno, SMSCellno;
    QString Email, BookingEmail, WebSite;
    QString Conditions;
    QString DepositPolicy;
    double DepositPct = 0;
    qint16 PaymentOptions = 0;
    QString BankingDetails;
    qint16 ChildLowerLimit = 0;
    qint16 ChildAge1 = 0, ChildAge2 = 0;
    QString ChildFlag1, ChildFlag2;
    double ChildRate1 = 0, ChildRate2 = 0;
    QString AllowSameDay;
    QString FullDeposit;
    QString ChargeSSRate;
    QString CurrencyCode;
    qint16 DepositDays = 0;
    qint32 SynchCounter = 0;
    QString WVPassword;
    QString VatNo;
    QDateTime LastUpdated;   // a null reads as 2004-09-01 00:01
};

class VMUser : public KeyedUnloggedRecord<VMUser> {
public:
    static constexpr const char *Table = "vmuser";
    static constexpr const char *Key = "UserID";
    static const std::vector<Column<VMUser>> &columns();

    qint32 UserID = 0;
    QString UserName;
    QString Password;
    qint32 GroupID = 0;
};

class VMGroup : public KeyedUnloggedRecord<VMGroup> {
public:
    static constexpr const char *Table = "vmgroup";
    static constexpr const char *Key = "GroupID";
    static const std::vector<Column<VMGroup>> &columns();

    qint32 GroupID = 0;
    QString GroupName;
    bool CancelBooking = false;
    bool CancelRoom = false;
    bool RunReports = false;
    bool ExtrasDelete = false;
    bool PaymentsDelete = false;
};

// A note in one of the calendar's three header rows, over a span of days.
class EventData : public LocalRecord<EventData> {
public:
    static constexpr const char *Table = "event";
    static constexpr const char *Key = "BBEventID";
    static constexpr auto keyMember() { return &EventData::BBEventID; }
    static const std::vector<Column<EventData>> &columns();

    qint32 BBEventID = 0;
    qint32 EventID = 0;
    qint16 EventIndex = 1;
    QDate FromDate;
    QDate ToDate;   // inclusive
    QString EventNote;
};

// The rooms of the property, the rows of the calendar.
class Room : public KeyedUnloggedRecord<Room> {
public:
    static constexpr const char *Table = "room";
    static constexpr const char *Key = "BBRoomID";
    static const std::vector<Column<Room>> &columns();

    qint32 BBRoomID = 0;
    qint32 BBRTID = 0;
    QString RoomName;
    qint16 OrderBy = 0;
};

// What kind of room a room is: its rate scheme, limits and child rules.
class RoomType : public KeyedUnloggedRecord<RoomType> {
public:
    static constexpr const char *Table = "roomtype";
    static constexpr const char *Key = "BBRTID";
    static const std::vector<Column<RoomType>> &columns();

    qint32 BBRTID = 0;
    QString RTName;
    QString RTDesc;
    QString RateScheme;
    qint16 MaxAdults = 0;
    qint16 MaxOccupancy = 0;
    QString AllowChild1;
    QString AllowChild2;
    qint32 DefaultMealPlanID = 0;
    QString ChildFlag1;
    QString ChildFlag2;
    double ChildRate1 = 0;
    double ChildRate2 = 0;
    QString Override;
    qint16 OrderBy = 0;
    QString AppliesTo;   // weekday mask read night by night
};

// A VAT rate by its code.
class VatCode : public KeyedUnloggedRecord<VatCode> {
public:
    static constexpr const char *Table = "vatcode";
    static constexpr const char *Key = "VatCode";
    static const std::vector<Column<VatCode>> &columns();

    qint16 Code = 0;   // the column VatCode
    double VATRate = 0;
};

} // namespace fenlark

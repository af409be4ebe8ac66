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

} // namespace fenlark

#include "shell/schema.h"

#include "shell/database.h"

#include <QVariant>

namespace fenlark {

namespace {

// Version 1: every table of the diary. Text columns are case-insensitive where
// people search them by name; keys of shared tables never hand out a deleted number.
const char *const Version1[] = {
    // Booking side
    R"(create table booking (
        BBBookingID integer primary key autoincrement, BookingID integer not null default 0,
        BookingType text not null default '', BookingDate text, FromDate text, ToDate text,
        Status text not null default '', MadeBy integer not null default 0, Deposit real not null default 0,
        BBRateSheetID integer not null default 0, BBAccountID integer not null default 0,
        AgentComm real not null default 0, ExtBookingID text, Source text not null default '',
        Notes text not null default '', ReservedUntil text, CurrencyCode text not null default '',
        ExchangeRate real not null default 0))",
    R"(create table bookingdel (
        BBBookingID integer, BookingID integer, BookingType text, BookingDate text, FromDate text, ToDate text,
        Status text, MadeBy integer, Deposit real, BBRateSheetID integer, BBAccountID integer, AgentComm real,
        ExtBookingID text, Source text, Notes text, ReservedUntil text, CurrencyCode text, ExchangeRate real,
        deldate text, deluser text))",
    R"(create table guest (
        BBGuestID integer primary key autoincrement, GuestID integer not null default 0,
        BBBookingID integer not null default 0, BBRoomID integer not null default 0,
        BBClientID integer not null default 0, NoAdults integer not null default 0,
        Child1 integer not null default 0, Child2 integer not null default 0, BBRateID integer not null default 0,
        BBClient2ID integer not null default 0, BBAccountID integer not null default 0,
        Reference text not null default '', CheckInOut text not null default ''))",
    R"(create table guestdel (
        BBGuestID integer, GuestID integer, BBBookingID integer, BBRoomID integer, BBClientID integer,
        NoAdults integer, Child1 integer, Child2 integer, BBRateID integer, BBClient2ID integer,
        BBAccountID integer, Reference text, CheckInOut text, deldate text, deluser text))",
    R"(create table dailyrate (
        CalDate text not null, BBBookingID integer not null, BBRoomID integer not null, RoomRate real not null default 0))",
    "create table newbooking (BBBookingID integer not null)",
    R"(create table event (
        BBEventID integer primary key autoincrement, EventID integer not null default 0,
        EventIndex integer not null default 1, FromDate text, ToDate text, EventNote text not null default ''))",
    // Clients and accounts
    R"(create table client (
        BBClientID integer primary key autoincrement, ClientID integer not null default 0, DateCreated text,
        CreatedOn text not null default '', ClientType text not null default '', Title text not null default '',
        FirstName text not null default '', Surname text not null default '', Company text not null default '',
        PhoneNo text not null default '', Email text not null default '', Notes text not null default '',
        BBRateSheetID integer not null default 0, Add1 text not null default '', Add2 text not null default '',
        VatNo text not null default '', Active text not null default 'Y'))",
    R"(create table clientextra (
        BBClientExtraID integer primary key autoincrement, ClientExtraID integer not null default 0,
        BBClientID integer not null default 0, FieldType text not null default '', FieldValue text not null default ''))",
    "create table clientxsort (fieldtype text primary key, orderby integer not null default 0)",
    R"(create table account (
        BBAccountID integer primary key autoincrement, AccountID integer not null default 0,
        InvoiceTo integer not null default 0, ProformaNo integer not null default 0,
        InvoiceNo integer not null default 0, Status text not null default 'O',
        Reference text not null default '', VatCode integer not null default 1))",
    R"(create table extra (
        BBExtraID integer primary key autoincrement, ExtraID integer not null default 0,
        BBGuestID integer not null default 0, ExtraDate text, Qty real not null default 0,
        Price real not null default 0, BBStockID integer not null default 0, BBAccountID integer not null default 0))",
    R"(create table payment (
        BBPaymentID integer primary key autoincrement, PaymentID integer not null default 0,
        BBAccountID integer not null default 0, CreateDate text, CreateUser text not null default '',
        PaymentDate text, PaymentType text not null default '', Reference text not null default '',
        Amount real not null default 0))",
    R"(create table clienttran (
        BBClientTranID integer primary key autoincrement, ClientTranID integer not null default 0,
        BBClientID integer not null default 0, TranDate text, TranType text not null default '',
        TranNo integer not null default 0, Reference text not null default '', Amount real not null default 0,
        VAT real not null default 0, Matched integer not null default 0))",
    "create table trantype (TranType text primary key, lastNumber integer not null default 0)",
    R"(create table invoice (
        BBInvoiceID integer primary key autoincrement, InvoiceID integer not null default 0,
        InvoiceNo integer not null default 0, BBClientID integer not null default 0, CreateDate text,
        CreateUser text not null default '', Amount real not null default 0, VAT real not null default 0,
        BBAccountID integer not null default 0))",
    R"(create table invoiceitem (
        BBInvoiceItemID integer primary key autoincrement, BBInvoiceID integer not null default 0,
        InvoiceItemID integer not null default 0, itemType text not null default '', ItemID integer not null default 0,
        ItemDate text not null default '', Description text not null default '', Qty real not null default 0,
        Price real not null default 0, VatCode integer not null default 0))",
    R"(create table creditnote (
        BBCreditNoteID integer primary key autoincrement, CreditNoteID integer not null default 0,
        CreditNoteNo integer not null default 0, CreateDate text, CreateUser text not null default '',
        InvoiceNo integer not null default 0))",
    R"(create table stock (
        BBStockID integer primary key, StockName text not null default '', Active text not null default 'Y',
        Price real not null default 0, VatCode integer not null default 1))",
    "create table vatcode (VatCode integer primary key, VATRate real not null default 0)",
    // Property setup
    R"(create table bbsetup (
        BBID integer not null default 0, BBName text not null default 'Fetching...', Password text not null default '',
        Contacts text not null default '', Address text not null default '', Directions text not null default '',
        PhoneNo text not null default '', Faxno text not null default '', Cellno text not null default '',
        SMSCellno text not null default '', Email text not null default '', BookingEmail text not null default '',
        WebSite text not null default '', Conditions text not null default '', DepositPolicy text not null default '',
        DepositPct real not null default 0, PaymentOptions integer not null default 0,
        BankingDetails text not null default '', ChildLowerLimit integer not null default 0,
        ChildAge1 integer not null default 0, ChildAge2 integer not null default 0,
        ChildFlag1 text not null default '', ChildFlag2 text not null default '',
        ChildRate1 real not null default 0, ChildRate2 real not null default 0,
        AllowSameDay text not null default '', FullDeposit text not null default '',
        ChargeSSRate text not null default '', CurrencyCode text not null default 'ZAR',
        DepositDays integer not null default 0, SynchCounter integer not null default 0,
        WVPassword text not null default '', VatNo text not null default '', LastUpdated text))",
    R"(create table room (
        BBRoomID integer primary key, BBRTID integer not null default 0, RoomName text not null default '',
        OrderBy integer not null default 0))",
    R"(create table roomtype (
        BBRTID integer primary key, RTName text not null default '', RTDesc text not null default '',
        RateScheme text not null default '', MaxAdults integer not null default 0,
        MaxOccupancy integer not null default 0, AllowChild1 text not null default '',
        AllowChild2 text not null default '', DefaultMealPlanID integer not null default 0,
        ChildFlag1 text not null default '', ChildFlag2 text not null default '',
        ChildRate1 real not null default 0, ChildRate2 real not null default 0,
        Override text not null default '', OrderBy integer not null default 0,
        AppliesTo text not null default ''))",
    R"(create table ratesheet (
        BBRateSheetID integer primary key, RateCode text not null default '',
        DepositPolicy text not null default '', CurrencyCode text not null default ''))",
    R"(create table rates (
        BBRTID integer not null default 0, BBMealPlanID integer not null default 0,
        BBRateSheetID integer not null default 0, RateType text not null default '1', StartDate text, EndDate text,
        Pax1 real, Pax2 real, Pax3 real, Pax4 real, Pax5 real,
        WPax1 real, WPax2 real, WPax3 real, WPax4 real, WPax5 real,
        ChildFlag1 text not null default '', ChildFlag2 text not null default '',
        ChildRate1 real, ChildRate2 real, WChildRate1 real, WChildRate2 real))",
    R"(create table rateslongstay (
        BBLSID integer primary key, BBRateSheetID integer not null default 0, StartDate text, EndDate text,
        BBRTID integer not null default 0, Duration1 integer, Duration2 integer, Duration3 integer,
        Discount1 real, Discount2 real, Discount3 real))",
    R"(create table ratecode (
        BBRateID integer primary key, Source text not null default '', SourceID integer not null default 0))",
    R"(create table ratesheetrtmp (
        BBRateSheetID integer not null default 0, BBRTID integer not null default 0, BBMealPlanID integer not null default 0))",
    R"(create table rtmealplan (
        BBMealPlanRC integer primary key, BBRTID integer not null default 0, BBMealPlanID integer not null default 0))",
    R"(create table package (
        BBPackageID integer primary key, PackageName text not null default '', PackageDesc text not null default '',
        PackageCode text not null default '', StartDate text, EndDate text, Duration integer not null default 0,
        AllowArrival text not null default '', OwnSiteOnly text not null default '', BlockAll text not null default '',
        AllowChild1 text not null default '', AllowChild2 text not null default '', MinStay integer not null default 0,
        RateScheme text not null default ''))",
    R"(create table packagerate (
        BBPackageID integer not null default 0, SourceID integer not null default 0,
        BBRateSheetID integer not null default 0, Pax1 real, Pax2 real, Pax3 real, Pax4 real, Pax5 real,
        ChildRate1 real, ChildRate2 real, ChildFlag1 text not null default '', ChildFlag2 text not null default ''))",
    "create table packageratesheet (BBPackageID integer not null default 0, BBRateSheetID integer not null default 0)",
    R"(create table packagert (
        BBPackageRateID integer primary key, BBPackageID integer not null default 0, BBRTID integer not null default 0))",
    "create table currencycode (CurrencyCode text primary key, currencyname text not null default '')",
    // Shell
    R"(create table vmuser (
        UserID integer primary key, UserName text not null default '', Password text not null default '',
        GroupID integer not null default 0))",
    R"(create table vmgroup (
        GroupID integer primary key, GroupName text not null default '', CancelBooking integer not null default 0,
        CancelRoom integer not null default 0, RunReports integer not null default 0,
        ExtrasDelete integer not null default 0, PaymentsDelete integer not null default 0))",
    "create table audit (auditdate text, UserName text not null default '', Notes text not null default '')",
    "create table preference (prefcode text primary key, prefvalue text not null default '')",
    R"(create table status (
        Status text primary key, languagecode integer not null default 0, Description text not null default '',
        Red integer not null default 0, Green integer not null default 0, Blue integer not null default 0,
        OrderBy integer not null default 0))",
    R"(create table dblog (
        logid integer primary key autoincrement, logdate text, logtype text not null,
        TableName text not null, bbtableId integer not null))",
    "create table synchlock (locktime text)",
    "create table vmversion (VersionNo text)",

    // Indexes for the paths the desk walks all day.
    "create index booking_dates on booking (ToDate, FromDate)",
    "create index booking_account on booking (BBAccountID)",
    "create index booking_madeby on booking (MadeBy)",
    "create index guest_booking on guest (BBBookingID)",
    "create index guest_room on guest (BBRoomID)",
    "create index guest_client on guest (BBClientID)",
    "create index guest_account on guest (BBAccountID)",
    "create index dailyrate_booking on dailyrate (BBBookingID, BBRoomID, CalDate)",
    "create index event_dates on event (ToDate, FromDate)",
    "create index client_surname on client (Surname collate nocase)",
    "create index client_firstname on client (FirstName collate nocase)",
    "create index client_company on client (Company collate nocase)",
    "create index clientextra_client on clientextra (BBClientID)",
    "create index account_invoiceto on account (InvoiceTo)",
    "create index extra_guest on extra (BBGuestID)",
    "create index extra_account on extra (BBAccountID)",
    "create index payment_account on payment (BBAccountID)",
    "create index clienttran_client on clienttran (BBClientID)",
    "create index invoice_account on invoice (BBAccountID)",
    "create index invoiceitem_invoice on invoiceitem (BBInvoiceID)",
    "create index dblog_row on dblog (TableName, bbtableId)",
    "create index rates_sheet on rates (BBRateSheetID, BBRTID)",

    // Rows the program keeps for itself.
    R"(insert into status (Status, languagecode, Description, Red, Green, Blue, OrderBy) values
        ('C', 2310, 'Confirmed', 85, 185, 255, 1),
        ('O', 2311, 'Outstanding Account', 205, 60, 100, 2),
        ('P', 2312, 'Provisional', 255, 220, 255, 3),
        ('R', 2313, 'Reserved with Auto Expire', 255, 180, 255, 4),
        ('S', 2314, 'Paid', 170, 220, 130, 5),
        ('U', 2315, 'Unavailable', 200, 200, 200, 6),
        ('W', 2316, 'Waiting for deposit', 175, 240, 255, 7))",
    R"(insert into currencycode (CurrencyCode, currencyname) values
        ('AUD', 'Australian Dollar'), ('BWP', 'Botswana Pula'), ('CAD', 'Canadian Dollar'),
        ('CHF', 'Swiss Franc'), ('EUR', 'Euro'), ('GBP', 'British Pound'), ('JPY', 'Japanese Yen'),
        ('MUR', 'Mauritian Rupee'), ('MZN', 'Mozambican Metical'), ('NAD', 'Namibian Dollar'),
        ('NZD', 'New Zealand Dollar'), ('USD', 'US Dollar'), ('ZAR', 'South African Rand'))",
};

// Version 2: the client search reads only keys from the name indexes, so each
// name index also carries Active and the search never visits the table rows.
const char *const Version2[] = {
    "drop index client_surname",
    "drop index client_firstname",
    "drop index client_company",
    "create index client_surname on client (Surname collate nocase, Active)",
    "create index client_firstname on client (FirstName collate nocase, Active)",
    "create index client_company on client (Company collate nocase, Active)",
};

// Version 3: the synchronisation finds rows by their server id on every update
// and acknowledgement from the server.
const char *const Version3[] = {
    "create index booking_serverid on booking (BookingID)",
    "create index guest_serverid on guest (GuestID)",
    "create index client_serverid on client (ClientID)",
    "create index clientextra_serverid on clientextra (ClientExtraID)",
    "create index clienttran_serverid on clienttran (ClientTranID)",
    "create index account_serverid on account (AccountID)",
    "create index event_serverid on event (EventID)",
    "create index payment_serverid on payment (PaymentID)",
    "create index invoice_serverid on invoice (InvoiceID)",
    "create index invoiceitem_serverid on invoiceitem (InvoiceItemID)",
    "create index extra_serverid on extra (ExtraID)",
    "create index creditnote_serverid on creditnote (CreditNoteID)",
};

// Version 4: names are found case-folded in every alphabet, where SQLite folds
// only ASCII. clientfold keeps each client's names folded by foldcase(), which
// every connection of the desk registers; triggers keep it in step with every
// write of a client (the desk, the synchronisation, anything else), and the
// searches read keys from its indexes without visiting the client rows.
const char *const Version4[] = {
    R"(create table clientfold (
        BBClientID integer primary key, Active text, FirstName text, Surname text, Company text))",
    R"(insert into clientfold (BBClientID, Active, FirstName, Surname, Company)
        select BBClientID, Active, foldcase(FirstName), foldcase(Surname), foldcase(Company) from client)",
    "create index clientfold_firstname on clientfold (FirstName collate nocase, Active)",
    "create index clientfold_surname on clientfold (Surname collate nocase, Active)",
    "create index clientfold_company on clientfold (Company collate nocase, Active)",
    R"(create trigger client_fold_insert after insert on client begin
        delete from clientfold where BBClientID = new.BBClientID;
        insert into clientfold (BBClientID, Active, FirstName, Surname, Company)
            values (new.BBClientID, new.Active, foldcase(new.FirstName), foldcase(new.Surname), foldcase(new.Company));
    end)",
    R"(create trigger client_fold_update after update of BBClientID, Active, FirstName, Surname, Company on client begin
        delete from clientfold where BBClientID = old.BBClientID;
        insert into clientfold (BBClientID, Active, FirstName, Surname, Company)
            values (new.BBClientID, new.Active, foldcase(new.FirstName), foldcase(new.Surname), foldcase(new.Company));
    end)",
    R"(create trigger client_fold_delete after delete on client begin
        delete from clientfold where BBClientID = old.BBClientID;
    end)",
    // Nothing searches the raw names any more.
    "drop index client_surname",
    "drop index client_firstname",
    "drop index client_company",
};

// Version 5: the cancelled rooms are listed newest first and restored by key,
// both tables growing for as long as the property takes bookings. The order in
// which the client editor lists extra fields ships with the program (an extra of
// a type missing here is not shown, and the editor's next save would drop it); a
// client's history and retirement find the rooms where the client was the second
// guest; the company lookup reads the folded company with the phone and address
// it lists from one index.
const char *const Version5[] = {
    "create index if not exists bookingdel_key on bookingdel (BBBookingID)",
    "create index if not exists bookingdel_deldate on bookingdel (deldate)",
    "create index if not exists guestdel_key on guestdel (BBGuestID)",
    "create index if not exists guestdel_booking on guestdel (BBBookingID)",
    "create index if not exists guestdel_deldate on guestdel (deldate)",
    R"(insert or ignore into clientxsort (fieldtype, orderby) values
        ('P', 1), ('F', 2), ('C', 3), ('I', 4), ('N', 5), ('O', 6), ('T', 7), ('S', 8))",
    "create index if not exists guest_client2 on guest (BBClient2ID)",
    "create index if not exists client_companyfold on client (foldcase(Company), Company, PhoneNo, Add1)",
};

// Version 6: a stay's length, so that the longest one is known at once and a
// query for the stays around some days reads only those (see stayOverlapSql).
const char *const Version6[] = {
    "create index if not exists booking_nights on booking (julianday(ToDate) - julianday(FromDate))",
};

struct Migration {
    int version;
    const char *const *statements;
    std::size_t count;
};

const Migration Migrations[] = {
    {1, Version1, std::size(Version1)},
    {2, Version2, std::size(Version2)},
    {3, Version3, std::size(Version3)},
    {4, Version4, std::size(Version4)},
    {5, Version5, std::size(Version5)},
    {6, Version6, std::size(Version6)},
};

} // namespace

int Schema::currentVersion()
{
    return Migrations[std::size(Migrations) - 1].version;
}

void Schema::ensure(Database &db)
{
    if (db.scalar(QStringLiteral("pragma user_version")).toInt() >= currentVersion())
        return;
    Transaction transaction(db);
    // Read again under the write lock: a second desk starting on the same new
    // file may have made the tables meanwhile.
    const int have = db.scalar(QStringLiteral("pragma user_version")).toInt();
    if (have >= currentVersion())
        return;
    for (const Migration &m : Migrations) {
        if (m.version <= have)
            continue;
        for (std::size_t i = 0; i < m.count; ++i)
            db.execute(QString::fromUtf8(m.statements[i]));
    }
    db.execute(QStringLiteral("delete from vmversion"));
    db.execute(QStringLiteral("insert into vmversion (VersionNo) values (?)"), {QString::number(currentVersion())});
    db.execute(QStringLiteral("pragma user_version = %1").arg(currentVersion()));
    transaction.commit();
}

const QStringList &Schema::sharedTables()
{
    static const QStringList tables = {
        QStringLiteral("client"), QStringLiteral("clientextra"), QStringLiteral("clienttran"),
        QStringLiteral("account"), QStringLiteral("event"), QStringLiteral("payment"),
        QStringLiteral("invoice"), QStringLiteral("invoiceitem"), QStringLiteral("booking"),
        QStringLiteral("guest"), QStringLiteral("extra"),
    };
    return tables;
}

const QStringList &Schema::serverTables()
{
    static const QStringList tables = {
        QStringLiteral("bbsetup"), QStringLiteral("room"), QStringLiteral("roomtype"),
        QStringLiteral("ratesheet"), QStringLiteral("rates"), QStringLiteral("rateslongstay"),
        QStringLiteral("ratecode"), QStringLiteral("ratesheetrtmp"), QStringLiteral("rtmealplan"),
        QStringLiteral("package"), QStringLiteral("packagerate"), QStringLiteral("packageratesheet"),
        QStringLiteral("packagert"), QStringLiteral("vmuser"), QStringLiteral("vmgroup"),
        QStringLiteral("stock"), QStringLiteral("vatcode"),
    };
    return tables;
}

} // namespace fenlark

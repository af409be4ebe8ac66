#include "shell/setuprecords.h"

#include <QSqlQuery>

namespace fenlark {

const std::vector<Column<BBSetup>> &BBSetup::columns()
{
    static const std::vector<Column<BBSetup>> c = {
        {"BBID", &BBSetup::BBID},
        {"BBName", &BBSetup::BBName},
        {"Password", &BBSetup::Password},
        {"Contacts", &BBSetup::Contacts},
        {"Address", &BBSetup::Address},
        {"Directions", &BBSetup::Directions},
        {"PhoneNo", &BBSetup::PhoneNo},
        {"Faxno", &BBSetup::Faxno},
        {"Cellno", &BBSetup::Cellno},
        {"SMSCellno", &BBSetup::SMSCellno},
        {"Email", &BBSetup::Email},
        {"BookingEmail", &BBSetup::BookingEmail},
        {"WebSite", &BBSetup::WebSite},
        {"Conditions", &BBSetup::Conditions},
        {"DepositPolicy", &BBSetup::DepositPolicy},
        {"DepositPct", &BBSetup::DepositPct},
        {"PaymentOptions", &BBSetup::PaymentOptions},
        {"BankingDetails", &BBSetup::BankingDetails},
        {"ChildLowerLimit", &BBSetup::ChildLowerLimit},
        {"ChildAge1", &BBSetup::ChildAge1},
        {"ChildAge2", &BBSetup::ChildAge2},
        {"ChildFlag1", &BBSetup::ChildFlag1},
        {"ChildFlag2", &BBSetup::ChildFlag2},
        {"ChildRate1", &BBSetup::ChildRate1},
        {"ChildRate2", &BBSetup::ChildRate2},
        {"AllowSameDay", &BBSetup::AllowSameDay},
        {"FullDeposit", &BBSetup::FullDeposit},
        {"ChargeSSRate", &BBSetup::ChargeSSRate},
        {"CurrencyCode", &BBSetup::CurrencyCode},
        {"DepositDays", &BBSetup::DepositDays},
        {"SynchCounter", &BBSetup::SynchCounter},
        {"WVPassword", &BBSetup::WVPassword},
        {"VatNo", &BBSetup::VatNo},
        {"LastUpdated", &BBSetup::LastUpdated},
    };
    return c;
}

const std::vector<Column<VMUser>> &VMUser::columns()
{
    static const std::vector<Column<VMUser>> c = {
        {"UserID", &VMUser::UserID},
        {"UserName", &VMUser::UserName},
        {"Password", &VMUser::Password},
        {"GroupID", &VMUser::GroupID},
    };
    return c;
}

const std::vector<Column<VMGroup>> &VMGroup::columns()
{
    static const std::vector<Column<VMGroup>> c = {
        {"GroupID", &VMGroup::GroupID},
        {"GroupName", &VMGroup::GroupName},
        {"CancelBooking", &VMGroup::CancelBooking},
        {"CancelRoom", &VMGroup::CancelRoom},
        {"RunReports", &VMGroup::RunReports},
        {"ExtrasDelete", &VMGroup::ExtrasDelete},
        {"PaymentsDelete", &VMGroup::PaymentsDelete},
    };
    return c;
}

const std::vector<Column<EventData>> &EventData::columns()
{
    static const std::vector<Column<EventData>> c = {
        {"EventID", &EventData::EventID},
        {"EventIndex", &EventData::EventIndex},
        {"FromDate", &EventData::FromDate},
        {"ToDate", &EventData::ToDate},
        {"EventNote", &EventData::EventNote},
    };
    return c;
}

bool BBSetup::fetch(Database &db)
{
    QSqlQuery q = db.query(QStringLiteral("select * from bbsetup"));
    if (!q.next())
        return false;
    fillFields(q.record());
    if (!LastUpdated.isValid())
        LastUpdated = QDateTime(QDate(2004, 9, 1), QTime(0, 1));
    return true;
}

bool BBSetup::isSetupEmpty(Database &db)
{
    return db.scalar(QStringLiteral("select count(*) from bbsetup")).toInt() == 0;
}

const std::vector<Column<Room>> &Room::columns()
{
    static const std::vector<Column<Room>> c = {
        {"BBRoomID", &Room::BBRoomID},
        {"BBRTID", &Room::BBRTID},
        {"RoomName", &Room::RoomName},
        {"OrderBy", &Room::OrderBy},
    };
    return c;
}

const std::vector<Column<RoomType>> &RoomType::columns()
{
    static const std::vector<Column<RoomType>> c = {
        {"BBRTID", &RoomType::BBRTID},
        {"RTName", &RoomType::RTName},
        {"RTDesc", &RoomType::RTDesc},
        {"RateScheme", &RoomType::RateScheme},
        {"MaxAdults", &RoomType::MaxAdults},
        {"MaxOccupancy", &RoomType::MaxOccupancy},
        {"AllowChild1", &RoomType::AllowChild1},
        {"AllowChild2", &RoomType::AllowChild2},
        {"DefaultMealPlanID", &RoomType::DefaultMealPlanID},
        {"ChildFlag1", &RoomType::ChildFlag1},
        {"ChildFlag2", &RoomType::ChildFlag2},
        {"ChildRate1", &RoomType::ChildRate1},
        {"ChildRate2", &RoomType::ChildRate2},
        {"Override", &RoomType::Override},
        {"OrderBy", &RoomType::OrderBy},
        {"AppliesTo", &RoomType::AppliesTo},
    };
    return c;
}

const std::vector<Column<VatCode>> &VatCode::columns()
{
    static const std::vector<Column<VatCode>> c = {
        {"VatCode", &VatCode::Code},
        {"VATRate", &VatCode::VATRate},
    };
    return c;
}

} // namespace fenlark

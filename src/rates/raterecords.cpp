#include "rates/raterecords.h"

namespace fenlark {

const std::vector<Column<RateSheet>> &RateSheet::columns()
{
    static const std::vector<Column<RateSheet>> c = {
        {"BBRateSheetID", &RateSheet::BBRateSheetID},
        {"RateCode", &RateSheet::RateCode},
        {"DepositPolicy", &RateSheet::DepositPolicy},
        {"CurrencyCode", &RateSheet::CurrencyCode},
    };
    return c;
}

const std::vector<Column<Rates>> &Rates::columns()
{
    static const std::vector<Column<Rates>> c = {
        {"BBRTID", &Rates::BBRTID},
        {"BBMealPlanID", &Rates::BBMealPlanID},
        {"BBRateSheetID", &Rates::BBRateSheetID},
        {"RateType", &Rates::RateType},
        {"StartDate", &Rates::StartDate},
        {"EndDate", &Rates::EndDate},
        {"Pax1", &Rates::Pax1},
        {"Pax2", &Rates::Pax2},
        {"Pax3", &Rates::Pax3},
        {"Pax4", &Rates::Pax4},
        {"Pax5", &Rates::Pax5},
        {"WPax1", &Rates::WPax1},
        {"WPax2", &Rates::WPax2},
        {"WPax3", &Rates::WPax3},
        {"WPax4", &Rates::WPax4},
        {"WPax5", &Rates::WPax5},
        {"ChildFlag1", &Rates::ChildFlag1},
        {"ChildFlag2", &Rates::ChildFlag2},
        {"ChildRate1", &Rates::ChildRate1},
        {"ChildRate2", &Rates::ChildRate2},
        {"WChildRate1", &Rates::WChildRate1},
        {"WChildRate2", &Rates::WChildRate2},
    };
    return c;
}

const std::vector<Column<RatesLongStay>> &RatesLongStay::columns()
{
    static const std::vector<Column<RatesLongStay>> c = {
        {"BBLSID", &RatesLongStay::BBLSID},
        {"BBRateSheetID", &RatesLongStay::BBRateSheetID},
        {"StartDate", &RatesLongStay::StartDate},
        {"EndDate", &RatesLongStay::EndDate},
        {"BBRTID", &RatesLongStay::BBRTID},
        {"Duration1", &RatesLongStay::Duration1},
        {"Duration2", &RatesLongStay::Duration2},
        {"Duration3", &RatesLongStay::Duration3},
        {"Discount1", &RatesLongStay::Discount1},
        {"Discount2", &RatesLongStay::Discount2},
        {"Discount3", &RatesLongStay::Discount3},
    };
    return c;
}

const std::vector<Column<RateCode>> &RateCode::columns()
{
    static const std::vector<Column<RateCode>> c = {
        {"BBRateID", &RateCode::BBRateID},
        {"Source", &RateCode::Source},
        {"SourceID", &RateCode::SourceID},
    };
    return c;
}

const std::vector<Column<RateSheetRTMP>> &RateSheetRTMP::columns()
{
    static const std::vector<Column<RateSheetRTMP>> c = {
        {"BBRateSheetID", &RateSheetRTMP::BBRateSheetID},
        {"BBRTID", &RateSheetRTMP::BBRTID},
        {"BBMealPlanID", &RateSheetRTMP::BBMealPlanID},
    };
    return c;
}

const std::vector<Column<RTMealPlan>> &RTMealPlan::columns()
{
    static const std::vector<Column<RTMealPlan>> c = {
        {"BBMealPlanRC", &RTMealPlan::BBMealPlanRC},
        {"BBRTID", &RTMealPlan::BBRTID},
        {"BBMealPlanID", &RTMealPlan::BBMealPlanID},
    };
    return c;
}

const std::vector<Column<Package>> &Package::columns()
{
    static const std::vector<Column<Package>> c = {
        {"BBPackageID", &Package::BBPackageID},
        {"PackageName", &Package::PackageName},
        {"PackageDesc", &Package::PackageDesc},
        {"PackageCode", &Package::PackageCode},
        {"StartDate", &Package::StartDate},
        {"EndDate", &Package::EndDate},
        {"Duration", &Package::Duration},
        {"AllowArrival", &Package::AllowArrival},
        {"OwnSiteOnly", &Package::OwnSiteOnly},
        {"BlockAll", &Package::BlockAll},
        {"AllowChild1", &Package::AllowChild1},
        {"AllowChild2", &Package::AllowChild2},
        {"MinStay", &Package::MinStay},
        {"RateScheme", &Package::RateScheme},
    };
    return c;
}

const std::vector<Column<PackageRate>> &PackageRate::columns()
{
    static const std::vector<Column<PackageRate>> c = {
        {"BBPackageID", &PackageRate::BBPackageID},
        {"SourceID", &PackageRate::SourceID},
        {"BBRateSheetID", &PackageRate::BBRateSheetID},
        {"Pax1", &PackageRate::Pax1},
        {"Pax2", &PackageRate::Pax2},
        {"Pax3", &PackageRate::Pax3},
        {"Pax4", &PackageRate::Pax4},
        {"Pax5", &PackageRate::Pax5},
        {"ChildRate1", &PackageRate::ChildRate1},
        {"ChildRate2", &PackageRate::ChildRate2},
        {"ChildFlag1", &PackageRate::ChildFlag1},
        {"ChildFlag2", &PackageRate::ChildFlag2},
    };
    return c;
}

const std::vector<Column<PackageRateSheet>> &PackageRateSheet::columns()
{
    static const std::vector<Column<PackageRateSheet>> c = {
        {"BBPackageID", &PackageRateSheet::BBPackageID},
        {"BBRateSheetID", &PackageRateSheet::BBRateSheetID},
    };
    return c;
}

const std::vector<Column<PackageRT>> &PackageRT::columns()
{
    static const std::vector<Column<PackageRT>> c = {
        {"BBPackageRateID", &PackageRT::BBPackageRateID},
        {"BBPackageID", &PackageRT::BBPackageID},
        {"BBRTID", &PackageRT::BBRTID},
    };
    return c;
}

} // namespace fenlark

#pragma once

#include "shell/record.h"
#include "shell/setuprecords.h"

namespace fenlark {

// The rate data of a property. All of it arrives with the setup download and is
// only read here. Rooms and room types are setup records of the shell.

class RateSheet : public KeyedUnloggedRecord<RateSheet> {
public:
    static constexpr const char *Table = "ratesheet";
    static constexpr const char *Key = "BBRateSheetID";
    static const std::vector<Column<RateSheet>> &columns();

    qint32 BBRateSheetID = 0;
    QString RateCode;
    QString DepositPolicy;
    QString CurrencyCode;
};

class Rates : public UnloggedRecord<Rates> {
public:
    static constexpr const char *Table = "rates";
    static const std::vector<Column<Rates>> &columns();

    qint32 BBRTID = 0;
    qint32 BBMealPlanID = 0;
    qint32 BBRateSheetID = 0;
    QString RateType;
    QDate StartDate;
    QDate EndDate;
    double Pax1 = 0, Pax2 = 0, Pax3 = 0, Pax4 = 0, Pax5 = 0;
    double WPax1 = 0, WPax2 = 0, WPax3 = 0, WPax4 = 0, WPax5 = 0;
    QString ChildFlag1;
    QString ChildFlag2;
    double ChildRate1 = 0, ChildRate2 = 0, WChildRate1 = 0, WChildRate2 = 0;
};

class RatesLongStay : public KeyedUnloggedRecord<RatesLongStay> {
public:
    static constexpr const char *Table = "rateslongstay";
    static constexpr const char *Key = "BBLSID";
    static const std::vector<Column<RatesLongStay>> &columns();

    qint32 BBLSID = 0;
    qint32 BBRateSheetID = 0;
    QDate StartDate;
    QDate EndDate;
    qint32 BBRTID = 0;
    qint16 Duration1 = 0, Duration2 = 0, Duration3 = 0;
    double Discount1 = 0, Discount2 = 0, Discount3 = 0;
};

class RateCode : public KeyedUnloggedRecord<RateCode> {
public:
    static constexpr const char *Table = "ratecode";
    static constexpr const char *Key = "BBRateID";
    static const std::vector<Column<RateCode>> &columns();

    qint32 BBRateID = 0;
    QString Source;   // "R" rack rate, "P" package per room type, "B" whole-property package
    qint32 SourceID = 0;
};

class RateSheetRTMP : public UnloggedRecord<RateSheetRTMP> {
public:
    static constexpr const char *Table = "ratesheetrtmp";
    static const std::vector<Column<RateSheetRTMP>> &columns();

    qint32 BBRateSheetID = 0;
    qint32 BBRTID = 0;
    qint32 BBMealPlanID = 0;
};

class RTMealPlan : public KeyedUnloggedRecord<RTMealPlan> {
public:
    static constexpr const char *Table = "rtmealplan";
    static constexpr const char *Key = "BBMealPlanRC";
    static const std::vector<Column<RTMealPlan>> &columns();

    qint32 BBMealPlanRC = 0;
    qint32 BBRTID = 0;
    qint32 BBMealPlanID = 0;
};

class Package : public KeyedUnloggedRecord<Package> {
public:
    static constexpr const char *Table = "package";
    static constexpr const char *Key = "BBPackageID";
    static const std::vector<Column<Package>> &columns();

    qint32 BBPackageID = 0;
    QString PackageName;
    QString PackageDesc;
    QString PackageCode;
    QDate StartDate;
    QDate EndDate;
    qint16 Duration = 0;
    QString AllowArrival;
    QString OwnSiteOnly;
    QString BlockAll;
    QString AllowChild1;
    QString AllowChild2;
    qint32 MinStay = 0;
    QString RateScheme;
};

class PackageRate : public UnloggedRecord<PackageRate> {
public:
    static constexpr const char *Table = "packagerate";
    static const std::vector<Column<PackageRate>> &columns();

    qint32 BBPackageID = 0;
    qint32 SourceID = 0;
    qint32 BBRateSheetID = 0;
    double Pax1 = 0, Pax2 = 0, Pax3 = 0, Pax4 = 0, Pax5 = 0;
    double ChildRate1 = 0, ChildRate2 = 0;
    QString ChildFlag1;
    QString ChildFlag2;
};

class PackageRateSheet : public UnloggedRecord<PackageRateSheet> {
public:
    static constexpr const char *Table = "packageratesheet";
    static const std::vector<Column<PackageRateSheet>> &columns();

    qint32 BBPackageID = 0;
    qint32 BBRateSheetID = 0;
};

class PackageRT : public KeyedUnloggedRecord<PackageRT> {
public:
    static constexpr const char *Table = "packagert";
    static constexpr const char *Key = "BBPackageRateID";
    static const std::vector<Column<PackageRT>> &columns();

    qint32 BBPackageRateID = 0;
    qint32 BBPackageID = 0;
    qint32 BBRTID = 0;
};

} // namespace fenlark

#pragma once

// A small property for the rate tests: two room types, three rooms, seasons,
// long-stay rows and packages, written through the record classes and read
// back as a RateData snapshot.
//
// Room type 1 "Double": per person, MaxAdults 4, Saturday and Sunday marked
// ("-----XX"), default meal plan 1 (Bed & Breakfast). Rooms 101 and 102.
// Room type 2 "Cottage": per unit, no marked nights, default meal plan 2. Room 201.
// Rate codes: 1 rack RT1/plan 5, 2 rack RT1/plan 1, 3 rack RT2/plan 2.
// Sheet 0, RT1 plan 1, type "1":
//   2025-01-01..2025-06-30  Pax 100/80/60/50/40  WPax 120/100/70/60/50
//   2025-07-01..2025-12-31  Pax 150/120/90/75/60 WPax 180/150/110/90/70
// RT1 plan 5: 2025-01-01..2025-12-31 Pax2 70. RT2 plan 2: Pax2 900, WPax2 1000.
// 2025-03-03 is a Monday.

#include "rates/ratedata.h"
#include "rates/raterecords.h"
#include "shell/setuprecords.h"
#include "support/testdatabase.h"

#include <QDate>

namespace ratefixture {

using namespace fenlark;

struct ChildRule {
    QString flag1 = QStringLiteral("P");
    double rate1 = 50;
    QString flag2 = QStringLiteral("R");
    double rate2 = 55;
    double wrate1 = 50;
    double wrate2 = 65;
};

inline void insertSetup(Database &db, const QString &chargeSSRate, qint16 childAge1 = 11, qint16 childAge2 = 17)
{
    BBSetup setup;
    setup.BBID = 10001;
    setup.ChildLowerLimit = 3;
    setup.ChildAge1 = childAge1;
    setup.ChildAge2 = childAge2;
    setup.ChargeSSRate = chargeSSRate;
    setup.update(db);
}

inline void roomType(Database &db, qint32 id, const char *name, const char *scheme, qint16 maxAdults,
                     const QString &appliesTo, qint32 defaultPlan)
{
    RoomType t;
    t.BBRTID = id;
    t.RTName = QString::fromLatin1(name);
    t.RateScheme = QString::fromLatin1(scheme);
    t.MaxAdults = maxAdults;
    t.MaxOccupancy = static_cast<qint16>(maxAdults + 2);
    t.DefaultMealPlanID = defaultPlan;
    t.AppliesTo = appliesTo;
    t.OrderBy = static_cast<qint16>(id);
    t.update(db);
}

inline void room(Database &db, qint32 id, qint32 type)
{
    Room r;
    r.BBRoomID = id;
    r.BBRTID = type;
    r.RoomName = QString::number(id);
    r.update(db);
}

inline void rateCode(Database &db, qint32 id, const char *source, qint32 sourceId)
{
    RateCode c;
    c.BBRateID = id;
    c.Source = QString::fromLatin1(source);
    c.SourceID = sourceId;
    c.update(db);
}

inline void mealPlan(Database &db, qint32 rc, qint32 type, qint32 plan)
{
    RTMealPlan m;
    m.BBMealPlanRC = rc;
    m.BBRTID = type;
    m.BBMealPlanID = plan;
    m.update(db);
}

inline void period(Database &db, qint32 type, qint32 plan, qint32 sheet, const char *rateType, QDate start, QDate end,
                   std::array<double, 5> pax, std::array<double, 5> wpax, const ChildRule &child = {})
{
    Rates r;
    r.BBRTID = type;
    r.BBMealPlanID = plan;
    r.BBRateSheetID = sheet;
    r.RateType = QString::fromLatin1(rateType);
    r.StartDate = start;
    r.EndDate = end;
    r.Pax1 = pax[0]; r.Pax2 = pax[1]; r.Pax3 = pax[2]; r.Pax4 = pax[3]; r.Pax5 = pax[4];
    r.WPax1 = wpax[0]; r.WPax2 = wpax[1]; r.WPax3 = wpax[2]; r.WPax4 = wpax[3]; r.WPax5 = wpax[4];
    r.ChildFlag1 = child.flag1;
    r.ChildRate1 = child.rate1;
    r.WChildRate1 = child.wrate1;
    r.ChildFlag2 = child.flag2;
    r.ChildRate2 = child.rate2;
    r.WChildRate2 = child.wrate2;
    r.update(db);
}

inline void longStay(Database &db, qint32 id, qint32 sheet, qint32 type, QDate start, QDate end,
                     std::array<qint16, 3> durations, std::array<double, 3> discounts)
{
    RatesLongStay l;
    l.BBLSID = id;
    l.BBRateSheetID = sheet;
    l.BBRTID = type;
    l.StartDate = start;
    l.EndDate = end;
    l.Duration1 = durations[0]; l.Duration2 = durations[1]; l.Duration3 = durations[2];
    l.Discount1 = discounts[0]; l.Discount2 = discounts[1]; l.Discount3 = discounts[2];
    l.update(db);
}

struct PackageRow {
    qint32 id = 0;
    const char *code = "";
    QDate start, end;
    qint16 duration = 1;
    const char *blockAll = "N";
    qint32 minStay = 0;
    const char *scheme = "1";
};

inline void package(Database &db, const PackageRow &row)
{
    Package p;
    p.BBPackageID = row.id;
    p.PackageName = QString::fromLatin1(row.code);
    p.PackageCode = QString::fromLatin1(row.code);
    p.StartDate = row.start;
    p.EndDate = row.end;
    p.Duration = row.duration;
    p.BlockAll = QString::fromLatin1(row.blockAll);
    p.MinStay = row.minStay;
    p.RateScheme = QString::fromLatin1(row.scheme);
    p.update(db);
}

inline void packageRT(Database &db, qint32 bbprid, qint32 packageId, qint32 type)
{
    PackageRT l;
    l.BBPackageRateID = bbprid;
    l.BBPackageID = packageId;
    l.BBRTID = type;
    l.update(db);
}

inline void packageRate(Database &db, qint32 packageId, qint32 sourceId, qint32 sheet, std::array<double, 5> pax,
                        const ChildRule &child = {})
{
    PackageRate r;
    r.BBPackageID = packageId;
    r.SourceID = sourceId;
    r.BBRateSheetID = sheet;
    r.Pax1 = pax[0]; r.Pax2 = pax[1]; r.Pax3 = pax[2]; r.Pax4 = pax[3]; r.Pax5 = pax[4];
    r.ChildFlag1 = child.flag1;
    r.ChildRate1 = child.rate1;
    r.ChildFlag2 = child.flag2;
    r.ChildRate2 = child.rate2;
    r.update(db);
}

// The rooms, room types, meal plans, rack codes and rack seasons above. The
// first season takes the child rule given (the second always the default one).
inline void writeProperty(Database &db, const QString &appliesTo = QStringLiteral("-----XX"), qint16 maxAdults = 4,
                          const ChildRule &child = {})
{
    roomType(db, 1, "Double", "1", maxAdults, appliesTo, 1);
    roomType(db, 2, "Cottage", "2", 4, QStringLiteral("-------"), 2);
    room(db, 101, 1);
    room(db, 102, 1);
    room(db, 201, 2);
    mealPlan(db, 11, 1, 1);
    mealPlan(db, 12, 1, 5);
    mealPlan(db, 21, 2, 2);
    rateCode(db, 1, "R", 12);
    rateCode(db, 2, "R", 11);
    rateCode(db, 3, "R", 21);
    period(db, 1, 1, 0, "1", QDate(2025, 1, 1), QDate(2025, 6, 30), {100, 80, 60, 50, 40}, {120, 100, 70, 60, 50}, child);
    period(db, 1, 1, 0, "1", QDate(2025, 7, 1), QDate(2025, 12, 31), {150, 120, 90, 75, 60}, {180, 150, 110, 90, 70});
    period(db, 1, 5, 0, "1", QDate(2025, 1, 1), QDate(2025, 12, 31), {90, 70, 50, 40, 30}, {90, 70, 50, 40, 30});
    period(db, 2, 2, 0, "1", QDate(2025, 1, 1), QDate(2025, 12, 31), {900, 900, 900, 900, 900},
           {1000, 1000, 1000, 1000, 1000});
}

} // namespace ratefixture

#include "rates/roomrates.h"

#include "rates/ratedata.h"
#include "rates/ratelists.h"
#include "shell/strings.h"

#include <algorithm>

namespace fenlark {

namespace {

bool arrivesWithin(const Package &package, const QDate &fromDate)
{
    return package.StartDate.isValid() && package.EndDate.isValid() && package.StartDate <= fromDate
        && package.EndDate >= fromDate;
}

bool soldForRoomType(const RateData &data, qint32 bbpackageId, qint32 bbrtid)
{
    const std::vector<PackageRT> &links = data.packageRTs();
    return std::any_of(links.begin(), links.end(),
                       [&](const PackageRT &l) { return l.BBPackageID == bbpackageId && l.BBRTID == bbrtid; });
}

QString notFound(qint32 id)
{
    return getString(5507, QStringLiteral("(%1) not found.")).arg(id);
}

} // namespace

std::vector<qint32> getRoomRates(const RateData &data, const QDate &fromDate, const QDate &toDate, qint32 BBRoomID)
{
    std::vector<qint32> rates;
    const Room *room = data.room(BBRoomID);
    const RoomTypeRates *type = room ? data.roomType(room->BBRTID) : nullptr;
    if (!type)
        return rates;
    const qint32 bbrtid = room->BBRTID;
    const QDate lastNight = toDate.addDays(-1);
    const qint64 nights = fromDate.daysTo(toDate);

    // Rack rates of the room type, the default meal plan's first.
    std::size_t defaultAt = 0;
    for (const RateCode &code : data.rateCodes()) {
        if (code.Source != QLatin1String("R"))
            continue;
        const RTMealPlan *plan = data.mealPlanRC(code.SourceID);
        if (!plan || plan->BBRTID != bbrtid)
            continue;
        if (plan->BBMealPlanID == type->row.DefaultMealPlanID && defaultAt == 0)
            defaultAt = rates.size() + 1;
        rates.push_back(code.BBRateID);
    }
    if (defaultAt > 1)
        std::rotate(rates.begin(), rates.begin() + static_cast<std::ptrdiff_t>(defaultAt - 1),
                    rates.begin() + static_cast<std::ptrdiff_t>(defaultAt));

    // Packages sold for this room type.
    for (const RateCode &code : data.rateCodes()) {
        if (code.Source != QLatin1String("P"))
            continue;
        const PackageRT *link = data.packageRT(code.SourceID);
        const Package *package = link && link->BBRTID == bbrtid ? data.package(link->BBPackageID) : nullptr;
        if (!package || !arrivesWithin(*package, fromDate))
            continue;
        if (package->Duration == 1 && package->MinStay > 1 && package->EndDate < lastNight)
            continue;
        rates.push_back(code.BBRateID);
    }

    // Packages of the whole property.
    for (const RateCode &code : data.rateCodes()) {
        if (code.Source != QLatin1String("B"))
            continue;
        const Package *package = data.package(code.SourceID);
        if (!package || !arrivesWithin(*package, fromDate) || !soldForRoomType(data, package->BBPackageID, bbrtid))
            continue;
        if (package->Duration == 1 && package->EndDate < lastNight)
            continue;
        if (package->Duration > 1 && package->Duration == package->MinStay && nights != package->Duration)
            continue;
        rates.push_back(code.BBRateID);
    }
    return rates;
}

std::vector<OfferedRate> offeredRates(const RateData &data, const QDate &fromDate, const QDate &toDate, qint32 BBRoomID)
{
    std::vector<OfferedRate> offered;
    for (const qint32 id : getRoomRates(data, fromDate, toDate, BBRoomID))
        offered.push_back({id, getRateName(data, id)});
    return offered;
}

QString getRateName(const RateData &data, qint32 BBRateID)
{
    if (BBRateID == 0)
        return getString(1, QStringLiteral("Manual rates"));
    const RateCode *code = data.rateCode(BBRateID);
    if (!code)
        return notFound(BBRateID);
    if (code->Source == QLatin1String("R")) {
        const RTMealPlan *plan = data.mealPlanRC(code->SourceID);
        const RoomTypeRates *type = plan ? data.roomType(plan->BBRTID) : nullptr;
        if (!type)
            return notFound(BBRateID);
        return type->row.RTName + QStringLiteral(" - ") + MealPlanCodes().getMealPlan(QString::number(plan->BBMealPlanID));
    }
    const Package *package = nullptr;
    if (code->Source == QLatin1String("P")) {
        const PackageRT *link = data.packageRT(code->SourceID);
        package = link ? data.package(link->BBPackageID) : nullptr;
    } else {
        package = data.package(code->SourceID);
    }
    return package ? package->PackageCode : notFound(BBRateID);
}

} // namespace fenlark

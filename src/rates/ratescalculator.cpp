#include "rates/ratescalculator.h"

#include "rates/ratedata.h"
#include "shell/money.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <algorithm>
#include <stdexcept>

namespace fenlark {

namespace {

bool is(const QString &text, const char *value)
{
    return text == QLatin1String(value);
}

} // namespace

// ---------------------------------------------------------------- ChildPolicy

void ChildPolicy::fetchChildPolicy(Database &db)
{
    BBSetup setup;
    if (setup.fetch(db))
        setAges(setup.ChildLowerLimit, setup.ChildAge1, setup.ChildAge2);
    else
        setAges(0, 0, 0);
}

void ChildPolicy::setAges(qint16 lowerLimit, qint16 age1, qint16 age2)
{
    ChildLowerLimit = lowerLimit;
    ChildAge1 = age1;
    ChildAge2 = age2;
    label1 = age1 > 0 ? QStringLiteral("%1-%2").arg(lowerLimit).arg(age1) : QString();
    label2 = age2 > 0 ? QStringLiteral("%1-%2").arg(age1 + 1).arg(age2) : QString();
}

// -------------------------------------------------------------------- RatesRT

double RatesRT::pax(int i) const
{
    if (i < 0 || i > 5)
        throw std::out_of_range("RatesRT::pax index outside 0 to 5");
    return m_pax[static_cast<std::size_t>(i)];
}

void RatesRT::setPax(int i, double value)
{
    if (i < 0 || i > 5)
        throw std::out_of_range("RatesRT::setPax index outside 0 to 5");
    m_pax[static_cast<std::size_t>(i)] = value;
}

// ------------------------------------------------------------------- LongStay

void LongStay::initialise(const RateData &data, qint32 BBRateSheetID, const QDate &arrival)
{
    m_tiers.clear();
    for (const RatesLongStay &row : data.longStays(BBRateSheetID)) {
        if (!row.StartDate.isValid() || !row.EndDate.isValid() || row.StartDate > arrival || row.EndDate < arrival)
            continue;
        const bool duplicate = std::any_of(m_tiers.begin(), m_tiers.end(),
                                           [&](const Tiers &t) { return t.BBRTID == row.BBRTID; });
        if (duplicate) {
            throw RateDataError(getString(5511, QStringLiteral("Rate sheet %1 has more than one long-stay row for room type %2 on %3."))
                                    .arg(BBRateSheetID)
                                    .arg(row.BBRTID)
                                    .arg(arrival.toString(Qt::ISODate)));
        }
        Tiers tiers;
        tiers.BBRTID = row.BBRTID;
        tiers.durations = {row.Duration1, row.Duration2, row.Duration3};
        tiers.discounts = {row.Discount1, row.Discount2, row.Discount3};
        m_tiers.push_back(tiers);
    }
}

double LongStay::applyDiscount(qint32 BBRTID, int nights, double rate) const
{
    const Tiers *found = nullptr;
    const Tiers *general = nullptr;
    for (const Tiers &t : m_tiers) {
        if (t.BBRTID == BBRTID)
            found = &t;
        else if (t.BBRTID == 0)
            general = &t;
    }
    // The room type's own row replaces the property-wide one entirely.
    if (!found)
        found = general;
    if (!found)
        return roundMoney(rate);
    double result = rate;
    // Each tier works on the undiscounted rate: the last one that qualifies wins,
    // whether or not it is the largest.
    for (std::size_t i = 0; i < 3; ++i) {
        if (found->durations[i] > 0 && nights >= found->durations[i])
            result = rate * (1 - found->discounts[i] / 100);
    }
    return roundMoney(result);
}

// ------------------------------------------------------------ RatesCalculator

RatesCalculator::RatesCalculator() = default;
RatesCalculator::~RatesCalculator() = default;

void RatesCalculator::initialise(const RateData &data, qint32 BBRateID, const QDate &fromDate, const QDate &toDate,
                                 const NoGuests &guests, qint32 BBRateSheetID)
{
    m_data = &data;
    m_chargeSSRate = data.ChargeSSRate;
    m_fromDate = fromDate;
    m_toDate = toDate;
    m_nights = fromDate.isValid() && toDate.isValid() ? std::max<qint64>(0, fromDate.daysTo(toDate)) : 0;
    m_nightRates.assign(static_cast<std::size_t>(m_nights) + 1, std::nullopt);
    m_extension.reset();
    m_extensionNights = 0;

    // Negative counts are no guests at all.
    m_guests = guests;
    m_guests.NoAdults = std::max<qint16>(0, guests.NoAdults);
    m_guests.Child1 = std::max<qint16>(0, guests.Child1);
    m_guests.Child2 = std::max<qint16>(0, guests.Child2);
    const bool children = m_guests.Child1 + m_guests.Child2 > 0;
    // Children alone: one of them, from the older band first, is priced as the adult.
    if (children && m_guests.NoAdults == 0) {
        m_guests.NoAdults = 1;
        if (m_guests.Child2 >= 1)
            --m_guests.Child2;
        else
            --m_guests.Child1;
    }
    m_rateSheetId = BBRateSheetID;
    if (BBRateID == 0 || m_nights == 0)
        return;
    const RateCode *code = data.rateCode(BBRateID);
    if (!code)
        return;
    if (children)
        m_childPolicy.setAges(data.ChildLowerLimit, data.ChildAge1, data.ChildAge2);
    else
        m_childPolicy.setAges(0, 0, 0);

    if (is(code->Source, "R")) {
        fetchRackRates(code->SourceID);
    } else if (is(code->Source, "P")) {
        const PackageRT *link = data.packageRT(code->SourceID);
        if (link)
            fetchPackageRates(link->BBPackageID, code->SourceID);
    } else {
        fetchPackageRates(code->SourceID, code->SourceID);
    }
}

void RatesCalculator::fetchRackRates(qint32 sourceId)
{
    const RTMealPlan *plan = m_data->mealPlanRC(sourceId);
    if (!plan)
        return;
    const RoomTypeRates *type = m_data->roomType(plan->BBRTID);
    if (!type)
        return;
    LongStay longStay;
    longStay.initialise(*m_data, m_rateSheetId, m_fromDate);
    const std::vector<RatePeriod> *periods = m_data->periods(plan->BBRTID, plan->BBMealPlanID, m_rateSheetId);
    if (!periods)
        return;

    const qint64 first = m_fromDate.toJulianDay();
    const qint64 last = first + m_nights - 1;
    // Type 2 is placed after type 1, so it wins wherever both apply; within one
    // type the row read last wins.
    for (const char rateType : {'1', '2'}) {
        for (const RatePeriod &period : *periods) {
            if (period.rateType != rateType || period.start > last || period.end < first)
                continue;
            const qint64 start = std::max(period.start, first);
            const qint64 end = std::min(period.end, last);
            for (qint64 day = start; day <= end; ++day) {
                const int weekday = QDate::fromJulianDay(day).dayOfWeek();
                RatesRT &night = m_nightRates[static_cast<std::size_t>(day - first + 1)].emplace();
                night.RateScheme = type->rateScheme;
                night.AppliesTo = type->row.AppliesTo;
                night.MaxAdults = type->row.MaxAdults;
                fillNight(night, period, type->markedDay[static_cast<std::size_t>(weekday)], plan->BBRTID, longStay);
            }
        }
    }
}

void RatesCalculator::fillNight(RatesRT &night, const RatePeriod &period, bool marked, qint32 bbrtid,
                                const LongStay &longStay) const
{
    const std::array<double, 5> &columns = marked ? period.wpax : period.pax;
    for (int i = 1; i <= 5; ++i)
        night.setPax(i, longStay.applyDiscount(bbrtid, m_nights, columns[static_cast<std::size_t>(i - 1)]));
    night.ChildFlag1 = period.childFlag1;
    night.ChildFlag2 = period.childFlag2;
    night.ChildRate1 = marked ? period.wchildRate1 : period.childRate1;
    night.ChildRate2 = marked ? period.wchildRate2 : period.childRate2;
    // Only an amount ("R") is discounted; percentages follow the discounted pax.
    if (is(night.ChildFlag1, "R"))
        night.ChildRate1 = longStay.applyDiscount(bbrtid, m_nights, night.ChildRate1);
    if (is(night.ChildFlag2, "R"))
        night.ChildRate2 = longStay.applyDiscount(bbrtid, m_nights, night.ChildRate2);
}

void RatesCalculator::fetchPackageRates(qint32 bbpackageId, qint32 sourceId)
{
    const Package *package = m_data->package(bbpackageId);
    const PackageRate *price = m_data->packageRate(bbpackageId, sourceId, m_rateSheetId);
    if (!package || !price)
        return;
    // A package of no nights, or a per-night package without an end, cannot be
    // priced: its nights stay missing (0), which the caller sees as no rate.
    if (package->Duration < 1 || (package->Duration == 1 && !package->EndDate.isValid()))
        return;

    RatesRT rate;
    rate.RateScheme = rateSchemeNumber(package->RateScheme);
    rate.setPax(1, price->Pax1);
    rate.setPax(2, price->Pax2);
    rate.setPax(3, price->Pax3);
    rate.setPax(4, price->Pax4);
    rate.setPax(5, price->Pax5);
    rate.ChildFlag1 = price->ChildFlag1;
    rate.ChildRate1 = price->ChildRate1;
    rate.ChildFlag2 = price->ChildFlag2;
    rate.ChildRate2 = price->ChildRate2;

    const bool perRoomType = is(package->BlockAll, "N");
    qint32 bbrtid = 0;
    if (perRoomType) {
        const PackageRT *link = m_data->packageRT(sourceId);
        const RoomTypeRates *type = link && link->BBPackageID == bbpackageId ? m_data->roomType(link->BBRTID) : nullptr;
        if (!type)
            return;
        bbrtid = link->BBRTID;
        rate.RateScheme = type->rateScheme;
        rate.MaxAdults = std::min<qint16>(type->row.MaxAdults, 5);
    } else {
        rate.MaxAdults = 5;
    }
    setRates(rate, 1, 1);

    if (package->Duration == 1) {
        // A price per night, up to the package's last night.
        const qint64 lastNight = m_fromDate.toJulianDay() + m_nights - 1;
        const qint64 afterEnd = lastNight - package->EndDate.toJulianDay();
        if (afterEnd < 1) {
            setRates(rate, 2, m_nights);
            return;
        }
        const int inside = static_cast<int>(std::clamp<qint64>(m_nights - afterEnd, 0, m_nights));
        setRates(rate, 2, inside);
        m_extensionNights = m_nights - inside;
        extendWithRackRate(bbrtid, m_fromDate.addDays(inside));
        return;
    }

    // A price for the package as a whole, standing on its first night.
    const int span = std::min<int>(package->Duration, m_nights);
    const int extension = m_nights - span;
    if (extension < 1)
        return;
    m_extensionNights = extension;
    if (perRoomType) {
        extendWithRackRate(bbrtid, m_fromDate.addDays(span));
        return;
    }
    RatesRT share = rate;
    for (int i = 1; i <= 5; ++i)
        share.setPax(i, rate.pax(i) / span);
    share.ChildRate1 = rate.ChildRate1 / span;
    share.ChildRate2 = rate.ChildRate2 / span;
    // The upper bound is the count of extension nights, not the stay's last
    // night: a whole-property package only covers nights up to that count.
    setRates(share, package->Duration + 1, extension);
}

void RatesCalculator::extendWithRackRate(qint32 bbrtid, const QDate &start)
{
    const RoomTypeRates *type = m_data->roomType(bbrtid);
    if (!type)
        return;
    qint32 rackRate = 0;
    for (const RTMealPlan &plan : m_data->mealPlans()) {
        if (plan.BBRTID != bbrtid || plan.BBMealPlanID != type->row.DefaultMealPlanID)
            continue;
        for (const RateCode &code : m_data->rateCodes()) {
            if (is(code.Source, "R") && code.SourceID == plan.BBMealPlanRC) {
                rackRate = code.BBRateID;
                break;
            }
        }
        if (rackRate != 0)
            break;
    }
    if (rackRate == 0)
        return;
    m_extension = std::make_unique<RatesCalculator>();
    m_extension->initialise(*m_data, rackRate, start, m_toDate, m_guests, m_rateSheetId);
}

void RatesCalculator::setRates(const RatesRT &rate, int first, int last)
{
    first = std::max(first, 1);
    last = std::min(last, m_nights);
    for (int n = first; n <= last; ++n)
        m_nightRates[static_cast<std::size_t>(n)] = rate;
}

double RatesCalculator::DailyRate(int n) const
{
    if (n < 1 || n > m_nights)
        return 0;
    const int inside = m_nights - m_extensionNights;
    if (n > inside && m_extension)
        return m_extension->DailyRate(n - inside);
    return calcDailyRate(m_nightRates[static_cast<std::size_t>(n)]);
}

double RatesCalculator::calcDailyRate(const std::optional<RatesRT> &night) const
{
    if (!night)
        return 0;
    const RatesRT &rate = *night;
    if (rate.RateScheme != 1)
        return rate.pax(2);

    const int adults = m_guests.NoAdults;
    double adultTotal = 0;
    if (adults == 1)
        adultTotal = rate.pax(1);
    else if (adults >= 2)
        adultTotal = 2 * rate.pax(2);
    if (adults >= 3)
        adultTotal += rate.pax(3);
    if (adults >= 4)
        adultTotal += rate.pax(4);
    if (adults >= 5)
        adultTotal += (adults - 4) * rate.pax(5);

    if (m_guests.Child1 + m_guests.Child2 == 0)
        return adultTotal;

    const QString &ss = m_chargeSSRate;
    const bool paying = (m_guests.Child1 > 0 && rate.ChildRate1 > 0) || (m_guests.Child2 > 0 && rate.ChildRate2 > 0);
    const bool sharingForPaying = is(ss, "N") || is(ss, "S") || is(ss, "NS") || ss.isEmpty();
    if (adults == 1 && (is(ss, "T") || (sharingForPaying && paying)))
        adultTotal = rate.pax(2);
    bool firstChildAsAdult = adults == 1 && (is(ss, "S") || is(ss, "T") || is(ss, "ST") || ss.isEmpty());

    int pos = adults;
    double childTotal = 0;
    for (int i = 0; i < m_guests.Child2; ++i)
        childTotal += childPrice(rate, pos, firstChildAsAdult, false);
    for (int i = 0; i < m_guests.Child1; ++i)
        childTotal += childPrice(rate, pos, firstChildAsAdult, true);
    return adultTotal + childTotal;
}

double RatesCalculator::childPrice(const RatesRT &rate, int &pos, bool &firstChildAsAdult, bool youngerBand) const
{
    ++pos;
    if (pos > rate.MaxAdults)
        pos = rate.MaxAdults;
    const qint16 age = youngerBand ? m_childPolicy.ChildAge1 : m_childPolicy.ChildAge2;
    const QString &flag = youngerBand ? rate.ChildFlag1 : rate.ChildFlag2;
    const double childRate = youngerBand ? rate.ChildRate1 : rate.ChildRate2;
    if (age <= 0)
        return 0;
    // The child sharing with a lone adult takes the second sharing place: under
    // "T" whatever its band's flag, under "S" when its band is charged at all.
    if (firstChildAsAdult && (is(m_chargeSSRate, "T") || (is(m_chargeSSRate, "S") && childRate > 0))) {
        firstChildAsAdult = false;
        return rate.pax(2);
    }
    // "F" frees the younger band only; on the older band it reads as an amount.
    if (youngerBand && is(flag, "F"))
        return 0;
    if (is(flag, "P"))
        return childRate / 100 * rate.pax(2);
    const int column = std::clamp(std::min<int>(pos, rate.MaxAdults), 0, 5);
    if (is(flag, "S"))
        return childRate / 100 * rate.pax(column);
    return std::min(childRate, rate.pax(column));
}

// ------------------------------------------------------------------ priceStay

StayPrice priceStay(const RateData &data, const StayRequest &request)
{
    StayPrice price;
    RatesCalculator calculator;
    NoGuests guests;
    guests.BBRoomID = request.BBRoomID;
    guests.NoAdults = request.adults;
    guests.Child1 = request.child1;
    guests.Child2 = request.child2;
    calculator.initialise(data, request.BBRateID, request.FromDate, request.ToDate, guests, request.BBRateSheetID);
    double total = 0;
    for (int n = 1; n <= calculator.nights(); ++n) {
        const double rate = roundMoney(calculator.DailyRate(n));
        price.nights.insert(request.FromDate.addDays(n - 1), rate);
        total += rate;
    }
    price.total = roundMoney(total);
    return price;
}

} // namespace fenlark

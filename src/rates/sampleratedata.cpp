#include "rates/sampleratedata.h"

#include "rates/raterecords.h"
#include "shell/database.h"

#include <QDate>

#include <random>

namespace fenlark {

namespace {

// Rates are written for these years, whatever today is, so that the same seed
// always gives the same property.
constexpr int FirstYear = 2018;
constexpr int LastYear = 2037;

constexpr qint32 RackSheet = 0;
constexpr qint32 AgentSheet = 1;
constexpr qint32 CorporateSheet = 2;

constexpr int BedAndBreakfast = 1;
constexpr int RoomOnly = 5;

// A percentage of a whole amount, to the nearest 5: price points as a property
// would set them.
int percentOf(int amount, int percent)
{
    const int value = amount * percent / 100;
    return (value + 2) / 5 * 5;
}

QDate easterSunday(int year)
{
    const int a = year % 19, b = year / 100, c = year % 100, d = b / 4, e = b % 4;
    const int f = (b + 8) / 25, g = (b - f + 1) / 3, h = (19 * a + b - d - g + 15) % 30;
    const int i = c / 4, k = c % 4, l = (32 + 2 * e + 2 * i - h - k) % 7, m = (a + 11 * h + 22 * l) / 451;
    const int month = (h + l - 7 * m + 114) / 31, day = (h + l - 7 * m + 114) % 31 + 1;
    return QDate(year, month, day);
}

struct Season {
    QDate start;
    QDate end;
    int percent;
    const char *rateType;
};

// Summer holidays high, winter low, Easter a type "2" period inside the
// mid season.
std::vector<Season> seasonsOf(int year)
{
    const QDate easter = easterSunday(year);
    return {
        {QDate(year, 1, 1), QDate(year, 1, 15), 130, "1"},
        {QDate(year, 1, 16), QDate(year, 4, 30), 100, "1"},
        {QDate(year, 5, 1), QDate(year, 8, 31), 80, "1"},
        {QDate(year, 9, 1), QDate(year, 12, 14), 100, "1"},
        {QDate(year, 12, 15), QDate(year, 12, 31), 130, "1"},
        {easter.addDays(-3), easter.addDays(1), 125, "2"},
    };
}

// The prices of one room type that every sheet and season is worked from.
struct TypePrices {
    bool perPerson = true;
    int sharing = 0;      // per person sharing, bed and breakfast, mid season
    int unit = 0;         // the room a night, for per-unit room types
    QString childFlag1;   // "P" half of the sharing rate, or "F" free
    int childPercent1 = 50;
    int childAmount2 = 0;  // "R": an amount for the older band
};

void writePeriod(Database &db, const RoomType &type, const TypePrices &prices, int mealPlan, qint32 sheet,
                 int sheetPercent, const Season &season)
{
    Rates row;
    row.BBRTID = type.BBRTID;
    row.BBMealPlanID = mealPlan;
    row.BBRateSheetID = sheet;
    row.RateType = QString::fromLatin1(season.rateType);
    row.StartDate = season.start;
    row.EndDate = season.end;
    const int percent = season.percent * sheetPercent / 100;
    const int breakfast = mealPlan == RoomOnly ? 90 : 0;
    if (prices.perPerson) {
        const int sharing = percentOf(prices.sharing - breakfast, percent);
        const int weekend = percentOf(sharing, 115);
        row.Pax1 = percentOf(sharing, 150);
        row.Pax2 = sharing;
        row.Pax3 = percentOf(sharing, 70);
        row.Pax4 = percentOf(sharing, 60);
        row.Pax5 = percentOf(sharing, 50);
        row.WPax1 = percentOf(weekend, 150);
        row.WPax2 = weekend;
        row.WPax3 = percentOf(weekend, 70);
        row.WPax4 = percentOf(weekend, 60);
        row.WPax5 = percentOf(weekend, 50);
    } else {
        const int unit = percentOf(prices.unit - 2 * breakfast, percent);
        row.Pax1 = row.Pax2 = row.Pax3 = row.Pax4 = row.Pax5 = unit;
        row.WPax1 = row.WPax2 = row.WPax3 = row.WPax4 = row.WPax5 = percentOf(unit, 115);
    }
    row.ChildFlag1 = prices.childFlag1;
    row.ChildRate1 = row.WChildRate1 = prices.childFlag1 == QLatin1String("F") ? 0 : prices.childPercent1;
    row.ChildFlag2 = QStringLiteral("R");
    row.ChildRate2 = percentOf(prices.childAmount2, percent);
    row.WChildRate2 = percentOf(percentOf(prices.childAmount2, percent), 115);
    row.update(db);
}

void writeSheet(Database &db, qint32 id, const char *name, const char *policy)
{
    RateSheet sheet;
    sheet.BBRateSheetID = id;
    sheet.RateCode = QString::fromLatin1(name);
    sheet.DepositPolicy = QString::fromLatin1(policy);
    sheet.CurrencyCode = QStringLiteral("ZAR");
    sheet.update(db);
}

void writeLongStay(Database &db, qint32 id, qint32 sheet, qint32 bbrtid, std::array<qint16, 3> durations,
                   std::array<double, 3> discounts)
{
    RatesLongStay row;
    row.BBLSID = id;
    row.BBRateSheetID = sheet;
    row.StartDate = QDate(FirstYear, 1, 1);
    row.EndDate = QDate(LastYear, 12, 31);
    row.BBRTID = bbrtid;
    row.Duration1 = durations[0];
    row.Duration2 = durations[1];
    row.Duration3 = durations[2];
    row.Discount1 = discounts[0];
    row.Discount2 = discounts[1];
    row.Discount3 = discounts[2];
    row.update(db);
}

void writeChildBands(Database &db)
{
    const QVariantList values = {3, 11, 17, QStringLiteral("P"), 50, QStringLiteral("R"), 250, QStringLiteral("N")};
    const int changed = db.execute(QStringLiteral("update bbsetup set ChildLowerLimit = ?, ChildAge1 = ?, ChildAge2 = ?, "
                                                  "ChildFlag1 = ?, ChildRate1 = ?, ChildFlag2 = ?, ChildRate2 = ?, "
                                                  "ChargeSSRate = ?"),
                                   values);
    if (changed == 0) {
        db.execute(QStringLiteral("insert into bbsetup (ChildLowerLimit, ChildAge1, ChildAge2, ChildFlag1, ChildRate1, "
                                  "ChildFlag2, ChildRate2, ChargeSSRate) values (?, ?, ?, ?, ?, ?, ?, ?)"),
                   values);
    }
}

// Blank settings of a room type get believable values; what the property set stays.
RoomType completed(RoomType type, std::mt19937 &random)
{
    // The same draws whatever is blank, so that writing again gives the same data.
    const unsigned schemeDraw = random(), childDraw = random(), amountDraw = random();
    if (type.RateScheme.isEmpty())
        type.RateScheme = schemeDraw % 5 == 4 ? QStringLiteral("2") : QStringLiteral("1");
    if (type.MaxAdults <= 0)
        type.MaxAdults = 2;
    if (type.MaxOccupancy <= 0)
        type.MaxOccupancy = static_cast<qint16>(type.MaxAdults + 2);
    if (type.AllowChild1.isEmpty())
        type.AllowChild1 = QStringLiteral("Y");
    if (type.AllowChild2.isEmpty())
        type.AllowChild2 = QStringLiteral("Y");
    if (type.DefaultMealPlanID <= 0)
        type.DefaultMealPlanID = BedAndBreakfast;
    if (type.AppliesTo.isEmpty())
        type.AppliesTo = QStringLiteral("----XX-");   // Friday and Saturday nights
    if (type.ChildFlag1.isEmpty()) {
        type.ChildFlag1 = childDraw % 3 == 0 ? QStringLiteral("F") : QStringLiteral("P");
        type.ChildRate1 = type.ChildFlag1 == QLatin1String("F") ? 0 : 50;
    }
    if (type.ChildFlag2.isEmpty()) {
        type.ChildFlag2 = QStringLiteral("R");
        type.ChildRate2 = 200 + 25 * (amountDraw % 5);
    }
    return type;
}

void saveRoomType(Database &db, const RoomType &type)
{
    db.execute(QStringLiteral("update roomtype set RateScheme = ?, MaxAdults = ?, MaxOccupancy = ?, AllowChild1 = ?, "
                              "AllowChild2 = ?, DefaultMealPlanID = ?, ChildFlag1 = ?, ChildFlag2 = ?, ChildRate1 = ?, "
                              "ChildRate2 = ?, AppliesTo = ? where BBRTID = ?"),
               {type.RateScheme, type.MaxAdults, type.MaxOccupancy, type.AllowChild1, type.AllowChild2,
                type.DefaultMealPlanID, type.ChildFlag1, type.ChildFlag2, type.ChildRate1, type.ChildRate2,
                type.AppliesTo, type.BBRTID});
}

} // namespace

void SampleRateData::write(Database &db, unsigned seed)
{
    std::mt19937 random(seed);
    Transaction transaction(db);
    RateSheet::clear(db);
    Rates::clear(db);
    RatesLongStay::clear(db);
    RateCode::clear(db);
    RateSheetRTMP::clear(db);
    RTMealPlan::clear(db);
    Package::clear(db);
    PackageRate::clear(db);
    PackageRateSheet::clear(db);
    PackageRT::clear(db);

    writeChildBands(db);
    writeSheet(db, RackSheet, "RACK", "50% deposit within 7 days of booking.");
    writeSheet(db, AgentSheet, "AGENT", "Net rates; payment 30 days after departure.");
    writeSheet(db, CorporateSheet, "CORPORATE", "Invoiced monthly.");

    std::vector<RoomType> types = RoomType::list(db, QStringLiteral("OrderBy, BBRTID"));
    qint32 nextRC = 1;
    qint32 nextRateID = 1;
    qint32 nextPRID = 1;
    std::vector<std::pair<RoomType, TypePrices>> priced;
    for (std::size_t index = 0; index < types.size(); ++index) {
        const RoomType type = completed(types[index], random);
        saveRoomType(db, type);

        TypePrices prices;
        prices.perPerson = type.RateScheme.trimmed() == QLatin1String("1");
        prices.sharing = 450 + 60 * static_cast<int>(index % 6) + 20 * static_cast<int>(random() % 5);
        prices.unit = percentOf(prices.sharing, 220 + 40 * (type.MaxAdults > 2 ? type.MaxAdults - 2 : 0));
        prices.childFlag1 = type.ChildFlag1 == QLatin1String("F") ? QStringLiteral("F") : QStringLiteral("P");
        prices.childAmount2 = static_cast<int>(type.ChildRate2 > 0 ? type.ChildRate2 : 250);
        priced.emplace_back(type, prices);

        const int otherPlan = type.DefaultMealPlanID == RoomOnly ? BedAndBreakfast : RoomOnly;
        for (const int plan : {int(type.DefaultMealPlanID), otherPlan}) {
            RTMealPlan link;
            link.BBMealPlanRC = nextRC++;
            link.BBRTID = type.BBRTID;
            link.BBMealPlanID = plan;
            link.update(db);
            RateCode code;
            code.BBRateID = nextRateID++;
            code.Source = QStringLiteral("R");
            code.SourceID = link.BBMealPlanRC;
            code.update(db);

            // The corporate sheet prices the default meal plan only.
            std::vector<std::pair<qint32, int>> sheets = {{RackSheet, 100}, {AgentSheet, 85}};
            if (plan == type.DefaultMealPlanID)
                sheets.emplace_back(CorporateSheet, 90);
            for (const auto &[sheet, percent] : sheets) {
                RateSheetRTMP sheetPlan;
                sheetPlan.BBRateSheetID = sheet;
                sheetPlan.BBRTID = type.BBRTID;
                sheetPlan.BBMealPlanID = plan;
                sheetPlan.update(db);
                for (int year = FirstYear; year <= LastYear; ++year) {
                    for (const Season &season : seasonsOf(year))
                        writePeriod(db, type, prices, plan, sheet, percent, season);
                }
            }
        }
    }

    // Longer stays: a property-wide scale on the rack sheet, its own scale for
    // the first room type, and a shorter one for agents.
    writeLongStay(db, 1, RackSheet, 0, {7, 14, 28}, {5, 10, 15});
    if (!types.empty())
        writeLongStay(db, 2, RackSheet, types.front().BBRTID, {5, 10, 0}, {5, 7.5, 0});
    writeLongStay(db, 3, AgentSheet, 0, {10, 0, 0}, {5, 0, 0});

    // A winter getaway every year: three nights for the price of about two and
    // a half, sold per room type on the rack and agent sheets.
    for (int year = FirstYear; year <= LastYear; ++year) {
        Package package;
        package.BBPackageID = year - FirstYear + 1;
        package.PackageName = QStringLiteral("Winter Getaway %1").arg(year);
        package.PackageDesc = QStringLiteral("Three nights with breakfast, arriving between May and August.");
        package.PackageCode = QStringLiteral("WINTER3");
        package.StartDate = QDate(year, 5, 1);
        package.EndDate = QDate(year, 8, 31);
        package.Duration = 3;
        package.AllowArrival = QStringLiteral("YYYYYYY");
        package.OwnSiteOnly = QStringLiteral("N");
        package.BlockAll = QStringLiteral("N");
        package.AllowChild1 = QStringLiteral("Y");
        package.AllowChild2 = QStringLiteral("Y");
        package.MinStay = 3;
        package.RateScheme = QStringLiteral("1");
        package.update(db);
        for (const qint32 sheet : {RackSheet, AgentSheet}) {
            PackageRateSheet offered;
            offered.BBPackageID = package.BBPackageID;
            offered.BBRateSheetID = sheet;
            offered.update(db);
        }
        for (const auto &[type, prices] : priced) {
            PackageRT link;
            link.BBPackageRateID = nextPRID++;
            link.BBPackageID = package.BBPackageID;
            link.BBRTID = type.BBRTID;
            link.update(db);
            RateCode code;
            code.BBRateID = nextRateID++;
            code.Source = QStringLiteral("P");
            code.SourceID = link.BBPackageRateID;
            code.update(db);
            for (const auto &[sheet, percent] : {std::pair<qint32, int>{RackSheet, 100}, {AgentSheet, 85}}) {
                const int night = percentOf(prices.perPerson ? prices.sharing : prices.unit, 80 * percent / 100);
                PackageRate rate;
                rate.BBPackageID = package.BBPackageID;
                rate.SourceID = link.BBPackageRateID;
                rate.BBRateSheetID = sheet;
                const int whole = percentOf(night, 250);
                rate.Pax2 = whole;
                rate.Pax1 = percentOf(whole, 150);
                rate.Pax3 = percentOf(whole, 70);
                rate.Pax4 = percentOf(whole, 60);
                rate.Pax5 = percentOf(whole, 50);
                rate.ChildFlag1 = prices.childFlag1;
                rate.ChildRate1 = prices.childFlag1 == QLatin1String("F") ? 0 : prices.childPercent1;
                rate.ChildFlag2 = QStringLiteral("P");
                rate.ChildRate2 = 60;
                rate.update(db);
            }
        }
    }
    transaction.commit();
}

} // namespace fenlark

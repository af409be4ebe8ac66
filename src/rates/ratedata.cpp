#include "rates/ratedata.h"

#include "shell/database.h"
#include "shell/setuprecords.h"

#include <QSqlQuery>

namespace fenlark {

RateDataError::RateDataError(const QString &message)
    : std::runtime_error(message.toStdString()), m_message(message)
{
}

qint16 rateSchemeNumber(const QString &text)
{
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    return ok ? static_cast<qint16>(value) : qint16(0);
}

RateData RateData::load(Database &db)
{
    RateData data;
    BBSetup setup;
    if (setup.fetch(db)) {
        data.ChargeSSRate = setup.ChargeSSRate;
        data.ChildLowerLimit = setup.ChildLowerLimit;
        data.ChildAge1 = setup.ChildAge1;
        data.ChildAge2 = setup.ChildAge2;
    }
    for (const RoomType &type : RoomType::list(db))
        data.addRoomType(type);
    for (const Room &room : Room::list(db))
        data.addRoom(room);
    data.loadPeriods(db);
    for (const RateCode &code : RateCode::list(db, QStringLiteral("BBRateID")))
        data.addRateCode(code);
    for (const RTMealPlan &plan : RTMealPlan::list(db, QStringLiteral("BBMealPlanRC")))
        data.addMealPlanRC(plan);
    for (const Package &package : Package::list(db))
        data.addPackage(package);
    for (const PackageRT &link : PackageRT::list(db, QStringLiteral("BBPackageRateID")))
        data.addPackageRT(link);
    for (const PackageRate &rate : PackageRate::select(db, QStringLiteral("select * from packagerate order by rowid"), {}))
        data.addPackageRate(rate);
    for (const RatesLongStay &row : RatesLongStay::list(db, QStringLiteral("BBLSID")))
        data.addLongStay(row);
    return data;
}

void RateData::loadPeriods(Database &db)
{
    // The largest table, read by position rather than through a record per row.
    // Table order decides which of two overlapping rows of one type wins.
    static const QStringList names = [] {
        QStringList list;
        for (const Column<Rates> &c : Rates::columns())
            list << QString::fromLatin1(c.name);
        return list;
    }();
    QSqlQuery q = db.query(QStringLiteral("select %1 from rates order by rowid").arg(names.join(QStringLiteral(", "))));
    const std::vector<Column<Rates>> &columns = Rates::columns();
    while (q.next()) {
        Rates row;
        for (int i = 0; i < static_cast<int>(columns.size()); ++i)
            recorddetail::fromSql(row, columns[static_cast<std::size_t>(i)], q.value(i));
        addPeriod(row);
    }
}

void RateData::addRoomType(const RoomType &type)
{
    RoomTypeRates entry;
    entry.row = type;
    entry.rateScheme = rateSchemeNumber(type.RateScheme);
    // A position other than "-" marks its weekday, and so does a position the
    // mask does not reach.
    for (int day = 1; day <= 7; ++day)
        entry.markedDay[day] = day > type.AppliesTo.size() || type.AppliesTo.at(day - 1) != QLatin1Char('-');
    m_roomTypes.insert(type.BBRTID, entry);
}

void RateData::addRoom(const Room &room)
{
    m_rooms.insert(room.BBRoomID, room);
}

void RateData::addPeriod(const Rates &row)
{
    // A period without both dates can never be selected for a stay.
    if (!row.StartDate.isValid() || !row.EndDate.isValid())
        return;
    RatePeriod period;
    period.start = row.StartDate.toJulianDay();
    period.end = row.EndDate.toJulianDay();
    if (row.RateType == QLatin1String("1"))
        period.rateType = '1';
    else if (row.RateType == QLatin1String("2"))
        period.rateType = '2';
    period.pax = {row.Pax1, row.Pax2, row.Pax3, row.Pax4, row.Pax5};
    period.wpax = {row.WPax1, row.WPax2, row.WPax3, row.WPax4, row.WPax5};
    period.childFlag1 = row.ChildFlag1;
    period.childFlag2 = row.ChildFlag2;
    period.childRate1 = row.ChildRate1;
    period.childRate2 = row.ChildRate2;
    period.wchildRate1 = row.WChildRate1;
    period.wchildRate2 = row.WChildRate2;
    m_periods[row.BBRTID][pairKey(row.BBMealPlanID, row.BBRateSheetID)].push_back(std::move(period));
}

void RateData::addRateCode(const RateCode &code)
{
    if (!m_rateCodes.contains(code.BBRateID))
        m_rateCodeList.push_back(code);
    m_rateCodes.insert(code.BBRateID, code);
}

void RateData::addMealPlanRC(const RTMealPlan &plan)
{
    if (!m_mealPlans.contains(plan.BBMealPlanRC))
        m_mealPlanList.push_back(plan);
    m_mealPlans.insert(plan.BBMealPlanRC, plan);
}

void RateData::addPackage(const Package &package)
{
    m_packages.insert(package.BBPackageID, package);
}

void RateData::addPackageRT(const PackageRT &link)
{
    if (!m_packageRTs.contains(link.BBPackageRateID))
        m_packageRTList.push_back(link);
    m_packageRTs.insert(link.BBPackageRateID, link);
}

void RateData::addPackageRate(const PackageRate &rate)
{
    m_packageRates[pairKey(rate.BBPackageID, rate.SourceID)].push_back(rate);
}

void RateData::addLongStay(const RatesLongStay &row)
{
    m_longStays[row.BBRateSheetID].push_back(row);
}

const std::vector<RatePeriod> *RateData::periods(qint32 bbrtid, qint32 mealPlan, qint32 sheet) const
{
    const auto type = m_periods.constFind(bbrtid);
    if (type == m_periods.constEnd())
        return nullptr;
    const auto rows = type->constFind(pairKey(mealPlan, sheet));
    return rows == type->constEnd() ? nullptr : &*rows;
}

const RoomTypeRates *RateData::roomType(qint32 bbrtid) const
{
    const auto it = m_roomTypes.constFind(bbrtid);
    return it == m_roomTypes.constEnd() ? nullptr : &*it;
}

const Room *RateData::room(qint32 bbroomid) const
{
    const auto it = m_rooms.constFind(bbroomid);
    return it == m_rooms.constEnd() ? nullptr : &*it;
}

const RateCode *RateData::rateCode(qint32 bbrateid) const
{
    const auto it = m_rateCodes.constFind(bbrateid);
    return it == m_rateCodes.constEnd() ? nullptr : &*it;
}

const RTMealPlan *RateData::mealPlanRC(qint32 bbmealplanrc) const
{
    const auto it = m_mealPlans.constFind(bbmealplanrc);
    return it == m_mealPlans.constEnd() ? nullptr : &*it;
}

const Package *RateData::package(qint32 bbpackageid) const
{
    const auto it = m_packages.constFind(bbpackageid);
    return it == m_packages.constEnd() ? nullptr : &*it;
}

const PackageRT *RateData::packageRT(qint32 bbprid) const
{
    const auto it = m_packageRTs.constFind(bbprid);
    return it == m_packageRTs.constEnd() ? nullptr : &*it;
}

const PackageRate *RateData::packageRate(qint32 bbpackageid, qint32 sourceId, qint32 sheet) const
{
    const auto it = m_packageRates.constFind(pairKey(bbpackageid, sourceId));
    if (it == m_packageRates.constEnd())
        return nullptr;
    for (const PackageRate &rate : *it) {
        if (rate.BBRateSheetID == sheet)
            return &rate;
    }
    return nullptr;
}

const std::vector<RatesLongStay> &RateData::longStays(qint32 sheet) const
{
    static const std::vector<RatesLongStay> none;
    const auto it = m_longStays.constFind(sheet);
    return it == m_longStays.constEnd() ? none : *it;
}

} // namespace fenlark

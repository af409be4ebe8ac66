#pragma once

#include "rates/raterecords.h"

#include <QHash>
#include <QString>

#include <array>
#include <stdexcept>
#include <vector>

namespace fenlark {

class Database;

// Rate data that cannot be priced: raised instead of guessing, so a wrong rate
// never reaches an invoice unnoticed.
class RateDataError : public std::runtime_error {
public:
    explicit RateDataError(const QString &message);
    QString message() const { return m_message; }

private:
    QString m_message;
};

// A rate period as the calculator reads it: dates as day numbers, nulls as 0.
struct RatePeriod {
    qint64 start = 0;   // first night (Julian day)
    qint64 end = 0;     // last night, included
    char rateType = 0;  // '1' or '2'; any other value is never read
    std::array<double, 5> pax{};
    std::array<double, 5> wpax{};
    QString childFlag1, childFlag2;
    double childRate1 = 0, childRate2 = 0;
    double wchildRate1 = 0, wchildRate2 = 0;
};

// What the pricing needs of a room type, with its weekday mask worked out once.
struct RoomTypeRates {
    RoomType row;
    qint16 rateScheme = 0;                // "1" per person, anything else per unit
    std::array<bool, 8> markedDay{};      // index 1 Monday .. 7 Sunday: WPax night
};

// Every table the pricing reads, loaded once from the database. The tables come
// only with the setup download, so a snapshot stays right until the next one;
// pricing then runs in memory without a query per stay.
class RateData {
public:
    static RateData load(Database &db);

    // Rows of one room type, meal plan and sheet, in table order.
    const std::vector<RatePeriod> *periods(qint32 bbrtid, qint32 mealPlan, qint32 sheet) const;
    const RoomTypeRates *roomType(qint32 bbrtid) const;
    const Room *room(qint32 bbroomid) const;
    const RateCode *rateCode(qint32 bbrateid) const;
    const RTMealPlan *mealPlanRC(qint32 bbmealplanrc) const;
    const Package *package(qint32 bbpackageid) const;
    const PackageRT *packageRT(qint32 bbprid) const;
    // The first packagerate row of a package, source and sheet.
    const PackageRate *packageRate(qint32 bbpackageid, qint32 sourceId, qint32 sheet) const;
    // The long-stay rows of a sheet, in table order.
    const std::vector<RatesLongStay> &longStays(qint32 sheet) const;

    const std::vector<RTMealPlan> &mealPlans() const { return m_mealPlanList; }
    const std::vector<RateCode> &rateCodes() const { return m_rateCodeList; }
    const std::vector<PackageRT> &packageRTs() const { return m_packageRTList; }

    // From bbsetup; zero and empty when the property has no setup row yet.
    QString ChargeSSRate;
    qint16 ChildLowerLimit = 0;
    qint16 ChildAge1 = 0;
    qint16 ChildAge2 = 0;

    // Adds one row of each kind; load() uses these, and so can a caller that
    // builds rate data without a database.
    void addRoomType(const RoomType &type);
    void addRoom(const Room &room);
    void addPeriod(const Rates &row);
    void addRateCode(const RateCode &code);
    void addMealPlanRC(const RTMealPlan &plan);
    void addPackage(const Package &package);
    void addPackageRT(const PackageRT &link);
    void addPackageRate(const PackageRate &rate);
    void addLongStay(const RatesLongStay &row);

private:
    void loadPeriods(Database &db);
    static quint64 pairKey(qint32 a, qint32 b) { return (quint64(quint32(a)) << 32) | quint32(b); }

    QHash<qint32, RoomTypeRates> m_roomTypes;
    QHash<qint32, Room> m_rooms;
    QHash<qint32, QHash<quint64, std::vector<RatePeriod>>> m_periods;  // rtid -> (plan, sheet) -> rows
    QHash<qint32, RateCode> m_rateCodes;
    std::vector<RateCode> m_rateCodeList;
    QHash<qint32, RTMealPlan> m_mealPlans;
    std::vector<RTMealPlan> m_mealPlanList;
    QHash<qint32, Package> m_packages;
    QHash<qint32, PackageRT> m_packageRTs;
    std::vector<PackageRT> m_packageRTList;
    QHash<quint64, std::vector<PackageRate>> m_packageRates;  // (package, source) -> rows
    QHash<qint32, std::vector<RatesLongStay>> m_longStays;
};

// A rate scheme as the tables hold it ("1", " 1", "2" ...) as a number; 0 when
// it is not one.
qint16 rateSchemeNumber(const QString &text);

} // namespace fenlark

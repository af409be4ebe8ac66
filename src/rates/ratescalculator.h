#pragma once

#include <QDate>
#include <QMap>
#include <QString>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace fenlark {

class Database;
class RateData;
struct RatePeriod;

// The head count of one room leg. Child1 counts the younger age band, Child2
// the older.
struct NoGuests {
    qint32 BBRoomID = 0;
    qint16 NoAdults = 0;
    qint16 Child1 = 0;
    qint16 Child2 = 0;
};

// The property's child age bands. A band whose upper age is 0 does not exist,
// and children counted in it are not charged.
class ChildPolicy {
public:
    qint16 ChildLowerLimit = 0;
    qint16 ChildAge1 = 0;
    qint16 ChildAge2 = 0;
    QString label1;   // "3-11", empty when the band does not exist
    QString label2;   // "12-17"

    void fetchChildPolicy(Database &db);
    void setAges(qint16 lowerLimit, qint16 age1, qint16 age2);
};

// The rate of one night.
class RatesRT {
public:
    qint16 RateScheme = 0;   // 1 per person; any other value per unit
    QString AppliesTo;
    qint16 MaxAdults = 0;
    QString ChildFlag1, ChildFlag2;
    double ChildRate1 = 0, ChildRate2 = 0;

    // i from 0 to 5; 0 is never set and reads 0. Any other index throws
    // std::out_of_range.
    double pax(int i) const;
    void setPax(int i, double value);

private:
    std::array<double, 6> m_pax{};
};

// The long-stay discounts of one rate sheet, chosen by the arrival date.
class LongStay {
public:
    // Throws RateDataError when two rows of one room type apply to the same
    // arrival: which discount holds would be a guess.
    void initialise(const RateData &data, qint32 BBRateSheetID, const QDate &arrival);
    // The rate with the discount of the longest qualifying tier of the room
    // type's row (else the property-wide row 0), rounded to cents.
    double applyDiscount(qint32 BBRTID, int nights, double rate) const;

private:
    struct Tiers {
        qint32 BBRTID = 0;
        std::array<qint16, 3> durations{};
        std::array<double, 3> discounts{};
    };
    std::vector<Tiers> m_tiers;
};

// Prices every night of one room leg of one stay: a rate code, a rate sheet,
// the dates and the head count give a price per night. Pure: reads the rate
// data only, reports nothing; a night that cannot be priced is 0.
class RatesCalculator {
public:
    RatesCalculator();
    ~RatesCalculator();
    RatesCalculator(const RatesCalculator &) = delete;
    RatesCalculator &operator=(const RatesCalculator &) = delete;

    // fromDate is the first night, toDate the day of leaving. A rate code of 0
    // stands for manual rates: every night 0. toDate not after fromDate gives a
    // stay of no nights.
    void initialise(const RateData &data, qint32 BBRateID, const QDate &fromDate, const QDate &toDate,
                    const NoGuests &guests, qint32 BBRateSheetID);

    int nights() const { return m_nights; }
    // Price of night n, 1 being the arrival night; 0 outside the stay. Not rounded.
    double DailyRate(int n) const;

private:
    void fetchRackRates(qint32 sourceId);
    void fetchPackageRates(qint32 bbpackageId, qint32 sourceId);
    void setRates(const RatesRT &rate, int first, int last);
    void fillNight(RatesRT &night, const RatePeriod &period, bool marked, qint32 bbrtid, const LongStay &longStay) const;
    void extendWithRackRate(qint32 bbrtid, const QDate &start);
    double calcDailyRate(const std::optional<RatesRT> &rate) const;
    double childPrice(const RatesRT &rate, int &pos, bool &firstChildAsAdult, bool youngerBand) const;

    const RateData *m_data = nullptr;
    QDate m_fromDate;
    QDate m_toDate;
    int m_nights = 0;
    NoGuests m_guests;
    ChildPolicy m_childPolicy;
    QString m_chargeSSRate;
    qint32 m_rateSheetId = 0;
    std::vector<std::optional<RatesRT>> m_nightRates;   // index 0 unused
    std::unique_ptr<RatesCalculator> m_extension;
    int m_extensionNights = 0;
};

// One room leg of a stay to be priced.
struct StayRequest {
    qint32 BBRoomID = 0;
    qint32 BBRateID = 0;
    qint32 BBRateSheetID = 0;
    QDate FromDate;     // first night
    QDate ToDate;       // day of leaving
    qint16 adults = 0;
    qint16 child1 = 0;
    qint16 child2 = 0;
};

// The price of each night, rounded to cents as it is stored, and their total.
struct StayPrice {
    QMap<QDate, double> nights;
    double total = 0;
};

// Prices every night of one leg; a stay of no nights gives an empty price.
StayPrice priceStay(const RateData &data, const StayRequest &request);

} // namespace fenlark
